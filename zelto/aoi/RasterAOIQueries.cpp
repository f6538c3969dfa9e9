#include "zelto/aoi/RasterAOI.h"
#include "zelto/aoi/internal/HitPredicates.h"
#include "zelto/aoi/internal/RowMembership.h"

#include <algorithm>
#include <limits>

namespace {

int ClampToInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

} // namespace

bool CRasterAOI::IsOverPixelRect(double column, double row) const {
    return m_pixelRect.left <= column && column <= m_pixelRect.right && m_pixelRect.top <= row &&
           row <= m_pixelRect.bottom;
}

bool CRasterAOI::IsInDrawShapes(const CPoint2D& p) const {
    return std::any_of(m_rasterShapes.begin(), m_rasterShapes.end(), [&](const auto& shape) {
        return shape->TopoRelationWithPoint(p, 0.0, 1) == TOPO_CONTAIN;
    });
}

bool CRasterAOI::IsInDrawShapes(int column, int row) const {
    return IsInDrawShapes(CPoint2D(column, -static_cast<double>(row)));
}

bool CRasterAOI::IsInAOI(int column, int row) const {
    return IsOverPixelRect(column, row) && IsInDrawShapes(column, row);
}

bool CRasterAOI::IsdfInAOI(double column, double row) const {
    return IsOverPixelRect(column, row) && IsInDrawShapes(CPoint2D(column, -row));
}

SpatialTopoRelation CRasterAOI::FirstRelation(CBoundingBox& box) const {
    if (zelto::AreDisjoint(box, m_pixelBox))
        return TOPO_DISJOINT;
    for (const auto& shape : m_rasterShapes) {
        const SpatialTopoRelation relation = shape->TopoRelationWithBoundingbox(&box);
        if (relation != TOPO_DISJOINT)
            return relation;
    }
    return TOPO_DISJOINT;
}

SpatialTopoRelation CRasterAOI::TopoRelationWithBoundingBox(CBoundingBox* box) const {
    return box != nullptr ? FirstRelation(*box) : TOPO_DISJOINT;
}

SpatialTopoRelation CRasterAOI::ReadCacheAoiBuffer(int x, int y, int width, int height) const {
    CRect block;
    SetRect(&block, x, y, ClampToInt(std::int64_t{x} + width),
            ClampToInt(std::int64_t{y} + height));
    CRect overlap;
    if (!IntersectRect(&overlap, &block, &m_pixelRect))
        return TOPO_DISJOINT;
    CBoundingBox box(block.left, -static_cast<double>(block.top), block.right,
                     -static_cast<double>(block.bottom));
    return FirstRelation(box);
}
