#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <array>
#include <cstddef>
#include <pybind11/numpy.h>

namespace zelto::python {

/// A picture's place on the ground and its size.
struct View {
    CBoundingBox box;
    int width = 0;
    int height = 0;
};

/// Left, top, right, bottom as a box. Throws ValueError for one that has no area.
CBoundingBox CheckedBox(const std::array<double, 4>& sides);

/// The view that fills an array of rows × columns × 4 bytes. Throws.
View CheckedPicture(pybind11::array& out, const std::array<double, 4>& box);

} // namespace zelto::python
