#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPoint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

CDrawLine MakeLine(CPoint2D start, CPoint2D end) {
    CDrawLine line;
    line.AddVertex(start);
    line.AddVertex(end);
    return line;
}

int Hit(CDrawShape& shape, CPoint2D p, double tolerance, int mode = 0) {
    return shape.TopoRelationWithPoint(p, tolerance, mode);
}

TEST(DrawPoint, EveryVertexReplacesThePointAndIsKept) {
    CDrawPoint point(1);
    EXPECT_EQ(point.AddVertex({1, 2}), 1);
    EXPECT_TRUE(point.m_complete);
    EXPECT_EQ(point.AddVertex({3, 4}), 2);
    EXPECT_EQ(point.m_point, CPoint2D(3, 4));
    EXPECT_EQ(point.m_extent.m_left, 3);
    EXPECT_EQ(point.m_extent.m_top, 4);
    EXPECT_EQ(point.m_extent.m_right, 3);
    EXPECT_EQ(point.m_extent.m_bottom, 4);
}

TEST(DrawPoint, IsHitWithinTheToleranceSquareInAnyMode) {
    CDrawPoint point(1);
    point.AddVertex({10, 20});
    EXPECT_EQ(Hit(point, {10.5, 19.5}, 0.5), 3);
    EXPECT_EQ(point.m_selectedPointIndex, 0);
    EXPECT_EQ(Hit(point, {10.5, 19.25}, 0.5), 0);
    EXPECT_EQ(point.m_selectedPointIndex, -1);
    EXPECT_EQ(Hit(point, {10, 20}, 0, 1), 3);
    EXPECT_EQ(point.m_selectedPointIndex, 0);
    EXPECT_EQ(Hit(point, {std::nan(""), 20}, 1e9), 0);
}

TEST(DrawPoint, LiesInABoxWithItsEdges) {
    CDrawPoint point(1);
    point.AddVertex({10, 20});
    CBoundingBox around(10, 20, 30, 0);
    EXPECT_EQ(point.TopoRelationWithBoundingbox(&around), 3);
    CBoundingBox beside(10.5, 20, 30, 0);
    EXPECT_EQ(point.TopoRelationWithBoundingbox(&beside), 0);
    EXPECT_EQ(point.TopoRelationWithBoundingbox(nullptr), 0);
}

TEST(DrawLine, KeepsItsStartWhileTheEndMoves) {
    CDrawLine line;
    EXPECT_EQ(line.AddVertex({1, 1}), 1);
    EXPECT_FALSE(line.m_complete);
    EXPECT_EQ(line.AddVertex({5, -3}), 2);
    EXPECT_TRUE(line.m_complete);
    EXPECT_EQ(line.AddVertex({2, 2}), 3);
    EXPECT_EQ(line.m_startPoint, CPoint2D(1, 1));
    EXPECT_EQ(line.m_endPoint, CPoint2D(2, 2));
    EXPECT_EQ(line.m_extent.m_left, 1);
    EXPECT_EQ(line.m_extent.m_right, 5);
    EXPECT_EQ(line.m_extent.m_top, 2);
    EXPECT_EQ(line.m_extent.m_bottom, -3);
}

TEST(DrawLine, TheDistanceIsMeasuredVertically) {
    CDrawLine line = MakeLine({0, 0}, {10, 10});
    EXPECT_EQ(Hit(line, {5, 5.4}, 0.5), 3);
    EXPECT_EQ(Hit(line, {5.4, 5}, 0.5), 3);
    EXPECT_EQ(Hit(line, {5, 5.6}, 0.5), 0);
    EXPECT_EQ(Hit(line, {11, 11}, 0.5), 0);
    EXPECT_EQ(Hit(line, {10.4, 10.4}, 0.5), 0) << "beyond the end, tolerance or not";
    CDrawLine steep = MakeLine({0, 0}, {1, 100});
    EXPECT_EQ(Hit(steep, {0.52, 50}, 0.5), 0) << "0.02 beside the line is 2 above it";
}

TEST(DrawLine, ANearlyVerticalLineIsHitBesideIt) {
    CDrawLine line = MakeLine({5, 0}, {5, 10});
    EXPECT_EQ(Hit(line, {5.5, 5}, 0.5), 3);
    EXPECT_EQ(Hit(line, {4.5, 0}, 0.5), 3);
    EXPECT_EQ(Hit(line, {5, 10.1}, 0.5), 0) << "no tolerance along y";
    EXPECT_EQ(Hit(line, {5.6, 5}, 0.5), 0);
    CDrawLine down = MakeLine({5, 10}, {5.25, 0});
    EXPECT_EQ(Hit(down, {5.75, 5}, 0.5), 3) << "within the tolerance of the end's x";
}

TEST(DrawLine, AVerticalLineWithoutToleranceIsHitOnItselfOnly) {
    CDrawLine line = MakeLine({5, 0}, {5, 10});
    EXPECT_EQ(Hit(line, {5, 5}, 0), 3);
    EXPECT_EQ(Hit(line, {5, 11}, 0), 0);
    EXPECT_EQ(Hit(line, {6, 5}, 0), 0);
}

