#include "zelto/datasource/GISDataSource.h"

#include "tests/raster/HugeBlock.h"
#include "tests/raster/TestBand.h"

#include <cmath>

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::TestBand;

namespace {

/// Mean 100, population deviation 10.
const Pixels EIGHT_PIXELS = {80, 120, 100, 100, 100, 100, 100, 100};

} // namespace

TEST(RasterBand, ReportsSizeBlocksAndType) {
    TestBand band({.width = 40,
                   .height = 20,
                   .type = GDT_UInt16,
                   .options = {"TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=16"}},
                  Pixels(800, 5.0));
    EXPECT_EQ(band->GetWidth(), 40);
    EXPECT_EQ(band->GetHeight(), 20);
    EXPECT_EQ(band->GetBlockXSize(), 32);
    EXPECT_EQ(band->GetBlockYSize(), 16);
    EXPECT_EQ(band->GetDataType(), PDT_UInt16);
    EXPECT_EQ(band->GetDataTypeName(), L"UInt16");
    EXPECT_EQ(band->GetGDALBand(), band.Gdal());
}

TEST(RasterBand, StartsWithoutNoDataColoursStretchOrHistogram) {
    TestBand band({.width = 2, .height = 1}, {1, 2});
    EXPECT_FALSE(band->IsHaveNoData());
    EXPECT_EQ(band->GetNoDataValue(), 0.0); // GDAL itself answers -1e10 here
    EXPECT_FALSE(band->IsHaveColorTable());
    EXPECT_EQ(band->GetColorTable(), nullptr);
    EXPECT_EQ(band->GetStretchType(), StretchNone);
    EXPECT_EQ(band->GetAutoLevelThresold(), 0.01);
    EXPECT_EQ(band->GetEnhancer(), nullptr);
    EXPECT_EQ(band->GetHistogramObject(), nullptr);
    EXPECT_FALSE(band->IsStoredMinMaxFixed());
}

TEST(RasterBand, ReadsTheNoDataValue) {
    TestBand band({.width = 2, .height = 1, .noData = 7.0}, {1, 2});
    EXPECT_TRUE(band->IsHaveNoData());
    EXPECT_EQ(band->GetNoDataValue(), 7.0);
}

TEST(RasterBand, ComputesStatisticsAndBoundsAtConstruction) {
    TestBand band({.width = 4, .height = 2}, EIGHT_PIXELS);
    EXPECT_EQ(band->GetMinimum(), 80.0);
    EXPECT_EQ(band->GetMaximum(), 120.0);
    EXPECT_EQ(band->GetMean(), 100.0);
    EXPECT_EQ(band->GetStandardDeviation(), 10.0);
    EXPECT_EQ(band->GetStdDevUpperBound(), 120.0);
    EXPECT_EQ(band->GetStdDevLowerBound(), 80.0);
}

TEST(RasterBand, BoundsStayWithinMinimumAndMaximum) {
    TestBand band({.width = 2, .height = 1}, {90, 110}); // mean 100, deviation 10
    EXPECT_EQ(band->GetStdDevUpperBound(), 110.0);
    EXPECT_EQ(band->GetStdDevLowerBound(), 90.0);
}

TEST(RasterBand, BoundsInsideTheRangeAreTwoDeviationsFromTheMean) {
    // 18 × 100, 0 and 200: variance 20000 / 20 = 1000.
    Pixels pixels(20, 100.0);
    pixels[0] = 0.0;
    pixels[1] = 200.0;
    TestBand band({.width = 20, .height = 1}, pixels);
    EXPECT_EQ(band->GetStandardDeviation(), std::sqrt(1000.0));
    EXPECT_EQ(band->GetStdDevUpperBound(), 100.0 + 2.0 * std::sqrt(1000.0));
    EXPECT_EQ(band->GetStdDevLowerBound(), 100.0 - 2.0 * std::sqrt(1000.0));
}

TEST(RasterBand, BoundsFollowAMinimumAndMaximumStoredLater) {
    TestBand band({.width = 2, .height = 1}, {90, 110}); // mean 100, deviation 10
    band->StoreMinMax(85.0, 1000.0);
    EXPECT_EQ(band->GetStdDevUpperBound(), 120.0);
    EXPECT_EQ(band->GetStdDevLowerBound(), 85.0);
}

