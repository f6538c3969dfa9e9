#pragma once

#include "zelto/aoi/DrawShape.h"

/// A single point.
class ZELTO_API CDrawPoint : public CDrawShape {
  public:
    CPoint2D m_point;

    explicit CDrawPoint(int identifier = 0);
    CDrawPoint(const CDrawPoint&) = default;
    CDrawPoint& operator=(const CDrawPoint&) = default;
    ~CDrawPoint() override;

    /// Makes `p` the point and completes the shape; earlier vertices stay in the list.
    int AddVertex(CPoint2D p) override;
    /// TOPO_CONTAIN with selected index 0 when both coordinates are within the tolerance.
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) override;
    /// TOPO_CONTAIN when the point lies in the box, edges included.
    SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox* box) override;
    void SetOffset(double dx, double dy) override;
};
