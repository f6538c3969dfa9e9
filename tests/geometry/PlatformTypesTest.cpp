#include "zelto/geometry/PlatformTypes.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

void ExpectRect(const CRect& rect, int left, int top, int right, int bottom) {
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

} // namespace

TEST(PixelTypes, AreLaidOutAsThePlatforms) {
    EXPECT_EQ(sizeof(CPoint), 8U);
    EXPECT_EQ(offsetof(CPoint, x), 0U);
    EXPECT_EQ(offsetof(CPoint, y), 4U);
    EXPECT_EQ(sizeof(CRect), 16U);
    EXPECT_EQ(offsetof(CRect, left), 0U);
    EXPECT_EQ(offsetof(CRect, top), 4U);
    EXPECT_EQ(offsetof(CRect, right), 8U);
    EXPECT_EQ(offsetof(CRect, bottom), 12U);
}

TEST(PixelRectangle, SetStoresTheSidesAsGiven) {
    CRect rect;
    EXPECT_TRUE(SetRect(&rect, 9, 8, 1, 2));
    ExpectRect(rect, 9, 8, 1, 2);
    EXPECT_FALSE(SetRect(nullptr, 0, 0, 1, 1));
}

TEST(PixelRectangle, IntersectionOfOverlappingRectanglesIsTheOverlap) {
    const CRect a = {0, 0, 10, 10};
    const CRect b = {5, -5, 20, 6};
    CRect result;
    EXPECT_TRUE(IntersectRect(&result, &a, &b));
    ExpectRect(result, 5, 0, 10, 6);
}

TEST(PixelRectangle, IntersectionOfDisjointOrTouchingRectanglesIsAllZero) {
    const CRect a = {1, 1, 10, 10};
    const CRect touching = {10, 1, 20, 10};
    CRect result = {7, 7, 7, 7};
    EXPECT_FALSE(IntersectRect(&result, &a, &touching));
    ExpectRect(result, 0, 0, 0, 0);
}

TEST(PixelRectangle, IntersectionWithAnEmptyOperandIsAllZero) {
    const CRect a = {0, 0, 10, 10};
    const CRect inverted = {8, 8, 2, 2};
    CRect result = {7, 7, 7, 7};
    EXPECT_FALSE(IntersectRect(&result, &a, &inverted));
    ExpectRect(result, 0, 0, 0, 0);
}

TEST(PixelRectangle, UnionIgnoresAnEmptyOperand) {
    const CRect a = {3, 4, 10, 10};
    const CRect empty = {100, 100, 0, 0};
    CRect result;
    EXPECT_TRUE(UnionRect(&result, &a, &empty));
    ExpectRect(result, 3, 4, 10, 10);
    EXPECT_TRUE(UnionRect(&result, &empty, &a));
    ExpectRect(result, 3, 4, 10, 10);
}

TEST(PixelRectangle, UnionOfTwoEmptyRectanglesIsAllZero) {
    const CRect empty = {5, 5, 5, 9};
    CRect result = {7, 7, 7, 7};
    EXPECT_FALSE(UnionRect(&result, &empty, &empty));
    ExpectRect(result, 0, 0, 0, 0);
}

TEST(PixelRectangle, UnionSpansBothOperands) {
    CRect a = {0, 0, 2, 2};
    const CRect b = {5, -3, 6, 1};
    EXPECT_TRUE(UnionRect(&a, &a, &b));
    ExpectRect(a, 0, -3, 6, 2);
}

TEST(PixelRectangle, NullArgumentsAnswerFalse) {
    const CRect a = {0, 0, 2, 2};
    CRect result;
    EXPECT_FALSE(IntersectRect(nullptr, &a, &a));
    EXPECT_FALSE(IntersectRect(&result, nullptr, &a));
    EXPECT_FALSE(UnionRect(&result, &a, nullptr));
}

TEST(PixelRectangle, EachNullArgumentAnswersFalse) {
    const CRect a = {0, 0, 2, 2};
    CRect result = {7, 7, 7, 7};
    EXPECT_FALSE(SetRect(nullptr, 1, 2, 3, 4));
    EXPECT_FALSE(IntersectRect(&result, &a, nullptr));
    EXPECT_FALSE(UnionRect(nullptr, &a, &a));
    EXPECT_FALSE(UnionRect(&result, nullptr, &a));
    ExpectRect(result, 7, 7, 7, 7);
}

TEST(PixelRectangle, ARectangleWithoutRowsIntersectsNothing) {
    const CRect a = {0, 0, 9, 9};
    const CRect line = {2, 5, 8, 5};
    CRect result = {7, 7, 7, 7};
    EXPECT_FALSE(IntersectRect(&result, &line, &a));
    ExpectRect(result, 0, 0, 0, 0);
    EXPECT_FALSE(IntersectRect(&result, &a, &line));
}
