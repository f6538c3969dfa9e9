#include "zelto/raster/internal/PickedSamples.h"

#include "zelto/raster/internal/StatisticsBand.h"

#include "tests/raster/BareDataset.h"
#include "tests/raster/DamagedBlock.h"
#include "tests/raster/HugeBlock.h"
#include "tests/raster/OpenedRaster.h"
#include "tests/support/BlockCacheOf.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <random>

using zelto::PixelBox;
using zelto::test::Pixels;

TEST(PickedSamples, OfEveryWindowAreThoseThatGdalReads) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    zelto::test::RasterSpec spec{.width = 700, .height = 500, .type = GDT_UInt16};
    const auto noise = [&] {
        return zelto::test::MakePixels(spec.width, spec.height, [&](int, int) {
            return static_cast<double>(random() % 60000);
        });
    };
    for (const auto& [interleave, isTiled] :
         {std::pair("INTERLEAVE=PIXEL", true), std::pair("INTERLEAVE=PIXEL", false),
          std::pair("INTERLEAVE=BAND", true), std::pair("INTERLEAVE=BAND", false)}) {
        spec.options = {interleave, "COMPRESS=DEFLATE"};
        if (isTiled)
            spec.options.insert(spec.options.end(),
                                {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=48"});
        const std::string path =
            zelto::test::WriteRaster(folder.File("a.tif"), spec, {noise(), noise(), noise()});
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        const std::vector<GDALRasterBand*> bands = {dataset->GetRasterBand(3),
                                                    dataset->GetRasterBand(1)};
        ASSERT_TRUE(zelto::CanBePicked(*bands[0]));
        for (int round = 0; round < 100; ++round) {
            PixelBox box{};
            box.left = static_cast<int>(random() % 700);
            box.top = static_cast<int>(random() % 500);
            box.width = 1 + static_cast<int>(random() % static_cast<unsigned>(700 - box.left));
            box.height = 1 + static_cast<int>(random() % static_cast<unsigned>(500 - box.top));
            const int columns = 1 + static_cast<int>(random() % static_cast<unsigned>(box.width));
            const int rows = 1 + static_cast<int>(random() % static_cast<unsigned>(box.height));
            const auto count = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
            std::vector<std::vector<std::uint16_t>> picked(2, std::vector<std::uint16_t>(count));
            ASSERT_TRUE(zelto::ReadPicked(bands, {box, columns, rows},
                                          {picked[0].data(), picked[1].data()}));
            for (std::size_t b = 0; b < 2; ++b) {
                std::vector<std::uint16_t> expected(count);
                ASSERT_EQ(bands[b]->RasterIO(GF_Read, box.left, box.top, box.width, box.height,
                                             expected.data(), columns, rows, GDT_UInt16, 0, 0,
                                             nullptr),
                          CE_None);
                ASSERT_EQ(picked[b], expected)
                    << box.left << ' ' << box.top << ' ' << box.width << " x " << box.height
                    << " as " << columns << " x " << rows;
            }
        }
    }
}

TEST(PickedSamples, HaveTheTypeOfTheirBandsWhateverItsSize) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    for (const GDALDataType type : {GDT_Byte, GDT_Int16, GDT_Float32, GDT_Float64, GDT_CFloat64}) {
        SCOPED_TRACE(GDALGetDataTypeName(type));
        const std::string path = zelto::test::WriteRaster(
            folder.File("a.tif"),
            {.width = 4, .height = 4, .type = type, .options = {"COMPRESS=DEFLATE"}},
            {zelto::test::MakePixels(4, 4, [](int x, int y) { return 10 * y + x; })});
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        GDALRasterBand* const band = dataset->GetRasterBand(1);
        std::vector<std::byte> stored(std::size_t{4} * 16);
        ASSERT_TRUE(zelto::ReadPicked({band}, {{0, 0, 4, 4}, 2, 2}, {stored.data()}));
        Pixels samples(4);
        GDALCopyWords(stored.data(), type, GDALGetDataTypeSizeBytes(type), samples.data(),
                      GDT_Float64, sizeof(double), 4);
        // Of every two pixels the one after their middle.
        EXPECT_EQ(samples, (Pixels{11, 13, 31, 33}));
    }
}

