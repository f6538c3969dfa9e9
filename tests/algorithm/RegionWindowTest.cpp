#include "zelto/algorithm/internal/RegionWindow.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zelto;

namespace {

void ExpectGrid(const SampleGrid& grid, double step, int width, int height) {
    EXPECT_DOUBLE_EQ(grid.step, step);
    EXPECT_EQ(grid.width, width);
    EXPECT_EQ(grid.height, height);
    EXPECT_EQ(grid.samples, std::int64_t{width} * height);
    EXPECT_TRUE(grid.IsHeld());
}

} // namespace

TEST(RegionWindow, ProductsAndDifferencesKeepTheirLow32Bits) {
    EXPECT_EQ(Product32(3, -4), -12);
    EXPECT_EQ(Product32(65536, 65536), 0);
    EXPECT_EQ(Product32(65537, 65536), 65536);
    EXPECT_EQ(Product32(50000, 50000), 2'500'000'000LL - 4'294'967'296LL);
    EXPECT_EQ(Difference32(10, 4), 6);
    EXPECT_EQ(Difference32(INT32_MIN, 1), INT32_MAX);
    EXPECT_EQ(WindowOf({7, 9, 10, 20}), (PixelWindow{7, 9, 3, 11}));
}

TEST(AoiStatisticsPlan, ExactlyTheBudgetIsReadWhole) {
    for (const bool approx : {false, true}) {
        const auto plan = PlanAoiStatistics(4096, 4096, 4, approx);
        EXPECT_FALSE(plan.inBlocks);
        ExpectGrid(plan.grid, 1.0, 4096, 4096);
    }
}

TEST(AoiStatisticsPlan, OnePixelMoreSwitchesToBlocksOrDecimates) {
    // 97 × 172,961 = 16,777,217
    EXPECT_TRUE(PlanAoiStatistics(97, 172961, 4, false).inBlocks);
    const auto plan = PlanAoiStatistics(97, 172961, 4, true);
    EXPECT_FALSE(plan.inBlocks);
    // The share of one of four bands is 4,194,304, so that the step is a little over 2.
    ExpectGrid(plan.grid, std::sqrt(16777217.0 / 4194304.0), 48, 86480);
}

TEST(AoiStatisticsPlan, TheShareOfABandIsAWholeNumber) {
    // 16,777,216 div 3 = 5,592,405
    const auto plan = PlanAoiStatistics(6000, 4000, 3, true);
    const double step = std::sqrt(24000000.0 / 5592405.0);
    ExpectGrid(plan.grid, step, static_cast<int>(6000 / step), static_cast<int>(4000 / step));
}

TEST(AoiStatisticsPlan, CountsPixelsIn32Bits) {
    auto plan = PlanAoiStatistics(65536, 65536, 1, false);
    EXPECT_FALSE(plan.inBlocks);
    EXPECT_EQ(plan.grid.samples, 0);
    plan = PlanAoiStatistics(50000, 50000, 1, true);
    EXPECT_FALSE(plan.inBlocks);
    EXPECT_EQ(plan.grid.samples, -1794967296);
    EXPECT_DOUBLE_EQ(plan.grid.step, 1.0);
    // A positive remainder cannot hold the window.
    plan = PlanAoiStatistics(65537, 65536, 1, false);
    EXPECT_EQ(plan.grid.samples, 65536);
    EXPECT_FALSE(plan.grid.IsHeld());
    // 70,000² = 4,900,000,000, of which 605,032,704 remain: above the budget.
    EXPECT_TRUE(PlanAoiStatistics(70000, 70000, 1, false).inBlocks);
    EXPECT_FALSE(PlanAoiStatistics(70000, 70000, 1, true).inBlocks);
}

TEST(AoiStatisticsPlan, BlocksHaveAtMostTheBudgetAndAtLeastOneRow) {
    EXPECT_EQ(AoiStatisticsBlockRows(12000, 12000), 1398); // 16,777,216 div 12,000
    EXPECT_EQ(AoiStatisticsBlockRows(12000, 100), 100);
    EXPECT_EQ(AoiStatisticsBlockRows(16777216, 7), 1);
    EXPECT_EQ(AoiStatisticsBlockRows(20000000, 7), 1);
}

TEST(CovariancePlan, TheBandsShareTheBudget) {
    // 2048² = 16,777,216 div 4
    for (const bool approx : {false, true}) {
        const auto plan = PlanAoiCovariance(2048, 2048, 4, approx);
        EXPECT_FALSE(plan.inBlocks);
        ExpectGrid(plan.grid, 1.0, 2048, 2048);
    }
    // 5 × 838,861 = 4,194,305
    auto plan = PlanAoiCovariance(5, 838861, 4, false);
    EXPECT_TRUE(plan.inBlocks);
    EXPECT_EQ(plan.blockRows, 838860); // 16,777,216 div 5 div 4
    plan = PlanAoiCovariance(5, 838861, 4, true);
    EXPECT_FALSE(plan.inBlocks);
    const double step = std::sqrt(4194305.0 / 4194304.0);
    ExpectGrid(plan.grid, step, 4, static_cast<int>(838861 / step));
}

