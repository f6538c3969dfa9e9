#include "zelto/coordinate/GeoGrid.h"

#include "tests/coordinate/PlacedRaster.h"

#include <gtest/gtest.h>

#include <vector>

using zelto::test::NorthUp;
using zelto::test::PlacedRaster;

namespace {

/// Pixels of 30 m, top-left corner (485000, 4412000).
PlacedRaster SmallScene() {
    return PlacedRaster(10, 8, NorthUp(485000, 4412000, 30), "EPSG:32650");
}

} // namespace

TEST(GeoGridTransform, TakesPositionsToTheGroundOfTheSource) {
    auto raster = SmallScene();
    CGeoGrid grid(2, 2, 1, 1, 1);
    // col = 2x + 1, row = 3y
    double x[] = {0, 1, 0, 1};
    double y[] = {0, 0, 1, 1};
    double col[] = {1, 3, 1, 3};
    double row[] = {0, 0, 3, 3};
    ASSERT_TRUE(grid.ComputeCoef(4, x, y, col, row));
    std::vector<double> px(1200, 4.0);
    std::vector<double> py(1200, 5.0);
    std::vector<int> success(1200, 7);
    px[1100] = 0.5;
    ASSERT_TRUE(grid.Transform(raster.Get(), 1200, px.data(), py.data(), success.data()));
    EXPECT_NEAR(px[0], 485000 + 9 * 30, 1e-6);
    EXPECT_NEAR(py[0], 4412000 - 15 * 30, 1e-6);
    EXPECT_NEAR(px[1100], 485000 + 2 * 30, 1e-6);
    EXPECT_EQ(success, std::vector<int>(1200, 1));
}

TEST(GeoGridTransform, WithoutAPolynomialTakesTheCoordinatesForPositions) {
    auto raster = SmallScene();
    CGeoGrid grid(2, 2, 1, 1, 2);
    double x[] = {10, 20};
    double y[] = {1, 2};
    int success[] = {7, 7};
    EXPECT_FALSE(grid.Transform(raster.Get(), 2, x, y, success));
    EXPECT_EQ(x[1], 485000 + 20 * 30);
    EXPECT_EQ(y[1], 4412000 - 2 * 30);
    EXPECT_EQ(success[0], 0);
    EXPECT_EQ(success[1], 0);
}

TEST(GeoGridTransform, InterpolatesForOtherOrders) {
    auto raster = SmallScene();
    CGeoGrid grid(2, 2, 10, 10, 9);
    grid.GetColumns()[1] = 5;
    double x = 10;
    double y = 0;
    int success = 7;
    EXPECT_TRUE(grid.Transform(raster.Get(), 1, &x, &y, &success));
    EXPECT_EQ(x, 485000 + 5 * 30);
    EXPECT_EQ(success, 1);
}

TEST(GeoGridTransform, NeedsASourceAndPoints) {
    auto raster = SmallScene();
    CGeoGrid grid(2, 2, 10, 10, 0);
    double v = 1;
    EXPECT_FALSE(grid.Transform(nullptr, 1, &v, &v, nullptr));
    EXPECT_FALSE(grid.Transform(raster.Get(), 0, &v, &v, nullptr));
    EXPECT_FALSE(grid.Transform(raster.Get(), 1, nullptr, &v, nullptr));
    EXPECT_FALSE(grid.Transform(raster.Get(), 1, &v, nullptr, nullptr));
    EXPECT_EQ(v, 1);
    EXPECT_TRUE(grid.Transform(raster.Get(), 1, &v, &v, nullptr));
}