TEST(RasterBand, AllNoDataLeavesEveryStatisticZero) {
    TestBand band({.width = 2, .height = 2, .noData = 9.0}, {9, 9, 9, 9});
    EXPECT_EQ(band->GetMinimum(), 0.0);
    EXPECT_EQ(band->GetMaximum(), 0.0);
    EXPECT_EQ(band->GetMean(), 0.0);
    EXPECT_EQ(band->GetStandardDeviation(), 0.0);
    EXPECT_EQ(band->GetStdDevUpperBound(), 0.0);
    EXPECT_EQ(band->GetStdDevLowerBound(), 0.0);
}

TEST(RasterBand, AnUnreadableBandGetsTheRangeOfItsType) {
    const zelto::test::TemporaryFolder folder;
    const std::string path = folder.File("broken.tif");
    zelto::test::WriteRaster(
        path, {.width = 300, .height = 300, .type = GDT_Int16, .options = {"COMPRESS=DEFLATE"}},
        {MakePixels(300, 300, [](int c, int r) { return (c * 31 + r * 17) % 997; })});
    std::string bytes = zelto::test::ReadFile(path);
    // The directory stays, the compressed strips become rubbish.
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    const char* offset = dataset->GetRasterBand(1)->GetMetadataItem("BLOCK_OFFSET_0_0", "TIFF");
    ASSERT_NE(offset, nullptr);
    bytes.replace(static_cast<std::size_t>(std::stol(offset)), 64, 64, '\xFF');
    dataset.reset();
    zelto::test::WriteFile(path, bytes);

    dataset.reset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(dataset, nullptr);
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const CRasterBand band(dataset->GetRasterBand(1), true, false);
    CPLPopErrorHandler();
    EXPECT_EQ(band.GetMinimum(), -32768.0);
    EXPECT_EQ(band.GetMaximum(), 32768.0);
    EXPECT_EQ(band.GetMean(), 0.0);
    EXPECT_EQ(band.GetStandardDeviation(), 0.0);
    EXPECT_EQ(band.GetStdDevUpperBound(), 0.0);
    EXPECT_EQ(band.GetStdDevLowerBound(), 0.0);
}

TEST(RasterBand, AnOverviewNotForDisplayComputesNoStatistics) {
    TestBand band({.width = 4, .height = 2}, EIGHT_PIXELS);
    const CRasterBand overview(band.Gdal(), false, true);
    EXPECT_EQ(overview.GetMaximum(), 0.0);
    EXPECT_EQ(overview.GetMean(), 0.0);
    const CRasterBand shownOverview(band.Gdal(), true, true);
    EXPECT_EQ(shownOverview.GetMaximum(), 120.0);
    const CRasterBand plain(band.Gdal(), false, false);
    EXPECT_EQ(plain.GetMaximum(), 120.0);
}

TEST(RasterBand, WrapsEachOverviewInGdalsOrder) {
    TestBand band({.width = 64, .height = 32, .overviews = {2, 4}}, Pixels(64 * 32, 3.0));
    ASSERT_EQ(band->GetOverviewCount(), 2);
    EXPECT_EQ(band->GetOverview(0)->GetWidth(), 32);
    EXPECT_EQ(band->GetOverview(1)->GetHeight(), 8);
    EXPECT_EQ(band->GetOverview(0)->GetMaximum(), 0.0) << "overviews compute no statistics";
    EXPECT_EQ(band->GetOverview(-1), nullptr);
    EXPECT_EQ(band->GetOverview(2), nullptr);
}

