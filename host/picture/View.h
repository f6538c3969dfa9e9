#pragma once

#include "zelto/geometry/BoundingBox.h"

namespace zelto::host {

/// What part of the ground a picture shows, and in how many pixels.
struct View {
    CBoundingBox box; ///< ground units
    int width = 0;    ///< pixels
    int height = 0;   ///< pixels
};

} // namespace zelto::host
