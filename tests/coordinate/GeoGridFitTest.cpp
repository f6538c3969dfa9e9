#include "zelto/coordinate/GeoGrid.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

struct Points {
    std::vector<double> x, y, outX, outY;

    int Count() const { return static_cast<int>(x.size()); }
    bool Fit(CGeoGrid& grid) {
        return grid.ComputeCoef(Count(), x.data(), y.data(), outX.data(), outY.data());
    }
};

/// The terms as the fit orders them, written out.
std::vector<long double> Terms(unsigned int order, long double u, long double v) {
    std::vector<long double> terms = {1, u, v};
    if (order >= 2)
        terms.insert(terms.end(), {u * u, u * v, v * v});
    if (order >= 3)
        terms.insert(terms.end(), {u * u * u, u * u * v, u * v * v, v * v * v});
    return terms;
}

/// A regular grid over [left, left + width] × [bottom, bottom + height].
Points Lattice(double left, double bottom, double width, double height, int n) {
    Points points;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            points.x.push_back(left + width * i / (n - 1));
            points.y.push_back(bottom + height * j / (n - 1));
        }
    }
    points.outX.resize(points.x.size());
    points.outY.resize(points.x.size());
    return points;
}

/// Positions that a polynomial of order 3 does not describe exactly.
void Bend(Points& points, double scale) {
    const double x0 = points.x.front();
    const double y0 = points.y.front();
    for (int i = 0; i < points.Count(); ++i) {
        const double u = (points.x[i] - x0) / scale;
        const double v = (points.y[i] - y0) / scale;
        points.outX[i] =
            400 * std::sin(u + 0.3) + 90 * v * v - 20 * u * std::exp(0.5 * v) - 3 * u * u * v;
        points.outY[i] = 300 * std::cos(v + 0.2 * u) - 55 * u + 7 * u * u * v;
    }
}

using ExtendedMatrix = Eigen::Matrix<long double, Eigen::Dynamic, Eigen::Dynamic>;
using ExtendedVector = Eigen::Matrix<long double, Eigen::Dynamic, 1>;

/// The least-squares coefficients by a QR decomposition in extended precision.
ExtendedVector SolveByQr(unsigned int order, const Points& points,
                         const std::vector<double>& observed) {
    const auto terms = CGeoGrid::EnoughNum(order);
    ExtendedMatrix design(points.Count(), terms);
    ExtendedVector right(points.Count());
    for (int i = 0; i < points.Count(); ++i) {
        const auto row = Terms(order, points.x[i], points.y[i]);
        for (unsigned int k = 0; k < terms; ++k)
            design(i, k) = row[k];
        right(i) = observed[i];
    }
    return design.colPivHouseholderQr().solve(right);
}

void ExpectCoefficientsOfQr(unsigned int order, Points& points) {
    SCOPED_TRACE("order " + std::to_string(order));
    CGeoGrid grid(0, 0, 1, 1, order);
    ASSERT_TRUE(points.Fit(grid));
    const auto column = SolveByQr(order, points, points.outX);
    const auto row = SolveByQr(order, points, points.outY);
    const unsigned int terms = CGeoGrid::EnoughNum(order);
    for (unsigned int k = 0; k < terms; ++k) {
        const auto a = static_cast<double>(column(k));
        const auto b = static_cast<double>(row(k));
        EXPECT_NEAR(grid.GetCoefficients()[k], a, 1e-9 * std::abs(a)) << "term " << k;
        EXPECT_NEAR(grid.GetCoefficients()[terms + k], b, 1e-9 * std::abs(b)) << "term " << k;
    }
}

} // namespace

TEST(GeoGridFit, CoefficientsAgreeWithAQrDecompositionUncentred) {
    for (unsigned int order : {1U, 2U, 3U}) {
        Points points = Lattice(-1.0, -0.5, 2.5, 2.0, 12);
        Bend(points, 1.0);
        ExpectCoefficientsOfQr(order, points);
        Points pixels = Lattice(0, 0, 1000, 800, 20);
        Bend(pixels, 500.0);
        ExpectCoefficientsOfQr(order, pixels);
        Points degrees = Lattice(117.0, 39.5, 1.0, 0.8, 11);
        Bend(degrees, 0.5);
        ExpectCoefficientsOfQr(order, degrees);
    }
}

TEST(GeoGridFit, CoefficientsAgreeWithAQrDecompositionCentred) {
    for (unsigned int order : {1U, 2U, 3U}) {
        Points metres = Lattice(520000.0, 4400000.0, 60000.0, 45000.0, 15);
        Bend(metres, 30000.0);
        ExpectCoefficientsOfQr(order, metres);
    }
}

TEST(GeoGridFit, CoordinatesUpToTheLimitAreFittedUncentred) {
    Points points = Lattice(100000.0, -100000.0, 100.0, 100.0, 4);
    Bend(points, 100.0);
    const auto x = points.x;
    CGeoGrid grid(4, 4, 1, 1, 1);
    ASSERT_TRUE(points.Fit(grid));
    EXPECT_EQ(points.x, x);
}

TEST(GeoGridFit, OneCoordinateBeyondTheLimitCentresBothOnTheirMeans) {
    Points points = Lattice(0.0, 100000.5, 30.0, 60.0, 4);
    Bend(points, 100.0);
    const auto outX = points.outX;
    CGeoGrid grid(4, 4, 1, 1, 1);
    ASSERT_TRUE(points.Fit(grid));
    EXPECT_EQ(points.x.front(), -15.0);
    EXPECT_EQ(points.y.front(), -30.0);
    EXPECT_EQ(points.outX, outX);
}

