#include "zelto/aoi/DrawShape.h"

#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPoint.h"

#include "tests/aoi/Shapes.h"
#include "tests/aoi/VirtualSlot.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using zelto::test::ExpectBox;
using zelto::test::SlotOf;

void ExpectColor(const CRgbaColor& color, int red, int green, int blue, int alpha) {
    EXPECT_EQ(color.red, red);
    EXPECT_EQ(color.green, green);
    EXPECT_EQ(color.blue, blue);
    EXPECT_EQ(color.alpha, alpha);
}

TEST(DrawShape, StartsEmptyWithTheDefaults) {
    CDrawPolygon shape;
    EXPECT_EQ(shape.m_identifier, 0);
    ExpectColor(shape.m_firstColor, 0, 0, 0, 255);
    EXPECT_TRUE(shape.m_firstText.empty());
    EXPECT_EQ(shape.m_firstValue, 1);
    ExpectColor(shape.m_secondColor, 255, 255, 0, 100);
    EXPECT_TRUE(shape.m_secondText.empty());
    EXPECT_EQ(shape.m_useMark, 0);
    EXPECT_TRUE(shape.m_vertices.empty());
    ExpectBox(shape.m_extent, 0, 0, 0, 0);
    EXPECT_FALSE(shape.m_complete);
    EXPECT_FALSE(shape.m_selected);
    EXPECT_EQ(shape.m_selectedPointIndex, -1);
    EXPECT_TRUE(shape.m_visible);
    EXPECT_EQ(shape.m_userValue, 0);
    EXPECT_EQ(shape.GetDrawModelType(), 0);
    EXPECT_EQ(shape.GetDrawModelState(), 0);
}

TEST(DrawShape, EveryClassSetsItsKind) {
    EXPECT_EQ(CDrawPoint(0).m_shapeKind, 1);
    EXPECT_EQ(CDrawLine().m_shapeKind, 2);
    EXPECT_EQ(CDrawMultiLine().m_shapeKind, 3);
    EXPECT_EQ(CDrawRectangle().m_shapeKind, 4);
    EXPECT_EQ(CDrawEllipse().m_shapeKind, 5);
    EXPECT_EQ(CDrawPolygon().m_shapeKind, 6);
    EXPECT_EQ(CDrawPoint(17).m_identifier, 17);
}

TEST(DrawShape, TheEnumerationsHaveTheirValues) {
    EXPECT_EQ(int(TOPO_DISJOINT), 0);
    EXPECT_EQ(int(TOPO_INTERSECT), 1);
    EXPECT_EQ(int(TOPO_TOUCH), 2);
    EXPECT_EQ(int(TOPO_CONTAIN), 3);
    EXPECT_EQ(USE_MARK_AOI, 4);
    EXPECT_EQ(USE_MARK_CONTROL_POINT, 5);
}

TEST(DrawShape, ColorsAreGivenAsBlueGreenRed) {
    CDrawLine line;
    line.SetColor(0x00112233UL, 0xFFAABBCCUL);
    ExpectColor(line.m_firstColor, 0x33, 0x22, 0x11, 255);
    ExpectColor(line.m_secondColor, 0xCC, 0xBB, 0xAA, 255);
}

TEST(DrawShape, HooksDoNothingAndValidateAgrees) {
    CDrawLine line;
    line.Check();
    line.Delete();
    line.Update();
    EXPECT_TRUE(line.Validate());
    line.SetDrawModelState(DrawModelState(3));
    EXPECT_EQ(line.GetDrawModelState(), 3);
    EXPECT_EQ(line.GetDrawModelType(), 0);
}

TEST(DrawShape, VirtualOperationsStandInTheirSlots) {
    EXPECT_EQ(SlotOf(&CDrawShape::AddVertex), 1);
    EXPECT_EQ(SlotOf(&CDrawShape::RemoveLastVertex), 2);
    EXPECT_EQ(SlotOf(&CDrawShape::TopoRelationWithPoint), 3);
    EXPECT_EQ(SlotOf(&CDrawShape::TopoRelationWithBoundingbox), 4);
    EXPECT_EQ(SlotOf(&CDrawShape::SetOffset), 5);
    EXPECT_EQ(SlotOf(&CDrawShape::UpdateSelectPoint), 6);
    EXPECT_EQ(SlotOf(&CDrawShape::RecomputeExtent), 7);
    EXPECT_EQ(SlotOf(&CDrawShape::Check) + SlotOf(&CDrawShape::Delete) +
                  SlotOf(&CDrawShape::Update),
              8 + 9 + 11);
    EXPECT_EQ(SlotOf(&CDrawShape::SetDrawModelState), 10);
    EXPECT_EQ(SlotOf(&CDrawShape::Validate), 12);
    EXPECT_EQ(SlotOf(&CDrawShape::SetColor), 13);
    EXPECT_EQ(SlotOf(&CDrawPolygon::InsertVertex), 14);
    EXPECT_EQ(SlotOf(&CDrawPolygon::RemoveVertex), 15);
    EXPECT_EQ(SlotOf(&CDrawPolygon::ReComputeExtent), 16);
    EXPECT_EQ(SlotOf(&CDrawMultiLine::InsertVertex), 14);
    EXPECT_EQ(SlotOf(&CDrawMultiLine::RemoveVertex), 15);
    EXPECT_EQ(SlotOf(&CDrawMultiLine::ReComputeExtent), 16);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetTop), 14);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetBottom), 15);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetLeft), 16);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetRight), 17);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetTopLeft), 18);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetTopRight), 19);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetBottomLeft), 20);
    EXPECT_EQ(SlotOf(&CDrawRectangle::SetBottomRight), 21);
    EXPECT_EQ(SlotOf(&CDrawRectangle::UpdateExtent), 22);
}

