#pragma once

#include "zelto/display/internal/SamplePositions.h"
#include "zelto/display/internal/ViewWindow.h"

#include <cstddef>
#include <new>
#include <stdexcept>

class CRasterSource;

namespace zelto {

RasterGrid GridOf(const CRasterSource& source);

/// The output image of a view that begins at the box's top-left corner.
/// @param anchor see OutputGrid
OutputGrid OutputOf(const CRasterSource& source, const CBoundingBox& box, const ViewWindow& view,
                    int w, double anchor);

/// The answer of `draw`, false where the memory for the output's size cannot be had.
template <typename Draw>
bool FalseWithoutMemory(const Draw& draw) {
    try {
        return draw();
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
}

/// Index of the first pixel of a row in an image `width` pixels wide.
inline std::size_t PixelIndex(int row, int width) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
}

} // namespace zelto
