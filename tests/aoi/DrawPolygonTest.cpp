#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using zelto::test::MakePolygon;
using zelto::test::UnitSquareTimes10;

int HitPolygon(CDrawPolygon& polygon, CPoint2D p, double tolerance, int mode) {
    return polygon.TopoRelationWithPoint(p, tolerance, mode);
}

TEST(DrawPolygon, PointInsideIsContained) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(HitPolygon(square, {5, 5}, 0, 0), 3);
    EXPECT_EQ(HitPolygon(square, {5, 5}, 0, 1), 3);
    EXPECT_EQ(square.m_selectedPointIndex, -1);
}

TEST(DrawPolygon, AVertexIsFoundInEditingModeOnly) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(HitPolygon(square, {0, 0}, 0.1, 0), 2);
    EXPECT_EQ(square.m_selectedPointIndex, 0);
    EXPECT_EQ(HitPolygon(square, {9.5, 9.5}, 0.5, 0), 2);
    EXPECT_EQ(square.m_selectedPointIndex, 2);
    EXPECT_EQ(HitPolygon(square, {9.5, 9.5}, 0.5, 1), 3);
    EXPECT_EQ(square.m_selectedPointIndex, -1);
    EXPECT_EQ(HitPolygon(square, {5, 5}, 100, 0), 2);
    EXPECT_EQ(square.m_selectedPointIndex, 0) << "the first vertex within the tolerance";
    EXPECT_EQ(HitPolygon(square, {-0.05, 0}, 0.1, 0), 0) << "outside the extent no vertex is found";
}

TEST(DrawPolygon, PointOnTheLeftEdgeCountsAsInside) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(HitPolygon(square, {0, 5}, 0, 1), 3);
}

TEST(DrawPolygon, PointOnTheRightEdgeCountsAsOutside) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(HitPolygon(square, {10, 5}, 0, 1), 0);
}

TEST(DrawPolygon, BottomEdgeCountsAndTopEdgeDoesNot) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(HitPolygon(square, {5, 0}, 0, 1), 3);
    EXPECT_EQ(HitPolygon(square, {5, 10}, 0, 1), 0);
    EXPECT_EQ(HitPolygon(square, {0, 0}, 0, 1), 3);
    EXPECT_EQ(HitPolygon(square, {10, 10}, 0, 1), 0);
}

TEST(DrawPolygon, NeedsThreeVertices) {
    auto polygon = MakePolygon({{0, 0}, {10, 10}});
    CPoint2D p(5, 5);
    EXPECT_EQ(HitPolygon(polygon, p, 100, 0), 0);
    EXPECT_EQ(polygon.m_selectedPointIndex, -1);
    EXPECT_FALSE(polygon.IsPointIn(&p));
}

TEST(DrawPolygon, IsPointInKnowsNullAndTheExtent) {
    auto square = UnitSquareTimes10();
    EXPECT_FALSE(square.IsPointIn(nullptr));
    CPoint2D p(5, 5);
    square.m_selectedPointIndex = 3;
    EXPECT_TRUE(square.IsPointIn(&p));
    EXPECT_EQ(square.m_selectedPointIndex, 3);
    square.m_extent.SetBoundingBox(6, 10, 10, 0);
    EXPECT_FALSE(square.IsPointIn(&p));
}

TEST(DrawPolygon, SelfOverlapIsDecidedByParity) {
    // A square walked twice: every point is surrounded twice.
    auto twice = MakePolygon(
        {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}});
    EXPECT_EQ(HitPolygon(twice, {5, 5}, 0, 1), 0);
    auto bowTie = MakePolygon({{0, 0}, {10, 10}, {10, 0}, {0, 10}});
    EXPECT_EQ(HitPolygon(bowTie, {1, 5}, 0, 1), 3);
    EXPECT_EQ(HitPolygon(bowTie, {5, 8}, 0, 1), 0);
    EXPECT_EQ(HitPolygon(bowTie, {9, 5}, 0, 1), 3);
}

TEST(DrawPolygon, UndefinedCoordinatesHoldNothing) {
    auto polygon = MakePolygon({{0, 0}, {std::nan(""), 5}, {10, 10}, {0, 10}});
    EXPECT_EQ(HitPolygon(polygon, {std::nan(""), 5}, 1, 1), 0);
    auto square = UnitSquareTimes10();
    EXPECT_EQ(HitPolygon(square, {5, std::nan("")}, 1, 0), 0);
}

/// The rule of the point test, written down a second time. `index` receives the vertex found.
int PlainPointTest(const CDrawPolygon& polygon, CPoint2D p, double tol, int mode, int& index) {
    index = -1;
    const auto& v = polygon.m_vertices;
    const CBoundingBox& e = polygon.m_extent;
    if (!(e.m_left <= p.x && p.x <= e.m_right && e.m_bottom <= p.y && p.y <= e.m_top) ||
        v.size() < 3)
        return 0;
    int count = 0;
    for (std::size_t i = 0; i < v.size(); ++i) {
        const std::size_t j = (i + 1) % v.size();
        if (mode == 0 && std::abs(v[i].x - p.x) <= tol && std::abs(v[i].y - p.y) <= tol) {
            index = int(i);
            return 2;
        }
        const double a = v[i].y - p.y;
        const double b = v[j].y - p.y;
        if ((b > 0 && a <= 0) || (a > 0 && b <= 0))
            if ((a * (v[j].x - p.x) - (v[i].x - p.x) * b) / (a - b) > 0)
                ++count;
    }
    return count % 2 == 1 ? 3 : 0;
}

TEST(DrawPolygon, AnswersAsTheRuleOnRandomPolygonsInBothModes) {
    SCOPED_TRACE("seed 24");
    std::mt19937 engine(24);
    std::uniform_int_distribution<int> c(0, 9);
    std::uniform_int_distribution<int> size(0, 9);
    const double tolerances[] = {0, 0.5, 1};
    for (int i = 0; i < 100000; ++i) {
        std::vector<CPoint2D> points;
        for (int n = size(engine); n > 0; --n)
            points.emplace_back(c(engine), c(engine));
        CDrawPolygon polygon = MakePolygon(points);
        const CPoint2D p(c(engine) * 0.5 + 2, c(engine) * 0.5 + 2);
        int index = 0;
        const int mode = i % 2;
        const double tol = tolerances[i % 3];
        ASSERT_EQ(HitPolygon(polygon, p, tol, mode), PlainPointTest(polygon, p, tol, mode, index));
        ASSERT_EQ(polygon.m_selectedPointIndex, index);
        CPoint2D same = p;
        ASSERT_EQ(polygon.IsPointIn(&same), HitPolygon(polygon, p, tol, 1) == 3);
    }
}

} // namespace
