#pragma once

#include "zelto/datasource/Enumerations.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <vector>

namespace zelto::python {

/// NumPy's name of a pixel type; None for types that are read as float64 (complex, 64-bit).
pybind11::object DtypeName(PixelDataType type);

/// The pixel type of samples. Throws TypeError for any other.
PixelDataType PixelTypeOf(const pybind11::dtype& dtype);

/// The dtype of a pixel type, which is one of the seven.
pybind11::dtype DtypeOf(PixelDataType type);

/// What NumPy makes of the name or type of samples. Throws TypeError unless it is one of the seven,
/// in the machine's byte order.
pybind11::dtype SampleDtype(const pybind11::object& dtype);

/// The type that holds the values of bands of all these types, as NumPy promotes them; of the
/// seven, so that 32 bits with and without a sign have float64 in common.
PixelDataType CommonType(const std::vector<PixelDataType>& types);

/// Throws ValueError unless the array has this shape and its samples are packed, aligned and in
/// the machine's byte order.
void RequireShape(const pybind11::array& array, const std::vector<pybind11::ssize_t>& shape);

/// The memory of such an array, to be written. Throws ValueError for one that is read-only.
void* Memory(pybind11::array& array);

using Doubles = pybind11::array_t<double, pybind11::array::c_style | pybind11::array::forcecast>;

} // namespace zelto::python
