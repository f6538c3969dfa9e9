#pragma once

#include "zelto/datasource/Enumerations.h"

namespace zelto {

/// Size and type of a raster to be created.
struct RasterLayout {
    int width = 0;
    int height = 0;
    int bands = 0;
    PixelDataType type = PDT_Unknown;
};

} // namespace zelto
