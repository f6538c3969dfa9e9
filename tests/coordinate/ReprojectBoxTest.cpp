#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/coordinate/Reproject.h"
#include "zelto/vector/VectorSource.h"

#include "tests/coordinate/PlacedRaster.h"
#include "tests/coordinate/ReferenceDialects.h"
#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>

using zelto::test::Bind;
using zelto::test::NorthUp;
using zelto::test::PlacedRaster;
using zelto::test::UTM50;

namespace {

void ExpectBox(const CBoundingBox& box, double left, double top, double right, double bottom,
               double tolerance) {
    EXPECT_NEAR(box.m_left, left, tolerance);
    EXPECT_NEAR(box.m_top, top, tolerance);
    EXPECT_NEAR(box.m_right, right, tolerance);
    EXPECT_NEAR(box.m_bottom, bottom, tolerance);
}

/// 100 × 80 pixels of 10 m, top-left corner (500000, 4400000).
PlacedRaster SmallRaster() {
    return PlacedRaster(100, 80, NorthUp(500000, 4400000, 10), UTM50);
}

} // namespace

TEST(ReprojectCreation, NeedsASourceThatCanBeTransformed) {
    EXPECT_EQ(CReproject::Create(nullptr, UTM50, nullptr, nullptr), nullptr);
    auto raster = SmallRaster();
    EXPECT_EQ(Bind(raster, "junk"), nullptr);
    EXPECT_EQ(Bind(raster, ""), nullptr);
    EXPECT_EQ(Bind(raster, nullptr), nullptr);
    EXPECT_EQ(Bind(raster, "LOCAL_CS[\"here\",UNIT[\"metre\",1]]"), nullptr);
    PlacedRaster nowhere(2, 2, NorthUp(0, 0, 1), "");
    EXPECT_EQ(Bind(nowhere, UTM50), nullptr);
}

TEST(ReprojectCreation, TakesASourceThatIsNoRasterWithoutPositionsInPixels) {
    const zelto::test::TemporaryFolder folder;
    zelto::test::WriteVector(folder.File("a.shp"), {.type = wkbPoint, .srs = UTM50},
                             {"POINT (500000 4400000)"});
    CVectorSource vector;
    ASSERT_EQ(vector.Open(folder.WideFile("a.shp").c_str(), GIS_READONLY, false), GIS_SUCCESS);
    const std::unique_ptr<CReproject> reproject(
        CReproject::Create(&vector, "EPSG:4326", nullptr, nullptr));
    ASSERT_NE(reproject, nullptr);
    CBoundingBox box(500000, 4400000, 500100, 4399900);
    CBoundingBox there;
    EXPECT_TRUE(reproject->Src2DestBox(box, there, 0, 0));
    EXPECT_NEAR(there.m_left, 117, 1e-9);
    CRect window;
    EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(there, &window, 0, 0));
    EXPECT_FALSE(reproject->FindSourceWindow(there, window, 0, 0));
}

TEST(ReprojectCreation, TakesSevenParametersForBothWays) {
    auto raster = SmallRaster();
    double parameters[] = {1, 2, 3, 4, 5, 6, 7};
    const std::unique_ptr<CReproject> reproject(
        CReproject::Create(raster.Get(), UTM50, parameters, parameters));
    ASSERT_NE(reproject, nullptr);
    // They are kept, not applied.
    CBoundingBox from(500000, 4400000, 500100, 4399900);
    CBoundingBox to;
    EXPECT_TRUE(reproject->Src2DestBox(from, to, 0, 0));
    ExpectBox(to, 500000, 4400000, 500100, 4399900, 1e-9);
}

TEST(ReprojectCreation, ToASystemThatOnlyLeadsThereHasNoWayBack) {
    // Airy's projection has no inverse.
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, "+proj=airy +lat_0=39 +lon_0=117 +datum=WGS84");
    ASSERT_NE(reproject, nullptr);
    CBoundingBox box(500000, 4400000, 500100, 4399900);
    CBoundingBox there;
    EXPECT_TRUE(reproject->Src2DestBox(box, there, 0, 0));
    EXPECT_NEAR(there.m_left, 0, 1e-3); // the meridian in the middle of both
    CBoundingBox back;
    EXPECT_FALSE(reproject->Dest2SrcBox(there, back, 0, 0));
    EXPECT_FALSE(reproject->CreateGrid(there, 0, 0, 1));
    EXPECT_EQ(reproject->GetGrid(), nullptr);
    double x = 0;
    double y = 0;
    double column = 7;
    double row = 7;
    EXPECT_FALSE(reproject->GetSrcPos(&x, &y, &column, &row, 1));
    EXPECT_EQ(column, 7);
}

