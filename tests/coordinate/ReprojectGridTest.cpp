#include "zelto/coordinate/GeoGrid.h"
#include "zelto/coordinate/Reproject.h"

#include "tests/coordinate/PlacedRaster.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

using zelto::test::Bind;
using zelto::test::NorthUp;
using zelto::test::PlacedRaster;
using zelto::test::UTM50;

namespace {

/// 1000 × 800 pixels of 30 m around 117° E 39.7° N.
PlacedRaster Scene() {
    return PlacedRaster(1000, 800, NorthUp(485000, 4412000, 30), UTM50);
}

struct Counts {
    int nx = -1;
    int ny = -1;
};

Counts GridCounts(CBoundingBox box, double stepX, double stepY, unsigned int order) {
    auto raster = PlacedRaster(2, 2, NorthUp(0, 0, 1), UTM50);
    const auto reproject = Bind(raster, UTM50);
    reproject->CreateGrid(box, stepX, stepY, order);
    Counts counts;
    // Asked again the numbers are those of the steps that a fall-back has set.
    CGeoGrid* grid = reproject->GetGrid();
    if (grid != nullptr)
        counts = {grid->GetColumnCount(), grid->GetRowCount()};
    return counts;
}

void ExpectCounts(const Counts& counts, int nx, int ny) {
    EXPECT_EQ(counts.nx, nx);
    EXPECT_EQ(counts.ny, ny);
}

} // namespace

TEST(GridNumber, IsTheStepsThatFitAndOne) {
    ExpectCounts(GridCounts({0, 100, 100, 0}, 25, 20, 1), 5, 6);
    ExpectCounts(GridCounts({0, 100, 100, 0}, -30, -33, 1), 4, 4);
    ExpectCounts(GridCounts({100, 0, 0, 100}, 30, 33, 1), 4, 4);
}

TEST(GridNumber, FewerPointsThanTermsBecomeFourByThree) {
    // 2 × 2 points: enough for order 1, too few for order 2.
    ExpectCounts(GridCounts({0, 100, 100, 0}, 60, 60, 1), 2, 2);
    ExpectCounts(GridCounts({0, 100, 100, 0}, 60, 60, 2), 4, 3);
    ExpectCounts(GridCounts({0, 100, 100, 0}, 50, 50, 2), 3, 3);
    // Bilinear interpolation needs one by the formula.
    ExpectCounts(GridCounts({0, 100, 100, 0}, 200, 200, 0), 1, 1);
    ExpectCounts(GridCounts({0, 100, 100, 0}, 200, 200, 4), 4, 3);
}

TEST(GridNumber, ThreeRowsDoNotDetermineACubic) {
    auto raster = Scene();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(0, 90, 100, 0);
    // 3 × 3 points are fewer than ten terms; the 4 × 3 that replace them are in three rows.
    EXPECT_FALSE(reproject->CreateGrid(box, 50, 45, 3));
    // The steps are now 25 and 30.
    int nx = 0;
    int ny = 0;
    reproject->GetGirdNum(nx, ny);
    EXPECT_EQ(nx, 5);
    EXPECT_EQ(ny, 4);
}

TEST(GridNumber, WithoutStepsIsTenByTen) {
    ExpectCounts(GridCounts({0, 100, 100, 0}, 0, 10, 1), 10, 10);
    ExpectCounts(GridCounts({0, 100, 100, 0}, 10, 9e-11, 1), 10, 10);
}

TEST(GridNumber, FallBacksTakeTheirPartOfTheBoxAsStep) {
    auto raster = Scene();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(0, 300, 400, 0);
    ASSERT_TRUE(reproject->CreateGrid(box, 0, 0, 0));
    // Source positions are pixels of 30 m: neighbouring points stand 40 m and 30 m apart.
    const double* columns = reproject->GetGrid()->GetColumns();
    const double* rows = reproject->GetGrid()->GetRows();
    EXPECT_NEAR((columns[1] - columns[0]) * 30, 40, 1e-6);
    EXPECT_NEAR((rows[10] - rows[0]) * 30, 30, 1e-6);
    int nx = 0;
    int ny = 0;
    reproject->GetGirdNum(nx, ny);
    EXPECT_EQ(nx, 11);
    EXPECT_EQ(ny, 11);
}

TEST(GridNumber, BeforeAnyGridIsTenByTen) {
    auto raster = Scene();
    const auto reproject = Bind(raster, UTM50);
    int nx = 0;
    int ny = 0;
    reproject->GetGirdNum(nx, ny);
    EXPECT_EQ(nx, 10);
    EXPECT_EQ(ny, 10);
    EXPECT_EQ(reproject->GetGrid(), nullptr);
}