TEST(GeoGridFit, OnlyTheFirstPointDecidesOnCentring) {
    Points points;
    points.x = {0, 200000, 0, 200000};
    points.y = {0, 0, 200000, 200000};
    points.outX = points.x;
    points.outY = points.y;
    const auto x = points.x;
    CGeoGrid grid(2, 2, 1, 1, 1);
    ASSERT_TRUE(points.Fit(grid));
    EXPECT_EQ(points.x, x);
}

TEST(GeoGridFit, LargeNegativeOutputsAreCentredAndPutBack) {
    Points points = Lattice(0.0, 0.0, 3.0, 3.0, 4);
    for (int i = 0; i < points.Count(); ++i) {
        points.outX[i] = -500000.0 + 2 * points.x[i];
        points.outY[i] = 4 * points.y[i];
    }
    CGeoGrid grid(4, 4, 1, 1, 1);
    ASSERT_TRUE(points.Fit(grid));
    EXPECT_EQ(points.outX.front(), -3.0);
    EXPECT_EQ(points.outY.front(), -6.0);
    double col = 0.0;
    double row = 0.0;
    ASSERT_TRUE(grid.GetPos(1.5, 0.5, col, row));
    EXPECT_NEAR(col, -499997.0, 1e-9);
    EXPECT_NEAR(row, 2.0, 1e-12);
}

TEST(GeoGridFit, ASecondFitForgetsTheCentreOfTheFirst) {
    Points far = Lattice(300000.0, 300000.0, 30.0, 30.0, 4);
    Points near = Lattice(0.0, 0.0, 30.0, 30.0, 4);
    near.outX = near.x;
    near.outY = near.y;
    CGeoGrid grid(4, 4, 1, 1, 1);
    ASSERT_TRUE(far.Fit(grid));
    ASSERT_TRUE(near.Fit(grid));
    double col = 0.0;
    double row = 0.0;
    ASSERT_TRUE(grid.GetPos(7.0, 9.0, col, row));
    EXPECT_NEAR(col, 7.0, 1e-12);
    EXPECT_NEAR(row, 9.0, 1e-12);
}

TEST(GeoGridFit, FewerPointsThanTermsFail) {
    for (unsigned int order : {1U, 2U, 3U}) {
        Points points = Lattice(0.0, 0.0, 3.0, 3.0, 4);
        Bend(points, 1.0);
        CGeoGrid grid(4, 4, 1, 1, order);
        const int enough = static_cast<int>(CGeoGrid::EnoughNum(order));
        EXPECT_FALSE(grid.ComputeCoef(enough - 1, points.x.data(), points.y.data(),
                                      points.outX.data(), points.outY.data()));
        EXPECT_EQ(grid.GetCoefficients(), nullptr);
    }
}

TEST(GeoGridFit, AsManyPointsAsTermsAreMetExactly) {
    // A triangle of ten points determines a cubic.
    Points points;
    for (int j = 0; j < 4; ++j) {
        for (int i = 0; i + j < 4; ++i) {
            points.x.push_back(i);
            points.y.push_back(j);
        }
    }
    points.outX.resize(10);
    points.outY.resize(10);
    Bend(points, 2.0);
    const Points expected = points;
    CGeoGrid grid(4, 4, 1, 1, 3);
    ASSERT_TRUE(points.Fit(grid));
    for (int i = 0; i < 10; ++i) {
        double col = 0.0;
        double row = 0.0;
        ASSERT_TRUE(grid.GetPos(expected.x[i], expected.y[i], col, row));
        EXPECT_NEAR(col, expected.outX[i], 1e-10);
        EXPECT_NEAR(row, expected.outY[i], 1e-10);
    }
}

TEST(GeoGridFit, PointsThatDoNotDetermineThePolynomialFail) {
    Points line = Lattice(0.0, 0.0, 3.0, 3.0, 4);
    line.y = line.x;
    Points point = Lattice(5.0, 5.0, 0.0, 0.0, 4);
    for (unsigned int order : {1U, 2U, 3U}) {
        CGeoGrid grid(4, 4, 1, 1, order);
        EXPECT_FALSE(line.Fit(grid));
        EXPECT_FALSE(point.Fit(grid));
        EXPECT_EQ(grid.GetCoefficients(), nullptr);
    }
}

TEST(GeoGridFit, PositionsThatAreNotFiniteFailAndLeaveNoFormerFit) {
    Points points = Lattice(0.0, 0.0, 3.0, 3.0, 4);
    Bend(points, 1.0);
    CGeoGrid grid(4, 4, 1, 1, 1);
    ASSERT_TRUE(points.Fit(grid));
    points.outX[5] = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(points.Fit(grid));
    EXPECT_EQ(grid.GetCoefficients(), nullptr);
    points.outX[5] = 1.0;
    points.outY[5] = std::nan("");
    EXPECT_FALSE(points.Fit(grid));
    EXPECT_EQ(grid.GetCoefficients(), nullptr);
    points.outY[5] = 1.0;
    points.x[3] = std::nan("");
    EXPECT_FALSE(points.Fit(grid));
}

TEST(GeoGridFit, NullArraysAndNoPointsFail) {
    double values[4] = {};
    CGeoGrid grid(2, 2, 1, 1, 1);
    EXPECT_FALSE(grid.ComputeCoef(0, values, values, values, values));
    EXPECT_FALSE(grid.ComputeCoef(-1, values, values, values, values));
    EXPECT_FALSE(grid.ComputeCoef(4, nullptr, values, values, values));
    EXPECT_FALSE(grid.ComputeCoef(4, values, nullptr, values, values));
    EXPECT_FALSE(grid.ComputeCoef(4, values, values, nullptr, values));
    EXPECT_FALSE(grid.ComputeCoef(4, values, values, values, nullptr));
}
