#include "zelto/aoi/DrawMultiLine.h"

#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

template <typename Shape>
class VertexEditing : public testing::Test {
  protected:
    static Shape Make(const std::vector<CPoint2D>& points) {
        Shape shape;
        for (const CPoint2D& p : points)
            shape.AddVertex(p);
        return shape;
    }
};

using EditableShapes = testing::Types<CDrawPolygon, CDrawMultiLine>;
TYPED_TEST_SUITE(VertexEditing, EditableShapes);

std::vector<std::pair<double, double>> Coordinates(const CDrawShape& shape) {
    std::vector<std::pair<double, double>> result;
    for (const CPoint2D& p : shape.m_vertices)
        result.emplace_back(p.x, p.y);
    return result;
}

using Pairs = std::vector<std::pair<double, double>>;

TYPED_TEST(VertexEditing, AddVertexGrowsTheExtentAndDoesNotComplete) {
    auto shape = this->Make({{5, 5}});
    EXPECT_EQ(shape.m_extent.m_left, 5);
    EXPECT_EQ(shape.m_extent.m_bottom, 5);
    EXPECT_EQ(shape.AddVertex({7, 1}), 2);
    EXPECT_EQ(shape.AddVertex({-2, 9}), 3);
    EXPECT_EQ(shape.m_extent.m_left, -2);
    EXPECT_EQ(shape.m_extent.m_right, 7);
    EXPECT_EQ(shape.m_extent.m_top, 9);
    EXPECT_EQ(shape.m_extent.m_bottom, 1);
    EXPECT_FALSE(shape.m_complete);
}

TYPED_TEST(VertexEditing, AddVertexMovesOnlyOneSideOfAnInvertedExtent) {
    auto shape = this->Make({{5, 5}});
    shape.m_extent.SetBoundingBox(10, 0, 0, 10);
    shape.AddVertex({5, 5});
    EXPECT_EQ(shape.m_extent.m_left, 5);
    EXPECT_EQ(shape.m_extent.m_right, 0);
    EXPECT_EQ(shape.m_extent.m_bottom, 5);
    EXPECT_EQ(shape.m_extent.m_top, 0);
}

TYPED_TEST(VertexEditing, InsertVertexShiftsTheRestBack) {
    auto shape = this->Make({{0, 0}, {1, 1}, {2, 2}});
    EXPECT_EQ(shape.InsertVertex({9, 9}, 1), 4);
    EXPECT_EQ(Coordinates(shape), (Pairs{{0, 0}, {9, 9}, {1, 1}, {2, 2}}));
    EXPECT_EQ(shape.m_extent.m_top, 9);
    EXPECT_EQ(shape.InsertVertex({-1, 0}, 0), 5);
    EXPECT_EQ(shape.InsertVertex({5, 5}, 5), 6);
    EXPECT_EQ(Coordinates(shape), (Pairs{{-1, 0}, {0, 0}, {9, 9}, {1, 1}, {2, 2}, {5, 5}}));
    EXPECT_EQ(shape.m_extent.m_left, -1);
}

TYPED_TEST(VertexEditing, InsertVertexOutsideTheListMeansTheNearerEnd) {
    auto shape = this->Make({{0, 0}});
    EXPECT_EQ(shape.InsertVertex({1, 1}, 99), 2);
    EXPECT_EQ(shape.InsertVertex({2, 2}, -3), 3);
    EXPECT_EQ(Coordinates(shape), (Pairs{{2, 2}, {0, 0}, {1, 1}}));
}

TYPED_TEST(VertexEditing, RemoveVertexRemovesTheOneThatMatches) {
    auto shape = this->Make({{0, 0}, {5, 9}, {2, 2}});
    EXPECT_EQ(shape.RemoveVertex({5 + 1e-8, 9 - 1e-8}), 2);
    EXPECT_EQ(Coordinates(shape), (Pairs{{0, 0}, {2, 2}}));
    EXPECT_EQ(shape.m_extent.m_top, 2) << "the extent is recomputed";
}

TYPED_TEST(VertexEditing, RemoveVertexOfARepeatedPointLeavesACopyOfTheTail) {
    auto shape = this->Make({{1, 1}, {2, 2}, {1, 1}, {3, 3}});
    EXPECT_EQ(shape.RemoveVertex({1, 1}), 3);
    EXPECT_EQ(Coordinates(shape), (Pairs{{2, 2}, {3, 3}, {3, 3}}));
    auto thrice = this->Make({{1, 1}, {1, 1}, {4, 4}, {1, 1}, {5, 5}, {6, 6}});
    EXPECT_EQ(thrice.RemoveVertex({1, 1}), 5);
    EXPECT_EQ(Coordinates(thrice), (Pairs{{4, 4}, {5, 5}, {6, 6}, {5, 5}, {6, 6}}));
}

TYPED_TEST(VertexEditing, RemoveVertexWithoutAMatchChangesNothing) {
    auto shape = this->Make({{0, 0}, {1, 1}});
    EXPECT_EQ(shape.RemoveVertex({1 + 2e-7, 1}), 2);
    EXPECT_EQ(Coordinates(shape), (Pairs{{0, 0}, {1, 1}}));
}

TYPED_TEST(VertexEditing, ReComputeExtentComparesIndependentlyAndIsZeroWithoutVertices) {
    auto shape = this->Make({{5, 5}, {1, 8}, {9, 2}});
    shape.m_extent.SetBoundingBox(100, -100, -100, 100);
    EXPECT_EQ(shape.ReComputeExtent(), 0);
    EXPECT_EQ(shape.m_extent.m_left, 1);
    EXPECT_EQ(shape.m_extent.m_top, 8);
    EXPECT_EQ(shape.m_extent.m_right, 9);
    EXPECT_EQ(shape.m_extent.m_bottom, 2);
    shape.m_vertices.clear();
    EXPECT_EQ(shape.ReComputeExtent(), 0);
    EXPECT_EQ(shape.m_extent.m_left, 0);
    EXPECT_EQ(shape.m_extent.m_top, 0);
    EXPECT_EQ(shape.m_extent.m_right, 0);
    EXPECT_EQ(shape.m_extent.m_bottom, 0);
}

} // namespace
