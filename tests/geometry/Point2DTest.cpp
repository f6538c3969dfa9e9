#include "zelto/geometry/Point2D.h"

#include "tests/geometry/ExpectPoint.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using zelto::test::ExpectPoint;

} // namespace

TEST(Point2D, StartsAtTheOrigin) {
    ExpectPoint(CPoint2D(), 0.0, 0.0);
    EXPECT_EQ(GEOMETRY_EPSILON, std::ldexp(1.0, -23));
}

TEST(Point2D, AddsAndSubtractsByComponents) {
    const CPoint2D a(1, 2);
    const CPoint2D b(10, -20);
    ExpectPoint(a + b, 11, -18);
    ExpectPoint(a - b, -9, 22);
    CPoint2D c = a;
    const CPoint2D& same = c += b;
    EXPECT_EQ(&same, &c);
    ExpectPoint(c, 11, -18);
    ExpectPoint(c -= b, 1, 2);
}

TEST(Point2D, ScalesByANumber) {
    ExpectPoint(CPoint2D(3, -4) * 2.5, 7.5, -10);
    ExpectPoint(CPoint2D(3, -4) / 2.0, 1.5, -2);
}

TEST(Point2D, DivisionByZeroIsNotGuarded) {
    const CPoint2D p = CPoint2D(1, 0) / 0.0;
    EXPECT_TRUE(std::isinf(p.x));
    EXPECT_TRUE(std::isnan(p.y));
}

TEST(Point2D, CrossProductIsPositiveCounterClockwise) {
    EXPECT_EQ(CPoint2D(1, 0) ^ CPoint2D(0, 1), 1);
    EXPECT_EQ(CPoint2D(0, 1) ^ CPoint2D(1, 0), -1);
    EXPECT_EQ(CPoint2D(2, 3) ^ CPoint2D(5, 7), 2 * 7 - 3 * 5);
}

TEST(Point2D, EqualsWithinTheToleranceOnBothAxes) {
    const CPoint2D p(1, 1);
    EXPECT_TRUE(p == CPoint2D(1 + 1e-7, 1));
    EXPECT_FALSE(p == CPoint2D(1 + 2e-7, 1));
    EXPECT_FALSE(p == CPoint2D(1, 1 - 2e-7));
    EXPECT_TRUE(p != CPoint2D(1 + 2e-7, 1));
    EXPECT_FALSE(p != CPoint2D(1, 1 + 1e-7));
}

TEST(Point2D, ADifferenceOfExactlyTheToleranceIsNotEqual) {
    EXPECT_FALSE(CPoint2D(0, 0) == CPoint2D(GEOMETRY_EPSILON, 0));
    EXPECT_TRUE(CPoint2D(0, 0) == CPoint2D(std::nextafter(GEOMETRY_EPSILON, 0), 0));
}

TEST(Point2D, NanEqualsNothing) {
    const CPoint2D p(std::nan(""), 0);
    EXPECT_FALSE(p == p);
    EXPECT_TRUE(p != p);
}

TEST(Point2D, LengthAndDistanceAreEuclidean) {
    EXPECT_EQ(CPoint2D(3, -4).length(), 5);
    EXPECT_EQ(CPoint2D(1, 1).distance({4, 5}), 5);
    EXPECT_EQ(CPoint2D().length(), 0);
}
