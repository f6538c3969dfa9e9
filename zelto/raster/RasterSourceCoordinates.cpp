#include "zelto/baselib/internal/Truncate.h"
#include "zelto/geometry/BoundingBox.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>

namespace {

/// The coordinate behind `first`, not less than one pixel away when the two coincide.
std::int32_t PastFirst(std::int32_t first, std::int32_t last) {
    if (last != first)
        return last;
    return static_cast<std::int32_t>(std::int64_t{last} + 1);
}

} // namespace

void CRasterSource::ImageToGround(int col, int row, double& x, double& y) const {
    ImageToGround(static_cast<double>(col), static_cast<double>(row), x, y);
}

void CRasterSource::ImageToGround(double col, double row, double& x, double& y) const {
    x = m_geoTransform[0] + col * m_geoTransform[1] + row * m_geoTransform[2];
    y = m_geoTransform[3] + col * m_geoTransform[4] + row * m_geoTransform[5];
}

CPoint2D CRasterSource::ImageToGround(CPoint pixel) const {
    CPoint2D ground;
    ImageToGround(pixel.x, pixel.y, ground.x, ground.y);
    return ground;
}

CBoundingBox CRasterSource::ImageToGround(CRect* rect) const {
    if (rect == nullptr)
        return {};
    return {ImageToGround(CPoint{rect->left, rect->top}),
            ImageToGround(CPoint{rect->right, rect->bottom})};
}

void CRasterSource::GroundToImage(double x, double y, double& col, double& row) const {
    col = m_inverseGeoTransform[0] + x * m_inverseGeoTransform[1] + y * m_inverseGeoTransform[2];
    row = m_inverseGeoTransform[3] + x * m_inverseGeoTransform[4] + y * m_inverseGeoTransform[5];
}

void CRasterSource::GroundToImage(double x, double y, int& col, int& row) const {
    double exactCol = 0.0;
    double exactRow = 0.0;
    GroundToImage(x, y, exactCol, exactRow);
    col = zelto::TruncateToInt32(exactCol);
    row = zelto::TruncateToInt32(exactRow);
}

CPoint CRasterSource::GroundToImage(CPoint2D ground) const {
    CPoint pixel;
    GroundToImage(ground.x, ground.y, pixel.x, pixel.y);
    return pixel;
}

CRect CRasterSource::GroundToImage(CBoundingBox* box) const {
    if (box == nullptr)
        return {};
    const CPoint first = GroundToImage(box->TopLeft());
    const CPoint last = GroundToImage(box->BottomRight());
    return {first.x, first.y, PastFirst(first.x, last.x), PastFirst(first.y, last.y)};
}

CBoundingBox CRasterSource::GetExtentInit() const {
    const CPoint2D corners[] = {ImageToGround(CPoint{0, 0}), ImageToGround(CPoint{0, m_height}),
                                ImageToGround(CPoint{m_width, 0}),
                                ImageToGround(CPoint{m_width, m_height})};
    CBoundingBox extent(corners[0], corners[0]);
    for (const CPoint2D& corner : corners) {
        extent.m_left = std::min(extent.m_left, corner.x);
        extent.m_top = std::max(extent.m_top, corner.y);
        extent.m_right = std::max(extent.m_right, corner.x);
        extent.m_bottom = std::min(extent.m_bottom, corner.y);
    }
    return extent;
}
