#include "tests/raster/TestBand.h"

#include <limits>

using zelto::test::TestBand;

TEST(RasterBandNoData, ComparesWithinAHundredMillionth) {
    TestBand band({.width = 1, .height = 1, .type = GDT_Float64, .noData = 5.0}, {1.0});
    EXPECT_TRUE(band->IsNoData(5.0));
    EXPECT_TRUE(band->IsNoData(5.0 + 0.9e-8));
    EXPECT_TRUE(band->IsNoData(5.0 - 0.9e-8));
    EXPECT_FALSE(band->IsNoData(5.0 + 1.1e-8));
    EXPECT_FALSE(band->IsNoData(std::numeric_limits<double>::quiet_NaN()));
}

TEST(RasterBandNoData, NaNIsNeverNoDataEvenWhenItIsTheValue) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    TestBand band({.width = 1, .height = 1, .type = GDT_Float32, .noData = nan}, {1.0});
    EXPECT_TRUE(band->IsHaveNoData());
    EXPECT_FALSE(band->IsNoData(nan));
}

TEST(RasterBandNoData, NothingIsNoDataWithoutAValue) {
    TestBand band({.width = 1, .height = 1}, {0.0});
    EXPECT_FALSE(band->IsNoData(0.0));
}

TEST(RasterBandNoData, SetInMemoryLeavesTheFile) {
    TestBand band({.width = 1, .height = 1}, {3.0}, GDAL_OF_UPDATE);
    EXPECT_TRUE(band->SetNoDataValue(3.0, false));
    EXPECT_TRUE(band->IsHaveNoData());
    EXPECT_EQ(band->GetNoDataValue(), 3.0);
    EXPECT_TRUE(band->IsNoData(3.0));
    band.Open(GDAL_OF_READONLY);
    EXPECT_FALSE(band->IsHaveNoData());
}

TEST(RasterBandNoData, SetInTheFileStays) {
    TestBand band({.width = 1, .height = 1}, {3.0}, GDAL_OF_UPDATE);
    EXPECT_TRUE(band->SetNoDataValue(200.0, true));
    EXPECT_EQ(band->GetNoDataValue(), 200.0);
    band.Open(GDAL_OF_READONLY);
    EXPECT_TRUE(band->IsHaveNoData());
    EXPECT_EQ(band->GetNoDataValue(), 200.0);
}

TEST(RasterBandNoData, AValueGdalRefusesChangesNothing) {
    TestBand band({.width = 1, .height = 1, .overviews = {}}, {3.0});
    // The mask of a band takes no no-data value.
    CRasterBand mask(band.Gdal()->GetMaskBand(), false, true);
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(mask.SetNoDataValue(1.0, true));
    CPLPopErrorHandler();
    EXPECT_FALSE(mask.IsHaveNoData());
    EXPECT_EQ(mask.GetNoDataValue(), 0.0);
}

TEST(RasterBandNoData, ClearingForgetsInMemoryAndSaysThatFilesKeepTheirs) {
    TestBand band({.width = 1, .height = 1, .noData = 3.0}, {3.0}, GDAL_OF_UPDATE);
    EXPECT_FALSE(band->ClearNoDataValue(true));
    EXPECT_FALSE(band->IsHaveNoData());
    EXPECT_EQ(band->GetNoDataValue(), 0.0);
    EXPECT_TRUE(band->ClearNoDataValue(false));
    band.Open(GDAL_OF_READONLY);
    EXPECT_TRUE(band->IsHaveNoData()) << "the file kept its value";
}
