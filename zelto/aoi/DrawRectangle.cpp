#include "zelto/aoi/DrawRectangle.h"

#include "zelto/aoi/internal/HitPredicates.h"
#include "zelto/aoi/internal/SelectedPoint.h"
#include "zelto/aoi/internal/VertexList.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// The handles in the order of their numbers: clockwise from the top-left corner.
std::array<CPoint2D, 8> Handles(const CPoint2D& topLeft, double width, double height) {
    const auto [left, top] = topLeft;
    const double right = left + width;
    const double bottom = top - height;
    const double middleX = left + width / 2;
    const double middleY = top - height / 2;
    return {{{left, top},
             {middleX, top},
             {right, top},
             {right, middleY},
             {right, bottom},
             {middleX, bottom},
             {left, bottom},
             {left, middleY}}};
}

} // namespace

CDrawRectangle::CDrawRectangle() {
    m_shapeKind = SHAPE_RECTANGLE;
}

CDrawRectangle::~CDrawRectangle() = default;

int CDrawRectangle::AddVertex(CPoint2D p) {
    if (!zelto::PushVertex(*this, p))
        return static_cast<int>(m_vertices.size());
    m_complete = m_vertices.size() > 1;
    if (!m_complete) {
        m_topLeft = p;
        m_extent.SetBoundingBox(p, p);
        return 1;
    }
    const CPoint2D first = m_vertices.front();
    m_width = std::fabs(p.x - first.x);
    m_height = std::fabs(p.y - first.y);
    m_topLeft = CPoint2D(std::min(first.x, p.x), std::max(first.y, p.y));
    // The dragged point, not the computed corner: the extent stays inverted until UpdateExtent().
    m_extent.SetBoundingBox(m_topLeft, p);
    return static_cast<int>(m_vertices.size());
}

SpatialTopoRelation CDrawRectangle::TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) {
    zelto::StoreSelectedPoint(m_selectedPointIndex, -1);
    if (!m_extent.IsContain(p))
        return TOPO_DISJOINT;
    if (mode != 0)
        return TOPO_CONTAIN;
    const auto handles = Handles(m_topLeft, m_width, m_height);
    const auto hit = std::find_if(handles.begin(), handles.end(), [&](const CPoint2D& handle) {
        return zelto::IsWithin(handle, p, tolerance);
    });
    if (hit == handles.end())
        return TOPO_CONTAIN;
    zelto::StoreSelectedPoint(m_selectedPointIndex,
                              static_cast<std::int32_t>(hit - handles.begin()));
    return TOPO_TOUCH;
}

SpatialTopoRelation CDrawRectangle::TopoRelationWithBoundingbox(CBoundingBox* box) {
    if (box == nullptr)
        return TOPO_DISJOINT;
    if (m_extent.IsContain(box))
        return TOPO_CONTAIN;
    return zelto::AreDisjoint(*box, m_extent) ? TOPO_DISJOINT : TOPO_INTERSECT;
}

void CDrawRectangle::SetOffset(double dx, double dy) {
    CDrawShape::SetOffset(dx, dy);
    m_topLeft += CPoint2D(dx, dy);
}