TEST(ReprojectGrid, PositionsStayWithinTheResidualOfTheirOrder) {
    auto raster = Scene();
    const auto exact = Bind(raster, "EPSG:4326");
    const double limits[] = {0.0, 0.6, 0.02, 0.0005}; // pixels over a quarter of a degree
    for (unsigned int order : {1U, 2U, 3U}) {
        const auto reproject = Bind(raster, "EPSG:4326");
        CBoundingBox box(116.9, 39.8, 117.1, 39.6);
        ASSERT_TRUE(reproject->CreateGrid(box, 0.0201, 0.0201, order));
        for (double x = 116.91; x < 117.1; x += 0.0137) {
            for (double y = 39.61; y < 39.8; y += 0.0119) {
                double gx = x;
                double gy = y;
                double ex = x;
                double ey = y;
                double col = 0.0;
                double row = 0.0;
                double exactCol = 0.0;
                double exactRow = 0.0;
                ASSERT_TRUE(reproject->GetSrcPos(&gx, &gy, &col, &row, 1));
                ASSERT_TRUE(exact->GetSrcPos(&ex, &ey, &exactCol, &exactRow, 1));
                EXPECT_EQ(gx, x);
                EXPECT_EQ(gy, y);
                EXPECT_NEAR(col, exactCol, limits[order]);
                EXPECT_NEAR(row, exactRow, limits[order]);
            }
        }
    }
}

TEST(ReprojectGrid, MoreRowsThanColumnsAreAllTransformed) {
    auto raster = Scene();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(485000, 4412000, 485000 + 300, 4412000 - 600);
    ASSERT_TRUE(reproject->CreateGrid(box, 100, 100, 1));
    EXPECT_EQ(reproject->GetGrid()->GetColumnCount(), 4);
    EXPECT_EQ(reproject->GetGrid()->GetRowCount(), 7);
    double x = 485150;
    double y = 4411400;
    double col = 0.0;
    double row = 0.0;
    ASSERT_TRUE(reproject->GetSrcPos(&x, &y, &col, &row, 1));
    EXPECT_NEAR(col, 5.0, 1e-6);
    EXPECT_NEAR(row, 20.0, 1e-6);
}

TEST(ReprojectGrid, MoreColumnsThanRowsLeaveTheLastPointsAsTheyAre) {
    // 5 × 3 points, of which the first 9 are transformed to metres; the others stay degrees, and
    // so does their position.
    PlacedRaster raster(100, 100, NorthUp(0, 1000000, 10000), "EPSG:3395");
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox box(0, 2, 4, 0);
    ASSERT_TRUE(reproject->CreateGrid(box, 1, 1, 0));
    ASSERT_EQ(reproject->GetGrid()->GetColumnCount(), 5);
    ASSERT_EQ(reproject->GetGrid()->GetRowCount(), 3);
    const double* columns = reproject->GetGrid()->GetColumns();
    const double metresPerDegree = 6378137.0 * 3.14159265358979323846 / 180;
    EXPECT_NEAR(columns[8], 3 * metresPerDegree / 10000, 1e-6);
    EXPECT_NEAR(columns[9], 4.0 / 10000, 1e-12);
    EXPECT_NEAR(columns[14], 4.0 / 10000, 1e-12);
}

TEST(ReprojectGrid, OfTheSecondKindHoldsGroundCoordinates) {
    auto raster = Scene();
    raster->SetGeoreferencingKind(2);
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(1000, 2300, 1300, 2000);
    ASSERT_TRUE(reproject->CreateGrid(box, 100, 100, 1));
    double x = 1120;
    double y = 2250;
    double col = 0.0;
    double row = 0.0;
    ASSERT_TRUE(reproject->GetSrcPos(&x, &y, &col, &row, 1));
    EXPECT_NEAR(col, 1120, 1e-9);
    EXPECT_NEAR(row, 2250, 1e-9);
}

TEST(ReprojectGrid, BilinearPositionsAreAskedFromTheCornerDownwards) {
    auto raster = Scene();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(485000, 4412000, 485310, 4412000 - 310);
    ASSERT_TRUE(reproject->CreateGrid(box, 100, 100, 0));
    double x = 150;
    double y = 250;
    double col = 0.0;
    double row = 0.0;
    ASSERT_TRUE(reproject->GetSrcPos(&x, &y, &col, &row, 1));
    EXPECT_NEAR(col, 5.0, 1e-6);
    EXPECT_NEAR(row, 250 / 30.0, 1e-6);
}

TEST(ReprojectGrid, AFailedFitLeavesNoReadyGrid) {
    PlacedRaster raster(10, 10, NorthUp(0, 0, 1), "EPSG:3395");
    const auto reproject = Bind(raster, "EPSG:4326");
    CBoundingBox good(0, 10, 10, 0);
    ASSERT_TRUE(reproject->CreateGrid(good, 1, 1, 1));
    ASSERT_NE(reproject->GetGrid(), nullptr);
    const double nan = std::nan("");
    const CBoundingBox bad[] = {
        {0, 300, 10, 200}, // nothing there
        {0, 95, 10, 85},   // partly nothing there
        {5, 5, 5, 5},      // one point
        {nan, 10, 10, 0},
    };
    for (CBoundingBox box : bad) {
        ASSERT_TRUE(reproject->CreateGrid(good, 1, 1, 1));
        EXPECT_FALSE(reproject->CreateGrid(box, 1, 1, 1));
        EXPECT_EQ(reproject->GetGrid(), nullptr);
    }
}

