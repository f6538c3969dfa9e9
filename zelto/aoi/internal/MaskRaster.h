#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <cstddef>
#include <functional>

class OGRGeometry;

/// @file
/// Burning a geometry into a byte grid, and growing what was burnt by one pixel.

namespace zelto {

/// A grid of pixels over a ground box, rows from the top.
struct MaskGrid {
    CBoundingBox box;
    int width = 0;
    int height = 0;
    double pixelWidth = 0.0;  ///< ground units
    double pixelHeight = 0.0; ///< ground units

    std::size_t Size() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

/// Rows that are burnt at a time: as many as fit into 16 MiB, at least one.
int MaskStripRows(int width, int height);

/// Sets to 1 every pixel whose centre `geometry` covers; the others stay as they are.
/// @param pixels width × height bytes
/// @return false when GDAL refuses; the reason is in LastError()
bool BurnGeometry(OGRGeometry& geometry, const MaskGrid& grid, unsigned char* pixels);

/// Writes to `grown` a copy of `burnt` in which every pixel that touches a set one, also by a
/// corner, is set. The outermost rows and columns are copied as they are.
void GrowByOnePixel(const unsigned char* burnt, unsigned char* grown, int width, int height);

/// Receives rows firstRow … firstRow + rows − 1 of a mask, `grid.width` bytes each, from the top
/// to the bottom; answers whether to go on.
using MaskSink = std::function<bool(int firstRow, int rows, const unsigned char* mask)>;

/// Burns and grows strip by strip, for grids that need not fit into memory: the same bytes as
/// BurnGeometry() and GrowByOnePixel() give.
/// Throws std::bad_alloc.
/// @return false when GDAL refuses or the sink stopped
bool BurnGrownRows(OGRGeometry& geometry, const MaskGrid& grid, const MaskSink& sink);

/// Hands out a mask that is the same everywhere. Throws std::bad_alloc.
/// @return false when the sink stopped
bool FillRows(unsigned char value, const MaskGrid& grid, const MaskSink& sink);

} // namespace zelto