TEST(DrawShape, RemoveLastVertexLeavesExtentAndFields) {
    auto polygon = zelto::test::UnitSquareTimes10();
    EXPECT_EQ(polygon.RemoveLastVertex(), 3);
    ExpectBox(polygon.m_extent, 0, 10, 10, 0);
    CDrawPoint point(1);
    EXPECT_EQ(point.RemoveLastVertex(), 0);
    point.AddVertex({3, 4});
    EXPECT_EQ(point.RemoveLastVertex(), 0);
    EXPECT_EQ(point.m_point.x, 3);
}

TEST(DrawShape, RecomputeExtentComparesEachSideAndKeepsItWithoutVertices) {
    CDrawRectangle shape;
    shape.m_extent.SetBoundingBox(1, 2, 3, 4);
    shape.RecomputeExtent();
    ExpectBox(shape.m_extent, 1, 2, 3, 4);
    shape.m_vertices = {{5, 5}, {-1, 7}, {9, -3}};
    shape.RecomputeExtent();
    ExpectBox(shape.m_extent, -1, 7, 9, -3);
}

TEST(DrawShape, UpdateSelectPointMovesTheSelectedVertexOnly) {
    auto polygon = zelto::test::UnitSquareTimes10();
    polygon.UpdateSelectPoint({99, 99});
    ExpectBox(polygon.m_extent, 0, 10, 10, 0);
    polygon.m_selectedPointIndex = 4;
    polygon.UpdateSelectPoint({99, 99});
    ExpectBox(polygon.m_extent, 0, 10, 10, 0);
    polygon.m_selectedPointIndex = 2;
    polygon.UpdateSelectPoint({20, 30});
    EXPECT_EQ(polygon.m_vertices[2].x, 20);
    ExpectBox(polygon.m_extent, 0, 30, 20, 0);
}

TEST(DrawShape, UpdateSelectPointOfARectangleKnowsTwoVerticesWhileHandlesRunToSeven) {
    auto rectangle = zelto::test::Drag({0, 10}, {10, 0});
    EXPECT_EQ(rectangle.TopoRelationWithPoint({10, 10}, 0.5, 0), TOPO_TOUCH);
    EXPECT_EQ(rectangle.m_selectedPointIndex, 2);
    rectangle.UpdateSelectPoint({12, 12});
    ExpectBox(rectangle.m_extent, 0, 10, 10, 0);
    EXPECT_EQ(rectangle.TopoRelationWithPoint({5, 10}, 0.5, 0), TOPO_TOUCH);
    EXPECT_EQ(rectangle.m_selectedPointIndex, 1);
    // Handle 1 is the top-middle one, vertex 1 the bottom-right corner.
    rectangle.UpdateSelectPoint({12, -2});
    ExpectBox(rectangle.m_extent, 0, 10, 12, -2);
    EXPECT_EQ(rectangle.m_width, 10);
}

TEST(DrawShape, SetOffsetMovesVerticesExtentAndOwnFields) {
    CDrawLine line;
    line.AddVertex({1, 2});
    line.AddVertex({3, 5});
    line.SetOffset(10, -1);
    EXPECT_EQ(line.m_startPoint, CPoint2D(11, 1));
    EXPECT_EQ(line.m_endPoint, CPoint2D(13, 4));
    EXPECT_EQ(line.m_vertices[1], CPoint2D(13, 4));
    ExpectBox(line.m_extent, 11, 4, 13, 1);
    CDrawPoint point(1);
    point.AddVertex({1, 1});
    point.SetOffset(2, 3);
    EXPECT_EQ(point.m_point, CPoint2D(3, 4));
    ExpectBox(point.m_extent, 3, 4, 3, 4);
    auto ellipse = zelto::test::Drag<CDrawEllipse>({0, 10}, {10, 0});
    ellipse.SetOffset(1, 1);
    EXPECT_EQ(ellipse.m_topLeft, CPoint2D(1, 11));
    ExpectBox(ellipse.m_extent, 1, 11, 11, 1);
    EXPECT_EQ(ellipse.m_width, 10);
    auto polygon = zelto::test::UnitSquareTimes10();
    polygon.SetOffset(-5, 5);
    EXPECT_EQ(polygon.m_vertices[0], CPoint2D(-5, 5));
    ExpectBox(polygon.m_extent, -5, 15, 5, 5);
}

