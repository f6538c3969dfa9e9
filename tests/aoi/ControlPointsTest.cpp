#include "zelto/aoi/ControlPoints.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

CDrawPoint* NewPoint(CPoint2D p) {
    auto* point = new CDrawPoint(0);
    point->m_useMark = USE_MARK_CONTROL_POINT;
    point->AddVertex(p);
    return point;
}

TEST(ControlPoints, NumbersAreNotUsedAgain) {
    CControlPoints points;
    EXPECT_EQ(points.AddPoint({1, 1}, 0), 1);
    EXPECT_EQ(points.AddPoint({2, 2}, 0), 2);
    EXPECT_EQ(points.AddPoint({3, 3}, 0), 3);
    EXPECT_TRUE(points.RemovePoint(2));
    EXPECT_FALSE(points.RemovePoint(2));
    EXPECT_EQ(points.AddPoint({4, 4}, 0), 4);
    EXPECT_EQ(points.GetCount(), 3);
    points.RemoveAllPoints();
    EXPECT_EQ(points.GetCount(), 0);
    EXPECT_EQ(points.AddPoint({5, 5}, 0), 1);
}

TEST(ControlPoints, ANewPointIsCompleteMarkedAndColoured) {
    CControlPoints points;
    points.AddPoint({7, 8}, 0x00112233);
    const CDrawPoint* point = points.GetDrawPoint(0);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point->m_identifier, 1);
    EXPECT_EQ(point->m_useMark, 5);
    EXPECT_TRUE(point->m_complete);
    EXPECT_EQ(point->m_point, CPoint2D(7, 8));
    EXPECT_EQ(point->m_firstColor.red, 0x33);
    EXPECT_EQ(point->m_secondColor.blue, 0x11);
    EXPECT_EQ(point->m_secondColor.alpha, 255);
}

TEST(ControlPoints, OnlyMarkedPointsAreTaken) {
    CControlPoints points;
    points.AddPoint({1, 1}, 0);
    CDrawPoint unmarked(9);
    EXPECT_EQ(points.AddPoint(&unmarked), 1);
    unmarked.m_useMark = USE_MARK_AOI;
    EXPECT_EQ(points.AddPoint(&unmarked), 1);
    EXPECT_EQ(points.AddPoint(static_cast<CDrawPoint*>(nullptr)), 1);
    EXPECT_EQ(unmarked.m_identifier, 9);
    EXPECT_EQ(points.GetCount(), 1);
}

TEST(ControlPoints, PointsAreFoundByPlaceAndIdentifier) {
    CControlPoints points;
    points.AddPoint({1, 1}, 0);
    CDrawPoint* second = NewPoint({2, 5});
    EXPECT_EQ(points.AddPoint(second), 2);
    EXPECT_EQ(points.GetDrawPoint(1), second);
    EXPECT_EQ(points.GetDrawPoint(2), nullptr);
    EXPECT_EQ(points.GetDrawPoint(-1), nullptr);
    EXPECT_EQ(points.GetDrawPointByID(2), second);
    EXPECT_EQ(points.GetDrawPointByID(0), nullptr);
    EXPECT_EQ(points.GetPoint(2), CPoint2D(2, 5));
    EXPECT_EQ(points.GetPoint(3), CPoint2D(0, 0));
}

TEST(ControlPoints, RemovingByPointerAnswersFalseAndLeavesAnIndexEntry) {
    CControlPoints points;
    CDrawPoint* point = NewPoint({1, 1});
    points.AddPoint(point);
    EXPECT_FALSE(points.RemovePoint(point));
    EXPECT_EQ(points.GetCount(), 0);
    // The point is gone; only its entry in the index is found, once.
    EXPECT_TRUE(points.RemovePoint(point));
    EXPECT_FALSE(points.RemovePoint(point));
}

TEST(ControlPoints, RemovingByIdentifierClearsTheIndexEntryInAnyCase) {
    CControlPoints points;
    CDrawPoint* point = NewPoint({1, 1});
    points.AddPoint(point);
    EXPECT_FALSE(points.RemovePoint(point));
    EXPECT_FALSE(points.RemovePoint(1)) << "no such point, but its entry goes";
    EXPECT_FALSE(points.RemovePoint(point));
}

