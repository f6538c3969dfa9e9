#include "zelto/geometry/BoundingBox.h"

#include "tests/geometry/ExpectPoint.h"

#include <gtest/gtest.h>

namespace {

using zelto::test::ExpectPoint;

void ExpectBox(const CBoundingBox& box, double left, double top, double right, double bottom) {
    EXPECT_EQ(box.GetLeft(), left);
    EXPECT_EQ(box.GetTop(), top);
    EXPECT_EQ(box.GetRight(), right);
    EXPECT_EQ(box.GetBottom(), bottom);
}

} // namespace

TEST(BoundingBox, StoresWhatItIsGiven) {
    ExpectBox(CBoundingBox(), 0, 0, 0, 0);
    ExpectBox(CBoundingBox(9, 1, 2, 8), 9, 1, 2, 8);
    ExpectBox(CBoundingBox(CPoint2D(1, 4), CPoint2D(3, 2)), 1, 4, 3, 2);
    CBoundingBox box;
    box.SetBoundingBox(5, 6, 7, 8);
    ExpectBox(box, 5, 6, 7, 8);
    box.SetBoundingBox(CPoint2D(1, 4), CPoint2D(3, 2));
    ExpectBox(box, 1, 4, 3, 2);
    box.SetLeft(10);
    box.SetTop(-1);
    box.SetRight(-2);
    box.SetBottom(20);
    ExpectBox(box, 10, -1, -2, 20);
}

TEST(BoundingBox, FieldsStandInTheirOrder) {
    const CBoundingBox box(1, 2, 3, 4);
    const double* fields = &box.m_left;
    EXPECT_EQ(fields[1], 2);
    EXPECT_EQ(fields[2], 3);
    EXPECT_EQ(fields[3], 4);
    EXPECT_EQ(sizeof(CBoundingBox), 4 * sizeof(double));
}

TEST(BoundingBox, SizesArePositiveAlsoWhenInverted) {
    const CBoundingBox box(10, 1, 4, 9);
    EXPECT_EQ(box.GetWidth(), 6);
    EXPECT_EQ(box.GetHeight(), 8);
}

TEST(BoundingBox, GivesItsCentreAndCorners) {
    const CBoundingBox box(1, 9, 4, 2);
    ExpectPoint(box.GetCentroid(), 2.5, 5.5);
    ExpectPoint(box.TopLeft(), 1, 9);
    ExpectPoint(box.TopRight(), 4, 9);
    ExpectPoint(box.BottomLeft(), 1, 2);
    ExpectPoint(box.BottomRight(), 4, 2);
}

TEST(BoundingBox, MovesByAnOffset) {
    CBoundingBox box(1, 9, 4, 2);
    box.OffsetBoundingBox(10, -1);
    ExpectBox(box, 11, 8, 14, 1);
}

TEST(BoundingBox, RecomputeGrowsToIncludeThePoint) {
    CBoundingBox box(5, 5, 5, 5);
    box.Recompute({2, 7});
    ExpectBox(box, 2, 7, 5, 5);
    box.Recompute({9, 1});
    ExpectBox(box, 2, 7, 9, 1);
    box.Recompute({3, 3});
    ExpectBox(box, 2, 7, 9, 1);
}

TEST(BoundingBox, RecomputeMovesOneSidePerAxisOfAnInvertedBox) {
    CBoundingBox box(10, 0, 0, 10);
    box.Recompute({5, 5});
    ExpectBox(box, 5, 0, 0, 5);
    box.Recompute({7, 1});
    ExpectBox(box, 5, 0, 7, 1);
}

TEST(BoundingBox, CombiningWithADefaultBoxIncludesTheOrigin) {
    CBoundingBox box;
    CBoundingBox other(10, 20, 30, 5);
    box.Combine(&other);
    ExpectBox(box, 0, 20, 30, 0);
    box.Combine(nullptr);
    ExpectBox(box, 0, 20, 30, 0);
}

TEST(BoundingBox, IntersectClipsToTheOverlap) {
    CBoundingBox box(0, 10, 10, 0);
    CBoundingBox other(5, 20, 20, 4);
    EXPECT_TRUE(box.Intersect(&other));
    ExpectBox(box, 5, 10, 10, 4);
}

TEST(BoundingBox, BoxesSharingACornerIntersectInIt) {
    CBoundingBox box(0, 10, 10, 0);
    CBoundingBox other(10, 20, 20, 10);
    EXPECT_TRUE(box.IsIntersect(&other));
    EXPECT_TRUE(box.Intersect(&other));
    ExpectBox(box, 10, 10, 10, 10);
}

TEST(BoundingBox, DisjointBoxesStayAsTheyAre) {
    const CBoundingBox box(0, 10, 10, 0);
    for (CBoundingBox other : {CBoundingBox(11, 10, 20, 0), CBoundingBox(-9, 10, -1, 0),
                               CBoundingBox(0, 20, 10, 11), CBoundingBox(0, -1, 10, -9)}) {
        CBoundingBox changed = box;
        EXPECT_FALSE(box.IsIntersect(&other));
        EXPECT_FALSE(changed.Intersect(&other));
        ExpectBox(changed, 0, 10, 10, 0);
    }
}

TEST(BoundingBox, ContainsPointsOnItsEdges) {
    const CBoundingBox box(0, 10, 20, 5);
    for (const CPoint2D& p : {CPoint2D(0, 5), CPoint2D(20, 10), CPoint2D(7, 10), CPoint2D(0, 7)}) {
        EXPECT_TRUE(box.IsContain(p));
        EXPECT_TRUE(box.IsContain(p.x, p.y));
    }
    for (const CPoint2D& p :
         {CPoint2D(-0.1, 7), CPoint2D(20.1, 7), CPoint2D(7, 4.9), CPoint2D(7, 10.1)})
        EXPECT_FALSE(box.IsContain(p));
}

TEST(BoundingBox, ContainsBoxesUpToItself) {
    const CBoundingBox box(0, 10, 20, 5);
    CBoundingBox same = box;
    EXPECT_TRUE(box.IsContain(&same));
    for (CBoundingBox other : {CBoundingBox(-1, 10, 20, 5), CBoundingBox(0, 11, 20, 5),
                               CBoundingBox(0, 10, 21, 5), CBoundingBox(0, 10, 20, 4)})
        EXPECT_FALSE(box.IsContain(&other));
}

TEST(BoundingBox, NullBoxesMeetNothing) {
    CBoundingBox box(0, 10, 20, 5);
    EXPECT_FALSE(box.IsIntersect(nullptr));
    EXPECT_FALSE(box.Intersect(nullptr));
    EXPECT_FALSE(box.IsContain(nullptr));
    ExpectBox(box, 0, 10, 20, 5);
}
