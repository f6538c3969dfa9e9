#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using zelto::test::Drag;

/// Centre (10, 5), semi-axes 10 along x and 5 along y.
CDrawEllipse Wide() {
    return Drag<CDrawEllipse>({0, 10}, {20, 0});
}

int HitEllipse(CDrawEllipse& e, CPoint2D p, int mode) {
    return e.TopoRelationWithPoint(p, 0.5, mode);
}

int MeetEllipse(CDrawEllipse& e, CBoundingBox box) {
    return e.TopoRelationWithBoundingbox(&box);
}

TEST(DrawEllipse, EditingModeIsTheRectanglesTest) {
    CDrawEllipse e = Wide();
    EXPECT_EQ(HitEllipse(e, {0, 10}, 0), 2);
    EXPECT_EQ(e.m_selectedPointIndex, 0);
    EXPECT_EQ(HitEllipse(e, {2, 9}, 0), 3) << "in the rectangle, outside the ellipse";
    EXPECT_EQ(e.m_selectedPointIndex, -1);
}

TEST(DrawEllipse, ContainmentIncludesTheBoundaryAndKeepsTheSelectedPoint) {
    CDrawEllipse e = Wide();
    e.m_selectedPointIndex = 4;
    EXPECT_EQ(HitEllipse(e, {10, 5}, 1), 3);
    EXPECT_EQ(HitEllipse(e, {0, 5}, 1), 3);
    EXPECT_EQ(HitEllipse(e, {10, 10}, 1), 3);
    EXPECT_EQ(HitEllipse(e, {16, 9}, 1), 3) << "(6/10)² + (4/5)² is 1";
    EXPECT_EQ(HitEllipse(e, {16, 9.001}, 1), 0);
    EXPECT_EQ(HitEllipse(e, {2, 9}, 1), 0);
    EXPECT_EQ(HitEllipse(e, {-1, 5}, 1), 0);
    EXPECT_EQ(e.m_selectedPointIndex, 4);
}

TEST(DrawEllipse, TheExtentComesFirst) {
    CDrawEllipse e = Wide();
    e.m_extent.SetBoundingBox(0, 10, 5, 0);
    EXPECT_EQ(HitEllipse(e, {10, 5}, 1), 0);
}

TEST(DrawEllipse, WithoutASizeNothingIsInside) {
    CDrawEllipse e = Drag<CDrawEllipse>({3, 3}, {3, 3});
    EXPECT_EQ(HitEllipse(e, {3, 3}, 1), 0);
}

TEST(DrawEllipse, TheFourBoxAnswers) {
    CDrawEllipse e = Wide();
    EXPECT_EQ(MeetEllipse(e, {30, 10, 40, 0}), 0) << "apart from the extent";
    EXPECT_EQ(MeetEllipse(e, {15, 7, 30, 3}), 1) << "a side crosses the boundary";
    EXPECT_EQ(MeetEllipse(e, {8, 6, 12, 4}), 3) << "inside";
    EXPECT_EQ(MeetEllipse(e, {-5, 15, 25, -5}), 1) << "around: the centre lies in the box";
    EXPECT_EQ(MeetEllipse(e, {0, 10, 1, 9.5}), 0) << "in a corner of the extent, off the ellipse";
    EXPECT_EQ(e.TopoRelationWithBoundingbox(nullptr), 0);
}

TEST(DrawEllipse, ABoxFromTheCentreToTheBoundaryTouchesFromInside) {
    CDrawEllipse e = Wide();
    // The right side ends on the boundary at (16, 9), which is not strictly inside, while its
    // other end is: exactly one end inside crosses.
    EXPECT_EQ(MeetEllipse(e, {10, 9, 16, 5}), 1);
}

TEST(DrawEllipse, SegmentsCrossTheBoundaryOnce) {
    const CDrawEllipse e = Wide();
    EXPECT_TRUE(e.IsIntersect({10, 5}, {30, 5}));
    EXPECT_TRUE(e.IsIntersect({30, 5}, {10, 5}));
    EXPECT_FALSE(e.IsIntersect({8, 5}, {12, 5})) << "both ends inside";
    EXPECT_FALSE(e.IsIntersect({-5, 20}, {25, 20})) << "beside the extent";
}

TEST(DrawEllipse, AxisParallelSegmentsWithBothEndsOutside) {
    const CDrawEllipse e = Wide();
    EXPECT_TRUE(e.IsIntersect({5, -5}, {5, 15})) << "vertical, across";
    EXPECT_FALSE(e.IsIntersect({5, 9.9}, {5, 15})) << "vertical, above the centre";
    EXPECT_FALSE(e.IsIntersect({0, -5}, {0, 15})) << "vertical, on the extent's side";
    EXPECT_FALSE(e.IsIntersect({20, -5}, {20, 15}));
    EXPECT_TRUE(e.IsIntersect({-5, 3}, {25, 3})) << "horizontal, across";
    EXPECT_FALSE(e.IsIntersect({-5, 10}, {25, 10})) << "horizontal, on the top";
    EXPECT_FALSE(e.IsIntersect({-5, 0}, {25, 0}));
    EXPECT_FALSE(e.IsIntersect({19.9, 1}, {25, 1})) << "horizontal, right of the centre";
    EXPECT_TRUE(e.IsIntersect({5, -5}, {5 + 9e-9, 15})) << "vertical within 1e-8";
}

