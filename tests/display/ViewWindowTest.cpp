#include "zelto/display/internal/ViewWindow.h"

#include <gtest/gtest.h>

#include <limits>

using namespace zelto;

namespace {

/// 100 × 50 pixels of 10 ground units, top-left corner at (1000, 2000).
RasterGrid NorthUpGrid() {
    RasterGrid grid;
    grid.width = 100;
    grid.height = 50;
    grid.origin = {1000.0, 2000.0};
    grid.pixelWidth = 10.0;
    grid.pixelHeight = -10.0;
    grid.inverseGeoTransform = {-100.0, 0.1, 0.0, 200.0, 0.0, -0.1};
    grid.extent = {1000.0, 2000.0, 2000.0, 1500.0};
    return grid;
}

ReadWindow Select(const CBoundingBox& box, int w, int h, ViewRule rule) {
    const ViewWindow view = SelectViewWindow(NorthUpGrid(), box, w, h, rule);
    EXPECT_EQ(view.status, ViewStatus::Selected);
    return view.read;
}

ViewStatus StatusOf(const RasterGrid& grid, const CBoundingBox& box, int w, int h) {
    const ViewStatus status = SelectViewWindow(grid, box, w, h, ViewRule::Interleaved).status;
    return status;
}

} // namespace

TEST(ViewWindow, OfTheWholeRasterPixelByPixelIsTheRaster) {
    const CBoundingBox box(1000, 2000, 2000, 1500);
    const ReadWindow whole{0, 0, 100, 50, 100, 50};
    EXPECT_EQ(Select(box, 100, 50, ViewRule::Interleaved), whole);
    EXPECT_EQ(Select(box, 100, 50, ViewRule::Planes), whole);
    EXPECT_EQ(Select(box, 100, 50, ViewRule::Cache), whole);
}

TEST(ViewWindow, ReadsAsManySamplesAsOutputPixelsWhenZoomedOut) {
    const CBoundingBox box(1000, 2000, 2000, 1500);
    // dx = 100: columns −10 … 110, of which the raster covers 100 / 120; 1200 / 100 pixels.
    const ReadWindow tenth{0, 0, 100, 50, 10, 5};
    EXPECT_EQ(Select(box, 10, 5, ViewRule::Interleaved), tenth);
    EXPECT_EQ(Select(box, 10, 5, ViewRule::Planes), tenth);
    EXPECT_EQ(Select(box, 10, 5, ViewRule::Cache), tenth);
}

TEST(ViewWindow, RulesDifferAtTheFarEdges) {
    // One output pixel is one raster pixel; the widened box spans columns 19 … 31, rows 9 … 16.
    const CBoundingBox box(1200, 1900, 1300, 1850);
    EXPECT_EQ(Select(box, 10, 5, ViewRule::Interleaved), (ReadWindow{19, 9, 13, 8, 13, 8}));
    EXPECT_EQ(Select(box, 10, 5, ViewRule::Planes), (ReadWindow{19, 9, 12, 7, 12, 7}));
    EXPECT_EQ(Select(box, 10, 5, ViewRule::Cache), (ReadWindow{18, 8, 14, 9, 14, 9}));
}

TEST(ViewWindow, EnlargedViewsReadPlanesAsTheyAre) {
    // dx = 2: the widened box spans 1198 … 1302, columns 19 … 30.
    const CBoundingBox box(1200, 1900, 1300, 1850);
    const ReadWindow planes = Select(box, 50, 25, ViewRule::Planes);
    EXPECT_EQ(planes, (ReadWindow{19, 9, 11, 6, 11, 6}));
    // Interleaved: Round((12 / 11) · (110 / ((10 · 2) / 10))) = Round(60).
    const ReadWindow interleaved = Select(box, 50, 25, ViewRule::Interleaved);
    EXPECT_EQ(interleaved, (ReadWindow{19, 9, 12, 7, 60, 35}));
}

TEST(ViewWindow, FullResolutionTakesAnOutputPixelATouchLarger) {
    const auto planesAt = [](double pixel) {
        return Select({1200, 1900, 1200 + 20 * pixel, 1900 - 10 * pixel}, 20, 10, ViewRule::Planes);
    };
    EXPECT_EQ(planesAt(10.000009).bufWidth, planesAt(10.000009).xSize);
    EXPECT_EQ(planesAt(10.3).bufWidth, 22); // Round((23 / 23) · (230 / (10 · 10.3 / 10)))
    EXPECT_EQ(planesAt(10.3).xSize, 23);
    EXPECT_EQ(planesAt(10.00002).bufWidth, planesAt(10.00002).xSize) << "rounds to the same";
}

TEST(ViewWindow, BothDirectionsMustBeAtFullResolution) {
    const CBoundingBox box(1200, 1900, 1300, 1700); // 2 × 20 ground units a pixel
    const ReadWindow read = Select(box, 50, 10, ViewRule::Planes);
    EXPECT_EQ(read.bufWidth, 55); // 11 · 5, not 11
    EXPECT_EQ(read.bufHeight, 12);
}

TEST(ViewWindow, IsCutToTheRaster) {
    const ReadWindow read = Select({900, 2050, 1100, 1900}, 20, 15, ViewRule::Interleaved);
    EXPECT_EQ(read, (ReadWindow{0, 0, 12, 12, 12, 12}));
    const ReadWindow right = Select({1900, 1600, 2100, 1400}, 20, 20, ViewRule::Interleaved);
    EXPECT_EQ(right, (ReadWindow{89, 39, 11, 11, 11, 11}));
}

