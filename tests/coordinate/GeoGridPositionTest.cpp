#include "zelto/coordinate/GeoGrid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

/// 3 × 2 positions, ground steps 10 and 20:
/// columns 0 1 4 / 10 11 14, rows 0 0 0 / 5 6 8.
CGeoGrid SmallGrid(unsigned int order) {
    CGeoGrid grid(3, 2, 10.0, 20.0, order);
    const double columns[] = {0, 1, 4, 10, 11, 14};
    const double rows[] = {0, 0, 0, 5, 6, 8};
    std::copy_n(columns, 6, grid.GetColumns());
    std::copy_n(rows, 6, grid.GetRows());
    return grid;
}

void ExpectPosition(const CGeoGrid& grid, double x, double y, double col, double row) {
    double c = -1.0;
    double r = -1.0;
    grid.GetPosByLocal(x, y, c, r);
    EXPECT_DOUBLE_EQ(c, col) << x << ", " << y;
    EXPECT_DOUBLE_EQ(r, row) << x << ", " << y;
}

/// Random points near (offset, offset), inputs and outputs.
struct RandomPoints {
    std::vector<double> x, y, col, row;

    RandomPoints(int count, double offset, std::mt19937& random) {
        std::uniform_real_distribution<double> spread(-50.0, 50.0);
        for (int i = 0; i < count; ++i) {
            for (std::vector<double>* values : {&x, &y, &col, &row})
                values->push_back(offset + spread(random));
        }
    }
    int Count() const { return static_cast<int>(x.size()); }
    double Mean(const std::vector<double>& values) const {
        double sum = 0.0;
        for (const double value : values)
            sum += value;
        return sum / Count();
    }
};

/// The polynomial written out, terms in order.
double Sum(unsigned int order, const double* c, double u, double v) {
    const double terms[] = {1,     u,         v,         u * u,     u * v,
                            v * v, u * u * u, u * u * v, u * v * v, v * v * v};
    double sum = 0.0;
    for (unsigned int k = 0; k < CGeoGrid::EnoughNum(order); ++k)
        sum += c[k] * terms[k];
    return sum;
}

} // namespace

TEST(GeoGrid, EnoughNumIsTheNumberOfTerms) {
    EXPECT_EQ(CGeoGrid::EnoughNum(1), 3U);
    EXPECT_EQ(CGeoGrid::EnoughNum(2), 6U);
    EXPECT_EQ(CGeoGrid::EnoughNum(3), 10U);
}

TEST(GeoGrid, ANewGridHoldsZeroPositions) {
    CGeoGrid grid(4, 3, 2.0, 5.0, 2);
    EXPECT_EQ(grid.GetColumnCount(), 4);
    EXPECT_EQ(grid.GetRowCount(), 3);
    EXPECT_EQ(grid.GetOrder(), 2U);
    EXPECT_EQ(grid.GetCoefficients(), nullptr);
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(grid.GetColumns()[i], 0.0);
        EXPECT_EQ(grid.GetRows()[i], 0.0);
    }
}

TEST(GeoGrid, SizesBelowOneOrBeyondMemoryHoldNoPositions) {
    const int huge = std::numeric_limits<int>::max();
    const int most = CGeoGrid::MAX_POSITIONS;
    for (const auto& [nx, ny] : {std::pair(0, 5), {5, 0}, {-3, -3}, {huge, huge}, {most, 2}}) {
        CGeoGrid grid(nx, ny, 1.0, 1.0, 0);
        EXPECT_EQ(grid.GetColumns(), nullptr);
        EXPECT_EQ(grid.GetRows(), nullptr);
        EXPECT_EQ(grid.GetColumnCount(), 0);
        ExpectPosition(grid, 1.0, 1.0, 0.0, 0.0);
    }
}

TEST(GeoGrid, BilinearPositionsBlendTheFourNeighbours) {
    const CGeoGrid grid = SmallGrid(0);
    ExpectPosition(grid, 0, 0, 0, 0);
    ExpectPosition(grid, 10, 0, 1, 0);
    ExpectPosition(grid, 5, 0, 0.5, 0);
    ExpectPosition(grid, 15, 5, 5, 0.25 * 7);
    ExpectPosition(grid, 5, 15, 0.5 + 7.5, 0.75 * 5.5);
}

TEST(GeoGrid, BilinearNeighboursBeyondTheLastLinesAreTheLastOnes) {
    const CGeoGrid grid = SmallGrid(0);
    ExpectPosition(grid, 20, 0, 4, 0);
    ExpectPosition(grid, 27, 0, 4, 0);
    ExpectPosition(grid, 0, 20, 10, 5);
    ExpectPosition(grid, 20, 20, 14, 8);
    ExpectPosition(grid, 10000, 20000, 14, 8);
}

