#pragma once

namespace zelto {

/// Some columns and rows of a raster.
struct PixelBox {
    int left;
    int top;
    int width;
    int height;

    bool operator==(const PixelBox&) const = default;
};

} // namespace zelto
