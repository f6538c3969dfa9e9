#include "viewer/model/ViewTransform.h"

#include <gtest/gtest.h>

using zelto::view::ViewTransform;

namespace {

const ViewTransform VIEW({1000.0, 2000.0}, 10.0, {200, 100});

} // namespace

TEST(ViewTransform, ShowsTheBoxAroundItsCentre) {
    const CBoundingBox box = VIEW.Box();
    EXPECT_EQ(box.GetLeft(), 1000.0 - 10.0 * 100);
    EXPECT_EQ(box.GetRight(), 1000.0 + 10.0 * 100);
    EXPECT_EQ(box.GetTop(), 2000.0 + 10.0 * 50);
    EXPECT_EQ(box.GetBottom(), 2000.0 - 10.0 * 50);
}

TEST(ViewTransform, MapsTheTopLeftPixelToTheTopLeftOfTheGround) {
    EXPECT_EQ(VIEW.ToGround({0.0, 0.0}), QPointF(0.0, 2500.0));
    EXPECT_EQ(VIEW.ToPixel({0.0, 2500.0}), QPointF(0.0, 0.0));
    EXPECT_EQ(VIEW.ToPixel({2000.0, 1500.0}), QPointF(200.0, 100.0));
}

TEST(ViewTransform, KeepsTheGroundUnderThePointerWhenZooming) {
    const QPointF pixel(30.0, 80.0);
    const ViewTransform zoomed = VIEW.ZoomedAround(pixel, 4.0);
    EXPECT_EQ(zoomed.Scale(), 2.5);
    EXPECT_EQ(zoomed.ToGround(pixel), VIEW.ToGround(pixel));
}

TEST(ViewTransform, MovesTheGroundAlongWithThePointer) {
    const ViewTransform moved = VIEW.MovedBy({7.0, -3.0});
    EXPECT_EQ(moved.ToPixel(VIEW.ToGround({50.0, 50.0})), QPointF(57.0, 47.0));
}

TEST(ViewTransform, FitsTheLongerSideOfABox) {
    const ViewTransform fitting = ViewTransform::Fitting({0.0, 100.0, 400.0, 0.0}, {200, 100});
    EXPECT_EQ(fitting.Scale(), 2.0);
    EXPECT_EQ(fitting.Center(), QPointF(200.0, 50.0));
}

TEST(ViewTransform, GivesABoxWithoutAreaAScale) {
    EXPECT_TRUE(ViewTransform::Fitting({5.0, 5.0, 5.0, 5.0}, {200, 100}).IsValid());
}

TEST(ViewTransform, PlacesAPictureOfAnotherScaleWhereItsGroundLies) {
    const ViewTransform other({1000.0, 2000.0}, 5.0, {200, 100});
    EXPECT_EQ(VIEW.PlaceOf(other), QRectF(50.0, 25.0, 100.0, 50.0));
}

TEST(ViewTransform, AlignsToAGridByLessThanAPixel) {
    const ViewTransform aligned = VIEW.MovedBy({0.3, 0.4}).AlignedTo({3.0, 7.0});
    EXPECT_EQ(aligned.Box().GetLeft(), -7.0); // nearer to -3 than 3 is
    EXPECT_EQ(aligned.Box().GetTop(), 2507.0);
}
