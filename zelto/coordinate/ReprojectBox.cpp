#include "zelto/baselib/internal/Truncate.h"
#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/coordinate/GeoGrid.h"
#include "zelto/coordinate/Reproject.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <vector>

namespace {

constexpr double NO_STEP = 1e-10;
/// Pixels by which a source window is widened, for resampling at its edges.
constexpr std::int64_t MARGIN = 5;

struct Points {
    std::vector<double> x;
    std::vector<double> y;

    int Count() const { return static_cast<int>(x.size()); }
    void Set(std::size_t i, double px, double py) {
        x[i] = px;
        y[i] = py;
    }
};

/// nx points on the top, nx on the bottom, ny on the left, ny on the right; the last of each is
/// the corner.
Points SampleEdges(const CBoundingBox& box, std::size_t nx, std::size_t ny, double sx, double sy) {
    Points points;
    points.x.resize(2 * (nx + ny));
    points.y.resize(2 * (nx + ny));
    for (std::size_t i = 0; i < nx; ++i) {
        const double x = box.m_left + static_cast<double>(i) * sx;
        points.Set(i, x, box.m_top);
        points.Set(nx + i, x, box.m_bottom);
    }
    points.Set(nx - 1, box.m_right, box.m_top);
    points.Set(2 * nx - 1, box.m_right, box.m_bottom);
    for (std::size_t j = 0; j < ny; ++j) {
        const double y = box.m_top - static_cast<double>(j) * sy;
        points.Set(2 * nx + j, box.m_left, y);
        points.Set(2 * nx + ny + j, box.m_right, y);
    }
    points.Set(2 * nx + ny - 1, box.m_left, box.m_bottom);
    points.Set(2 * nx + 2 * ny - 1, box.m_right, box.m_bottom);
    return points;
}

/// Points along the edges of a box, `stepX` and `stepY` apart; nothing for a box that is empty or
/// inverted, steps as large as its sides and too many points.
std::optional<Points> SampleEdges(const CBoundingBox& box, double stepX, double stepY) {
    double sx = std::abs(stepX);
    double sy = std::abs(stepY);
    const double w = box.m_right - box.m_left;
    const double h = box.m_top - box.m_bottom;
    // Written so that sides that are no numbers are refused as well.
    if (!(sx + NO_STEP <= w && sy + NO_STEP <= h))
        return std::nullopt;
    double nx = 2;
    double ny = 2;
    if (sx < NO_STEP || sy < NO_STEP) {
        sx = w / 2;
        sy = h / 2;
    } else {
        nx = std::ceil(w / sx);
        ny = std::ceil(h / sy);
    }
    // Sides without end in steps without end are no number of points.
    if (!(2 * (nx + ny) <= CReproject::MAX_EDGE_POINTS))
        return std::nullopt;
    return SampleEdges(box, static_cast<std::size_t>(nx), static_cast<std::size_t>(ny), sx, sy);
}

bool AllFinite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

/// The window between two pixel positions, widened and clipped to w × h pixels.
/// @return false when it lies beside the image
bool ClipWindow(std::int64_t xMin, std::int64_t yMin, std::int64_t xMax, std::int64_t yMax,
                std::int64_t w, std::int64_t h, CRect& window) {
    if (xMax < 0 || xMin > w || yMax < 0 || yMin > h)
        return false;
    // Compared before they are widened: a position that is no number is the least integer.
    const auto widenDown = [](std::int64_t v) { return v > MARGIN ? v - MARGIN : 0; };
    const auto widenUp = [](std::int64_t v, std::int64_t size) {
        return v < size - MARGIN ? v + MARGIN : size;
    };
    return SetRect(&window, static_cast<int>(widenDown(xMin)), static_cast<int>(widenDown(yMin)),
                   static_cast<int>(widenUp(xMax, w)), static_cast<int>(widenUp(yMax, h)));
}

} // namespace

bool CReproject::TransformEdges(double* x, double* y, int count, CCoordinateTransformation* ct) {
    if (m_gridReady && GetAffineRaster() != nullptr)
        return m_grid->Transform(static_cast<CRasterSource*>(m_source), count, x, y, nullptr);
    return ct->Transform(count, x, y, nullptr, nullptr);
}

