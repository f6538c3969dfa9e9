#include "zelto/aoi/DrawPoint.h"

#include "zelto/aoi/internal/HitPredicates.h"
#include "zelto/aoi/internal/SelectedPoint.h"
#include "zelto/aoi/internal/VertexList.h"

CDrawPoint::CDrawPoint(int identifier) {
    m_identifier = identifier;
    m_shapeKind = SHAPE_POINT;
}

CDrawPoint::~CDrawPoint() = default;

int CDrawPoint::AddVertex(CPoint2D p) {
    if (!zelto::PushVertex(*this, p))
        return static_cast<int>(m_vertices.size());
    m_point = p;
    m_extent.SetBoundingBox(p, p);
    m_complete = true;
    return static_cast<int>(m_vertices.size());
}

SpatialTopoRelation CDrawPoint::TopoRelationWithPoint(CPoint2D p, double tolerance, int /*mode*/) {
    const bool hit = zelto::IsWithin(p, m_point, tolerance);
    zelto::StoreSelectedPoint(m_selectedPointIndex, hit ? 0 : -1);
    return hit ? TOPO_CONTAIN : TOPO_DISJOINT;
}

SpatialTopoRelation CDrawPoint::TopoRelationWithBoundingbox(CBoundingBox* box) {
    return box != nullptr && box->IsContain(m_point) ? TOPO_CONTAIN : TOPO_DISJOINT;
}

void CDrawPoint::SetOffset(double dx, double dy) {
    CDrawShape::SetOffset(dx, dy);
    m_point += CPoint2D(dx, dy);
}
