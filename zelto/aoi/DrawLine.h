#pragma once

#include "zelto/aoi/DrawShape.h"

/// A straight line between two points.
class ZELTO_API CDrawLine : public CDrawShape {
  public:
    CPoint2D m_startPoint;
    CPoint2D m_endPoint;

    CDrawLine();
    CDrawLine(const CDrawLine&) = default;
    CDrawLine& operator=(const CDrawLine&) = default;
    ~CDrawLine() override;

    /// The first vertex is the start, each further one replaces the end and completes the line.
    int AddVertex(CPoint2D p) override;
    /// TOPO_CONTAIN when the line passes within the tolerance above or below `p`. The distance
    /// is measured along y, so a steep line is hit only near itself and a vertical one only by
    /// its own near-vertical rule. With fewer than two vertices nothing is hit. The mode is
    /// ignored and m_selectedPointIndex stays.
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) override;
    /// TOPO_DISJOINT always: lines are not selected by boxes.
    SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox* box) override;
    void SetOffset(double dx, double dy) override;
};
