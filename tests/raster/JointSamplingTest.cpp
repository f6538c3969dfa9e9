#include "zelto/raster/internal/JointSampling.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <random>

using zelto::BandSummary;
using zelto::JointBand;
using zelto::test::Pixels;

namespace {

std::array<std::uint64_t, 4> Bits(const BandSummary& summary) {
    return {std::bit_cast<std::uint64_t>(summary.minimum),
            std::bit_cast<std::uint64_t>(summary.maximum),
            std::bit_cast<std::uint64_t>(summary.mean),
            std::bit_cast<std::uint64_t>(summary.standardDeviation)};
}

struct CompressedRaster {
    zelto::test::RasterSpec spec;
    std::vector<Pixels> bands;
};

CompressedRaster MakeCompressed(std::mt19937& random) {
    constexpr GDALDataType TYPES[] = {GDT_Byte,  GDT_UInt16,  GDT_Int16,  GDT_UInt32,
                                      GDT_Int32, GDT_Float32, GDT_Float64};
    CompressedRaster raster;
    raster.spec.width = static_cast<int>(1 + random() % 5000);
    raster.spec.height = static_cast<int>(1 + random() % (400'000U / raster.spec.width));
    if (random() % 2 == 0)
        std::swap(raster.spec.width, raster.spec.height);
    raster.spec.type = TYPES[random() % std::size(TYPES)];
    raster.spec.options = {"INTERLEAVE=PIXEL",
                           random() % 2 == 0 ? "COMPRESS=DEFLATE" : "COMPRESS=LZW"};
    if (random() % 2 == 0)
        raster.spec.options.insert(raster.spec.options.end(),
                                   {"TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=48"});
    if (random() % 3 == 0)
        raster.spec.noData = 7.0;
    const bool fractions = raster.spec.type == GDT_Float32 || raster.spec.type == GDT_Float64;
    raster.bands.resize(2 + random() % 3);
    for (Pixels& pixels : raster.bands)
        pixels = zelto::test::MakePixels(raster.spec.width, raster.spec.height, [&](int, int) {
            return static_cast<double>(random() % 250) + (fractions ? 0.1 : 0.0);
        });
    return raster;
}

} // namespace

TEST(JointSampling, FindsForEveryBandWhatSamplingItAloneFinds) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    GDALAllRegister();
    for (int round = 0; round < 40; ++round) {
        const CompressedRaster raster = MakeCompressed(random);
        const zelto::test::TemporaryFolder folder;
        const std::string path =
            zelto::test::WriteRaster(folder.File("bands.tif"), raster.spec, raster.bands);
        // With several threads GDAL decodes on another path.
        constexpr const char* THREADS[] = {"1", "2", "5"};
        const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", THREADS[round % 3], false);
        const GDALDatasetUniquePtr joint(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        const GDALDatasetUniquePtr alone(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        std::vector<JointBand> bands;
        for (int number = 1; number <= joint->GetRasterCount(); ++number) {
            bands.push_back({joint->GetRasterBand(number), raster.spec.noData});
            ASSERT_TRUE(zelto::CanSampleJointly(*bands.back().band));
        }
        const std::vector<BandSummary> found = zelto::SampleJointly(bands);
        ASSERT_EQ(found.size(), bands.size());
        for (std::size_t b = 0; b < bands.size(); ++b) {
            BandSummary expected;
            ASSERT_TRUE(zelto::SampleBand(*alone->GetRasterBand(static_cast<int>(b) + 1),
                                          raster.spec.noData ? &*raster.spec.noData : nullptr,
                                          nullptr, expected));
            EXPECT_EQ(Bits(found[b]), Bits(expected))
                << raster.spec.width << " x " << raster.spec.height << " "
                << GDALGetDataTypeName(raster.spec.type) << ", band " << b;
        }
    }
}

TEST(JointSampling, LeavesBandsAloneThatGdalReadsInAnotherWay) {
    const Pixels pixels(64 * 64, 5.0);
    const zelto::test::TemporaryFolder folder;
    const auto isJoint = [&](zelto::test::RasterSpec spec, int bandCount) {
        spec.width = 64;
        spec.height = 64;
        const std::string path = zelto::test::WriteRaster(
            folder.File("file.tif"), spec,
            std::vector<Pixels>(static_cast<std::size_t>(bandCount), pixels));
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        return zelto::CanSampleJointly(*dataset->GetRasterBand(1));
    };
    EXPECT_TRUE(isJoint({.options = {"INTERLEAVE=PIXEL", "COMPRESS=LZW"}}, 2));
    EXPECT_FALSE(isJoint({.options = {"INTERLEAVE=PIXEL", "COMPRESS=LZW"}}, 1));
    EXPECT_FALSE(isJoint({.options = {"INTERLEAVE=BAND", "COMPRESS=LZW"}}, 2));
    EXPECT_FALSE(isJoint({.options = {"INTERLEAVE=PIXEL"}}, 2));
    EXPECT_FALSE(isJoint({.options = {"INTERLEAVE=PIXEL", "COMPRESS=JPEG"}}, 3));
    EXPECT_FALSE(isJoint({.options = {"INTERLEAVE=PIXEL", "COMPRESS=LZW"}, .overviews = {2}}, 2));
}

TEST(JointSampling, AnUnreadablePixelLeavesTheBandsToBeReadOneByOne) {
    const zelto::test::TemporaryFolder folder;
    const Pixels pixels =
        zelto::test::MakePixels(300, 300, [](int c, int r) { return (c * 31 + r * 17) % 251; });
    const std::string path = zelto::test::WriteRaster(
        folder.File("broken.tif"),
        {.width = 300, .height = 300, .options = {"INTERLEAVE=PIXEL", "COMPRESS=DEFLATE"}},
        {pixels, pixels});
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    const std::string offset =
        dataset->GetRasterBand(1)->GetMetadataItem("BLOCK_OFFSET_0_0", "TIFF");
    std::string bytes = zelto::test::ReadFile(path);
    bytes.replace(std::stoul(offset), 64, 64, '\xFF');
    zelto::test::WriteFile(path, bytes);
    dataset.reset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    EXPECT_TRUE(
        zelto::SampleJointly({{dataset->GetRasterBand(1), {}}, {dataset->GetRasterBand(2), {}}})
            .empty());
}

TEST(JointSampling, TakesEveryTypeThatADoubleHolds) {
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    for (const GDALDataType type : {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_UInt32, GDT_Int32,
                                    GDT_Float32, GDT_Float64, GDT_CFloat32}) {
        SCOPED_TRACE(GDALGetDataTypeName(type));
        const std::string path =
            zelto::test::WriteRaster(folder.File("a.tif"),
                                     {.width = 2,
                                      .height = 2,
                                      .type = type,
                                      .options = {"INTERLEAVE=PIXEL", "COMPRESS=DEFLATE"}},
                                     {{1, 2, 3, 6}, {9, 9, 9, 9}});
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        const auto found = zelto::SampleJointly(
            {{dataset->GetRasterBand(1), 6.0}, {dataset->GetRasterBand(2), {}}});
        if (type == GDT_CFloat32) {
            EXPECT_TRUE(found.empty()) << "a complex value has no range";
            continue;
        }
        ASSERT_EQ(found.size(), 2U);
        EXPECT_EQ(found[0].minimum, 1.0);
        EXPECT_EQ(found[0].maximum, 3.0);
        EXPECT_EQ(found[0].mean, 2.0);
        EXPECT_EQ(found[1].mean, 9.0);
        EXPECT_EQ(found[1].standardDeviation, 0.0);
    }
    EXPECT_TRUE(zelto::SampleJointly({}).empty());
}
