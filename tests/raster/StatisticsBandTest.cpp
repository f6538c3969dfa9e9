#include "zelto/raster/internal/StatisticsBand.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

using zelto::StatisticsBand;
using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::RasterSpec;
using zelto::test::TemporaryFolder;

namespace {

class StandIn : public testing::Test {
  protected:
    StandIn() { GDALAllRegister(); }

    GDALDatasetUniquePtr Write(const RasterSpec& spec, const Pixels& pixels) const {
        return Open(zelto::test::WriteRaster(m_folder.File("a.tif"), spec, {pixels}));
    }
    static GDALDatasetUniquePtr Open(const std::string& path) {
        return GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    }
    /// A virtual raster over the image.
    static GDALDatasetUniquePtr View(GDALDataset& image, const std::string& path = "") {
        return GDALDatasetUniquePtr(GetGDALDriverManager()->GetDriverByName("VRT")->CreateCopy(
            path.c_str(), &image, FALSE, nullptr, nullptr, nullptr));
    }

    const TemporaryFolder m_folder;
};

} // namespace

TEST_F(StandIn, AnswersForHowSamplesAreToBeUnderstoodAsItsBandDoes) {
    const auto image = Write({.width = 4,
                              .height = 2,
                              .type = GDT_UInt16,
                              .noData = 7.0,
                              .options = {"NBITS=12", "PHOTOMETRIC=MINISBLACK"}},
                             Pixels(8, 7.0));
    GDALRasterBand& band = *image->GetRasterBand(1);
    const StatisticsBand statistics(band);
    EXPECT_NE(statistics.operator->(), &band);
    int has = FALSE;
    EXPECT_EQ(statistics->GetNoDataValue(&has), 7.0);
    EXPECT_EQ(has, TRUE);
    EXPECT_EQ(statistics->GetColorInterpretation(), GCI_GrayIndex);
    EXPECT_EQ(statistics->GetMaskFlags(), GMF_NODATA);
    EXPECT_EQ(statistics->GetMaskBand(), band.GetMaskBand());
    EXPECT_STREQ(statistics->GetMetadataItem("NBITS", "IMAGE_STRUCTURE"), "12");
}

TEST_F(StandIn, AnswersForNoDataOf64Bits) {
    const auto image = Write({.width = 2, .height = 1, .type = GDT_Int64, .noData = -9.0}, {1, 2});
    int has = FALSE;
    EXPECT_EQ(StatisticsBand(*image->GetRasterBand(1))->GetNoDataValueAsInt64(&has), -9);
    EXPECT_EQ(has, TRUE);
    const auto other = Write({.width = 2, .height = 1, .type = GDT_UInt64, .noData = 9.0}, {1, 2});
    EXPECT_EQ(StatisticsBand(*other->GetRasterBand(1))->GetNoDataValueAsUInt64(&has), 9U);
    EXPECT_EQ(has, TRUE);
}

TEST_F(StandIn, KeepsResultsToItself) {
    const auto image = Write({.width = 2, .height = 2}, {1, 2, 3, 6});
    GDALRasterBand& band = *image->GetRasterBand(1);
    const StatisticsBand statistics(band);
    double found[4] = {};
    EXPECT_EQ(statistics->ComputeStatistics(FALSE, &found[0], &found[1], &found[2], &found[3],
                                            nullptr, nullptr),
              CE_None);
    EXPECT_EQ(found[2], 3.0);
    EXPECT_STREQ(statistics->GetMetadataItem("STATISTICS_MEAN"), "3");
    EXPECT_STREQ(statistics->GetMetadataItem("STATISTICS_MEAN", nullptr), "3");
    EXPECT_EQ(statistics->GetMetadataItem("STATISTICS_MEAN", "another"), nullptr);
    EXPECT_EQ(band.GetMetadataItem("STATISTICS_MEAN"), nullptr);
}

TEST_F(StandIn, ReadsThroughToItsBand) {
    const auto image = Write({.width = 4, .height = 2}, {1, 2, 3, 4, 5, 6, 7, 8});
    Pixels window(2);
    EXPECT_EQ(StatisticsBand(*image->GetRasterBand(1))
                  ->RasterIO(GF_Read, 1, 1, 2, 1, window.data(), 2, 1, GDT_Float64, 0, 0, nullptr),
              CE_None);
    EXPECT_EQ(window, (Pixels{6, 7}));
}