TEST(CovariancePlan, BlocksOfAWideAreaHaveOneRow) {
    EXPECT_EQ(PlanAoiCovariance(9000000, 3, 4, false).blockRows, 1);
    EXPECT_EQ(PlanAoiCovariance(12000, 12000, 4, false).blockRows, 349);
}

TEST(ShapeGrid, DecimatesAbove2To24PixelsHoweverManyBands) {
    ExpectGrid(ShapeGrid(4096, 4096), 1.0, 4096, 4096);
    const double step = std::sqrt(16777217.0 * 5.9604644775390625e-08);
    ExpectGrid(ShapeGrid(97, 172961), step, 96, static_cast<int>(172961 / step));
    ExpectGrid(ShapeGrid(8192, 8192), 2.0, 4096, 4096);
    EXPECT_EQ(ShapeGrid(0, 12).samples, 0);
    EXPECT_LT(ShapeGrid(-1, 12).samples, 1);
}

TEST(SharedBudgetGrid, AlwaysAimsAtTheBudgetAlsoUpwards) {
    ExpectGrid(SharedBudgetGrid(4096, 4096, 1), 1.0, 4096, 4096);
    ExpectGrid(SharedBudgetGrid(50, 50, 1), 50.0 / 4096, 4096, 4096);
    ExpectGrid(SharedBudgetGrid(1, 1, 4), 1.0 / 2048, 2048, 2048);
    ExpectGrid(SharedBudgetGrid(8192, 8192, 4), 4.0, 2048, 2048);
}

TEST(SharedBudgetGrid, WindowsWithoutPixelsHaveNoSamples) {
    EXPECT_LE(SharedBudgetGrid(0, 0, 1).samples, 1);
    EXPECT_LE(SharedBudgetGrid(0, 40, 1).samples, 1);
    EXPECT_LE(SharedBudgetGrid(40, -3, 1).samples, 1);
    // So narrow that less than one column remains.
    EXPECT_EQ(SharedBudgetGrid(1, 2000000000, 1).width, 0);
}

TEST(SharedBudgetGrid, ARasterWithoutBandsDividesByNothing) {
    EXPECT_EQ(SharedBudgetGrid(50, 50, 0).samples, 16777216);
    EXPECT_FALSE(PlanAoiStatistics(10, 10, 0, true).inBlocks);
    EXPECT_FALSE(PlanAoiCovariance(10, 10, 0, false).inBlocks);
}

TEST(HistogramGrid, ReadsUpTo5MillionPixelsWhole) {
    ExpectGrid(HistogramGrid(2000, 2000, 1), 1.0, 2000, 2000);
    ExpectGrid(HistogramGrid(2500, 2000, 4), 1.0, 2500, 2000);
    const double step = std::sqrt(5000001.0 / 4194304.0); // 3 × 1,666,667
    ExpectGrid(HistogramGrid(3, 1666667, 4), step, 2, static_cast<int>(1666667 / step));
}

TEST(HistogramGrid, BetweenTheThresholdAndTheBudgetTheWindowIsEnlarged) {
    const double enlarged = std::sqrt(6000000.0 / 16777216.0);
    EXPECT_LT(enlarged, 1.0);
    ExpectGrid(HistogramGrid(3000, 2000, 1), enlarged, 5016, 3344);
    const double decimated = std::sqrt(6000000.0 / 4194304.0);
    ExpectGrid(HistogramGrid(3000, 2000, 4), decimated, 2508, 1672);
}

TEST(HistogramGrid, CountsPixelsIn32Bits) {
    EXPECT_LT(HistogramGrid(65536, 65536, 1).samples, 2);
    EXPECT_FALSE(HistogramGrid(65537, 65536, 1).IsHeld());
}

TEST(OverviewGrid, TheLongerSideBecomes1024) {
    ExpectGrid(OverviewGrid(3000, 1000), 3000.0 / 1024, 1024, 341);
    ExpectGrid(OverviewGrid(1000, 3000), 3000.0 / 1024, 341, 1024);
}

TEST(OverviewGrid, UpToAMegapixelIsReadWhole) {
    ExpectGrid(OverviewGrid(1024, 1024), 1.0, 1024, 1024);
    ExpectGrid(OverviewGrid(1048576, 1), 1.0, 1048576, 1);
    ExpectGrid(OverviewGrid(1025, 1024), 1025.0 / 1024, 1024, 1023);
    EXPECT_EQ(OverviewGrid(1048577, 1).samples, 0);
}