TEST(BoxTransform, OfTheSameSystemIsTheBox) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    for (const double step : {0.0, 1.0, -7.0, 99.0}) {
        CBoundingBox from(500000, 4400000, 500100, 4399900);
        CBoundingBox to;
        EXPECT_TRUE(reproject->Dest2SrcBox(from, to, step, step));
        ExpectBox(to, 500000, 4400000, 500100, 4399900, 1e-9);
    }
}

TEST(BoxTransform, FindsTheCurvedEdgeOnlyWithSteps) {
    // The parallel 60° N bends north away from the central meridian: its lowest northing lies in
    // the middle of the edge.
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox geographic(114, 61, 120, 60);
    CBoundingBox corners;
    CBoundingBox sampled;
    ASSERT_TRUE(reproject->Dest2SrcBox(geographic, corners, 0, 0));
    ASSERT_TRUE(reproject->Dest2SrcBox(geographic, sampled, 1, 0.5));
    double x = 117;
    double y = 60;
    ASSERT_TRUE(CReproject::CoorTransform(&x, &y, 1, "EPSG:4326", UTM50));
    EXPECT_NEAR(sampled.m_bottom, y, 1e-6);
    EXPECT_EQ(corners.m_left, sampled.m_left);
    EXPECT_EQ(corners.m_top, sampled.m_top);
}

TEST(BoxTransform, WithoutAStepSamplesTheMiddleOfEachEdgeOnTheWay) {
    // Two points an edge, half a side apart, the second moved to the corner: the ends alone.
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox geographic(114, 61, 120, 60);
    double x[] = {114, 120, 114, 120};
    double y[] = {61, 61, 60, 60};
    ASSERT_TRUE(CReproject::CoorTransform(x, y, 4, "EPSG:4326", UTM50));
    for (const double steps : {0.0, 9e-11}) {
        CBoundingBox box;
        ASSERT_TRUE(reproject->Dest2SrcBox(geographic, box, steps, 0.5));
        ExpectBox(box, std::min(x[0], x[2]), std::max(y[0], y[1]), std::max(x[1], x[3]),
                  std::min(y[2], y[3]), 1e-6);
    }
}

TEST(BoxTransform, IsTheSameInEveryDialect) {
    auto raster = SmallRaster();
    const auto reference = Bind(raster, "EPSG:4326");
    CBoundingBox geographic(117, 39.745, 117.01, 39.74);
    CBoundingBox expected;
    CRect expectedWindow;
    ASSERT_TRUE(reference->Dest2SrcBox(geographic, expected, 0.001, 0.001));
    ASSERT_TRUE(reference->GetInImgEnveFromGeoOut(geographic, &expectedWindow, 0, 0));
    for (const char* dialect : zelto::test::DIALECTS) {
        const auto reproject = Bind(raster, zelto::test::InDialect("EPSG:4326", dialect).c_str());
        ASSERT_NE(reproject, nullptr) << dialect;
        CBoundingBox box;
        ASSERT_TRUE(reproject->Dest2SrcBox(geographic, box, 0.001, 0.001)) << dialect;
        ExpectBox(box, expected.m_left, expected.m_top, expected.m_right, expected.m_bottom, 1e-6);
        EXPECT_FALSE(reproject->Dest2SrcBox(geographic, box, 0.02, 0.001)) << dialect;
        CRect window;
        ASSERT_TRUE(reproject->GetInImgEnveFromGeoOut(geographic, &window, 0, 0)) << dialect;
        EXPECT_EQ(window.left, expectedWindow.left) << dialect;
        EXPECT_EQ(window.bottom, expectedWindow.bottom) << dialect;
        CBoundingBox west(116.9, 39.745, 116.95, 39.74);
        EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(west, &window, 0, 0)) << dialect;
    }
}

