#include "zelto/raster/internal/BandSampling.h"

#include "zelto/baselib/internal/LastError.h"

#include "tests/raster/BareDataset.h"
#include "tests/raster/DamagedBlock.h"
#include "tests/raster/HugeBlock.h"
#include "tests/raster/OpenedRaster.h"
#include "tests/support/BlockCacheOf.h"
#include "tests/support/LimitedMemory.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using zelto::BandSummary;
using zelto::test::BlockCacheOf;
using zelto::test::TemporaryFolder;

namespace {

/// Of GDAL's cache of blocks, for an image that it cannot keep.
constexpr GIntBig SMALL_CACHE = GIntBig{4} << 20;

/// An image beyond that, of which the samples are a part.
std::string WriteLarge(const TemporaryFolder& folder) {
    constexpr int SIDE = 2200;
    return zelto::test::WriteRaster(
        folder.File("a.tif"),
        {.width = SIDE,
         .height = SIDE,
         .options = {"COMPRESS=DEFLATE", "TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"}},
        {zelto::test::MakePixels(SIDE, SIDE, [](int x, int y) { return (x * 3 + y * 7) % 251; })});
}

} // namespace

TEST(BandSampling, ALargeBandIsSampledOnThreadsAsWithoutThem) {
    GDALAllRegister();
    const TemporaryFolder folder;
    const zelto::test::OpenedRaster opened(WriteLarge(folder));
    GDALRasterBand& band = *opened.Bands()[0];
    const BlockCacheOf cache(SMALL_CACHE);
    std::vector<BandSummary> found(2);
    for (const char* count : {"1", "2"}) {
        const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", count, false);
        EXPECT_TRUE(zelto::SampleBand(band, nullptr, nullptr, found[count[0] - '1']));
    }
    EXPECT_EQ(found[0].minimum, 0.0);
    EXPECT_EQ(found[0].maximum, 250.0);
    EXPECT_EQ(found[0].mean, found[1].mean);
    EXPECT_EQ(found[0].standardDeviation, found[1].standardDeviation);
    EXPECT_EQ(found[0].maximum, found[1].maximum);
}

TEST(BandSampling, WhatAnUnreadableBandHasIsToldByGdal) {
    GDALAllRegister();
    const TemporaryFolder folder;
    const std::string path = zelto::test::WriteRaster(
        folder.File("a.tif"), {.width = 4, .height = 4}, {zelto::test::Pixels(16, 1.0)});
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 8);
    const GDALDatasetUniquePtr image(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(image, nullptr);
    BandSummary found{.minimum = 3.0};
    EXPECT_FALSE(zelto::SampleBand(*image->GetRasterBand(1), nullptr, nullptr, found));
    EXPECT_EQ(found.minimum, 3.0);
    EXPECT_EQ(zelto::LastError().find(path + ": "), 0U) << zelto::LastError();
}

TEST(BandSampling, ALargeBandThatThreadsCannotReadIsToldOfByGdal) {
    GDALAllRegister();
    const TemporaryFolder folder;
    const std::string path = WriteLarge(folder);
    zelto::test::DamageLastBlock(path);
    const zelto::test::OpenedRaster opened(path);
    const BlockCacheOf cache(SMALL_CACHE);
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    BandSummary found{.minimum = 3.0};
    EXPECT_FALSE(zelto::SampleBand(*opened.Bands()[0], nullptr, nullptr, found));
    EXPECT_EQ(found.minimum, 3.0);
    EXPECT_EQ(zelto::LastError().find(path + ": "), 0U) << zelto::LastError();
}

TEST(BandSampling, WithoutMemoryForTheSamplesThatIsToldAndNothingFound) {
    if (!zelto::test::CanLimitMemory())
        GTEST_SKIP() << "memory cannot be limited here";
    GDALAllRegister();
    const std::string path = "<VRTDataset rasterXSize='2048' rasterYSize='2048'>"
                             "<VRTRasterBand dataType='Float64' band='1'/></VRTDataset>";
    const GDALDatasetUniquePtr image(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    constexpr std::size_t BYTES_OF_SAMPLES = std::size_t{32} << 20;
    const auto tells = [&] {
        // What was freed before is taken again first.
        while (std::malloc(BYTES_OF_SAMPLES) != nullptr) {
        }
        BandSummary found;
        return !zelto::SampleBand(*image->GetRasterBand(1), nullptr, nullptr, found) &&
               zelto::LastError() == path + ": not enough memory for its statistics";
    };
    EXPECT_EQ(zelto::test::RunWithMemory(std::size_t{8} << 20, tells),
              zelto::test::Ending::ANSWERED_TRUE);
}

TEST(BandSampling, BlocksBeyondAnyHealthyFilesAreNotRead) {
    GDALAllRegister();
    const TemporaryFolder folder;
    const std::string path = zelto::test::WriteHugeBlock(folder, 40'000);
    const GDALDatasetUniquePtr image(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    BandSummary found{.minimum = 3.0};
    EXPECT_FALSE(zelto::SampleBand(*image->GetRasterBand(1), nullptr, nullptr, found));
    EXPECT_EQ(found.minimum, 3.0);
}

TEST(BandSampling, ABandWithoutADriverIsSampledAsItIs) {
    zelto::test::BareDataset image(3, 2, 1);
    BandSummary found;
    EXPECT_TRUE(zelto::SampleBand(*image.GetRasterBand(1), nullptr, nullptr, found));
    EXPECT_EQ(found.mean, 5.0);
    const double five = 5.0;
    BandSummary none{.minimum = 3.0};
    EXPECT_TRUE(zelto::SampleBand(*image.GetRasterBand(1), nullptr, &five, none));
    EXPECT_EQ(none.minimum, 3.0) << "no sample counts";
}