TEST(RasterBand, OverviewsThatLeadBackToTheBandEnd) {
    const zelto::test::TemporaryFolder folder;
    const auto write = [&](const char* name, const char* overview) {
        zelto::test::WriteFile(folder.Path() / name,
                               "<VRTDataset rasterXSize='4' rasterYSize='4'>"
                               "<VRTRasterBand dataType='Byte' band='1'><Overview>"
                               "<SourceFilename relativeToVRT='1'>" +
                                   std::string(overview) +
                                   "</SourceFilename><SourceBand>1</SourceBand></Overview>"
                                   "</VRTRasterBand></VRTDataset>");
    };
    write("a.vrt", "b.vrt");
    write("b.vrt", "a.vrt");
    CGISDataSource::RegisterGDAL();
    {
        GDALDatasetUniquePtr dataset(
            GDALDataset::Open(folder.File("a.vrt").c_str(), GDAL_OF_RASTER));
        ASSERT_NE(dataset, nullptr);
        for (const bool light : {false, true}) {
            std::unique_ptr<CRasterBand> band;
            if (light)
                band = std::make_unique<CRasterBand>(true, dataset->GetRasterBand(1));
            else
                band = std::make_unique<CRasterBand>(dataset->GetRasterBand(1), false, false);
            EXPECT_EQ(band->GetOverviewCount(), 1);
            int depth = 0;
            for (const CRasterBand* level = band.get(); level != nullptr && depth < 10; ++depth)
                level = level->GetOverview(0);
            EXPECT_LT(depth, 6);
        }
    }
    CGISDataSource::DestroyGDAL();
}

TEST(RasterBand, LightConstructionTakesGdalsApproximateRange) {
    // Nearest overviews of factor 2 see the odd columns and rows only.
    const Pixels pixels =
        MakePixels(256, 256, [](int c, int r) { return c % 2 == 1 && r % 2 == 1 ? c : 255; });
    TestBand band({.width = 256, .height = 256, .overviews = {2}}, pixels);
    double expected[2] = {0.0, 0.0};
    ASSERT_EQ(band.Gdal()->ComputeRasterMinMax(TRUE, expected), CE_None);
    const CRasterBand light(true, band.Gdal());
    EXPECT_EQ(light.GetMinimum(), expected[0]);
    EXPECT_EQ(light.GetMaximum(), expected[1]);
    EXPECT_EQ(light.GetMean(), 0.0);
    EXPECT_EQ(light.GetStandardDeviation(), 0.0);
    EXPECT_EQ(light.GetStdDevUpperBound(), 0.0) << "mean + 2 deviations, both 0";
    EXPECT_EQ(light.GetStdDevLowerBound(), light.GetMinimum());
    EXPECT_EQ(light.GetOverviewCount(), 1);
    EXPECT_EQ(light.GetAutoLevelThresold(), 0.01);
    EXPECT_EQ(light.GetStretchType(), StretchNone);
}

TEST(RasterBand, LightConstructionOfAnAllNoDataBandHasAnEmptyRange) {
    TestBand band({.width = 2, .height = 1, .noData = 4.0}, {4, 4});
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const CRasterBand light(false, band.Gdal());
    CPLPopErrorHandler();
    EXPECT_EQ(light.GetMinimum(), 0.0);
    EXPECT_EQ(light.GetMaximum(), 0.0);
}

TEST(RasterBand, NamesTypesBeyondTheCommonSevenAsGdalDoes) {
    TestBand band({.width = 1, .height = 1, .type = GDT_CFloat32}, {3.0});
    EXPECT_EQ(band->GetDataTypeName(), L"CFloat32");
    EXPECT_EQ(static_cast<int>(band->GetDataType()), static_cast<int>(GDT_CFloat32));
}