TEST(ReprojectGrid, MorePointsThanAGridHoldsAreRefused) {
    auto raster = Scene();
    const auto reproject = Bind(raster, UTM50);
    CBoundingBox box(0, 1e6, 1e6, 0);
    EXPECT_FALSE(reproject->CreateGrid(box, 1, 1, 1));
    EXPECT_FALSE(reproject->CreateGrid(box, 1e-10, 1e-10, 1));
    EXPECT_EQ(reproject->GetGrid(), nullptr);
}

TEST(SourcePosition, WithoutAGridTransformsTheCoordinatesInPlace) {
    auto raster = Scene();
    const auto reproject = Bind(raster, "EPSG:4326");
    double x[] = {117.0, 117.1};
    double y[] = {39.7, 39.8};
    double ground[] = {117.0, 117.1};
    double groundY[] = {39.7, 39.8};
    double col[2];
    double row[2];
    ASSERT_TRUE(reproject->GetSrcPos(x, y, col, row, 2));
    ASSERT_TRUE(CReproject::CoorTransform(ground, groundY, 2, "EPSG:4326", UTM50));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(x[i], ground[i]);
        EXPECT_EQ(y[i], groundY[i]);
        EXPECT_NEAR(col[i], (x[i] - 485000) / 30, 1e-9);
        EXPECT_NEAR(row[i], (4412000 - y[i]) / 30, 1e-9);
    }
}

TEST(SourcePosition, OfTheSecondKindLeavesThePositionsAlone) {
    auto raster = Scene();
    raster->SetGeoreferencingKind(2);
    const auto reproject = Bind(raster, "EPSG:4326");
    double x = 117.0;
    double y = 39.7;
    double col = 7.0;
    double row = 8.0;
    ASSERT_TRUE(reproject->GetSrcPos(&x, &y, &col, &row, 1));
    EXPECT_NEAR(x, 500000.0, 1e-6);
    EXPECT_EQ(col, 7.0);
    EXPECT_EQ(row, 8.0);
}

TEST(SourcePosition, TakesTheMeanElevationIntoADatumShift) {
    // A shift along the earth's axis moves a high point by less in latitude than a low one.
    const char* shifted = "+proj=longlat +ellps=WGS84 +towgs84=0,0,5000,0,0,0,0 +no_defs";
    PlacedRaster raster(10, 10, NorthUp(0, 90, 1), "EPSG:4326");
    double latitudes[2];
    for (const double elevation : {0.0, 100000.0}) {
        const auto reproject = Bind(raster, shifted);
        ASSERT_NE(reproject, nullptr);
        reproject->SetMeanElevation(elevation);
        double x = 5.0;
        double y = 45.0;
        double col = 0.0;
        double row = 0.0;
        ASSERT_TRUE(reproject->GetSrcPos(&x, &y, &col, &row, 1));
        latitudes[elevation > 0 ? 1 : 0] = y;
    }
    const double shift = 5000 * std::cos(45 * 3.14159265358979323846 / 180);
    const double radius = 6367000;
    const double degrees = 180 / 3.14159265358979323846;
    EXPECT_NEAR(latitudes[0] - 45, shift / radius * degrees, 2e-4);
    EXPECT_NEAR(latitudes[1] - 45, shift / (radius + 100000) * degrees, 2e-4);
    EXPECT_GT(latitudes[0] - latitudes[1], 3e-4);
}

TEST(SourcePosition, NoPointsAndMissingArraysFail) {
    auto raster = Scene();
    const auto reproject = Bind(raster, UTM50);
    double v = 0.0;
    EXPECT_FALSE(reproject->GetSrcPos(&v, &v, &v, &v, 0));
    EXPECT_FALSE(reproject->GetSrcPos(&v, &v, &v, &v, -1));
    EXPECT_FALSE(reproject->GetSrcPos(nullptr, &v, &v, &v, 1));
    EXPECT_FALSE(reproject->GetSrcPos(&v, nullptr, &v, &v, 1));
    EXPECT_FALSE(reproject->GetSrcPos(&v, &v, nullptr, &v, 1));
    EXPECT_FALSE(reproject->GetSrcPos(&v, &v, &v, nullptr, 1));
}

TEST(SourcePosition, ThatNoPointHasFails) {
    PlacedRaster raster(10, 10, NorthUp(0, 0, 1), "EPSG:3395");
    const auto reproject = Bind(raster, "EPSG:4326");
    double x = 10;
    double y = 400;
    double col = 0.0;
    double row = 0.0;
    EXPECT_FALSE(reproject->GetSrcPos(&x, &y, &col, &row, 1));
}