TEST(BoxTransform, StepAsLargeAsTheSideIsRefused) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox from(500000, 4400000, 500100, 4399950);
    CBoundingBox to(1, 2, 3, 4);
    EXPECT_FALSE(reproject->Dest2SrcBox(from, to, 100, 10));
    EXPECT_FALSE(reproject->Dest2SrcBox(from, to, -100, 10));
    EXPECT_FALSE(reproject->Dest2SrcBox(from, to, 10, 50));
    EXPECT_FALSE(reproject->Dest2SrcBox(from, to, 10, 51));
    ExpectBox(to, 1, 2, 3, 4, 0);
    EXPECT_TRUE(reproject->Dest2SrcBox(from, to, 99.999, 49.999));
}

TEST(BoxTransform, ToleranceOfTheStepTestVanishesBesideLargeSides) {
    // 1e7 + 1e-10 is 1e7 in double precision, so the step is not greater than the side.
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox from(0, 1e7, 1e7, 0);
    CBoundingBox to;
    EXPECT_TRUE(reproject->Dest2SrcBox(from, to, 1e7, 1e7));
}

TEST(BoxTransform, EmptyInvertedAndUndefinedBoxesAreRefused) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, "EPSG:4326");
    const double nan = std::nan("");
    const CBoundingBox boxes[] = {{117, 40, 117, 39},  {117, 40, 118, 40}, {118, 40, 117, 39},
                                  {117, 39, 118, 40},  {179, 1, -179, 0},  {nan, 40, 118, 39},
                                  {117, nan, 118, 39}, {117, 40, nan, 39}};
    for (CBoundingBox from : boxes) {
        for (const double step : {0.0, 0.01}) {
            CBoundingBox to;
            EXPECT_FALSE(reproject->Dest2SrcBox(from, to, step, step));
        }
    }
}

TEST(BoxTransform, MorePointsThanTheLimitAreRefused) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox from(0, 1e6, 1e6, 0);
    CBoundingBox to(1, 2, 3, 4);
    EXPECT_FALSE(reproject->Dest2SrcBox(from, to, 1e-9, 1));
    EXPECT_FALSE(reproject->Dest2SrcBox(from, to, 1, 1e-10));
    // Four edges of as many points: a few million points take seconds, more take minutes.
    EXPECT_LE(CReproject::MAX_EDGE_POINTS, 5'000'000);
    const double side = CReproject::MAX_EDGE_POINTS / 4.0 + 1;
    CBoundingBox square(0, side, side, 0);
    EXPECT_FALSE(reproject->Dest2SrcBox(square, to, 1, 1));
    ExpectBox(to, 1, 2, 3, 4, 0);
}

TEST(BoxTransform, PointsWithoutAnAnswerMakeTheSidesInfinite) {
    // Mercator has no answer beyond the poles.
    PlacedRaster raster(10, 10, NorthUp(0, 0, 1), "EPSG:3395");
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox partly(10, 100, 20, 0);
    CBoundingBox to;
    EXPECT_TRUE(reproject->Dest2SrcBox(partly, to, 0, 0));
    EXPECT_TRUE(std::isinf(to.m_top));
    EXPECT_NEAR(to.m_bottom, 0.0, 1e-6);
    CBoundingBox beyond(10, 110, 20, 100);
    EXPECT_FALSE(reproject->Dest2SrcBox(beyond, to, 0, 0));
    EXPECT_TRUE(std::isinf(to.m_bottom));
}

TEST(BoxTransform, NeedsATransformation) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    double l = 0.0;
    double t = 0.0;
    double r = 0.0;
    double b = 0.0;
    EXPECT_FALSE(reproject->BoxTansform(0, 1, 1, 0, l, t, r, b, 0, 0, nullptr));
}

TEST(BoxTransform, OfSidesAndStepsWithoutEndIsRefused) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    constexpr double ENDLESS = std::numeric_limits<double>::infinity();
    CBoundingBox box(-1.7e308, 10, 1.7e308, 0); // a width beyond all numbers
    CBoundingBox to(1, 2, 3, 4);
    EXPECT_FALSE(reproject->Dest2SrcBox(box, to, ENDLESS, 1.0));
    EXPECT_FALSE(reproject->Src2DestBox(box, to, -ENDLESS, 1.0));
    EXPECT_EQ(to.m_left, 1.0);
    EXPECT_EQ(to.m_bottom, 4.0);
}