TEST(GeoGrid, BilinearPositionsBeforeTheFirstLinesAreExtrapolated) {
    const CGeoGrid grid = SmallGrid(0);
    ExpectPosition(grid, -5, 0, -0.5, 0);
    ExpectPosition(grid, -20, 0, -2, 0);
    ExpectPosition(grid, 0, -20, -10, -5);
}

TEST(GeoGrid, BilinearPositionOfNothingIsNotANumber) {
    const CGeoGrid grid = SmallGrid(0);
    double col = 0.0;
    double row = 0.0;
    grid.GetPosByLocal(std::nan(""), 0.0, col, row);
    EXPECT_TRUE(std::isnan(col));
    EXPECT_TRUE(std::isnan(row));
}

TEST(GeoGrid, OrdersOutsideOneToThreeFitNothingAndInterpolate) {
    for (unsigned int order : {0U, 4U, 77U}) {
        CGeoGrid grid = SmallGrid(order);
        double in[] = {0, 1};
        double out[] = {0, 1};
        EXPECT_TRUE(grid.ComputeCoef(2, in, in, out, out));
        EXPECT_EQ(grid.GetCoefficients(), nullptr);
        double col = 0.0;
        double row = 0.0;
        EXPECT_TRUE(grid.GetPos(5, 0, col, row));
        EXPECT_DOUBLE_EQ(col, 0.5);
    }
}

TEST(GeoGrid, InterpolationDoesNotAddTheOutputCentre) {
    CGeoGrid grid(2, 1, 1.0, 1.0, 0);
    double in[] = {0, 1};
    grid.GetColumns()[0] = 200000.0;
    grid.GetColumns()[1] = 200010.0;
    EXPECT_TRUE(grid.ComputeCoef(2, in, in, grid.GetColumns(), grid.GetRows()));
    ExpectPosition(grid, 0, 0, -5, 0);
    ExpectPosition(grid, 1, 0, 5, 0);
}

TEST(GeoGrid, WithoutAFitPolynomialsGiveNoPosition) {
    const CGeoGrid grid(2, 2, 1.0, 1.0, 1);
    double col = 7.0;
    double row = 8.0;
    EXPECT_FALSE(grid.GetPos(1.0, 1.0, col, row));
    EXPECT_EQ(col, 7.0);
    EXPECT_EQ(row, 8.0);
}

TEST(GeoGrid, PositionsAreTheSumOfTermsInOrderPlusTheCentre) {
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (const double offset : {0.0, 300000.0}) {
        for (unsigned int order : {1U, 2U, 3U}) {
            RandomPoints points(36, offset, random);
            const bool centred = offset != 0.0;
            const double cx = centred ? points.Mean(points.x) : 0.0;
            const double cy = centred ? points.Mean(points.y) : 0.0;
            const double ox = centred ? points.Mean(points.col) : 0.0;
            const double oy = centred ? points.Mean(points.row) : 0.0;
            CGeoGrid grid(6, 6, 1.0, 1.0, order);
            ASSERT_TRUE(grid.ComputeCoef(36, points.x.data(), points.y.data(), points.col.data(),
                                         points.row.data()));
            const double* a = grid.GetCoefficients();
            const double* b = a + CGeoGrid::EnoughNum(order);
            const RandomPoints asked(500, offset, random);
            for (int i = 0; i < asked.Count(); ++i) {
                double col = 0.0;
                double row = 0.0;
                ASSERT_TRUE(grid.GetPos(asked.x[i], asked.y[i], col, row));
                EXPECT_EQ(col, Sum(order, a, asked.x[i] - cx, asked.y[i] - cy) + ox);
                EXPECT_EQ(row, Sum(order, b, asked.x[i] - cx, asked.y[i] - cy) + oy);
            }
        }
    }
}

TEST(GeoGrid, ManyPositionsAreThoseOfThePointsOneByOne) {
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (unsigned int order : {0U, 1U, 2U, 3U}) {
        RandomPoints points(16, 0.0, random);
        CGeoGrid grid(4, 4, 20.0, 30.0, order);
        std::copy_n(points.col.begin(), 16, grid.GetColumns());
        std::copy_n(points.row.begin(), 16, grid.GetRows());
        ASSERT_TRUE(grid.ComputeCoef(16, points.x.data(), points.y.data(), points.col.data(),
                                     points.row.data()));
        RandomPoints asked(1003, 0.0, random);
        ASSERT_TRUE(grid.GetPos(asked.Count(), asked.x.data(), asked.y.data(), asked.col.data(),
                                asked.row.data()));
        for (int i = 0; i < asked.Count(); ++i) {
            double col = 0.0;
            double row = 0.0;
            ASSERT_TRUE(grid.GetPos(asked.x[i], asked.y[i], col, row));
            EXPECT_EQ(asked.col[i], col);
            EXPECT_EQ(asked.row[i], row);
        }
    }
}
