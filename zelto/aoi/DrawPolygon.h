#pragma once

#include "zelto/aoi/DrawShape.h"

/// A polygon through the vertices in order, closed from the last one back to the first. The
/// host sets m_complete.
///
/// Inside means an odd number of edges crossed strictly to the right of the point, so points on
/// a left or bottom edge are inside and points on a right or top edge are not.
class ZELTO_API CDrawPolygon : public CDrawShape {
  public:
    CDrawPolygon();
    CDrawPolygon(const CDrawPolygon&) = default;
    CDrawPolygon& operator=(const CDrawPolygon&) = default;
    ~CDrawPolygon() override;

    int AddVertex(CPoint2D p) override;
    /// In mode 0 the vertices are tried first, each just before the edge that starts at it.
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) override;
    /// TOPO_TOUCH for four vertices on the box's corners, TOPO_INTERSECT when an edge meets a
    /// side, TOPO_CONTAIN when the box lies inside, TOPO_INTERSECT when the polygon lies in the
    /// box; TOPO_DISJOINT with fewer than three vertices.
    SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox* box) override;

    /// @copydoc CDrawMultiLine::InsertVertex
    virtual int InsertVertex(CPoint2D p, int index);
    /// @copydoc CDrawMultiLine::RemoveVertex
    virtual int RemoveVertex(CPoint2D p);
    /// @copydoc CDrawMultiLine::ReComputeExtent
    virtual int ReComputeExtent();

    /// Whether `*p` is inside, as TopoRelationWithPoint() answers for a mode other than 0.
    /// False for null. m_selectedPointIndex stays.
    bool IsPointIn(CPoint2D* p) const;
};