TEST(BoxTransform, GoesThroughAReadyGridWhateverTheTransformation) {
    // The grid maps target to source ground; the transformation given leads the other way.
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox area(116.9, 39.8, 117.1, 39.6);
    ASSERT_TRUE(reproject->CreateGrid(area, 0.02, 0.02, 1));
    CBoundingBox box(117, 39.75, 117.02, 39.74);
    CBoundingBox ground;
    ASSERT_TRUE(reproject->Src2DestBox(box, ground, 0, 0));
    double x = 117;
    double y = 39.75;
    ASSERT_TRUE(CReproject::CoorTransform(&x, &y, 1, "EPSG:4326", UTM50));
    EXPECT_NEAR(ground.m_left, x, 20.0);
    EXPECT_NEAR(ground.m_top, y, 20.0);
}

TEST(BoxTransform, OfTheSecondKindGoesByTheTransformationBesideAReadyGrid) {
    auto raster = SmallRaster();
    raster->SetGeoreferencingKind(2);
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox area(116.9, 39.8, 117.1, 39.6);
    ASSERT_TRUE(reproject->CreateGrid(area, 0.02, 0.02, 1));
    CBoundingBox box(500000, 4400000, 500100, 4399900);
    CBoundingBox ground;
    ASSERT_TRUE(reproject->Src2DestBox(box, ground, 0, 0));
    EXPECT_NEAR(ground.m_left, 117, 1e-9);
    double x = 500100;
    double y = 4399900;
    ASSERT_TRUE(CReproject::CoorTransform(&x, &y, 1, UTM50, "EPSG:4326"));
    EXPECT_NEAR(ground.m_bottom, y, 1e-6);
}

TEST(BoxTransform, OneStepOfNothingIsNoStep) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox box(500000, 4400000, 501000, 4399000);
    CBoundingBox expected;
    ASSERT_TRUE(reproject->Src2DestBox(box, expected, 0, 0));
    for (const auto& [stepX, stepY] : {std::pair{10.0, 0.0}, std::pair{0.0, 10.0}}) {
        CBoundingBox ground;
        ASSERT_TRUE(reproject->Src2DestBox(box, ground, stepX, stepY));
        ExpectBox(ground, expected.m_left, expected.m_top, expected.m_right, expected.m_bottom, 0);
    }
}

TEST(SourceWindow, IsWidenedByFivePixelsAndTruncated) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    // Columns 20.7 … 40.2, rows 30.9 … 50.1.
    CBoundingBox box(500207, 4399691, 500402, 4399499);
    CRect rect;
    ASSERT_TRUE(reproject->GetInImgEnveFromGeoOut(box, &rect, 0, 0));
    EXPECT_EQ(rect.left, 15);
    EXPECT_EQ(rect.top, 25);
    EXPECT_EQ(rect.right, 45);
    EXPECT_EQ(rect.bottom, 55);
    long x = 0;
    long y = 0;
    long width = 0;
    long height = 0;
    ASSERT_TRUE(reproject->GetInImgEnveFromGeoOut(500207, 4399691, 500402, 4399499, x, y, width,
                                                  height, 0, 0));
    EXPECT_EQ(x, 15);
    EXPECT_EQ(y, 25);
    EXPECT_EQ(width, 30);
    EXPECT_EQ(height, 30);
}

TEST(SourceWindow, IsClippedToTheImage) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(499000, 4401000, 502000, 4399000);
    CRect rect;
    ASSERT_TRUE(reproject->GetInImgEnveFromGeoOut(box, &rect, 0, 0));
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.top, 0);
    EXPECT_EQ(rect.right, 100);
    EXPECT_EQ(rect.bottom, 80);
    // Column 96 and row 76 are within five pixels of the end, 94 and 74 are not.
    CBoundingBox near(500100, 4399900, 500940, 4399260);
    ASSERT_TRUE(reproject->GetInImgEnveFromGeoOut(near, &rect, 0, 0));
    EXPECT_EQ(rect.right, 99);
    EXPECT_EQ(rect.bottom, 79);
}

TEST(SourceWindow, BesideTheImageIsNone) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    const CBoundingBox beside[] = {{499000, 4399900, 499500, 4399800},
                                   {501020, 4399900, 501500, 4399800},
                                   {500100, 4400500, 500200, 4400100},
                                   {500100, 4399180, 500200, 4399000}};
    for (CBoundingBox box : beside) {
        CRect rect = {7, 7, 7, 7};
        EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(box, &rect, 0, 0));
        EXPECT_EQ(rect.left, 7);
    }
}

