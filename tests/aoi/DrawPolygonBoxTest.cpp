#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using zelto::test::MakePolygon;
using zelto::test::UnitSquareTimes10;

int MeetPolygon(CDrawPolygon& polygon, CBoundingBox box) {
    return polygon.TopoRelationWithBoundingbox(&box);
}

TEST(DrawPolygonBox, CoincidingCornersTouch) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(MeetPolygon(square, {0, 10, 10, 0}), 2);
    EXPECT_EQ(MeetPolygon(square, {1e-8, 10, 10, -1e-8}), 2) << "within the points' tolerance";
}

TEST(DrawPolygonBox, FourVerticesOnTwoCornersTouchAsWell) {
    auto folded = MakePolygon({{0, 0}, {10, 10}, {0, 0}, {10, 10}});
    EXPECT_EQ(MeetPolygon(folded, {0, 10, 10, 0}), 2);
}

TEST(DrawPolygonBox, FiveVerticesOnTheCornersDoNotTouch) {
    auto closed = MakePolygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}});
    EXPECT_EQ(MeetPolygon(closed, {0, 10, 10, 0}), 1);
}

TEST(DrawPolygonBox, ABoxInsideIsContained) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(MeetPolygon(square, {2, 8, 8, 2}), 3);
}

TEST(DrawPolygonBox, AnEdgeThatMeetsASideIntersects) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(MeetPolygon(square, {5, 20, 20, 5}), 1);
    EXPECT_EQ(MeetPolygon(square, {10, 20, 20, 10}), 1) << "a shared corner";
    EXPECT_EQ(MeetPolygon(square, {2, 10, 8, 2}), 1) << "a shared part of a side";
}

TEST(DrawPolygonBox, APolygonInsideTheBoxIntersects) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(MeetPolygon(square, {-5, 15, 15, -5}), 1);
}

TEST(DrawPolygonBox, ApartIsDisjoint) {
    auto square = UnitSquareTimes10();
    EXPECT_EQ(MeetPolygon(square, {20, 10, 30, 0}), 0);
    EXPECT_EQ(square.TopoRelationWithBoundingbox(nullptr), 0);
}

TEST(DrawPolygonBox, ABoxInANotchIsDisjoint) {
    auto notched = MakePolygon({{0, 0}, {10, 0}, {10, 10}, {5, 2}, {0, 10}});
    EXPECT_EQ(MeetPolygon(notched, {4.5, 9, 5.5, 8}), 0);
}

TEST(DrawPolygonBox, WithTooFewVerticesNothingMeets) {
    CDrawPolygon empty;
    EXPECT_EQ(MeetPolygon(empty, {-1, 1, 1, -1}), 0);
    auto point = MakePolygon({{5, 5}});
    EXPECT_EQ(MeetPolygon(point, {0, 10, 10, 0}), 0);
    auto segment = MakePolygon({{-5, 5}, {15, 5}});
    EXPECT_EQ(MeetPolygon(segment, {0, 10, 10, 0}), 0) << "its line crosses the box";
    segment.AddVertex({15, 6});
    EXPECT_EQ(MeetPolygon(segment, {0, 10, 10, 0}), 1);
}

/// The rule of the box test, written down a second time.
double Orientation(CPoint2D a, CPoint2D b, CPoint2D p) {
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

bool InBox(CPoint2D p, CPoint2D a, CPoint2D b) {
    return p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) && p.y >= std::min(a.y, b.y) &&
           p.y <= std::max(a.y, b.y);
}

bool PlainMeet(CPoint2D a, CPoint2D b, CPoint2D c, CPoint2D d) {
    const double o1 = Orientation(c, d, a);
    const double o2 = Orientation(c, d, b);
    const double o3 = Orientation(a, b, c);
    const double o4 = Orientation(a, b, d);
    if (((o1 > 0 && o2 < 0) || (o1 < 0 && o2 > 0)) && ((o3 > 0 && o4 < 0) || (o3 < 0 && o4 > 0)))
        return true;
    return (o1 == 0 && InBox(a, c, d)) || (o2 == 0 && InBox(b, c, d)) ||
           (o3 == 0 && InBox(c, a, b)) || (o4 == 0 && InBox(d, a, b));
}

int PlainPolygonBoxTest(CDrawPolygon& polygon, const CBoundingBox& b) {
    const CPoint2D tl(b.m_left, b.m_top);
    const CPoint2D tr(b.m_right, b.m_top);
    const CPoint2D bl(b.m_left, b.m_bottom);
    const CPoint2D br(b.m_right, b.m_bottom);
    const auto& v = polygon.m_vertices;
    if (v.size() < 3)
        return 0;
    if (v.size() == 4 && std::all_of(v.begin(), v.end(), [&](const CPoint2D& p) {
            return p == tl || p == tr || p == bl || p == br;
        }))
        return 2;
    for (std::size_t i = 0; i < v.size(); ++i) {
        const CPoint2D p = v[i];
        const CPoint2D q = v[(i + 1) % v.size()];
        if (PlainMeet(p, q, tr, tl) || PlainMeet(p, q, br, tr) || PlainMeet(p, q, br, bl) ||
            PlainMeet(p, q, bl, tl))
            return 1;
    }
    CPoint2D corner = tl;
    if (polygon.IsPointIn(&corner))
        return 3;
    return b.m_left <= v[0].x && v[0].x <= b.m_right && b.m_bottom <= v[0].y && v[0].y <= b.m_top
               ? 1
               : 0;
}

TEST(DrawPolygonBox, AnswersAsTheRuleOnRandomPolygons) {
    SCOPED_TRACE("seed 25");
    std::mt19937 engine(25);
    std::uniform_int_distribution<int> c(0, 7);
    for (int i = 0; i < 100000; ++i) {
        std::vector<CPoint2D> points;
        for (int n = i % 7; n > 0; --n)
            points.emplace_back(c(engine), c(engine));
        CDrawPolygon polygon = MakePolygon(points);
        CBoundingBox box(c(engine), c(engine), c(engine), c(engine));
        ASSERT_EQ(int(polygon.TopoRelationWithBoundingbox(&box)), PlainPolygonBoxTest(polygon, box))
            << "case " << i;
    }
}

} // namespace
