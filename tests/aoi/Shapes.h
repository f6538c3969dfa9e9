#pragma once

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"

#include <gtest/gtest.h>

#include <vector>

namespace zelto::test {

/// A complete polygon through the points.
inline CDrawPolygon MakePolygon(const std::vector<CPoint2D>& points) {
    CDrawPolygon polygon;
    for (const CPoint2D& p : points)
        polygon.AddVertex(p);
    polygon.m_complete = true;
    return polygon;
}

/// A rectangle or ellipse dragged from one corner to the other.
template <typename Shape = CDrawRectangle>
Shape Drag(CPoint2D from, CPoint2D to) {
    Shape shape;
    shape.AddVertex(from);
    shape.AddVertex(to);
    return shape;
}

/// The polygon (0,0), (10,0), (10,10), (0,10).
inline CDrawPolygon UnitSquareTimes10() {
    return MakePolygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
}

inline void ExpectBox(const CBoundingBox& box, double left, double top, double right,
                      double bottom) {
    EXPECT_EQ(box.m_left, left);
    EXPECT_EQ(box.m_top, top);
    EXPECT_EQ(box.m_right, right);
    EXPECT_EQ(box.m_bottom, bottom);
}

} // namespace zelto::test
