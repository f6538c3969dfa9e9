#include "zelto/aoi/DrawMultiLine.h"

#include "zelto/aoi/internal/VertexList.h"

CDrawMultiLine::CDrawMultiLine() {
    m_shapeKind = SHAPE_MULTILINE;
}

CDrawMultiLine::~CDrawMultiLine() = default;

int CDrawMultiLine::AddVertex(CPoint2D p) {
    return zelto::AppendVertex(*this, p);
}

SpatialTopoRelation CDrawMultiLine::TopoRelationWithPoint(CPoint2D /*p*/, double /*tolerance*/,
                                                          int /*mode*/) {
    return TOPO_DISJOINT;
}

SpatialTopoRelation CDrawMultiLine::TopoRelationWithBoundingbox(CBoundingBox* /*box*/) {
    return TOPO_DISJOINT;
}

int CDrawMultiLine::InsertVertex(CPoint2D p, int index) {
    const int count = zelto::InsertVertexAt(*this, p, index);
    ReComputeExtent();
    return count;
}

int CDrawMultiLine::RemoveVertex(CPoint2D p) {
    const int count = zelto::RemoveEqualVertex(*this, p);
    ReComputeExtent();
    return count;
}

int CDrawMultiLine::ReComputeExtent() {
    zelto::SetExtentFromVertices(*this);
    return 0;
}