TEST(RasterBand, WithoutAGdalBandEverythingIsRefused) {
    CRasterBand band(nullptr, true, false);
    double value = 0.0;
    int count = 0;
    unsigned char byte = 0;
    EXPECT_EQ(band.GetWidth(), 0);
    EXPECT_EQ(band.GetPixel(&value, 0, 0, PDT_Float64), GIS_FAILED);
    EXPECT_EQ(band.ReadBlock(0, 0, 1, 1, &value, 1, 1, PDT_Float64, 0, 0), GIS_FAILED);
    EXPECT_EQ(band.WriteBlock(0, 0, 1, 1, &value, 1, 1, PDT_Float64, 0, 0), GIS_FAILED);
    EXPECT_FALSE(band.GetData(0, 0, 1, 1, 1, 1));
    EXPECT_FALSE(band.GetDataToBuffer(0, 0, 1, 1, 1, 1, &value));
    EXPECT_FALSE(band.GetNearestValueAt(0, 0, &value));
    EXPECT_FALSE(band.GetBilinearValueAt(0, 0, &value));
    EXPECT_FALSE(band.ComputeMinMax(&value, &value, false));
    EXPECT_FALSE(band.ComputeStatics(&value, &value, &value, &value, false, nullptr));
    EXPECT_FALSE(band.ComputeStaticsFromCustom(value, value, value, value, nullptr));
    EXPECT_FALSE(band.GetHistogram(0, 1, 1, &count, false, false, nullptr));
    EXPECT_FALSE(band.EnableHistogramEqualize());
    EXPECT_FALSE(band.SetNoDataValue(1.0, true));
    EXPECT_FALSE(band.IsHaveNoData());
    EXPECT_TRUE(band.SetNoDataValue(1.0, false));
    GDALColorTable table;
    EXPECT_EQ(band.SetColorTable(&table), GIS_FAILED);
    tagColorEntry entry;
    EXPECT_EQ(band.SetColorTable(&entry, 1), GIS_FAILED);
    EXPECT_FALSE(band.GetShowValueAt(0, 0, &byte));
    band.FlushCache();
    EXPECT_EQ(CRasterBand(true, nullptr).GetWidth(), 0);
}

TEST(RasterBand, AnOverviewWhoseFileIsGoneIsLeftOut) {
    const zelto::test::TemporaryFolder folder;
    const std::string path = zelto::test::WriteRaster(
        folder.File("a.tif"), {.width = 4, .height = 3}, {zelto::test::Twelve()});
    const std::string overview = "<Overview><SourceFilename relativeToVRT='0'>";
    const std::string xml = "<VRTDataset rasterXSize='8' rasterYSize='6'>"
                            "<VRTRasterBand dataType='Byte' band='1'>" +
                            overview + folder.File("gone.tif") +
                            "</SourceFilename><SourceBand>1</SourceBand></Overview>" + overview +
                            path +
                            "</SourceFilename><SourceBand>1</SourceBand></Overview>"
                            "</VRTRasterBand></VRTDataset>";
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr view(GDALDataset::Open(xml.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(view, nullptr);
    ASSERT_EQ(view->GetRasterBand(1)->GetOverviewCount(), 2);
    const CRasterBand band(view->GetRasterBand(1), true, false);
    ASSERT_EQ(band.GetOverviewCount(), 1);
    EXPECT_EQ(band.GetOverview(0)->GetWidth(), 4);
}

TEST(RasterBand, BlocksBeyondAnyHealthyFilesAreRefusedWithAReason) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    const std::string path = zelto::test::WriteHugeBlock(folder, 40'000);
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    CRasterBand band(false, dataset->GetRasterBand(1));
    const std::string reason = path + ": its blocks are too large to be read";
    const auto expectReason = [&] {
        EXPECT_EQ(CGISDataSource::GetLastErrorText(), reason);
        band.ReadBlock(0, 0, 0, 0, nullptr, 1, 1, PDT_Byte, 0, 0);
        EXPECT_EQ(CGISDataSource::GetLastErrorText(), "no such block");
    };
    double value = 0.0;
    EXPECT_FALSE(band.GetData(0, 0, 1, 1, 1, 1));
    expectReason();
    EXPECT_FALSE(band.GetDataToBuffer(0, 0, 1, 1, 1, 1, &value));
    expectReason();
    EXPECT_EQ(band.ReadBlock(0, 0, 1, 1, &value, 1, 1, PDT_Float64, 0, 0), GIS_FAILED);
    expectReason();
    EXPECT_FALSE(band.ComputeMinMax(nullptr, nullptr, false));
    expectReason();
    EXPECT_FALSE(band.ComputeStatics(nullptr, nullptr, nullptr, nullptr, false, nullptr));
    expectReason();
    EXPECT_FALSE(band.ComputeStaticsFromCustom(value, value, value, value, nullptr));
    expectReason();
    int counts[4] = {};
    EXPECT_FALSE(band.GetHistogram(0.0, 4.0, 4, counts, false, false, nullptr));
    expectReason();
}
