#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using zelto::test::Drag;
using zelto::test::ExpectBox;

void ExpectRectangle(const CDrawRectangle& r, double left, double top, double width,
                     double height) {
    EXPECT_EQ(r.m_topLeft.x, left);
    EXPECT_EQ(r.m_topLeft.y, top);
    EXPECT_DOUBLE_EQ(r.m_width, width);
    EXPECT_DOUBLE_EQ(r.m_height, height);
}

/// Top-left (0, 10), width 10, height 10.
CDrawRectangle Square() {
    return Drag({0, 10}, {10, 0});
}

TEST(DrawRectangle, DraggingToTheUpperLeftInvertsTheExtentUntilItIsUpdated) {
    CDrawRectangle r = Drag({10, 0}, {0, 10});
    ExpectRectangle(r, 0, 10, 10, 10);
    ExpectBox(r.m_extent, 0, 10, 0, 10);
    EXPECT_TRUE(r.m_complete);
    r.UpdateExtent();
    ExpectBox(r.m_extent, 0, 10, 10, 0);
    EXPECT_EQ(r.m_vertices[0], CPoint2D(0, 10));
    EXPECT_EQ(r.m_vertices[1], CPoint2D(10, 0));
}

TEST(DrawRectangle, TheFirstVertexIsACornerWithoutSize) {
    CDrawRectangle r;
    EXPECT_EQ(r.AddVertex({3, 4}), 1);
    ExpectRectangle(r, 3, 4, 0, 0);
    ExpectBox(r.m_extent, 3, 4, 3, 4);
    EXPECT_FALSE(r.m_complete);
    r.UpdateExtent();
    EXPECT_EQ(r.m_vertices.size(), 1U);
}

TEST(DrawRectangle, EveryFurtherVertexIsTheOppositeCornerOfTheFirst) {
    CDrawRectangle r = Drag({5, 5}, {8, 1});
    ExpectRectangle(r, 5, 5, 3, 4);
    EXPECT_EQ(r.AddVertex({1, 2}), 3);
    ExpectRectangle(r, 1, 5, 4, 3);
    ExpectBox(r.m_extent, 1, 5, 1, 2);
}

TEST(DrawRectangle, HandlesAreFoundClockwiseFromTheTopLeftCorner) {
    CDrawRectangle r = Square();
    const CPoint2D handles[] = {{0, 10}, {5, 10}, {10, 10}, {10, 5},
                                {10, 0}, {5, 0},  {0, 0},   {0, 5}};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(r.TopoRelationWithPoint(handles[i], 0.5, 0), 2);
        EXPECT_EQ(r.m_selectedPointIndex, i);
    }
    EXPECT_EQ(r.TopoRelationWithPoint({5, 10}, 100, 0), 2);
    EXPECT_EQ(r.m_selectedPointIndex, 0) << "the first handle within the tolerance";
}

TEST(DrawRectangle, HandlesCountInsideTheExtentOnly) {
    CDrawRectangle r = Square();
    EXPECT_EQ(r.TopoRelationWithPoint({5, 5}, 0.5, 0), 3);
    EXPECT_EQ(r.m_selectedPointIndex, -1);
    EXPECT_EQ(r.TopoRelationWithPoint({5, 10.2}, 0.5, 0), 0);
    EXPECT_EQ(r.TopoRelationWithPoint({5, 9.5}, 0.5, 0), 2) << "the tolerance is inclusive";
    EXPECT_EQ(r.TopoRelationWithPoint({5, 9.25}, 0.5, 0), 3);
}

TEST(DrawRectangle, ContainmentModeKnowsNoHandlesAndForgetsTheSelectedPoint) {
    CDrawRectangle r = Square();
    r.m_selectedPointIndex = 5;
    EXPECT_EQ(r.TopoRelationWithPoint({0, 10}, 0.5, 1), 3);
    EXPECT_EQ(r.m_selectedPointIndex, -1);
    EXPECT_EQ(r.TopoRelationWithPoint({0, 10.1}, 0.5, 7), 0);
}

TEST(DrawRectangle, AnInvertedExtentHoldsNoPoint) {
    CDrawRectangle r = Drag({10, 0}, {0, 10});
    EXPECT_EQ(r.TopoRelationWithPoint({5, 5}, 0, 1), 0);
}