TEST(ControlPoints, UnknownPointersAreNotRemoved) {
    CControlPoints points;
    CDrawPoint other(1);
    EXPECT_FALSE(points.RemovePoint(&other));
    EXPECT_FALSE(points.RemovePoint(static_cast<CDrawPoint*>(nullptr)));
}

TEST(ControlPoints, SelectedPointsAreRemovedInOneGo) {
    CControlPoints points;
    for (int i = 0; i < 4; ++i)
        points.AddPoint({double(i), 0}, 0);
    points.GetDrawPoint(0)->m_selected = true;
    points.GetDrawPoint(2)->m_selected = true;
    CDrawPoint* removed = points.GetDrawPoint(2);
    points.RemoveAllSelectedPoints();
    EXPECT_EQ(points.GetCount(), 2);
    EXPECT_EQ(points.GetDrawPoint(0)->m_identifier, 2);
    EXPECT_EQ(points.GetDrawPoint(1)->m_identifier, 4);
    EXPECT_TRUE(points.RemovePoint(removed)) << "the index was not touched";
}

TEST(ControlPoints, RemoveAllPointsKeepsTheIndex) {
    CControlPoints points;
    CDrawPoint* point = NewPoint({1, 1});
    points.AddPoint(point);
    points.RemoveAllPoints();
    EXPECT_TRUE(points.RemovePoint(point));
}

TEST(ControlPoints, UpdatePointMovesThePointAndItsExtent) {
    CControlPoints points;
    points.AddPoint({1, 1}, 0);
    points.UpdatePoint(1, {8, 9});
    const CDrawPoint* point = points.GetDrawPoint(0);
    EXPECT_EQ(point->m_point, CPoint2D(8, 9));
    EXPECT_EQ(point->m_vertices.size(), 1U);
    EXPECT_EQ(point->m_extent.m_top, 9);
    points.UpdatePoint(2, {0, 0});
    EXPECT_EQ(points.GetPoint(1), CPoint2D(8, 9));
}

TEST(ControlPoints, SelectedPointsAreAppendedInOrder) {
    CControlPoints points;
    for (int i = 0; i < 3; ++i)
        points.AddPoint({double(i), 0}, 0);
    points.GetDrawPoint(2)->m_selected = true;
    points.GetDrawPoint(1)->m_selected = true;
    std::vector<CDrawShape*> selected = {nullptr};
    points.GetAllSelectedPoints(&selected);
    EXPECT_EQ(selected,
              (std::vector<CDrawShape*>{nullptr, points.GetDrawPoint(1), points.GetDrawPoint(2)}));
    points.GetAllSelectedPoints(nullptr);
}

TEST(ControlPoints, TheClosestVisiblePointIsSelectedAlone) {
    CControlPoints points;
    points.AddPoint({0, 0}, 0);
    points.AddPoint({10, 0}, 0);
    points.AddPoint({4, 0}, 0);
    points.AddPoint({6, 0}, 0);
    points.GetDrawPoint(1)->m_selected = true;
    points.GetDrawPoint(2)->m_visible = false;
    points.GetDrawPoint(2)->m_selected = true;
    EXPECT_EQ(points.GetDrawShapeClosestPoint({3, 0}), points.GetDrawPoint(0))
        << "the first of equal distances";
    EXPECT_EQ(points.GetCurrentSelectedPoint(), 1);
    EXPECT_TRUE(points.GetDrawPoint(0)->m_selected);
    EXPECT_FALSE(points.GetDrawPoint(1)->m_selected);
    EXPECT_TRUE(points.GetDrawPoint(2)->m_selected) << "hidden points keep their flag";
}

