#pragma once

#include "zelto/aoi/DrawShape.h"

/// An axis-parallel rectangle: x from left to left + width, y from top − height to top.
class ZELTO_API CDrawRectangle : public CDrawShape {
  public:
    CPoint2D m_topLeft;
    double m_width = 0.0;
    double m_height = 0.0;

    CDrawRectangle();
    CDrawRectangle(const CDrawRectangle&) = default;
    CDrawRectangle& operator=(const CDrawRectangle&) = default;
    ~CDrawRectangle() override;

    /// The first vertex is one corner, each further one the opposite corner. The extent's right
    /// and bottom are then the dragged point itself, so that it is inverted after dragging to
    /// the left or upwards, until UpdateExtent().
    int AddVertex(CPoint2D p) override;
    /// Only points inside the extent are hit. In mode 0 the eight handles, numbered clockwise
    /// from the top-left corner, answer TOPO_TOUCH.
    SpatialTopoRelation TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) override;
    /// TOPO_CONTAIN when the box lies inside; a rectangle inside the box is TOPO_INTERSECT.
    SpatialTopoRelation TopoRelationWithBoundingbox(CBoundingBox* box) override;
    void SetOffset(double dx, double dy) override;

    /// @name Sides and corners
    /// Move one side or corner and keep the opposite ones, then UpdateExtent(). A value that
    /// would leave no positive width or height is refused: nothing changes.
    /// @{
    virtual void SetTop(double top);
    virtual void SetBottom(double bottom);
    virtual void SetLeft(double left);
    virtual void SetRight(double right);
    virtual void SetTopLeft(CPoint2D p);
    virtual void SetTopRight(CPoint2D p);
    virtual void SetBottomLeft(CPoint2D p);
    virtual void SetBottomRight(CPoint2D p);
    /// @}

    /// Sets the extent from corner and size, and the first two vertices, if there are two, to
    /// the top-left and the bottom-right corner.
    virtual void UpdateExtent();
};
