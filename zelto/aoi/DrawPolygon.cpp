#include "zelto/aoi/DrawPolygon.h"

#include "zelto/aoi/internal/HitPredicates.h"
#include "zelto/aoi/internal/SelectedPoint.h"
#include "zelto/aoi/internal/VertexList.h"

namespace {

const CPoint2D& NextVertex(const std::vector<CPoint2D>& vertices, std::size_t i) {
    return vertices[i + 1 < vertices.size() ? i + 1 : 0];
}

/// Whether the edge crosses the point's row strictly to the right of the point.
bool CountsFor(const CPoint2D& p, const CPoint2D& start, const CPoint2D& end) {
    const double a = start.y - p.y;
    const double b = end.y - p.y;
    return zelto::EdgeCrossesRow(a, b) && zelto::CrossesRightOf(start.x, a, end.x, b, p.x);
}

} // namespace

CDrawPolygon::CDrawPolygon() {
    m_shapeKind = SHAPE_POLYGON;
}

CDrawPolygon::~CDrawPolygon() = default;

int CDrawPolygon::AddVertex(CPoint2D p) {
    return zelto::AppendVertex(*this, p);
}

SpatialTopoRelation CDrawPolygon::TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) {
    zelto::StoreSelectedPoint(m_selectedPointIndex, -1);
    if (mode != 0)
        return IsPointIn(&p) ? TOPO_CONTAIN : TOPO_DISJOINT;
    if (!m_extent.IsContain(p) || m_vertices.size() < 3)
        return TOPO_DISJOINT;
    for (std::size_t i = 0; i < m_vertices.size(); ++i) {
        if (!zelto::IsWithin(p, m_vertices[i], tolerance))
            continue;
        zelto::StoreSelectedPoint(m_selectedPointIndex, static_cast<std::int32_t>(i));
        return TOPO_TOUCH;
    }
    return IsPointIn(&p) ? TOPO_CONTAIN : TOPO_DISJOINT;
}

bool CDrawPolygon::IsPointIn(CPoint2D* p) const {
    if (p == nullptr || m_vertices.size() < 3 || !m_extent.IsContain(*p))
        return false;
    bool inside = false;
    for (std::size_t i = 0; i < m_vertices.size(); ++i)
        if (CountsFor(*p, m_vertices[i], NextVertex(m_vertices, i)))
            inside = !inside;
    return inside;
}

int CDrawPolygon::InsertVertex(CPoint2D p, int index) {
    const int count = zelto::InsertVertexAt(*this, p, index);
    ReComputeExtent();
    return count;
}

int CDrawPolygon::RemoveVertex(CPoint2D p) {
    const int count = zelto::RemoveEqualVertex(*this, p);
    ReComputeExtent();
    return count;
}

int CDrawPolygon::ReComputeExtent() {
    zelto::SetExtentFromVertices(*this);
    return 0;
}