TEST(ControlPoints, FarAndHiddenPointsAreNotClosest) {
    CControlPoints points;
    points.AddPoint({1e7, 0}, 0);
    points.SetCurrentSelectedPoint(1);
    EXPECT_EQ(points.GetDrawShapeClosestPoint({0, 0}), nullptr) << "1e7 is not less than 1e7";
    EXPECT_EQ(points.GetCurrentSelectedPoint(), -1);
    EXPECT_FALSE(points.GetDrawPoint(0)->m_selected);
    EXPECT_NE(points.GetDrawShapeClosestPoint({1, 0}), nullptr);
    points.GetDrawPoint(0)->m_visible = false;
    EXPECT_EQ(points.GetDrawShapeClosestPoint({1e7, 0}), nullptr);
    EXPECT_EQ(points.GetCurrentSelectedPoint(), -1);
    points.GetDrawPoint(0)->m_visible = true;
    EXPECT_EQ(points.GetDrawShapeClosestPoint({std::numeric_limits<double>::quiet_NaN(), 0}),
              nullptr);
}

TEST(ControlPoints, AHitSelectsTheFirstVisiblePointWithinTheTolerance) {
    CControlPoints points;
    points.AddPoint({0, 0}, 0);
    points.AddPoint({1, 1}, 0);
    points.AddPoint({1.5, 1}, 0);
    points.GetDrawPoint(0)->m_selected = true;
    points.GetDrawPoint(2)->m_selected = true;
    EXPECT_EQ(points.GetSelectedPoint({1.25, 1}, 0.25, 0), points.GetDrawPoint(1));
    EXPECT_EQ(points.GetCurrentSelectedPoint(), 2);
    EXPECT_FALSE(points.GetDrawPoint(0)->m_selected);
    EXPECT_TRUE(points.GetDrawPoint(1)->m_selected);
    EXPECT_FALSE(points.GetDrawPoint(2)->m_selected) << "after a hit, without a test";
    points.GetDrawPoint(1)->m_visible = false;
    EXPECT_EQ(points.GetSelectedPoint({1.25, 1}, 0.25, 1), points.GetDrawPoint(2));
    EXPECT_EQ(points.GetSelectedPoint({100, 1}, 0.25, 1), nullptr);
    EXPECT_EQ(points.GetCurrentSelectedPoint(), -1);
}

TEST(ControlPoints, BoxesSelectNothing) {
    CControlPoints points;
    points.AddPoint({0, 0}, 0);
    points.GetDrawPoint(0)->m_selected = true;
    CBoundingBox box(-1, 1, 1, -1);
    EXPECT_EQ(points.GetSelectedPoint(&box, 0), nullptr);
    EXPECT_TRUE(points.GetDrawPoint(0)->m_selected);
}

TEST(ControlPoints, SetCurrentSelectedPointAddsToTheSelection) {
    CControlPoints points;
    EXPECT_EQ(points.GetCurrentSelectedPoint(), -1);
    points.AddPoint({0, 0}, 0);
    points.AddPoint({1, 0}, 0);
    points.SetCurrentSelectedPoint(1);
    points.SetCurrentSelectedPoint(2);
    EXPECT_EQ(points.GetCurrentSelectedPoint(), 2);
    EXPECT_TRUE(points.GetDrawPoint(0)->m_selected);
    EXPECT_TRUE(points.GetDrawPoint(1)->m_selected);
    points.SetCurrentSelectedPoint(7);
    EXPECT_EQ(points.GetCurrentSelectedPoint(), 2);
}

TEST(ControlPoints, CopiesOwnTheirPoints) {
    auto points = std::make_unique<CControlPoints>();
    points->AddPoint({1, 2}, 0);
    points->SetCurrentSelectedPoint(1);
    CControlPoints copy(*points);
    CControlPoints assigned;
    assigned.AddPoint({9, 9}, 0);
    assigned = *points;
    assigned = *&assigned;
    points.reset();
    EXPECT_EQ(copy.GetPoint(1), CPoint2D(1, 2));
    EXPECT_EQ(copy.GetCurrentSelectedPoint(), 1);
    EXPECT_EQ(copy.AddPoint({3, 3}, 0), 2);
    EXPECT_EQ(assigned.GetCount(), 1);
    EXPECT_EQ(assigned.GetPoint(1), CPoint2D(1, 2));
}

} // namespace
