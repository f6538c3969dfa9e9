#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using zelto::test::ExposedRasterSource;
using zelto::test::NorthUp;
using zelto::test::OpenDatasetCount;
using zelto::test::Pixels;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

/// main.tif: Byte, 2 × 2, one band; a.tif: UInt16, 3 × 2, two bands; b.tif: Float32, 4 × 2,
/// one band, rotated.
CDatasetOpenInfo WriteSubFiles(const TemporaryFolder& folder) {
    WriteRaster(folder.File("main.tif"), {.width = 2, .height = 2}, {Pixels(4, 1.0)});
    WriteRaster(
        folder.File("a.tif"),
        {.width = 3, .height = 2, .type = GDT_UInt16, .geoTransform = NorthUp(100.0, 200.0, 10.0)},
        {Pixels(6, 2.0), Pixels(6, 3.0)});
    WriteRaster(folder.File("b.tif"),
                {.width = 4,
                 .height = 2,
                 .type = GDT_Float32,
                 .geoTransform = std::array<double, 6>{300.0, 8.0, 1.0, 400.0, 2.0, -8.0}},
                {Pixels(8, 4.0)});
    CDatasetOpenInfo info(folder.WideFile("main.tif").c_str(), GIS_READONLY);
    info.AddSubFileNames(folder.WideFile("a.tif").c_str());
    info.AddSubFileNames(folder.WideFile("b.tif").c_str());
    return info;
}

} // namespace

TEST(OpenWithSubFiles, WithoutSubFilesItIsThePlainOpening) {
    const TemporaryFolder folder;
    WriteSubFiles(folder);
    CRasterSource source;
    EXPECT_EQ(source.Open(CDatasetOpenInfo(folder.WideFile("main.tif").c_str(), GIS_UPDATE)),
              GIS_SUCCESS);
    EXPECT_EQ(source.GetAccess(), GIS_UPDATE);
    EXPECT_EQ(source.GetBandCount(), 1);
}

TEST(OpenWithSubFiles, SubFilesBecomeSubRasters) {
    const TemporaryFolder folder;
    const CDatasetOpenInfo info = WriteSubFiles(folder);
    CRasterSource source;
    ASSERT_EQ(source.Open(info), GIS_SUCCESS);
    ASSERT_EQ(source.GetSubRasterCount(), 2);
    EXPECT_EQ(source.GetSubRaster(0)->GetBandCount(), 2);
    EXPECT_EQ(source.GetSubRaster(1)->GetRasterDataType(), PDT_Float32);
    EXPECT_EQ(source.GetBandCount(), 1);
    EXPECT_EQ(source.GetWidth(), 2);
    EXPECT_EQ(info.GetSubFileCount(), 2);
    source.Close();
    EXPECT_EQ(OpenDatasetCount(), 0);
}

TEST(OpenWithSubFiles, MergingAppendsTheirBandsAndTakesTheLastGrid) {
    const TemporaryFolder folder;
    CDatasetOpenInfo info = WriteSubFiles(folder);
    info.m_mergeBands = true;
    ExposedRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(info), GIS_SUCCESS);
    EXPECT_EQ(source.GetBandCount(), 4);
    const CRasterSource& a = *source.GetSubRaster(0);
    const CRasterSource& b = *source.GetSubRaster(1);
    EXPECT_EQ(source.GetRasterBand(1), a.GetRasterBand(0));
    EXPECT_EQ(source.GetRasterBand(2), a.GetRasterBand(1));
    EXPECT_EQ(source.GetRasterBand(3), b.GetRasterBand(0));
    EXPECT_EQ(source.GetRasterDataType(), PDT_UInt16);
    EXPECT_EQ(source.GetWidth(), 4);
    EXPECT_EQ(source.GetRight(), b.GetRight());
    EXPECT_EQ(source.GeoTransform(), (std::array<double, 6>{300.0, 8.0, 0.0, 400.0, 0.0, -8.0}));
    double col = 0.0;
    double row = 0.0;
    source.GroundToImage(316.0, 392.0, col, row);
    EXPECT_EQ(col, 2.0);
    EXPECT_EQ(row, 1.0);
    EXPECT_EQ(source.GetShowBandArray(), (std::vector<int>{2, 1, 0}));
    source.Close();
    EXPECT_EQ(source.GetRasterBand(0), nullptr);
    EXPECT_EQ(OpenDatasetCount(), 0);
}

TEST(OpenWithSubFiles, FilesThatDoNotOpenAreLeftOut) {
    const TemporaryFolder folder;
    WriteSubFiles(folder);
    CDatasetOpenInfo info(folder.WideFile("main.tif").c_str(), GIS_READONLY);
    info.AddSubFileNames(folder.WideFile("missing.tif").c_str());
    info.AddSubFileNames(folder.WideFile("a.tif").c_str());
    CRasterSource source;
    EXPECT_EQ(source.Open(info), GIS_SUCCESS);
    EXPECT_EQ(source.GetSubRasterCount(), 1);
}

TEST(OpenWithSubFiles, WithoutAnyOpenedSubFileItFailsButTheMainFileStaysOpen) {
    const TemporaryFolder folder;
    WriteSubFiles(folder);
    for (const bool merge : {false, true}) {
        CDatasetOpenInfo info(folder.WideFile("main.tif").c_str(), GIS_READONLY);
        info.m_mergeBands = merge;
        info.AddSubFileNames(folder.WideFile("missing.tif").c_str());
        CRasterSource source;
        EXPECT_EQ(source.Open(info), GIS_FAILED);
        EXPECT_TRUE(source.IsOpened());
        EXPECT_EQ(source.GetBandCount(), 1);
        EXPECT_EQ(source.GetWidth(), 2);
        EXPECT_FALSE(source.IsDataset());
    }
}

TEST(OpenWithSubFiles, AMissingMainFileFails) {
    const TemporaryFolder folder;
    WriteSubFiles(folder);
    CDatasetOpenInfo info(folder.WideFile("missing.tif").c_str(), GIS_READONLY);
    info.AddSubFileNames(folder.WideFile("a.tif").c_str());
    CRasterSource source;
    EXPECT_EQ(source.Open(info), GIS_OPEN_FAILED);
    EXPECT_EQ(source.GetSubRasterCount(), 0);
}
