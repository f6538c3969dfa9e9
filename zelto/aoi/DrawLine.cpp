#include "zelto/aoi/DrawLine.h"

#include "zelto/aoi/internal/VertexList.h"

#include <cmath>

namespace {

/// Whether `value` lies strictly beyond both ends of a range given in either order.
bool IsBeyond(double value, double end1, double end2) {
    return (value < end1 && value < end2) || (value > end1 && value > end2);
}

/// Whether `value` lies in a range given in either order, ends included.
bool IsBetween(double value, double end1, double end2) {
    return (end1 <= value && value <= end2) || (end2 <= value && value <= end1);
}

bool IsNear(double value, double end1, double end2, double tolerance) {
    return std::fabs(value - end1) <= tolerance || std::fabs(value - end2) <= tolerance;
}

} // namespace

CDrawLine::CDrawLine() {
    m_shapeKind = SHAPE_LINE;
}

CDrawLine::~CDrawLine() = default;

int CDrawLine::AddVertex(CPoint2D p) {
    const std::size_t before = m_vertices.size();
    const int count = zelto::AppendVertex(*this, p);
    if (m_vertices.size() == before)
        return count;
    (count == 1 ? m_startPoint : m_endPoint) = p;
    m_complete = count > 1;
    return count;
}

SpatialTopoRelation CDrawLine::TopoRelationWithPoint(CPoint2D p, double tolerance, int /*mode*/) {
    // With its start alone the line would lead to an end that nobody has drawn.
    if (m_vertices.size() < 2)
        return TOPO_DISJOINT;
    const auto [x1, y1] = m_startPoint;
    const auto [x2, y2] = m_endPoint;
    const bool nearVertical = std::fabs(x1 - x2) <= tolerance;
    if (nearVertical && IsNear(p.x, x1, x2, tolerance) && IsBetween(p.y, y1, y2))
        return TOPO_CONTAIN;
    const bool nearHorizontal = std::fabs(y1 - y2) <= tolerance;
    if (nearHorizontal && IsNear(p.y, y1, y2, tolerance) && IsBeyond(p.x, x1, x2))
        return TOPO_DISJOINT;
    // On a vertical line this is infinite or not a number, and the answer is "no".
    const double yOnLine = (p.x - x1) / (x2 - x1) * (y2 - y1) + y1;
    if (IsBeyond(yOnLine, y1, y2))
        return TOPO_DISJOINT;
    return std::fabs(p.y - yOnLine) <= tolerance ? TOPO_CONTAIN : TOPO_DISJOINT;
}

SpatialTopoRelation CDrawLine::TopoRelationWithBoundingbox(CBoundingBox* /*box*/) {
    return TOPO_DISJOINT;
}

void CDrawLine::SetOffset(double dx, double dy) {
    CDrawShape::SetOffset(dx, dy);
    m_startPoint += CPoint2D(dx, dy);
    m_endPoint += CPoint2D(dx, dy);
}