TEST(DrawRectangle, BoxInsideContainsBoxAroundOnlyIntersects) {
    CDrawRectangle r = Square();
    CBoundingBox inside(2, 8, 8, 2);
    EXPECT_EQ(r.TopoRelationWithBoundingbox(&inside), 3);
    CBoundingBox same(0, 10, 10, 0);
    EXPECT_EQ(r.TopoRelationWithBoundingbox(&same), 3);
    CBoundingBox around(-1, 11, 11, -1);
    EXPECT_EQ(r.TopoRelationWithBoundingbox(&around), 1);
    CBoundingBox corner(10, 20, 20, 10);
    EXPECT_EQ(r.TopoRelationWithBoundingbox(&corner), 1);
    CBoundingBox beside(10.5, 20, 20, 0);
    EXPECT_EQ(r.TopoRelationWithBoundingbox(&beside), 0);
    CBoundingBox below(0, -0.5, 10, -2);
    EXPECT_EQ(r.TopoRelationWithBoundingbox(&below), 0);
    EXPECT_EQ(r.TopoRelationWithBoundingbox(nullptr), 0);
}

TEST(DrawRectangle, SidesMoveAndTheOppositeOnesStay) {
    CDrawRectangle r = Square();
    r.SetTop(12);
    ExpectRectangle(r, 0, 12, 10, 12);
    r.SetBottom(2);
    ExpectRectangle(r, 0, 12, 10, 10);
    r.SetLeft(4);
    ExpectRectangle(r, 4, 12, 6, 10);
    r.SetRight(9);
    ExpectRectangle(r, 4, 12, 5, 10);
    ExpectBox(r.m_extent, 4, 12, 9, 2);
    EXPECT_EQ(r.m_vertices[1], CPoint2D(9, 2));
}

TEST(DrawRectangle, CornersMoveAndTheOppositeOnesStay) {
    CDrawRectangle r = Square();
    r.SetTopLeft({-2, 14});
    ExpectRectangle(r, -2, 14, 12, 14);
    r.SetTopRight({8, 12});
    ExpectRectangle(r, -2, 12, 10, 12);
    r.SetBottomLeft({0, 3});
    ExpectRectangle(r, 0, 12, 8, 9);
    r.SetBottomRight({20, -1});
    ExpectRectangle(r, 0, 12, 20, 13);
    ExpectBox(r.m_extent, 0, 12, 20, -1);
}

TEST(DrawRectangle, SettersRefuseWhatLeavesNoSize) {
    CDrawRectangle r = Square();
    r.SetTop(0);
    r.SetBottom(10);
    r.SetLeft(10);
    r.SetRight(0);
    r.SetTopLeft({10, 20});
    r.SetTopLeft({-5, 0});
    r.SetTopRight({0, 20});
    r.SetTopRight({20, 0});
    r.SetBottomLeft({10, -5});
    r.SetBottomLeft({-5, 10});
    r.SetBottomRight({0, -5});
    r.SetBottomRight({20, 10});
    ExpectRectangle(r, 0, 10, 10, 10);
    ExpectBox(r.m_extent, 0, 10, 10, 0);
    r.SetBottom(9.999);
    EXPECT_NEAR(r.m_height, 0.001, 1e-12);
}

TEST(DrawRectangle, ARefusedSetterDoesNotEvenUpdateTheExtent) {
    CDrawRectangle r = Drag({10, 0}, {0, 10});
    r.SetBottom(10);
    ExpectBox(r.m_extent, 0, 10, 0, 10);
    r.SetBottom(5);
    ExpectBox(r.m_extent, 0, 10, 10, 5);
}

/// The rule of the box test, written down a second time.
int PlainRectangleBoxTest(const CBoundingBox& e, const CBoundingBox& b) {
    if (b.m_left >= e.m_left && e.m_right >= b.m_right && b.m_bottom >= e.m_bottom &&
        e.m_top >= b.m_top)
        return 3;
    const bool disjoint = b.m_left > e.m_right || e.m_bottom > b.m_top || e.m_left > b.m_right ||
                          b.m_bottom > e.m_top;
    return disjoint ? 0 : 1;
}

TEST(DrawRectangle, AnswersAsTheRuleOnRandomBoxes) {
    SCOPED_TRACE("seed 22");
    std::mt19937 engine(22);
    std::uniform_int_distribution<int> c(0, 6);
    for (int i = 0; i < 100000; ++i) {
        CDrawRectangle r = Drag(CPoint2D(c(engine), c(engine)), CPoint2D(c(engine), c(engine)));
        if (i % 2 == 0)
            r.UpdateExtent();
        CBoundingBox b(c(engine), c(engine), c(engine), c(engine));
        ASSERT_EQ(int(r.TopoRelationWithBoundingbox(&b)), PlainRectangleBoxTest(r.m_extent, b));
    }
}

} // namespace
