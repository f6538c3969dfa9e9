#pragma once

#include "zelto/aoi/DrawRectangle.h"

/// The ellipse inscribed in a rectangle: centre (left + width/2, top − height/2), semi-axes
/// width/2 and height/2. Its boundary belongs to it.
class ZELTO_API CDrawEllipse : public CDrawRectangle {
  public:
    CDrawEllipse();
    CDrawEllipse(const CDrawEllipse&) = default;
    CDrawEllipse& operator=(const CDrawEllipse&) = default;
    ~CDrawEllipse() override;

    /// In mode 0 the rectangle's test with its handles. In the other modes containment in the
    /// ellipse itself; m_selectedPointIndex then stays.
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) override;
    /// TOPO_INTERSECT when a side of the box crosses the ellipse or the box holds the centre,
    /// TOPO_CONTAIN when the box lies inside.
    SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox* box) override;

    /// Whether the segment from `p` to `q` crosses the boundary; a tangent does not.
    bool IsIntersect(CPoint2D p, CPoint2D q) const;
};