TEST(DrawEllipse, SlantedSegmentsWithBothEndsOutside) {
    const CDrawEllipse circle = Drag<CDrawEllipse>({-5, 5}, {5, -5});
    EXPECT_TRUE(circle.IsIntersect({-6, -6}, {6, 6}));
    EXPECT_TRUE(circle.IsIntersect({6, 6}, {-6, -6}));
    EXPECT_FALSE(circle.IsIntersect({-6, 4}, {4, 6})) << "passes outside";
    EXPECT_FALSE(circle.IsIntersect({4, 4}, {6, 6})) << "its line crosses, it does not";
    EXPECT_FALSE(circle.IsIntersect({-6, -6}, {-4, -4}));
    // x + y = 5·√2 touches the circle; the discriminant of the rounded line is not positive.
    EXPECT_FALSE(circle.IsIntersect({0, 7.0710678118654755}, {7.0710678118654755, 0}));
}

/// The rule of the crossing test, written down a second time.
bool PlainCrosses(const CDrawEllipse& e, CPoint2D P, CPoint2D Q) {
    const double left = e.m_topLeft.x;
    const double top = e.m_topLeft.y;
    const double a = e.m_width / 2;
    const double b = e.m_height / 2;
    const double cx = left + a;
    const double cy = top - b;
    const CBoundingBox& box = e.m_extent;
    if (std::min(P.x, Q.x) > box.m_right || box.m_bottom > std::max(P.y, Q.y) ||
        box.m_left > std::max(P.x, Q.x) || std::min(P.y, Q.y) > box.m_top)
        return false;
    const auto value = [&](CPoint2D p) {
        return std::pow(p.x - cx, 2) / std::pow(a, 2) + std::pow(p.y - cy, 2) / std::pow(b, 2);
    };
    const bool pIn = value(P) < 1;
    const bool qIn = value(Q) < 1;
    if (pIn && qIn)
        return false;
    if (pIn || qIn)
        return true;
    if (std::abs(P.x - Q.x) < 1e-8) {
        if (left >= P.x || P.x >= left + e.m_width)
            return false;
        return (Q.y - cy) * (P.y - cy) <= 0;
    }
    if (std::abs(P.y - Q.y) < 1e-8) {
        if (P.y >= top || top - e.m_height >= P.y)
            return false;
        return (Q.x - cx) * (P.x - cx) <= 0;
    }
    const double k = (P.y - Q.y) / (P.x - Q.x);
    const double m = Q.y - k * Q.x;
    const double A = std::pow(b, 2) + std::pow(a, 2) * std::pow(k, 2);
    const double B = 2 * std::pow(a, 2) * k * (m - cy) - 2 * std::pow(b, 2) * cx;
    const double C = std::pow(b, 2) * std::pow(cx, 2) + std::pow(a, 2) * std::pow(m - cy, 2) -
                     std::pow(a, 2) * std::pow(b, 2);
    const double d = B * B - 4 * A * C;
    if (d <= 0)
        return false;
    const double x = (std::sqrt(d) - B) / (2 * A);
    return x >= std::min(P.x, Q.x) && x <= std::max(P.x, Q.x);
}

int PlainEllipseBoxTest(const CDrawEllipse& e, const CBoundingBox& q) {
    const CBoundingBox& x = e.m_extent;
    if (q.m_left > x.m_right || x.m_bottom > q.m_top || x.m_left > q.m_right ||
        q.m_bottom > x.m_top)
        return 0;
    if (PlainCrosses(e, q.TopLeft(), q.BottomLeft()) ||
        PlainCrosses(e, q.TopLeft(), q.TopRight()) ||
        PlainCrosses(e, q.TopRight(), q.BottomRight()) ||
        PlainCrosses(e, q.BottomLeft(), q.BottomRight()))
        return 1;
    const double a = e.m_width / 2;
    const double b = e.m_height / 2;
    const double cx = e.m_topLeft.x + a;
    const double cy = e.m_topLeft.y - b;
    if ((q.m_top - cy) * (q.m_top - cy) / (b * b) + (q.m_left - cx) * (q.m_left - cx) / (a * a) <=
        1)
        return 3;
    return q.m_left <= cx && cx <= q.m_right && q.m_bottom <= cy && cy <= q.m_top ? 1 : 0;
}

TEST(DrawEllipse, AnswersAsTheRuleOnRandomBoxesAndSegments) {
    SCOPED_TRACE("seed 23");
    std::mt19937 engine(23);
    std::uniform_int_distribution<int> c(-2, 14);
    for (int i = 0; i < 200000; ++i) {
        const auto point = [&] { return CPoint2D(c(engine) * 0.5, c(engine) * 0.5); };
        CDrawEllipse e = Drag<CDrawEllipse>(point(), point());
        if (i % 4 != 0)
            e.UpdateExtent();
        const CPoint2D p = point();
        const CPoint2D q = point();
        ASSERT_EQ(e.IsIntersect(p, q), PlainCrosses(e, p, q)) << "pair " << i;
        CBoundingBox box(p.x, p.y, q.x, q.y);
        ASSERT_EQ(int(e.TopoRelationWithBoundingbox(&box)), PlainEllipseBoxTest(e, box))
            << "pair " << i;
    }
}

} // namespace
