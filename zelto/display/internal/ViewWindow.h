#pragma once

#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/Point2D.h"

#include <array>

namespace zelto {

/// The pixel grid of a raster as far as a view needs it.
struct RasterGrid {
    int width = 0;
    int height = 0;
    CPoint2D origin;         ///< ground position of the top-left corner
    double pixelWidth = 0.0; ///< terms of the geotransform, with their signs
    double pixelHeight = 0.0;
    std::array<double, 6> inverseGeoTransform{}; ///< column = [0] + x·[1] + y·[2], row likewise
    CBoundingBox extent;
};

/// A window of pixels and the size it is read at.
struct ReadWindow {
    int xOff = 0;
    int yOff = 0;
    int xSize = 0;
    int ySize = 0;
    int bufWidth = 0;
    int bufHeight = 0;

    bool operator==(const ReadWindow&) const = default;
};

/// What a window is chosen for. The rules differ on purpose, and hosts rely on the differences
/// at the edges of a raster.
enum class ViewRule {
    Interleaved, ///< widened by one output pixel, the last column and row counted in
    Planes,      ///< the same without them; read as it is when zoomed in
    Cache,       ///< as Planes, widened by two output pixels, never read as it is
};

enum class ViewStatus { Selected, MissesRaster, NoGroundWidth, NoGroundHeight, NothingToRead };

/// Why there is nothing to draw, in a few words; see SelectViewWindow().
const char* ReasonOf(ViewStatus status);

struct ViewWindow {
    ViewStatus status = ViewStatus::MissesRaster;
    double pixelWidth = 0.0;  ///< ground width of one output pixel
    double pixelHeight = 0.0; ///< ground height of one output pixel
    ReadWindow read;          ///< set when the status is Selected
};

/// Chooses the window of source pixels that the ground box covers and the size to read it at so
/// that a sample corresponds to an output pixel of w × h over the box.
///
/// Boxes with NaN or infinite sides, or so large that pixel positions leave the integer range,
/// and sizes below 1 miss the raster.
ViewWindow SelectViewWindow(const RasterGrid& grid, const CBoundingBox& box, int w, int h,
                            ViewRule rule);

} // namespace zelto
