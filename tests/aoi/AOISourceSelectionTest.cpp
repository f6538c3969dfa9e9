#include "zelto/aoi/AOISource.h"

#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>

namespace {

/// Two overlapping squares, a third apart: 0 … 10, 5 … 15 and 20 … 30 along both axes.
class AOISourceSelection : public testing::Test {
  protected:
    AOISourceSelection() {
        for (double left : {0.0, 5.0, 20.0})
            m_source.AddDrawShape(
                new CDrawRectangle(zelto::test::Drag({left, left + 10}, {left + 10, left})));
    }

    CDrawShape& Shape(int index) { return *m_source.GetDrawShape(index); }
    void Select(std::vector<bool> flags) {
        for (int i = 0; i < 3; ++i)
            Shape(i).m_selected = flags[std::size_t(i)];
    }
    std::vector<bool> Selected() {
        return {Shape(0).m_selected, Shape(1).m_selected, Shape(2).m_selected};
    }
    CDrawShape* Pick(double x, double y, int mode) {
        return m_source.GetSelectedDrawShape(CPoint2D(x, y), 0.5, mode);
    }
    CDrawShape* PickBox(CBoundingBox box, int mode) {
        return m_source.GetSelectedDrawShape(&box, mode);
    }

    CAOISource m_source;
};

using Flags = std::vector<bool>;

TEST_F(AOISourceSelection, SingleSelectionTakesTheFirstHitAndDeselectsTheOthers) {
    Select({false, true, true});
    EXPECT_EQ(Pick(7, 7, 0), &Shape(0));
    EXPECT_EQ(Selected(), (Flags{true, false, false}));
}

TEST_F(AOISourceSelection, SingleSelectionDoesNotTestTheShapesBehindTheHit) {
    Shape(1).m_selectedPointIndex = 6;
    EXPECT_EQ(Pick(7, 7, 0), &Shape(0));
    EXPECT_EQ(Shape(1).m_selectedPointIndex, 6) << "a test would have reset it";
}

TEST_F(AOISourceSelection, SingleSelectionWithoutAHitDeselectsAll) {
    Select({true, true, true});
    EXPECT_EQ(Pick(17, 17, 0), nullptr);
    EXPECT_EQ(Selected(), (Flags{false, false, false}));
}

TEST_F(AOISourceSelection, HiddenShapesAreSkippedAndKeepTheirFlag) {
    Shape(0).m_visible = false;
    Select({true, false, false});
    EXPECT_EQ(Pick(7, 7, 0), &Shape(1));
    EXPECT_EQ(Selected(), (Flags{true, true, false}));
    EXPECT_EQ(Pick(2, 2, 1), &Shape(1)) << "toggling does not see the hidden one either";
    EXPECT_EQ(Selected(), (Flags{true, true, false}));
}

TEST_F(AOISourceSelection, AHandleCountsAsInside) {
    EXPECT_EQ(Pick(0, 10, 0), &Shape(0));
}

TEST_F(AOISourceSelection, TogglingSelectsTheFirstUnselectedHitAndStops) {
    EXPECT_EQ(Pick(7, 7, 1), &Shape(0));
    EXPECT_EQ(Selected(), (Flags{true, false, false}));
    // Now the first is deselected on the way to the second.
    EXPECT_EQ(Pick(7, 7, 1), &Shape(1));
    EXPECT_EQ(Selected(), (Flags{false, true, false}));
}

TEST_F(AOISourceSelection, TogglingOffAnswersTheLastShapeStillSelected) {
    Select({true, true, true});
    EXPECT_EQ(Pick(2, 2, 1), &Shape(2));
    EXPECT_EQ(Selected(), (Flags{false, true, true}));
    Select({false, false, true});
    EXPECT_EQ(Pick(25, 25, 1), nullptr);
    EXPECT_EQ(Selected(), (Flags{false, false, false}));
}

TEST_F(AOISourceSelection, TogglingBesideEverythingKeepsTheSelection) {
    Select({true, false, false});
    EXPECT_EQ(Pick(50, 50, 1), &Shape(0));
    EXPECT_EQ(Selected(), (Flags{true, false, false}));
}

TEST_F(AOISourceSelection, ABoxSelectsAllItMeetsAndAnswersTheLast) {
    Select({false, false, true});
    EXPECT_EQ(PickBox({8, 12, 12, 8}, 0), &Shape(1));
    EXPECT_EQ(Selected(), (Flags{true, true, false}));
    EXPECT_EQ(PickBox({22, 24, 24, 22}, 1), &Shape(2)) << "any other mode keeps the others";
    EXPECT_EQ(Selected(), (Flags{true, true, true}));
    EXPECT_EQ(PickBox({100, 110, 110, 100}, 0), nullptr);
    EXPECT_EQ(Selected(), (Flags{false, false, false}));
}

TEST_F(AOISourceSelection, ABoxDoesNotSeeHiddenShapes) {
    Shape(1).m_visible = false;
    Select({false, true, false});
    EXPECT_EQ(PickBox({8, 12, 12, 8}, 0), &Shape(0));
    EXPECT_EQ(Selected(), (Flags{true, true, false}));
}

TEST_F(AOISourceSelection, ANullBoxMeetsNothing) {
    Select({true, false, false});
    EXPECT_EQ(m_source.GetSelectedDrawShape(nullptr, 0), nullptr);
    EXPECT_EQ(Selected(), (Flags{false, false, false}));
}

TEST_F(AOISourceSelection, SelectedShapesAreAppendedInListOrder) {
    Select({true, false, true});
    std::vector<CDrawShape*> selected = {nullptr};
    m_source.GetAllSelectedDrawShapes(&selected);
    EXPECT_EQ(selected, (std::vector<CDrawShape*>{nullptr, &Shape(0), &Shape(2)}));
    m_source.GetAllSelectedDrawShapes(nullptr);
}

} // namespace