TEST(ViewWindow, TruncationTowardZeroKeepsABoxJustOutside) {
    // The widened right side is at column −0.95, which is column 0.
    const ReadWindow read = Select({890, 2000, 980.5, 1500}, 9, 50, ViewRule::Interleaved);
    EXPECT_EQ(read.xOff, 0);
    EXPECT_EQ(read.xSize, 1);
}

TEST(ViewWindow, OutputPixelsAreTheBoxDividedByTheSize) {
    const ViewWindow view =
        SelectViewWindow(NorthUpGrid(), {1900, 1600, 1300, 1800}, 30, 10, ViewRule::Interleaved);
    EXPECT_EQ(view.pixelWidth, 20.0); // of an inverted box as well
    EXPECT_EQ(view.pixelHeight, 20.0);
}

TEST(ViewWindow, AnInvertedBoxIsShrunkByItsMargin) {
    const ViewWindow view =
        SelectViewWindow(NorthUpGrid(), {1300, 1850, 1200, 1900}, 10, 5, ViewRule::Interleaved);
    EXPECT_EQ(view.status, ViewStatus::Selected);
    EXPECT_EQ(view.read, (ReadWindow{21, 11, 9, 4, 9, 4}));
}

TEST(ViewWindow, MissesTheRasterOnEverySide) {
    const RasterGrid grid = NorthUpGrid();
    for (const CBoundingBox& box :
         {CBoundingBox(0, 2000, 500, 1500), CBoundingBox(3000, 2000, 4000, 1500),
          CBoundingBox(1000, 4000, 2000, 3000), CBoundingBox(1000, 500, 2000, 100)})
        EXPECT_EQ(StatusOf(grid, box, 10, 10), ViewStatus::MissesRaster);
}

TEST(ViewWindow, WhatIsNoBoxMissesTheRaster) {
    const RasterGrid grid = NorthUpGrid();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (double bad : {nan, infinity, -infinity, 1e300, -1e300}) {
        EXPECT_EQ(StatusOf(grid, {bad, 2000, 2000, 1500}, 9, 9), ViewStatus::MissesRaster);
        EXPECT_EQ(StatusOf(grid, {1000, bad, 2000, 1500}, 9, 9), ViewStatus::MissesRaster);
        EXPECT_EQ(StatusOf(grid, {1000, 2000, bad, 1500}, 9, 9), ViewStatus::MissesRaster);
        EXPECT_EQ(StatusOf(grid, {1000, 2000, 2000, bad}, 9, 9), ViewStatus::MissesRaster);
    }
    EXPECT_EQ(StatusOf(grid, grid.extent, 0, 9), ViewStatus::MissesRaster);
    EXPECT_EQ(StatusOf(grid, grid.extent, 9, -1), ViewStatus::MissesRaster);
    EXPECT_EQ(StatusOf(RasterGrid{}, grid.extent, 9, 9), ViewStatus::MissesRaster);
}

TEST(ViewWindow, APointHasNoGroundSize) {
    const RasterGrid grid = NorthUpGrid();
    EXPECT_EQ(StatusOf(grid, {1234, 1800, 1234, 1700}, 9, 9), ViewStatus::NoGroundWidth);
    EXPECT_EQ(StatusOf(grid, {1200, 1777, 1300, 1777}, 9, 9), ViewStatus::NoGroundHeight);
    EXPECT_EQ(SelectViewWindow(grid, {1234, 1777, 1234, 1777}, 9, 9, ViewRule::Planes).status,
              ViewStatus::MissesRaster);
}

TEST(ViewWindow, AGridTooFarOutForItsPixelsHasNoGroundSize) {
    RasterGrid grid = NorthUpGrid();
    grid.origin.x = 1e20; // adding columns of 10 units to it changes nothing
    EXPECT_EQ(StatusOf(grid, {1200, 1900, 1210, 1800}, 1, 9), ViewStatus::NoGroundWidth);
    grid = NorthUpGrid();
    grid.origin.y = 1e20;
    EXPECT_EQ(StatusOf(grid, {1200, 1900, 1300, 1890}, 9, 1), ViewStatus::NoGroundHeight);
}

TEST(ViewWindow, AWindowThatRoundsToNoSampleIsNotRead) {
    // One output pixel of 1000 raster pixels that just reaches the first column.
    const RasterGrid grid = NorthUpGrid();
    EXPECT_EQ(StatusOf(grid, {-18990, 2000, -8990, 1500}, 1, 1), ViewStatus::NothingToRead);
}

TEST(ViewWindow, PositionsMaySpanTheWholeIntegerRange) {
    RasterGrid grid = NorthUpGrid();
    grid.inverseGeoTransform = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    const ViewWindow view =
        SelectViewWindow(grid, {-2.0e9, 2.0e9, 2.0e9, -2.0e9}, 1000, 1000, ViewRule::Interleaved);
    EXPECT_EQ(view.read.xSize, 100);
    EXPECT_EQ(view.read.ySize, 50);
    EXPECT_EQ(view.status, ViewStatus::NothingToRead);
}

TEST(ViewWindow, RotatedGridsTakeTheExtremesOfTheFourCorners) {
    RasterGrid grid = NorthUpGrid();
    grid.inverseGeoTransform = {0.0, 1.0, 1.0, 0.0, -1.0, 1.0}; // column x + y, row y − x
    const ViewWindow view = SelectViewWindow(grid, {10, 40, 20, 30}, 10, 10, ViewRule::Interleaved);
    // Widened to 9 … 21, 29 … 41: columns 38 … 62, rows 8 … 32.
    EXPECT_EQ(view.read.xOff, 38);
    EXPECT_EQ(view.read.xSize, 25);
    EXPECT_EQ(view.read.yOff, 8);
    EXPECT_EQ(view.read.ySize, 25);
}