TEST(PickedSamples, OfAWindowBeyondGdalsCacheAreDecodedOnThreads) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    constexpr int SIDE = 2100;
    const std::string path = zelto::test::WriteRaster(
        folder.File("a.tif"),
        {.width = SIDE,
         .height = SIDE,
         .options = {"COMPRESS=DEFLATE", "TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"}},
        {zelto::test::MakePixels(SIDE, SIDE, [](int x, int y) { return (x * 3 + y * 7) % 251; })});
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const zelto::test::OpenedRaster opened(path);
    const std::vector<GDALRasterBand*> bands = opened.Bands();
    const PixelBox whole = {0, 0, SIDE, SIDE};
    {
        const zelto::test::BlockCacheOf cache(GIntBig{64} << 20);
        EXPECT_FALSE(zelto::IsWorthPicking(bands, whole));
    }
    std::vector<std::uint8_t> picked(std::size_t{300} * 200);
    {
        const zelto::test::BlockCacheOf cache(GIntBig{4} << 20);
        EXPECT_TRUE(zelto::IsWorthPicking(bands, whole));
        EXPECT_FALSE(zelto::IsWorthPicking(bands, {0, 0, 256, SIDE})) << "one column of blocks";
        EXPECT_TRUE(zelto::ReadPicked(bands, {whole, 300, 200}, {picked.data()}));
    }
    std::vector<std::uint8_t> expected(picked.size());
    ASSERT_EQ(bands[0]->RasterIO(GF_Read, 0, 0, SIDE, SIDE, expected.data(), 300, 200, GDT_Byte, 0,
                                 0, nullptr),
              CE_None);
    EXPECT_EQ(picked, expected);
}

TEST(PickedSamples, AreNotTakenFromBlocksLargerThanTheirMemory) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    for (const int side : {4096, 4112}) { // 16 MB, and more
        const std::string path = zelto::test::WriteHugeBlock(folder, side);
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        std::uint8_t sample = 1;
        EXPECT_EQ(
            zelto::ReadPicked({dataset->GetRasterBand(1)}, {{0, 0, side, side}, 1, 1}, {&sample}),
            side == 4096);
    }
}

TEST(PickedSamples, OfAWindowOutsideAreNone) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    const std::string path = zelto::test::WriteRaster(
        folder.File("a.tif"), {.width = 4, .height = 4, .options = {"COMPRESS=DEFLATE"}},
        {Pixels(16, 1.0)});
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    std::uint8_t samples[16] = {};
    for (const PixelBox& box : {PixelBox{3, 0, 2, 4}, PixelBox{0, 3, 4, 2}})
        EXPECT_FALSE(zelto::ReadPicked({dataset->GetRasterBand(1)}, {box, box.width, box.height},
                                       {samples}));
    EXPECT_EQ(samples[0], 0);
}

TEST(PickedSamples, AreOnlyThoseOfBlocksThatGdalItselfWouldDecode) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    zelto::test::RasterSpec spec = {.width = 40, .height = 40, .options = {"COMPRESS=DEFLATE"}};
    const auto canBePicked = [&] {
        const std::string path =
            zelto::test::WriteRaster(folder.File("a.tif"), spec, {Pixels(1600, 1.0)});
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        return zelto::CanBePicked(*dataset->GetRasterBand(1));
    };
    EXPECT_TRUE(canBePicked());
    for (const char* option : {"GTIFF_DIRECT_IO", "GTIFF_VIRTUAL_MEM_IO"}) {
        const CPLConfigOptionSetter another(option, "YES", false);
        EXPECT_FALSE(canBePicked()) << option;
    }
    spec.driver = "HFA";
    spec.options = {"COMPRESSED=YES"};
    EXPECT_FALSE(canBePicked());
    zelto::test::BareDataset withoutDriver(40, 40, 2);
    EXPECT_FALSE(zelto::CanBePicked(*withoutDriver.GetRasterBand(1)));
    EXPECT_FALSE(zelto::HasBandsTogether(*withoutDriver.GetRasterBand(1)));
    zelto::StatisticsBand standIn(*withoutDriver.GetRasterBand(1)); // belongs to no data set
    EXPECT_FALSE(zelto::CanBePicked(*standIn.operator->()));
    EXPECT_FALSE(zelto::HasBandsTogether(*standIn.operator->()));
    const std::string huge = zelto::test::WriteHugeBlock(folder, 40'000);
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(huge.c_str(), GDAL_OF_RASTER));
    EXPECT_FALSE(zelto::CanBePicked(*dataset->GetRasterBand(1)));
    EXPECT_FALSE(zelto::CanBePicked(*dataset->GetRasterBand(1)->GetMaskBand()));
    zelto::test::StrayBand stray(*dataset, 0);
    EXPECT_FALSE(zelto::CanBePicked(stray));
}

TEST(PickedSamples, OfABlockWhoseErrorsGdalShallIgnoreAreNone) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    const std::string path = zelto::test::WriteRaster(
        folder.File("a.tif"),
        {.width = 64,
         .height = 64,
         .options = {"COMPRESS=DEFLATE", "TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=32"}},
        {zelto::test::MakePixels(64, 64, [](int x, int y) { return x * 37 % 101 + y; })});
    zelto::test::DamageLastBlock(path);
    const CPLConfigOptionSetter ignored("GTIFF_IGNORE_READ_ERRORS", "YES", false);
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    GDALRasterBand& band = *dataset->GetRasterBand(1);
    std::vector<std::uint8_t> samples(32 * 32);
    EXPECT_TRUE(zelto::ReadPicked({&band}, {{0, 0, 32, 32}, 32, 32}, {samples.data()}));
    EXPECT_FALSE(zelto::ReadPicked({&band}, {{32, 32, 32, 32}, 32, 32}, {samples.data()}));
}
