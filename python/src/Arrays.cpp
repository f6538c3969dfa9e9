#include "python/src/Arrays.h"

#include <array>
#include <bit>

namespace py = pybind11;

namespace zelto::python {

namespace {

struct SampleType {
    PixelDataType type;
    const char* name; ///< NumPy's
    char kind;        ///< NumPy's character for whole numbers without and with a sign, and others
    int size;
};

constexpr std::array<SampleType, 7> TYPES = {{{PDT_Byte, "uint8", 'u', 1},
                                              {PDT_UInt16, "uint16", 'u', 2},
                                              {PDT_Int16, "int16", 'i', 2},
                                              {PDT_UInt32, "uint32", 'u', 4},
                                              {PDT_Int32, "int32", 'i', 4},
                                              {PDT_Float32, "float32", 'f', 4},
                                              {PDT_Float64, "float64", 'f', 8}}};

constexpr char FOREIGN_BYTE_ORDER = std::endian::native == std::endian::little ? '>' : '<';

} // namespace

py::object DtypeName(PixelDataType type) {
    for (const SampleType& known : TYPES)
        if (known.type == type)
            return py::str(known.name);
    return py::none();
}

PixelDataType PixelTypeOf(const py::array& array) {
    const py::dtype dtype = array.dtype();
    if (dtype.byteorder() != FOREIGN_BYTE_ORDER)
        for (const SampleType& known : TYPES)
            if (dtype.kind() == known.kind && dtype.itemsize() == known.size)
                return known.type;
    throw py::type_error("samples are uint8, uint16, int16, uint32, int32, float32 or float64, "
                         "in the machine's byte order");
}

void RequireShape(const py::array& array, const std::vector<py::ssize_t>& shape) {
    const bool fits =
        std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()) == shape;
    if (!fits)
        throw py::value_error("the array has another shape than is asked for");
    const int flags = array.flags();
    const int wanted =
        py::detail::npy_api::NPY_ARRAY_C_CONTIGUOUS_ | py::detail::npy_api::NPY_ARRAY_ALIGNED_;
    if ((flags & wanted) != wanted)
        throw py::value_error("the array is not packed row by row");
}

void* Memory(py::array& array) {
    if (!array.writeable())
        throw py::value_error("the array is read-only");
    return array.mutable_data();
}

} // namespace zelto::python