TEST_F(StandIn, GivesEveryOverviewAStandInOfItsOwnOnce) {
    const auto image =
        Write({.width = 64, .height = 64, .overviews = {2, 4}}, Pixels(64 * 64, 5.0));
    GDALRasterBand& band = *image->GetRasterBand(1);
    const StatisticsBand statistics(band);
    ASSERT_EQ(statistics->GetOverviewCount(), 2);
    GDALRasterBand* const second = statistics->GetOverview(1);
    GDALRasterBand* const first = statistics->GetOverview(0);
    EXPECT_EQ(second->GetXSize(), 16);
    EXPECT_EQ(first->GetXSize(), 32);
    EXPECT_NE(first, band.GetOverview(0));
    EXPECT_EQ(statistics->GetOverview(0), first);
    EXPECT_EQ(statistics->GetOverview(1), second);
    EXPECT_EQ(statistics->GetOverview(2), nullptr);
}

TEST_F(StandIn, ApproximatesAVirtualRasterFromAllOfItsOverview) {
    // 512 × 512 pixels of 1, but for one of 200 that only a level that is read whole shows.
    const Pixels pixels =
        MakePixels(512, 512, [](int x, int y) { return x == 170 && y == 90 ? 200.0 : 1.0; });
    const auto image = Write({.width = 512, .height = 512, .overviews = {2}}, pixels);
    const auto view = View(*image);
    GDALRasterBand& band = *view->GetRasterBand(1);
    ASSERT_GT(band.GetOverviewCount(), 0);
    double range[2] = {};
    EXPECT_EQ(StatisticsBand(band)->ComputeRasterMinMax(TRUE, range), CE_None);
    EXPECT_EQ(range[0], 1.0);
    EXPECT_EQ(range[1], 200.0);
    EXPECT_EQ(StatisticsBand(band)->ComputeRasterMinMax(FALSE, range), CE_None);
    EXPECT_EQ(range[1], 200.0);
}

TEST_F(StandIn, TakesTheRangeThatAVirtualRasterKnows) {
    const auto image =
        Write({.width = 512, .height = 512, .overviews = {2}}, Pixels(std::size_t{512} * 512, 9.0));
    const auto view = View(*image);
    GDALRasterBand& band = *view->GetRasterBand(1);
    band.SetMetadataItem("STATISTICS_MINIMUM", "3");
    double range[2] = {};
    EXPECT_EQ(StatisticsBand(band)->ComputeRasterMinMax(TRUE, range), CE_None);
    EXPECT_EQ(range[0], 9.0) << "half of it is not known";
    band.SetMetadataItem("STATISTICS_MAXIMUM", "4");
    EXPECT_EQ(StatisticsBand(band)->ComputeRasterMinMax(TRUE, range), CE_None);
    EXPECT_EQ(range[0], 3.0);
    EXPECT_EQ(range[1], 4.0);
}

TEST_F(StandIn, ApproximatesAVirtualRasterWithoutALargeEnoughOverviewFromItsPixels) {
    const auto image =
        Write({.width = 64, .height = 64}, MakePixels(64, 64, [](int x, int y) { return x + y; }));
    const auto view = View(*image, m_folder.File("a.vrt"));
    double all[2] = {};
    EXPECT_EQ(StatisticsBand(*view->GetRasterBand(1))->ComputeRasterMinMax(TRUE, all), CE_None);
    EXPECT_EQ(all[1], 126.0) << "it has none at all";
    int level = 2;
    ASSERT_EQ(view->BuildOverviews("NEAREST", 1, &level, 0, nullptr, nullptr, nullptr), CE_None);
    ASSERT_EQ(view->GetRasterBand(1)->GetOverviewCount(), 1);
    double range[2] = {};
    EXPECT_EQ(StatisticsBand(*view->GetRasterBand(1))->ComputeRasterMinMax(TRUE, range), CE_None);
    EXPECT_EQ(range[0], 0.0);
    EXPECT_EQ(range[1], 126.0);
}

TEST_F(StandIn, IsNotNeededWhereTheFileIsOpenForAChange) {
    Write({.width = 2, .height = 1}, {1, 2});
    const GDALDatasetUniquePtr image(
        GDALDataset::Open(m_folder.File("a.tif").c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    GDALRasterBand& band = *image->GetRasterBand(1);
    EXPECT_EQ(StatisticsBand(band).operator->(), &band);
}
