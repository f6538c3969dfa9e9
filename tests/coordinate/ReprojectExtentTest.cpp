#include "zelto/coordinate/ImageInfo.h"
#include "zelto/coordinate/Reproject.h"

#include <cpl_error.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr const char* UTM_ZONE_50 = "EPSG:32650";

tagImageInfo Image(int width, int height, double left, double top, double pixel,
                   const std::string& srs) {
    tagImageInfo info;
    info.width = width;
    info.height = height;
    const double g[] = {left, pixel, 0, top, 0, -pixel};
    std::copy_n(g, 6, info.geoTransform);
    info.srs = srs;
    return info;
}

} // namespace

TEST(ImageExtent, InTheSameSystemIsTheImageItself) {
    tagImageInfo source = Image(120, 50, 500000, 4400000, 30, UTM_ZONE_50);
    tagImageInfo target;
    target.srs = UTM_ZONE_50;
    ASSERT_TRUE(CReproject::GetExtent(source, target));
    EXPECT_EQ(target.width, 120);
    EXPECT_EQ(target.height, 50);
    const double expected[] = {500000, 30, 0, 4400000, 0, -30};
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(target.geoTransform[i], expected[i], 1e-6);
    EXPECT_EQ(source.extent.m_left, 500000);
    EXPECT_EQ(source.extent.m_top, 4400000);
    EXPECT_EQ(source.extent.m_right, 503600);
    EXPECT_EQ(source.extent.m_bottom, 4398500);
    EXPECT_NEAR(target.extent.m_right, 503600, 1e-3);
    EXPECT_NEAR(target.extent.m_bottom, 4398500, 1e-3);
}

TEST(ImageExtent, OfARotatedImageCoversItsCornersWithPixelsOfTheSameArea) {
    // 100 × 100 pixels of 10 m turned by 45°: a diamond of half diagonal 500 √2.
    tagImageInfo source = Image(100, 100, 0, 0, 10, UTM_ZONE_50);
    const double c = 10 * std::sqrt(0.5);
    const double g[] = {500000, c, c, 4400000, -c, c};
    std::copy_n(g, 6, source.geoTransform);
    tagImageInfo target;
    target.srs = UTM_ZONE_50;
    ASSERT_TRUE(CReproject::GetExtent(source, target));
    const double half = 500 * std::sqrt(2.0);
    EXPECT_NEAR(target.geoTransform[1], 10, 1e-6);
    EXPECT_NEAR(target.extent.m_left, 500000, 1e-3);
    EXPECT_NEAR(target.extent.m_top, 4400000 + half, 1e-3);
    EXPECT_EQ(target.width, 142);
    EXPECT_EQ(target.height, 142);
    EXPECT_NEAR(source.extent.m_bottom, 4400000 - half, 1e-6);
}

TEST(ImageExtent, InAnotherSystemCoversEveryPoint) {
    tagImageInfo source = Image(1000, 800, 485000, 4412000, 30, UTM_ZONE_50);
    tagImageInfo target;
    target.srs = "EPSG:4326";
    ASSERT_TRUE(CReproject::GetExtent(source, target));
    const CBoundingBox& box = target.extent;
    for (int row = 0; row <= 800; row += 100) {
        for (int column = 0; column <= 1000; column += 100) {
            double x = 485000 + 30.0 * column;
            double y = 4412000 - 30.0 * row;
            ASSERT_TRUE(CReproject::CoorTransform(&x, &y, 1, UTM_ZONE_50, "EPSG:4326"));
            const double slack = target.geoTransform[1] / 100;
            EXPECT_GE(x, box.m_left - slack);
            EXPECT_LE(x, box.m_right + slack);
            EXPECT_GE(y, box.m_bottom - slack);
            EXPECT_LE(y, box.m_top + slack);
        }
    }
    // 900 m² are this many square degrees at 39.75° N.
    const double metresEast = 85700;
    const double metresNorth = 111030;
    EXPECT_NEAR(target.geoTransform[1], std::sqrt(900 / metresEast / metresNorth), 1e-6);
}

TEST(ImageExtent, LeavesOutWhatHasNoPositionThere) {
    // Latitudes from 110 down to 0: Mercator answers below 90 only.
    tagImageInfo source = Image(100, 110, 0, 110, 1, "EPSG:4326");
    tagImageInfo target;
    target.srs = "EPSG:3395";
    ASSERT_TRUE(CReproject::GetExtent(source, target));
    EXPECT_NEAR(target.extent.m_left, 0, 1e-6);
    EXPECT_NEAR(target.extent.m_bottom, 0, target.geoTransform[1]);
    EXPECT_TRUE(std::isfinite(target.extent.m_top));
    EXPECT_GT(target.height, 1);
}

