#include "zelto/geometry/Line2D.h"

#include "tests/geometry/ExpectPoint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

namespace {

using zelto::test::ExpectPoint;

constexpr double EPS = GEOMETRY_EPSILON;

CLine2D Line(double x1, double y1, double x2, double y2) {
    return {CPoint2D(x1, y1), CPoint2D(x2, y2)};
}

} // namespace

TEST(Line2D, GivesItsVectorLengthAndMiddle) {
    const CLine2D line = Line(1, 2, 4, 6);
    ExpectPoint(line.getVector(), 3, 4);
    EXPECT_EQ(line.length(), 5);
    ExpectPoint(line.midPoint(), 2.5, 4);
    static_assert(std::has_virtual_destructor_v<CLine2D>);
}

TEST(Line2D, NormalIsTheDirectionTurnedCounterClockwise) {
    ExpectPoint(Line(0, 0, 5, 0).normal(), 0, 1);
    ExpectPoint(Line(0, 0, -5, 0).normal(), 0, -1);
    ExpectPoint(Line(0, 0, 0, 5).normal(), -1, 0);
    ExpectPoint(Line(0, 0, 0, -5).normal(), 1, 0);
    ExpectPoint(Line(1, 1, 4, 5).normal(), -4.0 / 5, 3.0 / 5);
}

TEST(Line2D, NormalTakesComponentsWithinTheToleranceForZero) {
    ExpectPoint(Line(0, 0, EPS, 2).normal(), -1, 0);
    ExpectPoint(Line(0, 0, 2, EPS).normal(), 0, 1);
    ExpectPoint(Line(0, 0, 2 * EPS, 0).normal(), 0, 1);
}

TEST(Line2D, NormalOfAPointIsTheZeroVector) {
    ExpectPoint(Line(3, 3, 3, 3).normal(), 0, 0);
    // Longer than nothing but not than the tolerance: turned, not scaled.
    ExpectPoint(Line(0, 0, 0, EPS).normal(), -EPS, 0);
}

TEST(Line2D, InfiniteLinesMeetBeyondTheirEnds) {
    ExpectPoint(Line(0, 0, 1, 1).intersectInfinite(Line(10, 0, 10, 1)), 10, 10);
    ExpectPoint(Line(0, 2, 4, 2).intersectInfinite(Line(1, 0, 1, 1)), 1, 2);
}

TEST(Line2D, ParallelLinesMeetAtTheOrigin) {
    ExpectPoint(Line(0, 1, 5, 1).intersectInfinite(Line(0, 2, 5, 2)), 0, 0);
    ExpectPoint(Line(7, 7, 7, 7).intersectInfinite(Line(0, 2, 5, 3)), 0, 0);
    // The determinant is exactly the tolerance: parallel. Twice that is not.
    ExpectPoint(Line(1, 1, 2, 1).intersectInfinite(Line(3, 1, 4, 1 + EPS)), 0, 0);
    ExpectPoint(Line(1, 1, 2, 1).intersectInfinite(Line(3, 1, 4, 1 + 2 * EPS)), 3, 1);
}

TEST(Line2D, SegmentsMeetInTheirCrossing) {
    ExpectPoint(Line(0, 0, 10, 0).intersectSegment(Line(5, -5, 5, 5)), 5, 0);
    ExpectPoint(Line(0, 0, 10, 0).intersectSegment(Line(5, 1, 5, 5)), 0, 0);
    ExpectPoint(Line(5, -5, 5, 5).intersectSegment(Line(0, 0, 10, 0)), 5, 0);
    ExpectPoint(Line(5, 1, 5, 5).intersectSegment(Line(0, 0, 10, 0)), 0, 0);
}

TEST(Line2D, SegmentsWithoutACrossingAndACrossingAtTheOriginLookTheSame) {
    ExpectPoint(Line(-1, -1, 1, 1).intersectSegment(Line(-1, 1, 1, -1)), 0, 0);
    ExpectPoint(Line(1, 1, 3, 3).intersectSegment(Line(2, 2, 5, 5)), 0, 0);
    ExpectPoint(Line(1, 1, 3, 1).intersectSegment(Line(1, 2, 3, 2)), 0, 0);
}

TEST(Line2D, SegmentsMeetAtTheirEnds) {
    ExpectPoint(Line(2, 2, 4, 2).intersectSegment(Line(4, 2, 4, 8)), 4, 2);
    ExpectPoint(Line(2, 2, 4, 2).intersectSegment(Line(2, -3, 2, 2)), 2, 2);
}

TEST(Line2D, ThisSegmentIsWidenedByTheToleranceOfItsParameter) {
    // The crossing is beyond the end by a parameter of half and of twice the tolerance; the
    // other segment is long, so that its own test decides nothing.
    const CLine2D line = Line(10, 0, 11, 0);
    const double within = 11 + EPS / 2;
    EXPECT_NE(line.intersectSegment(Line(within, -50, within, 50)).x, 0);
    const double beyond = 11 + 2 * EPS;
    ExpectPoint(line.intersectSegment(Line(beyond, -50, beyond, 50)), 0, 0);
    const double before = 10 - EPS / 2;
    EXPECT_NE(line.intersectSegment(Line(before, -50, before, 50)).x, 0);
    const double farBefore = 10 - 2 * EPS;
    ExpectPoint(line.intersectSegment(Line(farBefore, -50, farBefore, 50)), 0, 0);
}

