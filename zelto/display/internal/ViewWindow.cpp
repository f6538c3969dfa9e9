#include "zelto/display/internal/ViewWindow.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/Truncate.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zelto {
namespace {

/// First and last pixel position of a box along one axis of the raster. Differences are taken in
/// 64 bits or in double: the positions may be anywhere in the 32-bit range.
struct PixelRange {
    std::int32_t min = 0;
    std::int32_t max = 0;

    double Span() const { return static_cast<double>(max) - static_cast<double>(min); }
};

/// Positions of the four corners, each truncated toward zero, through terms of the inverse
/// geotransform: [0] + x·[1] + y·[2].
PixelRange CornerRange(const double* terms, const CBoundingBox& box) {
    const auto position = [terms](double x, double y) {
        return TruncateToInt32(terms[0] + x * terms[1] + y * terms[2]);
    };
    const auto [min, max] =
        std::minmax({position(box.m_left, box.m_top), position(box.m_right, box.m_top),
                     position(box.m_left, box.m_bottom), position(box.m_right, box.m_bottom)});
    return {min, max};
}

/// Offset and size of a range cut to the raster along one axis.
struct Cut {
    std::int64_t offset;
    std::int64_t size;
};

Cut CutToRaster(const PixelRange& range, int rasterSize, ViewRule rule) {
    const std::int64_t offset = std::max(0, range.min);
    if (rule == ViewRule::Interleaved)
        return {offset, std::min(rasterSize - 1, range.max) - offset + 1};
    return {offset, std::min(rasterSize, range.max) - offset};
}

/// Ground length of a range of pixels along one axis. The origin takes part so that its rounding
/// does.
double GroundLength(const PixelRange& range, double pixelSize, double origin) {
    return std::abs((range.max * pixelSize + origin) - (range.min * pixelSize + origin));
}

/// Samples to read along one axis: the output pixels that the cut window covers. The factors
/// stand in this order because their rounding decides about the last sample.
int ReadSize(const Cut& cut, const PixelRange& range, double groundLength, double outputPixel,
             double extentLength, int rasterSize) {
    const double span = range.Span();
    return CommonFun::Round((static_cast<double>(cut.size) / span) *
                            (groundLength / (((groundLength / span) * outputPixel) /
                                             (std::abs(extentLength) / rasterSize))));
}

/// Whether an output pixel is no larger than a raster pixel, give or take 1e-5.
bool IsFullResolution(double outputPixel, double rasterPixel) {
    return outputPixel - rasterPixel <= 1e-5;
}

CBoundingBox Widened(const CBoundingBox& box, double dx, double dy) {
    return {box.m_left - dx, box.m_top + dy, box.m_right + dx, box.m_bottom - dy};
}

} // namespace

const char* ReasonOf(ViewStatus status) {
    switch (status) {
    case ViewStatus::NoGroundWidth:
        return "the box has no width on the image";
    case ViewStatus::NoGroundHeight:
        return "the box has no height on the image";
    case ViewStatus::NothingToRead:
        return "the box is too small or too large to read a pixel for it";
    default:
        return "the box misses the image, or the picture has no pixels";
    }
}

ViewWindow SelectViewWindow(const RasterGrid& grid, const CBoundingBox& box, int w, int h,
                            ViewRule rule) {
    ViewWindow view;
    if (w < 1 || h < 1)
        return view;
    view.pixelWidth = std::abs(box.m_right - box.m_left) / w;
    view.pixelHeight = std::abs(box.m_top - box.m_bottom) / h;
    const double margin = rule == ViewRule::Cache ? 2.0 : 1.0;
    const CBoundingBox widened = Widened(box, margin * view.pixelWidth, margin * view.pixelHeight);
    const PixelRange columns = CornerRange(grid.inverseGeoTransform.data(), widened);
    const PixelRange rows = CornerRange(grid.inverseGeoTransform.data() + 3, widened);
    const Cut x = CutToRaster(columns, grid.width, rule);
    const Cut y = CutToRaster(rows, grid.height, rule);
    if (x.size <= 0 || y.size <= 0)
        return view;
    // Within the raster, hence within int.
    view.read = {static_cast<int>(x.offset), static_cast<int>(y.offset), static_cast<int>(x.size),
                 static_cast<int>(y.size),   static_cast<int>(x.size),   static_cast<int>(y.size)};
    view.status = ViewStatus::Selected;
    if (rule == ViewRule::Planes && IsFullResolution(view.pixelWidth, grid.pixelWidth) &&
        IsFullResolution(view.pixelHeight, std::abs(grid.pixelHeight)))
        return view;

    const double groundWidth = GroundLength(columns, grid.pixelWidth, grid.origin.x);
    const double groundHeight = GroundLength(rows, grid.pixelHeight, grid.origin.y);
    view.read.bufWidth = ReadSize(x, columns, groundWidth, view.pixelWidth,
                                  grid.extent.m_right - grid.extent.m_left, grid.width);
    view.read.bufHeight = ReadSize(y, rows, groundHeight, view.pixelHeight,
                                   grid.extent.m_top - grid.extent.m_bottom, grid.height);
    if (!(groundWidth > 0.0))
        view.status = ViewStatus::NoGroundWidth;
    else if (!(groundHeight > 0.0))
        view.status = ViewStatus::NoGroundHeight;
    else if (view.read.bufWidth <= 0 || view.read.bufHeight <= 0)
        view.status = ViewStatus::NothingToRead;
    return view;
}

} // namespace zelto
