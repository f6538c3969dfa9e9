#include "viewer/views/PlotAxes.h"

#include <gtest/gtest.h>

using namespace zelto;

TEST(Plot, IsMarkedAtRoundNumbers) {
    EXPECT_EQ(view::MarksOf({-0.5, 255.5}, 420.0, 70.0),
              (std::vector<double>{0, 50, 100, 150, 200, 250}));
    EXPECT_EQ(view::MarksOf({0.0, 3.2}, 200.0, 70.0), (std::vector<double>{0, 2}));
}

TEST(Plot, LaysItsRangesOverItsArea) {
    const view::PlotAxes axes{{10.0, 20.0, 100.0, 50.0}, {-1.0, 1.0}, {0.0, 4.0}};
    EXPECT_EQ(axes.At(-1.0, 0.0), QPointF(10.0, 70.0));
    EXPECT_EQ(axes.At(0.0, 4.0), QPointF(60.0, 20.0));
}

TEST(Plot, MakesRoomForEveryValue) {
    view::PlotAxes::Range range;
    range.Include(7.0, true);
    range.Include(3.0, false);
    range.Include(5.0, false);
    EXPECT_EQ(range.low, 3.0);
    EXPECT_EQ(range.high, 7.0);
}