TEST(ImageExtent, WithoutPixelsSystemsOrPositionsIsNone) {
    const tagImageInfo good = Image(10, 10, 500000, 4400000, 30, UTM_ZONE_50);
    const auto fails = [](tagImageInfo source, const char* srs) {
        tagImageInfo target;
        target.srs = srs;
        target.width = 7;
        const bool failed = !CReproject::GetExtent(source, target);
        EXPECT_EQ(target.width, 7);
        return failed;
    };
    EXPECT_FALSE(good.srs.empty());
    EXPECT_TRUE(fails(Image(0, 10, 0, 0, 1, UTM_ZONE_50), UTM_ZONE_50));
    EXPECT_TRUE(fails(Image(10, -1, 0, 0, 1, UTM_ZONE_50), UTM_ZONE_50));
    EXPECT_TRUE(fails(Image(10, 10, 0, 0, 0, UTM_ZONE_50), UTM_ZONE_50));
    EXPECT_TRUE(fails(Image(10, 10, std::nan(""), 0, 1, UTM_ZONE_50), UTM_ZONE_50));
    EXPECT_TRUE(fails(Image(10, 10, 0, 0, 1, ""), UTM_ZONE_50));
    EXPECT_TRUE(fails(good, "junk"));
    EXPECT_TRUE(fails(Image(10, 10, 0, 300, 1, "EPSG:4326"), "EPSG:3395"));
}

TEST(ImageExtent, ThatNeedsMorePixelsThanCanBeCountedIsNone) {
    // Pixels a billionth of a metre high and a metre wide make square ones far too many.
    tagImageInfo source = Image(2000000000, 1, 0, 0, 1e-3, UTM_ZONE_50);
    source.geoTransform[5] = -1e-9;
    tagImageInfo target;
    target.srs = UTM_ZONE_50;
    EXPECT_FALSE(CReproject::GetExtent(source, target));
    source = Image(1, 2000000000, 0, 0, 1e-3, UTM_ZONE_50);
    source.geoTransform[1] = 1e-9;
    EXPECT_FALSE(CReproject::GetExtent(source, target));
}

TEST(ImageExtent, OfPointsWithoutANeighbourIsNone) {
    // Of 21 rows of points, 200 degrees apart, only the one on the equator has an answer.
    tagImageInfo source = Image(20, 20, 110, 2000, 0.1, "EPSG:4326");
    source.geoTransform[5] = -200;
    tagImageInfo target;
    target.srs = UTM_ZONE_50;
    target.width = 7;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    EXPECT_FALSE(CReproject::GetExtent(source, target));
    EXPECT_EQ(target.width, 7);
}

TEST(ImageExtent, OfPixelsBeyondAllNumbersIsNone) {
    tagImageInfo source = Image(10, 10, 0, 0, 1e200, UTM_ZONE_50);
    tagImageInfo target;
    target.srs = UTM_ZONE_50;
    EXPECT_FALSE(CReproject::GetExtent(source, target));
}

TEST(PointTransform, GoesTheLibrarysWayWithoutParameters) {
    double x = 117;
    double y = 0;
    ASSERT_TRUE(CReproject::CoorTransform(&x, &y, 1, "EPSG:4326", UTM_ZONE_50));
    EXPECT_NEAR(x, 500000, 1e-6);
    EXPECT_NEAR(y, 0, 1e-6);
}

TEST(PointTransform, GoesByTheParametersOfEitherSide) {
    double q[] = {22, -118, 30.5, 0.1, -0.2, 0.3, 1.5};
    double x = 116;
    double y = 40;
    ASSERT_TRUE(CReproject::CoorTransform(&x, &y, 1, "EPSG:4214", "EPSG:4326", q));
    EXPECT_GT(std::abs(x - 116), 1e-4);
    ASSERT_TRUE(CReproject::CoorTransform(&x, &y, 1, "EPSG:4326", "EPSG:4214", nullptr, q));
    // Points carry no height from one call to the next.
    EXPECT_NEAR(x, 116, 1e-7);
    EXPECT_NEAR(y, 40, 1e-7);
}

TEST(PointTransform, OfUnreadableSystemsOrMissingPointsFails) {
    double x = 1;
    double y = 2;
    EXPECT_FALSE(CReproject::CoorTransform(&x, &y, 1, "junk", UTM_ZONE_50));
    EXPECT_FALSE(CReproject::CoorTransform(&x, &y, 1, UTM_ZONE_50, ""));
    EXPECT_FALSE(CReproject::CoorTransform(nullptr, &y, 1, UTM_ZONE_50, UTM_ZONE_50));
    EXPECT_FALSE(CReproject::CoorTransform(&x, &y, -1, UTM_ZONE_50, UTM_ZONE_50));
    EXPECT_EQ(x, 1);
}
