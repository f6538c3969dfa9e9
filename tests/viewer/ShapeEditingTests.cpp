#include "zelto/aoi/DrawRectangle.h"

#include "viewer/model/AreaModel.h"
#include "viewer/model/ShapeEditing.h"

#include <gtest/gtest.h>

using namespace zelto::view;

namespace {

const std::vector<QPointF> TRIANGLE = {{0.0, 0.0}, {10.0, 0.0}, {0.0, 10.0}};

} // namespace

TEST(ShapeEditing, MakesARectangleFromAnyTwoOppositeCorners) {
    const ShapePointer shape = MakeShape(SHAPE_RECTANGLE, {{10.0, 2.0}, {4.0, 8.0}});
    ASSERT_TRUE(shape);
    const auto& box = static_cast<const CDrawRectangle&>(*shape);
    EXPECT_EQ(box.m_topLeft, CPoint2D(4.0, 8.0));
    EXPECT_EQ(box.m_width, 6.0);
    EXPECT_EQ(box.m_height, 6.0);
    EXPECT_TRUE(shape->m_complete);
}

TEST(ShapeEditing, RefusesShapesWithTooFewPointsOrNoArea) {
    EXPECT_FALSE(MakeShape(SHAPE_POLYGON, {{0.0, 0.0}, {1.0, 1.0}}));
    EXPECT_FALSE(MakeShape(SHAPE_RECTANGLE, {{1.0, 1.0}, {1.0, 5.0}}));
    EXPECT_FALSE(MakeShape(SHAPE_MULTILINE, {{1.0, 1.0}}));
}

TEST(ShapeEditing, DragsEachHandleOfARectangleAndKeepsTheOppositeSides) {
    const ShapePointer shape = MakeShape(SHAPE_RECTANGLE, {{0.0, 10.0}, {20.0, 0.0}});
    // Clockwise from the top-left corner; each is moved by (1, 1).
    const QRectF expected[] = {{1, 0, 19, 11}, {0, 0, 20, 11}, {0, 0, 21, 11}, {0, 0, 21, 10},
                               {0, 1, 21, 9},  {0, 1, 20, 9},  {1, 1, 19, 9},  {1, 0, 19, 10}};
    const std::vector<QPointF> handles = HandlesOf(*shape);
    ASSERT_EQ(handles.size(), 8U);
    for (int i = 0; i < 8; ++i) {
        const ShapePointer moved =
            WithHandleAt(*shape, i, handles[static_cast<std::size_t>(i)] + QPointF(1.0, 1.0));
        const auto& box = static_cast<const CDrawRectangle&>(*moved);
        EXPECT_EQ(
            QRectF(box.m_topLeft.x, box.m_topLeft.y - box.m_height, box.m_width, box.m_height),
            expected[i])
            << "handle " << i;
    }
}

TEST(ShapeEditing, InsertsAVertexOnTheSideThatIsNearAndRemovesIt) {
    const ShapePointer triangle = MakeShape(SHAPE_POLYGON, TRIANGLE);
    const ShapePointer larger = WithVertexInserted(*triangle, {5.0, 5.2}, 0.5);
    ASSERT_TRUE(larger);
    ASSERT_EQ(larger->m_vertices.size(), 4U);
    EXPECT_EQ(larger->m_vertices[2], CPoint2D(5.0, 5.2));
    const ShapePointer again = WithVertexRemoved(*larger, 2);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->m_vertices, triangle->m_vertices);
    EXPECT_FALSE(WithVertexRemoved(*again, 0)) << "three are needed";
    EXPECT_FALSE(WithVertexInserted(*triangle, {3.0, 3.0}, 0.5)) << "no side is near";
}

TEST(ShapeEditing, HitsAreasInsideAndLinesNearby) {
    EXPECT_TRUE(Holds(*MakeShape(SHAPE_POLYGON, TRIANGLE), {2.0, 2.0}, 0.1));
    EXPECT_FALSE(Holds(*MakeShape(SHAPE_POLYGON, TRIANGLE), {8.0, 8.0}, 0.1));
    const ShapePointer line = MakeShape(SHAPE_MULTILINE, {{0.0, 0.0}, {0.0, 10.0}});
    EXPECT_TRUE(Holds(*line, {0.4, 5.0}, 0.5));
    EXPECT_FALSE(Holds(*line, {0.6, 5.0}, 0.5));
}

TEST(AreaModel, UndoesAndRedoesEveryStep) {
    AreaModel areas;
    areas.Add(MakeShape(SHAPE_POLYGON, TRIANGLE));
    areas.Add(MakeShape(SHAPE_RECTANGLE, {{0.0, 5.0}, {5.0, 0.0}}));
    areas.SetClassOfSelected(3);
    areas.RemoveSelected();
    ASSERT_EQ(areas.All().size(), 1U);
    areas.History().undo();
    ASSERT_EQ(areas.All().size(), 2U);
    EXPECT_EQ(areas.All().back().trainingClass, 3);
    areas.History().undo();
    EXPECT_EQ(areas.All().back().trainingClass, 0);
    areas.History().undo();
    areas.History().undo();
    EXPECT_TRUE(areas.All().empty());
    EXPECT_FALSE(areas.History().canUndo());
    for (int i = 0; i < 4; ++i)
        areas.History().redo();
    EXPECT_EQ(areas.All().size(), 1U);
}

TEST(AreaModel, ChoosesTheSelectedAreasOrAllWhereNoneIs) {
    AreaModel areas;
    areas.Add(MakeShape(SHAPE_POLYGON, TRIANGLE));
    areas.Add(MakeShape(SHAPE_POINT, {{1.0, 1.0}}));
    EXPECT_EQ(areas.ChosenAreas().size(), 1U) << "a point covers no ground";
    areas.Add(MakeShape(SHAPE_ELLIPSE, {{0.0, 5.0}, {5.0, 0.0}}));
    EXPECT_EQ(areas.ChosenAreas().front()->m_shapeKind, SHAPE_ELLIPSE);
    areas.Select({});
    EXPECT_EQ(areas.ChosenAreas().size(), 2U);
}