bool CReproject::BoxTansform(double left, double top, double right, double bottom, double& outLeft,
                             double& outTop, double& outRight, double& outBottom, double stepX,
                             double stepY, CCoordinateTransformation* ct) {
    if (ct == nullptr)
        return false;
    try {
        auto sampled = SampleEdges(CBoundingBox(left, top, right, bottom), stepX, stepY);
        if (!sampled)
            return false;
        Points& points = *sampled;
        const bool done = TransformEdges(points.x.data(), points.y.data(), points.Count(), ct);
        outLeft = *std::min_element(points.x.begin(), points.x.end());
        outRight = *std::max_element(points.x.begin(), points.x.end());
        outBottom = *std::min_element(points.y.begin(), points.y.end());
        outTop = *std::max_element(points.y.begin(), points.y.end());
        return done;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool CReproject::Dest2SrcBox(CBoundingBox& targetBox, CBoundingBox& sourceBox, double stepX,
                             double stepY) {
    return BoxTansform(targetBox.m_left, targetBox.m_top, targetBox.m_right, targetBox.m_bottom,
                       sourceBox.m_left, sourceBox.m_top, sourceBox.m_right, sourceBox.m_bottom,
                       stepX, stepY, m_targetToSource);
}

bool CReproject::Src2DestBox(CBoundingBox& sourceBox, CBoundingBox& targetBox, double stepX,
                             double stepY) {
    return BoxTansform(sourceBox.m_left, sourceBox.m_top, sourceBox.m_right, sourceBox.m_bottom,
                       targetBox.m_left, targetBox.m_top, targetBox.m_right, targetBox.m_bottom,
                       stepX, stepY, m_sourceToTarget);
}

bool CReproject::FindWindow(const CBoundingBox& sourceBox, CRect& window) const {
    const CRasterSource* raster = GetAffineRaster();
    const CRasterBand* band = raster->GetRasterBand(0);
    if (band == nullptr)
        return false;
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    raster->GroundToImage(sourceBox.m_left, sourceBox.m_top, left, top);
    raster->GroundToImage(sourceBox.m_right, sourceBox.m_bottom, right, bottom);
    return ClipWindow(zelto::TruncateToInt64(left), zelto::TruncateToInt64(top),
                      zelto::TruncateToInt64(right), zelto::TruncateToInt64(bottom),
                      band->GetWidth(), band->GetHeight(), window);
}

bool CReproject::GetInImgEnveFromGeoOut(CBoundingBox& targetBox, CRect* rect, double stepX,
                                        double stepY) {
    CBoundingBox sourceBox;
    CRect window;
    if (rect == nullptr || GetAffineRaster() == nullptr ||
        !Dest2SrcBox(targetBox, sourceBox, stepX, stepY) || !FindWindow(sourceBox, window))
        return false;
    *rect = window;
    return true;
}

bool CReproject::GetInImgEnveFromGeoOut(double left, double top, double right, double bottom,
                                        long& x, long& y, long& width, long& height, double stepX,
                                        double stepY) {
    CBoundingBox box(left, top, right, bottom);
    CRect window;
    if (!GetInImgEnveFromGeoOut(box, &window, stepX, stepY))
        return false;
    x = window.left;
    y = window.top;
    width = window.right - window.left;
    height = window.bottom - window.top;
    return true;
}

bool CReproject::FindSourceWindow(const CBoundingBox& targetBox, CRect& window, double stepX,
                                  double stepY) {
    const CRasterSource* raster = GetAffineRaster();
    const CRasterBand* band = raster != nullptr ? raster->GetRasterBand(0) : nullptr;
    if (band == nullptr)
        return false;
    try {
        auto points = SampleEdges(targetBox, stepX, stepY);
        if (!points)
            return false;
        std::vector<double> columns(points->x.size());
        std::vector<double> rows(points->x.size());
        if (!GetSrcPos(points->x.data(), points->y.data(), columns.data(), rows.data(),
                       points->Count()) ||
            !AllFinite(columns) || !AllFinite(rows))
            return false;
        const auto [left, right] = std::minmax_element(columns.begin(), columns.end());
        const auto [top, bottom] = std::minmax_element(rows.begin(), rows.end());
        return ClipWindow(zelto::TruncateToInt64(*left), zelto::TruncateToInt64(*top),
                          zelto::TruncateToInt64(*right), zelto::TruncateToInt64(*bottom),
                          band->GetWidth(), band->GetHeight(), window);
    } catch (const std::bad_alloc&) {
        return false;
    }
}