TEST(SourceWindow, TouchingTheImageCounts) {
    // The box's right side truncates to column 0 and its left side to the width: both inside.
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox left(499900, 4399900, 499995, 4399800);
    CRect rect;
    ASSERT_TRUE(reproject->GetInImgEnveFromGeoOut(left, &rect, 0, 0));
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.right, 5);
    CBoundingBox right(501005, 4399900, 501100, 4399800);
    ASSERT_TRUE(reproject->GetInImgEnveFromGeoOut(right, &rect, 0, 0));
    EXPECT_EQ(rect.left, 95);
    EXPECT_EQ(rect.right, 100);
}

TEST(SourceWindow, NeedsAnAffineRasterABoxAndARectangle) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(500207, 4399691, 500402, 4399499);
    CBoundingBox inverted(500402, 4399691, 500207, 4399499);
    CRect rect;
    EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(box, nullptr, 0, 0));
    EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(inverted, &rect, 0, 0));
    raster->SetGeoreferencingKind(2);
    EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(box, &rect, 0, 0));
}

TEST(SourceWindow, OfARasterThatWasClosedIsNone) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(500207, 4399691, 500402, 4399499);
    raster->Close();
    CRect rect = {7, 7, 7, 7};
    EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(box, &rect, 0, 0));
    EXPECT_FALSE(reproject->FindSourceWindow(box, rect, 0, 0));
    EXPECT_EQ(rect.left, 7);
    long x = 7;
    long y = 7;
    long width = 7;
    long height = 7;
    EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(500207, 4399691, 500402, 4399499, x, y, width,
                                                   height, 0, 0));
    EXPECT_EQ(width, 7);
}

TEST(SourceWindow, OfANorthUpImageIsTheSameByItsEdges) {
    auto raster = SmallRaster();
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> x(499800, 501200);
    std::uniform_real_distribution<double> y(4399000, 4400200);
    const auto reproject = Bind(raster, UTM50);
    for (int i = 0; i < 1000; ++i) {
        const auto [left, right] = std::minmax({x(random), x(random)});
        const auto [bottom, top] = std::minmax({y(random), y(random)});
        CBoundingBox box(left, top, right, bottom);
        CRect expected = {7, 7, 7, 7};
        CRect window = {7, 7, 7, 7};
        ASSERT_EQ(reproject->FindSourceWindow(box, window, 0, 0),
                  reproject->GetInImgEnveFromGeoOut(box, &expected, 0, 0));
        ASSERT_EQ(window.left, expected.left);
        ASSERT_EQ(window.top, expected.top);
        ASSERT_EQ(window.right, expected.right);
        ASSERT_EQ(window.bottom, expected.bottom);
    }
}

TEST(SourceWindow, ByItsEdgesNeedsAnAffineRasterABoxAndPositions) {
    auto raster = SmallRaster();
    const auto reproject = Bind(raster, UTM50);
    const CBoundingBox box(500207, 4399691, 500402, 4399499);
    CRect window = {7, 7, 7, 7};
    EXPECT_FALSE(reproject->FindSourceWindow({500402, 4399691, 500207, 4399499}, window, 0, 0));
    EXPECT_FALSE(reproject->FindSourceWindow(box, window, 500, 500));
    EXPECT_FALSE(reproject->FindSourceWindow(box, window, 1e-9, 1e-9));
    const auto geographic = Bind(raster, "EPSG:4326");
    EXPECT_FALSE(geographic->FindSourceWindow({116.9, 91, 117.1, 39}, window, 0.1, 1));
    raster->SetGeoreferencingKind(2);
    EXPECT_FALSE(reproject->FindSourceWindow(box, window, 0, 0));
    EXPECT_EQ(window.left, 7);
}

TEST(SourceWindow, OfABoxWithoutAnAnswerIsNone) {
    PlacedRaster raster(10, 10, NorthUp(0, 0, 1), "EPSG:3395");
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox partly(10, 100, 20, 0);
    CRect rect;
    EXPECT_FALSE(reproject->GetInImgEnveFromGeoOut(partly, &rect, 0, 0));
    EXPECT_FALSE(reproject->FindSourceWindow(partly, rect, 0, 0));
    EXPECT_FALSE(reproject->FindSourceWindow({10, 300, 20, 200}, rect, 0, 0));
    // Rows beyond all numbers, in columns that are there.
    PlacedRaster flat(2, 2, {0, 1, 0, 0, 0, -1e-300}, UTM50);
    EXPECT_FALSE(Bind(flat, UTM50)->FindSourceWindow({0, 1e10, 1, 0}, rect, 0, 0));
}
