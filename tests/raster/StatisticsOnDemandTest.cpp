#include "zelto/raster/internal/StatisticsOnDemand.h"

#include "tests/raster/HugeBlock.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

using zelto::StatisticsOnDemand;
using zelto::test::Pixels;
using zelto::test::RasterSpec;
using zelto::test::TemporaryFolder;
using Kind = StatisticsOnDemand::Kind;

namespace {

GDALDatasetUniquePtr OpenTogether(const std::string& path, const RasterSpec& spec,
                                  const std::vector<double>& values) {
    GDALAllRegister();
    std::vector<Pixels> bands;
    bands.reserve(values.size());
    for (const double value : values)
        bands.emplace_back(static_cast<std::size_t>(spec.width) * spec.height, value);
    zelto::test::WriteRaster(path, spec, bands);
    return GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
}

} // namespace

TEST(StatisticsOnDemand, BandsOfAnotherDataSetAreSampledApart) {
    const TemporaryFolder folder;
    RasterSpec spec = {
        .width = 3, .height = 2, .options = {"INTERLEAVE=PIXEL", "COMPRESS=DEFLATE"}};
    const auto first = OpenTogether(folder.File("a.tif"), spec, {1, 2});
    const auto same = OpenTogether(folder.File("b.tif"), spec, {3, 4});
    spec.width = 5;
    const auto wider = OpenTogether(folder.File("c.tif"), spec, {5, 6});
    StatisticsOnDemand statistics;
    for (GDALDataset* dataset : {first.get(), same.get(), wider.get()})
        for (int number = 1; number <= 2; ++number)
            statistics.Add(*dataset->GetRasterBand(number), Kind::Sampled);
    const std::size_t range = statistics.Add(*first->GetRasterBand(2), Kind::Range);
    EXPECT_EQ(statistics.Of(3).mean, 4.0);
    EXPECT_EQ(statistics.Of(0).mean, 1.0);
    EXPECT_EQ(statistics.Of(5).maximum, 6.0);
    EXPECT_EQ(statistics.Of(range).maximum, 2.0);
    EXPECT_EQ(statistics.Of(range).mean, 0.0) << "nothing but a range was asked for";
    statistics.TakeAll();
    EXPECT_EQ(statistics.Of(1).mean, 2.0);
    EXPECT_EQ(statistics.Of(2).mean, 3.0);
    EXPECT_EQ(statistics.Of(4).mean, 5.0);
}

TEST(StatisticsOnDemand, MoreBandsThanMemoryShallBeTakenForShareOutIntoPasses) {
    // The samples of two bands take 64 MB.
    const TemporaryFolder folder;
    const auto image = OpenTogether(
        folder.File("a.tif"),
        {.width = 2048,
         .height = 2048,
         .type = GDT_Float64,
         .options = {"INTERLEAVE=PIXEL", "COMPRESS=DEFLATE", "ZLEVEL=1", "SPARSE_OK=TRUE"}},
        {1, 2, 3});
    StatisticsOnDemand statistics;
    for (int number = 1; number <= 3; ++number)
        statistics.Add(*image->GetRasterBand(number), Kind::Sampled);
    EXPECT_EQ(statistics.Of(2).mean, 3.0);
    EXPECT_EQ(statistics.Of(1).mean, 2.0);
    EXPECT_EQ(statistics.Of(0).mean, 1.0);
}

TEST(StatisticsOnDemand, BlocksBeyondAnyHealthyFilesAreNotLookedAt) {
    GDALAllRegister();
    const TemporaryFolder folder;
    const std::string path = zelto::test::WriteHugeBlock(folder, 40'000);
    const GDALDatasetUniquePtr image(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    GDALRasterBand& band = *image->GetRasterBand(1);
    const zelto::BandSummary range = zelto::ApproximateRange(band);
    EXPECT_EQ(range.minimum, 0.0);
    EXPECT_EQ(range.maximum, 0.0);
    const zelto::BandSummary sampled = zelto::SampledOrTypeRange(band, nullptr);
    EXPECT_EQ(sampled.minimum, 0.0);
    EXPECT_EQ(sampled.maximum, 255.0);
}
