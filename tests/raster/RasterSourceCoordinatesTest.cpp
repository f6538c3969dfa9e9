#include "tests/raster/ExposedRasterSource.h"

#include <gtest/gtest.h>

#include <limits>

using zelto::test::ExposedRasterSource;

namespace {

/// 30 m pixels, top-left corner (500, 4000), 10 × 20 pixels.
ExposedRasterSource& MakeNorthUp(ExposedRasterSource& source) {
    source.SetGrid({500.0, 30.0, 0.0, 4000.0, 0.0, -30.0}, 10, 20);
    return source;
}

/// x = 100 + 2·col + 1·row, y = 200 + 3·col − 4·row.
ExposedRasterSource& MakeRotated(ExposedRasterSource& source) {
    source.SetGrid({100.0, 2.0, 1.0, 200.0, 3.0, -4.0}, 10, 20);
    return source;
}

void ExpectRect(const CRect& rect, int left, int top, int right, int bottom) {
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

void ExpectBox(const CBoundingBox& box, double left, double top, double right, double bottom) {
    EXPECT_EQ(box.m_left, left);
    EXPECT_EQ(box.m_top, top);
    EXPECT_EQ(box.m_right, right);
    EXPECT_EQ(box.m_bottom, bottom);
}

} // namespace

TEST(ImageToGround, AddressesPixelCorners) {
    ExposedRasterSource source;
    MakeNorthUp(source);
    double x = 0.0;
    double y = 0.0;
    source.ImageToGround(0, 0, x, y);
    EXPECT_EQ(x, 500.0);
    EXPECT_EQ(y, 4000.0);
    source.ImageToGround(2, 3, x, y);
    EXPECT_EQ(x, 560.0);
    EXPECT_EQ(y, 3910.0);
    source.ImageToGround(0.5, 0.25, x, y);
    EXPECT_EQ(x, 515.0);
    EXPECT_EQ(y, 3992.5);
}

TEST(ImageToGround, UsesAllSixTerms) {
    ExposedRasterSource source;
    MakeRotated(source);
    double x = 0.0;
    double y = 0.0;
    source.ImageToGround(5, 7, x, y);
    EXPECT_EQ(x, 117.0);
    EXPECT_EQ(y, 187.0);
    source.ImageToGround(0.5, 2.0, x, y);
    EXPECT_EQ(x, 103.0);
    EXPECT_EQ(y, 193.5);
    const CPoint2D ground = source.ImageToGround(CPoint{5, 7});
    EXPECT_EQ(ground.x, 117.0);
    EXPECT_EQ(ground.y, 187.0);
}

TEST(ImageToGround, RectanglesBecomeBoxesOfTheirTwoCorners) {
    ExposedRasterSource source;
    MakeNorthUp(source);
    CRect rect = {1, 2, 4, 6};
    ExpectBox(source.ImageToGround(&rect), 530.0, 3940.0, 620.0, 3820.0);
    ExpectBox(source.ImageToGround(static_cast<CRect*>(nullptr)), 0.0, 0.0, 0.0, 0.0);
    MakeRotated(source);
    ExpectBox(source.ImageToGround(&rect), 104.0, 195.0, 114.0, 188.0);
}

TEST(GroundToImage, TruncatesTowardZero) {
    ExposedRasterSource source;
    MakeNorthUp(source);
    int col = -9;
    int row = -9;
    source.GroundToImage(560.0, 3910.0, col, row);
    EXPECT_EQ(col, 2);
    EXPECT_EQ(row, 3);
    source.GroundToImage(589.0, 3881.0, col, row);
    EXPECT_EQ(col, 2);
    EXPECT_EQ(row, 3);
    // Just outside the left and the top edge: column and row 0, not −1.
    source.GroundToImage(471.0, 4029.0, col, row);
    EXPECT_EQ(col, 0);
    EXPECT_EQ(row, 0);
    source.GroundToImage(439.0, 4061.0, col, row);
    EXPECT_EQ(col, -2);
    EXPECT_EQ(row, -2);
    const CPoint pixel = source.GroundToImage(CPoint2D(589.0, 3881.0));
    EXPECT_EQ(pixel.x, 2);
    EXPECT_EQ(pixel.y, 3);
}

TEST(GroundToImage, FractionalPositionsInvertTheGeotransform) {
    ExposedRasterSource source;
    MakeRotated(source);
    double col = 0.0;
    double row = 0.0;
    source.GroundToImage(117.0, 187.0, col, row);
    EXPECT_NEAR(col, 5.0, 1e-12);
    EXPECT_NEAR(row, 7.0, 1e-12);
}

TEST(GroundToImage, ValuesThatDoNotFitGiveTheLeastInteger) {
    ExposedRasterSource source;
    source.SetGrid({0.0, 1.0, 0.0, 0.0, 0.0, -1.0}, 1, 1);
    int col = 0;
    int row = 0;
    source.GroundToImage(1e300, std::numeric_limits<double>::quiet_NaN(), col, row);
    EXPECT_EQ(col, std::numeric_limits<int>::min());
    EXPECT_EQ(row, std::numeric_limits<int>::min());
}

TEST(GroundToImage, BoxesBecomeRectangles) {
    ExposedRasterSource source;
    MakeNorthUp(source);
    CBoundingBox box(531.0, 3939.0, 621.0, 3819.0);
    ExpectRect(source.GroundToImage(&box), 1, 2, 4, 6);
    ExpectRect(source.GroundToImage(static_cast<CBoundingBox*>(nullptr)), 0, 0, 0, 0);
}

TEST(GroundToImage, ABoxInsideOnePixelGivesThatPixel) {
    ExposedRasterSource source;
    MakeNorthUp(source);
    CBoundingBox box(565.0, 3905.0, 570.0, 3900.0);
    ExpectRect(source.GroundToImage(&box), 2, 3, 3, 4);
    CBoundingBox oneRow(531.0, 3905.0, 621.0, 3900.0);
    ExpectRect(source.GroundToImage(&oneRow), 1, 3, 4, 4);
    CBoundingBox oneColumn(565.0, 3939.0, 570.0, 3819.0);
    ExpectRect(source.GroundToImage(&oneColumn), 2, 2, 3, 6);
}

TEST(GroundToImage, AnInvertedBoxKeepsItsOrder) {
    ExposedRasterSource source;
    MakeNorthUp(source);
    CBoundingBox box(621.0, 3819.0, 531.0, 3939.0);
    ExpectRect(source.GroundToImage(&box), 4, 6, 1, 2);
}

TEST(GroundToImage, TheLastColumnThereIsDoesNotOverflow) {
    ExposedRasterSource source;
    source.SetGrid({0.0, 1.0, 0.0, 0.0, 0.0, -1.0}, 1, 1);
    const double last = std::numeric_limits<int>::max();
    CBoundingBox box(last, -1.0, last, -1.0);
    ExpectRect(source.GroundToImage(&box), std::numeric_limits<int>::max(), 1,
               std::numeric_limits<int>::min(), 2);
}

TEST(RasterExtent, SpansTheOuterPixelEdges) {
    ExposedRasterSource source;
    MakeNorthUp(source);
    ExpectBox(source.Extent(), 500.0, 4000.0, 800.0, 3400.0);
}

TEST(RasterExtent, OfARotatedGridHoldsAllFourCorners) {
    ExposedRasterSource source;
    MakeRotated(source);
    // (100, 200), (120, 120), (120, 230), (140, 150)
    ExpectBox(source.Extent(), 100.0, 230.0, 140.0, 120.0);
}

TEST(RasterExtent, OfASouthUpGridIsStillWellFormed) {
    ExposedRasterSource source;
    source.SetGrid({0.0, -2.0, 0.0, 10.0, 0.0, 3.0}, 10, 20);
    ExpectBox(source.Extent(), -20.0, 70.0, 0.0, 10.0);
}

TEST(ImageToGround, NoRectangleIsNoBox) {
    const CRasterSource source;
    const CBoundingBox box = source.ImageToGround(static_cast<CRect*>(nullptr));
    const CBoundingBox none;
    EXPECT_EQ(box.m_left, none.m_left);
    EXPECT_EQ(box.m_top, none.m_top);
    EXPECT_EQ(box.m_right, none.m_right);
    EXPECT_EQ(box.m_bottom, none.m_bottom);
}

TEST(GeoreferencingKind, IsAnAffineOneUntilTheHostSetsAnother) {
    CRasterSource source;
    EXPECT_EQ(source.GetGeoreferencingKind(), 1);
    source.SetGeoreferencingKind(2);
    EXPECT_EQ(source.GetGeoreferencingKind(), 2);
}
