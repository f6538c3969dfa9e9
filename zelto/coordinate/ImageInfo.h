#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <string>

/// Where an image lies: its size, the geotransform from (column, row) of pixel corners to the
/// ground (six terms in GDAL's order) and the reference system of the ground.
struct tagImageInfo {
    int width = 0;  ///< columns
    int height = 0; ///< rows
    double geoTransform[6] = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    std::string srs;     ///< any form GDAL's user-input parser takes
    CBoundingBox extent; ///< ground box of all the pixels
};