TEST(DrawLine, ANearlyHorizontalLineEndsAtItsEnds) {
    CDrawLine line = MakeLine({0, 5}, {10, 5});
    EXPECT_EQ(Hit(line, {5, 5.5}, 0.5), 3);
    EXPECT_EQ(Hit(line, {0, 5}, 0.5), 3);
    EXPECT_EQ(Hit(line, {10.01, 5}, 0.5), 0);
    EXPECT_EQ(Hit(line, {-0.01, 5}, 0.5), 0);
    EXPECT_EQ(Hit(line, {5, 5.6}, 0.5), 0);
    EXPECT_EQ(Hit(line, {20, 7}, 3), 0) << "outside the range, near its y";
}

TEST(DrawLine, BeyondTheEndsOfASlantedLineNothingIsHitHoweverTolerant) {
    CDrawLine line = MakeLine({0, 0}, {10, 4});
    EXPECT_EQ(Hit(line, {11, 4.2}, 3), 0) << "4.4 on the line lies above both ends";
    EXPECT_EQ(Hit(line, {9, 6.5}, 3), 3);
}

TEST(DrawLine, TheSelectedIndexIsNeverTouched) {
    CDrawLine line = MakeLine({0, 0}, {10, 10});
    line.m_selectedPointIndex = 7;
    Hit(line, {5, 5}, 0.5);
    EXPECT_EQ(line.m_selectedPointIndex, 7);
    Hit(line, {50, 5}, 0.5, 1);
    EXPECT_EQ(line.m_selectedPointIndex, 7);
}

TEST(DrawLine, WithoutAnEndNothingIsHit) {
    CDrawLine line;
    EXPECT_EQ(Hit(line, {0, 0}, 1), 0);
    line.AddVertex({5, 5});
    EXPECT_EQ(Hit(line, {5, 5}, 1), 0);
    EXPECT_EQ(Hit(line, {2, 2}, 1), 0) << "no line leads to the origin";
    line.AddVertex({9, 9});
    EXPECT_EQ(Hit(line, {5, 5}, 1), 3);
}

TEST(DrawLine, BoxesDoNotSelectLines) {
    CDrawLine line = MakeLine({0, 0}, {10, 10});
    CBoundingBox box(-1, 11, 11, -1);
    EXPECT_EQ(line.TopoRelationWithBoundingbox(&box), 0);
}

/// The rule of the line's test, written down a second time.
int PlainLineTest(CPoint2D s, CPoint2D e, CPoint2D p, double tol) {
    const double yMin = std::min(s.y, e.y);
    const double yMax = std::max(s.y, e.y);
    if (std::abs(s.x - e.x) <= tol && (std::abs(p.x - s.x) <= tol || std::abs(p.x - e.x) <= tol) &&
        p.y >= yMin && p.y <= yMax)
        return 3;
    if (std::abs(s.y - e.y) <= tol && (std::abs(p.y - s.y) <= tol || std::abs(p.y - e.y) <= tol) &&
        (p.x < std::min(s.x, e.x) || p.x > std::max(s.x, e.x)))
        return 0;
    const double yl = (p.x - s.x) / (e.x - s.x) * (e.y - s.y) + s.y;
    if (yl < yMin || yl > yMax)
        return 0;
    return std::abs(p.y - yl) <= tol ? 3 : 0;
}

TEST(DrawLine, AnswersAsTheRuleOnRandomLines) {
    SCOPED_TRACE("seed 21");
    std::mt19937 engine(21);
    std::uniform_int_distribution<int> coordinate(0, 8);
    const double tolerances[] = {0, 0.5, 1, 2.5};
    for (int i = 0; i < 200000; ++i) {
        const CPoint2D s(coordinate(engine), coordinate(engine));
        const CPoint2D e(coordinate(engine) * 0.75, coordinate(engine));
        const CPoint2D p(coordinate(engine) * 0.5, coordinate(engine) * 0.5);
        CDrawLine line = MakeLine(s, e);
        const double tol = tolerances[i % 4];
        ASSERT_EQ(Hit(line, p, tol, i % 2), PlainLineTest(s, e, p, tol))
            << s.x << ' ' << s.y << ' ' << e.x << ' ' << e.y << ' ' << p.x << ' ' << p.y << ' '
            << tol;
    }
}

TEST(DrawMultiLine, IsNeverHit) {
    CDrawMultiLine lines;
    lines.AddVertex({0, 0});
    lines.AddVertex({10, 0});
    lines.m_selectedPointIndex = 1;
    CBoundingBox box(-1, 1, 11, -1);
    EXPECT_EQ(Hit(lines, {0, 0}, 1), 0);
    EXPECT_EQ(lines.TopoRelationWithBoundingbox(&box), 0);
    EXPECT_EQ(lines.m_selectedPointIndex, 1);
    EXPECT_FALSE(lines.m_complete) << "the host says when it is complete";
}

} // namespace