std::unique_ptr<CDrawShape> CopyOf(CDrawShape& shape) {
    return std::unique_ptr<CDrawShape>(CDrawShape::CreateCopy(&shape));
}

TEST(DrawShape, CreateCopyRefusesNullAndUnknownKinds) {
    EXPECT_EQ(CDrawShape::CreateCopy(nullptr), nullptr);
    CDrawPolygon polygon;
    polygon.m_shapeKind = ShapeKind(0);
    EXPECT_EQ(CDrawShape::CreateCopy(&polygon), nullptr);
    polygon.m_shapeKind = ShapeKind(7);
    EXPECT_EQ(CDrawShape::CreateCopy(&polygon), nullptr);
}

TEST(DrawShape, CreateCopyCopiesEverythingAndIsIndependent) {
    auto ellipse = zelto::test::Drag<CDrawEllipse>({1, 9}, {7, 3});
    ellipse.m_identifier = 4;
    ellipse.m_firstColorStyle = 5;
    ellipse.m_firstText = L"first";
    ellipse.m_firstValue = 6;
    ellipse.m_secondColorStyle = 7;
    ellipse.m_secondText = L"second";
    ellipse.m_useMark = 8;
    ellipse.m_selected = true;
    ellipse.m_selectedPointIndex = 3;
    ellipse.m_visible = false;
    ellipse.m_userValue = 9;
    ellipse.m_drawModelType = DrawModelType(10);
    ellipse.m_drawModelState = DrawModelState(11);
    ellipse.SetColor(0x010203, 0x040506);
    const auto copy = CopyOf(ellipse);
    auto* same = dynamic_cast<CDrawEllipse*>(copy.get());
    ASSERT_NE(same, nullptr);
    ellipse.m_firstText = L"changed";
    ellipse.m_vertices.clear();
    EXPECT_EQ(same->m_identifier, 4);
    EXPECT_EQ(same->m_firstColorStyle, 5);
    EXPECT_EQ(same->m_firstText, L"first");
    EXPECT_EQ(same->m_firstValue, 6);
    EXPECT_EQ(same->m_secondColorStyle, 7);
    EXPECT_EQ(same->m_secondText, L"second");
    EXPECT_EQ(same->m_useMark, 8);
    EXPECT_EQ(same->m_vertices.size(), 2U);
    EXPECT_TRUE(same->m_complete);
    EXPECT_TRUE(same->m_selected);
    EXPECT_EQ(same->m_selectedPointIndex, 3);
    EXPECT_FALSE(same->m_visible);
    EXPECT_EQ(same->m_userValue, 9);
    EXPECT_EQ(same->GetDrawModelType(), 10);
    EXPECT_EQ(same->GetDrawModelState(), 11);
    ExpectColor(same->m_secondColor, 6, 5, 4, 255);
    EXPECT_EQ(same->m_topLeft, CPoint2D(1, 9));
    EXPECT_EQ(same->m_width, 6);
    EXPECT_EQ(same->m_height, 6);
}

TEST(DrawShape, CreateCopyMakesAnObjectOfTheSameClass) {
    CDrawPoint point(3);
    point.AddVertex({1, 2});
    EXPECT_EQ(dynamic_cast<CDrawPoint&>(*CopyOf(point)).m_point, CPoint2D(1, 2));
    CDrawLine line;
    line.AddVertex({1, 2});
    line.AddVertex({3, 4});
    EXPECT_EQ(dynamic_cast<CDrawLine&>(*CopyOf(line)).m_endPoint, CPoint2D(3, 4));
    CDrawMultiLine lines;
    EXPECT_NE(dynamic_cast<CDrawMultiLine*>(CopyOf(lines).get()), nullptr);
    CDrawRectangle rectangle;
    EXPECT_NE(dynamic_cast<CDrawRectangle*>(CopyOf(rectangle).get()), nullptr);
    CDrawPolygon polygon;
    EXPECT_NE(dynamic_cast<CDrawPolygon*>(CopyOf(polygon).get()), nullptr);
}

} // namespace