TEST(Line2D, BothWideningsIncludeTheirEnds) {
    const CLine2D line = Line(0, 0, 1, 0);
    ExpectPoint(line.intersectSegment(Line(1 + EPS, -50, 1 + EPS, 50)), 1.0000001192092896, 0);
    ExpectPoint(line.intersectSegment(Line(-EPS, -50, -EPS, 50)), -EPS, 0);
    // The crossing is exactly 0.5 + eps away from the middle of a segment of length 1.
    ExpectPoint(Line(0, 0, 10, 0).intersectSegment(Line(5, EPS, 5, 1 + EPS)), 5, 0);
}

TEST(Line2D, TheOtherSegmentIsWidenedByTheToleranceOfItsHalfLength) {
    // The other segment has length 1: it reaches 0.5 + eps from its midpoint.
    const CLine2D line = Line(0, 4, 10, 4);
    EXPECT_NE(line.intersectSegment(Line(5, 4 + EPS / 2, 5, 5 + EPS / 2)).y, 0);
    ExpectPoint(line.intersectSegment(Line(5, 4 + 2 * EPS, 5, 5 + 2 * EPS)), 0, 0);
}

TEST(Line2D, PointsNearAnEndLieOnTheLineWhateverTheTolerance) {
    const CLine2D line = Line(0, 0, 4, 4);
    EXPECT_TRUE(line.isPointOnInfiniteLine({EPS / 2, 0}, 0));
    EXPECT_TRUE(line.isPointOnInfiniteLine({4, 4 - EPS / 2}, 0));
    EXPECT_FALSE(line.isPointOnInfiniteLine({EPS, 0}, 0));
    EXPECT_FALSE(line.isPointOnInfiniteLine({4, 4 + EPS}, 0));
    EXPECT_FALSE(line.isPointOnInfiniteLine({2 * EPS, 0}, 0));
}

TEST(Line2D, AxisParallelLinesIncludeTheTolerance) {
    const CLine2D vertical = Line(3, 0, 3, 8);
    EXPECT_TRUE(vertical.isPointOnInfiniteLine({3.5, 100}, 0.5));
    EXPECT_FALSE(vertical.isPointOnInfiniteLine({3.51, 4}, 0.5));
    const CLine2D horizontal = Line(0, 3, 8, 3);
    EXPECT_TRUE(horizontal.isPointOnInfiniteLine({-50, 2.5}, 0.5));
    EXPECT_FALSE(horizontal.isPointOnInfiniteLine({4, 2.49}, 0.5));
}

TEST(Line2D, LinesWithinTheToleranceOfAnAxisAreParallelToIt) {
    // Far along a line that counts as oblique the point is more than 0.5 away from it.
    EXPECT_TRUE(Line(3, 0, 3 + EPS, 8).isPointOnInfiniteLine({3.5, -100}, 0.5));
    EXPECT_FALSE(Line(3, 0, 3 + 2 * EPS, 8).isPointOnInfiniteLine({3.5, -100}, 0.5));
    EXPECT_TRUE(Line(0, 3, 8, 3 + EPS).isPointOnInfiniteLine({-100, 3.5}, 0.5));
    EXPECT_FALSE(Line(0, 3, 8, 3 + 2 * EPS).isPointOnInfiniteLine({-100, 3.5}, 0.5));
}

TEST(Line2D, ObliqueLinesExcludeTheTolerance) {
    const CLine2D line = Line(0, 0, 3, 4); // (4, −3) / 5 is its normal
    EXPECT_TRUE(line.isPointOnInfiniteLine({30 + 0.8, 40 - 0.6}, 1.001));
    EXPECT_FALSE(line.isPointOnInfiniteLine({30 + 0.8, 40 - 0.6}, 0.999));
    EXPECT_TRUE(line.isPointOnInfiniteLine({6, 8}, 1e-9));
    EXPECT_FALSE(line.isPointOnInfiniteLine({6, 8}, 0));
    // Both coordinates of the foot are exact here: exactly the tolerance away is too far.
    EXPECT_FALSE(line.isPointOnInfiniteLine({3 + 4, 4 - 3}, 5));
}

TEST(Line2D, NoPointIsWithinWithAPositiveTolerance) {
    const CLine2D line = Line(0, 0, 10, 0);
    for (const CPoint2D& p : {CPoint2D(0, 0), CPoint2D(5, 0), CPoint2D(10, 0)})
        EXPECT_FALSE(line.isPointWithin(p, 0.5));
}

TEST(Line2D, OnlyPointsOfHorizontalSegmentsAreWithinWithoutATolerance) {
    const CLine2D horizontal = Line(10, 3, 0, 3);
    EXPECT_TRUE(horizontal.isPointWithin({5, 3}, 0));
    EXPECT_TRUE(horizontal.isPointWithin({0, 3}, 0));
    EXPECT_TRUE(horizontal.isPointWithin({10, 3}, 0));
    EXPECT_FALSE(horizontal.isPointWithin({10.5, 3}, 0));
    EXPECT_FALSE(horizontal.isPointWithin({-0.5, 3}, 0));
    EXPECT_FALSE(horizontal.isPointWithin({5, 4}, 0));
    EXPECT_FALSE(horizontal.isPointWithin({5, 4}, 1));
    EXPECT_FALSE(Line(3, 0, 3, 8).isPointWithin({3, 4}, 0));
    EXPECT_FALSE(Line(0, 0, 4, 4).isPointWithin({0, 0}, 0));
}

TEST(Line2D, CopiesBothPoints) {
    const CLine2D line = Line(1, 2, 3, 4);
    CLine2D other = Line(0, 0, 0, 0);
    other = line;
    const CLine2D copy(other);
    ExpectPoint(copy.m_start, 1, 2);
    ExpectPoint(copy.m_end, 3, 4);
}
