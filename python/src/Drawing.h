#pragma once

#include "zelto/geometry/BoundingBox.h"

#include "host/picture/View.h"

#include <array>
#include <pybind11/numpy.h>

namespace zelto::python {

using host::View;

/// Left, top, right, bottom as a box. Throws ValueError for one that has no area.
CBoundingBox CheckedBox(const std::array<double, 4>& sides);

/// The view that fills an array of rows × columns × 4 bytes. Throws.
View CheckedPicture(pybind11::array& out, const std::array<double, 4>& box);

} // namespace zelto::python
