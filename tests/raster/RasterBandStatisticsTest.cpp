#include "zelto/raster/RasterSource.h"

#include "tests/raster/TestBand.h"
#include "tests/support/RecordingProgress.h"

#include <cmath>
#include <limits>

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::RecordingProgress;
using zelto::test::TestBand;

namespace {

struct Statistics {
    double min = -1.0;
    double max = -2.0;
    double mean = -3.0;
    double deviation = -4.0;
};

Statistics Sampled(CRasterBand& band, double* excluded = nullptr) {
    Statistics s;
    EXPECT_TRUE(band.ComputeStaticsFromCustom(s.min, s.max, s.mean, s.deviation, excluded));
    return s;
}

/// 7 in the pixels with odd column and odd row, which every second sample hits; else 100.
double OddIsSeven(int column, int row) {
    return column % 2 == 1 && row % 2 == 1 ? 7.0 : 100.0;
}

} // namespace

TEST(SampledStatistics, ALongBandIsSampledDownTo2048) {
    TestBand band({.width = 4096, .height = 1000}, MakePixels(4096, 1000, OddIsSeven));
    const Statistics s = Sampled(*band);
    EXPECT_EQ(s.min, 7.0);
    EXPECT_EQ(s.max, 7.0) << "the grid is 2048 × 500 and sees the odd pixels only";
    EXPECT_EQ(s.mean, 7.0);
    EXPECT_EQ(s.deviation, 0.0);
}

TEST(SampledStatistics, ATallBandIsSampledTheSameWay) {
    TestBand band({.width = 1000, .height = 4096}, MakePixels(1000, 4096, OddIsSeven));
    EXPECT_EQ(Sampled(*band).max, 7.0);
}

TEST(SampledStatistics, ABandOf2048IsReadWhole) {
    TestBand band({.width = 2048, .height = 2048}, MakePixels(2048, 2048, OddIsSeven));
    const Statistics s = Sampled(*band);
    EXPECT_EQ(s.min, 7.0);
    EXPECT_EQ(s.max, 100.0);
    EXPECT_EQ(s.mean, (7.0 + 3 * 100.0) / 4.0);
    EXPECT_EQ(s.deviation, std::sqrt((49.0 + 3 * 10000.0) / 4.0 - 76.75 * 76.75));
}

TEST(SampledStatistics, OfWholeNumbersWhoseSquaresAddUpBeyondWhatADoubleHolds) {
    // 2^22 squares of 65534 come to more than 2^53; all sums on the way are even and below 2^54.
    TestBand band({.width = 2048, .height = 2048, .type = GDT_UInt16},
                  Pixels(std::size_t{2048} * 2048, 65534.0));
    EXPECT_EQ(Sampled(*band).mean, 65534.0);
    EXPECT_EQ(Sampled(*band).deviation, 0.0);
}

TEST(SampledStatistics, EachSideOfTheGridIsAtLeastOne) {
    // 10000 / 2048 = 4.88…; 1 / 4.88… + 0.5 truncates to 0.
    TestBand band({.width = 10000, .height = 1}, Pixels(10000, 42.0));
    EXPECT_EQ(Sampled(*band).mean, 42.0);
}

TEST(SampledStatistics, GridSidesAreRounded) {
    // f = 3000 / 2048; 1500 / f + 0.5 = 1024.5: the plain grid, read by GDAL alone, agrees.
    const Pixels pixels =
        MakePixels(3000, 1501, [](int c, int r) { return (c * 7 + r * 13) % 251; });
    TestBand band({.width = 3000, .height = 1501}, pixels);
    const double f = 3000.0 / 2048.0;
    const int rows = static_cast<int>(1501 / f + 0.5);
    std::vector<double> grid(static_cast<std::size_t>(2048) * rows);
    ASSERT_EQ(band.Gdal()->RasterIO(GF_Read, 0, 0, 3000, 1501, grid.data(), 2048, rows, GDT_Float64,
                                    0, 0, nullptr),
              CE_None);
    double sum = 0.0;
    for (const double value : grid)
        sum += value;
    EXPECT_EQ(Sampled(*band).mean, sum / (2048.0 * rows));
}

TEST(SampledStatistics, EveryTypeIsTakenAtItsValue) {
    const std::vector<std::pair<GDALDataType, Pixels>> extremes = {
        {GDT_Byte, {0, 255}},
        {GDT_UInt16, {0, 65535}},
        {GDT_Int16, {-32768, 32767}},
        {GDT_UInt32, {0, 4294967295.0}},
        {GDT_Int32, {-2147483648.0, 2147483647}},
        {GDT_Float32, {-0.5, 16777216}},
        {GDT_Float64, {-0.1, 1e15}},
        {GDT_CInt16, {-5, 70}},
        {GDT_CFloat64, {-0.1, 1e15}},
    };
    for (const auto& [type, pixels] : extremes) {
        SCOPED_TRACE(GDALGetDataTypeName(type));
        TestBand band({.width = 2, .height = 1, .type = type}, pixels);
        const Statistics s = Sampled(*band);
        const double mean = (pixels[0] + pixels[1]) / 2.0;
        const double squares = pixels[0] * pixels[0] + pixels[1] * pixels[1];
        EXPECT_EQ(s.min, pixels[0]);
        EXPECT_EQ(s.max, pixels[1]);
        EXPECT_EQ(s.mean, mean);
        EXPECT_EQ(s.deviation, std::sqrt(squares / 2.0 - mean * mean));
    }
}

TEST(SampledStatistics, AVirtualBandCountsWhatItComputesNotWhatItsTypeHolds) {
    TestBand file({.width = 2, .height = 1}, {1, 200});
    zelto::test::WriteFile(file.Folder().Path() / "scaled.vrt",
                           "<VRTDataset rasterXSize='2' rasterYSize='1'>"
                           "<VRTRasterBand dataType='Byte' band='1'><ComplexSource>"
                           "<SourceFilename relativeToVRT='1'>band.tif</SourceFilename>"
                           "<SourceBand>1</SourceBand><ScaleOffset>0</ScaleOffset>"
                           "<ScaleRatio>1.5</ScaleRatio></ComplexSource></VRTRasterBand>"
                           "</VRTDataset>");
    GDALDatasetUniquePtr dataset(
        GDALDataset::Open(file.Folder().File("scaled.vrt").c_str(), GDAL_OF_RASTER));
    ASSERT_NE(dataset, nullptr);
    CRasterBand band(dataset->GetRasterBand(1), true, false);
    EXPECT_EQ(band.GetMinimum(), 1.5);
    EXPECT_EQ(band.GetMaximum(), 300.0);
    EXPECT_EQ(band.GetMean(), 150.75);
    ASSERT_TRUE(band.GetData(0, 0, 2, 1, 2, 1));
    EXPECT_EQ(band.GetCacheDataMean(), 150.75) << "what the display stretches";
}

TEST(SampledStatistics, LeavesOutNoDataAndTheExcludedValue) {
    TestBand band({.width = 3, .height = 2, .noData = 0.0}, {0, 1, 2, 3, 200, 0});
    double excluded = 200.0 + 5e-9;
    const Statistics s = Sampled(*band, &excluded);
    EXPECT_EQ(s.min, 1.0);
    EXPECT_EQ(s.max, 3.0);
    EXPECT_EQ(s.mean, 2.0);
    EXPECT_EQ(s.deviation, std::sqrt(14.0 / 3.0 - 4.0));
    EXPECT_EQ(Sampled(*band).max, 200.0);
    excluded = 200.0 + 2e-8;
    EXPECT_EQ(Sampled(*band, &excluded).max, 200.0);
}

TEST(SampledStatistics, WithoutACountedSampleTheOutputsKeepTheirValues) {
    TestBand band({.width = 2, .height = 2, .noData = 9.0}, {9, 9, 9, 9});
    const Statistics s = Sampled(*band);
    EXPECT_EQ(s.min, -1.0);
    EXPECT_EQ(s.max, -2.0);
    EXPECT_EQ(s.mean, -3.0);
    EXPECT_EQ(s.deviation, -4.0);
}

TEST(SampledStatistics, StoresNothing) {
    TestBand band({.width = 2, .height = 1}, {10, 20});
    double excluded = 20.0;
    EXPECT_EQ(Sampled(*band, &excluded).max, 10.0);
    EXPECT_EQ(band->GetMaximum(), 20.0);
}

TEST(SampledStatistics, AVarianceThatRoundsBelowZeroCountsAsZero) {
    // 0.1 is not exact: the mean of its squares comes out below the square of its mean.
    TestBand band({.width = 3, .height = 1, .type = GDT_Float64}, {0.1, 0.1, 0.1});
    double sum = 0.1 + 0.1;
    sum += 0.1;
    double squares = 0.1 * 0.1 + 0.1 * 0.1;
    squares += 0.1 * 0.1;
    const double variance = squares / 3.0 - (sum / 3.0) * (sum / 3.0);
    EXPECT_EQ(Sampled(*band).deviation, variance < 0.0 ? 0.0 : std::sqrt(variance));
    TestBand negative({.width = 3, .height = 1, .type = GDT_Float64},
                      {1e8 + 0.1, 1e8 + 0.1, 1e8 + 0.1});
    EXPECT_GE(Sampled(*negative).deviation, 0.0);
}

TEST(SampledStatistics, NaNCountsAndSpoilsTheMean) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    TestBand band({.width = 3, .height = 1, .type = GDT_Float32}, {1.0, nan, 3.0});
    const Statistics s = Sampled(*band);
    EXPECT_EQ(s.min, 1.0);
    EXPECT_EQ(s.max, 3.0);
    EXPECT_TRUE(std::isnan(s.mean));
    EXPECT_TRUE(std::isnan(s.deviation));
    TestBand first({.width = 2, .height = 1, .type = GDT_Float32}, {nan, 3.0});
    EXPECT_TRUE(std::isnan(Sampled(*first).min)) << "the first sample sets both ends";
    EXPECT_TRUE(std::isnan(Sampled(*first).max));
}

TEST(MinMax, StoredValuesAreAnsweredWithoutReading) {
    TestBand band({.width = 2, .height = 1}, {10, 20});
    band->StoreMinMax(1.0, 2.0);
    double min = 0.0;
    double max = 0.0;
    EXPECT_TRUE(band->ComputeMinMax(&min, &max, true));
    EXPECT_EQ(min, 1.0);
    EXPECT_EQ(max, 2.0);
    band->SetStoredMinMaxFixed(true);
    EXPECT_TRUE(band->ComputeMinMax(&min, &max, false));
    EXPECT_EQ(max, 2.0);
    band->SetStoredMinMaxFixed(false);
    EXPECT_TRUE(band->ComputeMinMax(&min, &max, false));
    EXPECT_EQ(min, 10.0);
    EXPECT_EQ(max, 20.0);
    EXPECT_EQ(band->GetMinimum(), 10.0) << "stored again";
    EXPECT_EQ(band->GetMaximum(), 20.0);
    EXPECT_TRUE(band->ComputeMinMax(nullptr, nullptr, false));
}

TEST(MinMax, IsExactWhereTheSampledOneIsNot) {
    TestBand band({.width = 4096, .height = 1000}, MakePixels(4096, 1000, OddIsSeven));
    EXPECT_EQ(band->GetMaximum(), 7.0);
    double min = 0.0;
    double max = 0.0;
    EXPECT_TRUE(band->ComputeMinMax(&min, &max, false));
    EXPECT_EQ(max, 100.0);
}

TEST(MinMax, FailsWhenThereIsNothingToCompare) {
    TestBand band({.width = 2, .height = 1, .noData = 9.0}, {9, 9});
    band->StoreMinMax(1.0, 2.0);
    double min = -5.0;
    double max = -6.0;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(band->ComputeMinMax(&min, &max, false));
    CPLPopErrorHandler();
    EXPECT_EQ(min, -5.0);
    EXPECT_EQ(band->GetMaximum(), 2.0);
}

TEST(ExactStatistics, AreReportedAndNotStored) {
    TestBand band({.width = 4, .height = 1, .noData = 0.0}, {0, 2, 4, 6});
    band->StoreMinMax(-1.0, 99.0);
    Statistics s;
    RecordingProgress progress;
    EXPECT_TRUE(band->ComputeStatics(&s.min, &s.max, &s.mean, &s.deviation, false, &progress));
    EXPECT_EQ(s.min, 2.0);
    EXPECT_EQ(s.max, 6.0);
    EXPECT_EQ(s.mean, 4.0);
    EXPECT_DOUBLE_EQ(s.deviation, std::sqrt(8.0 / 3.0));
    EXPECT_EQ(band->GetMinimum(), -1.0);
    EXPECT_EQ(band->GetMaximum(), 99.0);
    ASSERT_EQ(progress.m_stages.size(), 1U);
    EXPECT_EQ(progress.m_stages[0].first, L"计算统计信息");
    EXPECT_EQ(progress.m_stages[0].second, 100);
    EXPECT_FALSE(progress.m_steps.empty());
}

TEST(ExactStatistics, StoredOnesNeedNoReadingAndNoProgress) {
    TestBand band({.width = 2, .height = 1}, {10, 20});
    Statistics s;
    RecordingProgress progress;
    EXPECT_TRUE(band->ComputeStatics(&s.min, &s.max, &s.mean, &s.deviation, true, &progress));
    EXPECT_EQ(s.min, 10.0);
    EXPECT_EQ(s.max, 20.0);
    EXPECT_EQ(s.mean, 15.0);
    EXPECT_EQ(s.deviation, 5.0);
    EXPECT_TRUE(progress.m_stages.empty());
    EXPECT_TRUE(band->ComputeStatics(nullptr, nullptr, nullptr, nullptr, true, nullptr));
}

TEST(ExactStatistics, SkipNaNAsGdalDoes) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    TestBand band({.width = 3, .height = 1, .type = GDT_Float32}, {1.0, nan, 3.0});
    Statistics s;
    EXPECT_TRUE(band->ComputeStatics(&s.min, &s.max, &s.mean, &s.deviation, false, nullptr));
    EXPECT_EQ(s.mean, 2.0);
}

TEST(ExactStatistics, CancellingFails) {
    TestBand band({.width = 2, .height = 1}, {10, 20});
    Statistics s;
    RecordingProgress progress(0);
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(band->ComputeStatics(&s.min, &s.max, &s.mean, &s.deviation, false, &progress));
    CPLPopErrorHandler();
    EXPECT_EQ(s.min, -1.0);
}

TEST(ExactStatistics, FailWithoutAValidPixel) {
    TestBand band({.width = 2, .height = 1, .noData = 9.0}, {9, 9});
    Statistics s;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(band->ComputeStatics(&s.min, &s.max, &s.mean, &s.deviation, false, nullptr));
    CPLPopErrorHandler();
}

TEST(ReplacedStatistics, GiveWayToTheBandsOwnAgain) {
    TestBand band({.width = 4, .height = 3}, zelto::test::Twelve());
    const double mean = band->GetMean();
    EXPECT_EQ(mean, 5.5);
    band->RestoreStatistics(); // nothing is replaced
    EXPECT_EQ(band->GetMean(), 5.5);
    EXPECT_TRUE(band->ReplaceStatistics(1.0, 2.0, 1.5, 0.5));
    EXPECT_TRUE(band->ReplaceStatistics(10.0, 20.0, 15.0, 5.0));
    EXPECT_EQ(band->GetMinimum(), 10.0);
    EXPECT_EQ(band->GetStandardDeviation(), 5.0);
    band->RestoreStatistics();
    EXPECT_EQ(band->GetMinimum(), 0.0);
    EXPECT_EQ(band->GetMaximum(), 11.0);
    EXPECT_EQ(band->GetMean(), 5.5);
}

TEST(ReplacedStatistics, OfABandThatTakesItsOwnOnDemandLeaveThemToBeTaken) {
    const zelto::test::TemporaryFolder folder;
    zelto::test::WriteRaster(folder.File("a.tif"), {.width = 4, .height = 3},
                             {zelto::test::Twelve()});
    for (const bool isTaken : {false, true}) {
        SCOPED_TRACE(isTaken);
        CRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, false), GIS_SUCCESS);
        CRasterBand& band = *source.GetRasterBand(0);
        if (isTaken) {
            EXPECT_EQ(band.GetMean(), 5.5);
        }
        EXPECT_TRUE(band.ReplaceStatistics(10.0, 20.0, 15.0, 5.0));
        EXPECT_EQ(band.GetMean(), 15.0);
        band.RestoreStatistics();
        EXPECT_EQ(band.GetMean(), 5.5);
        EXPECT_EQ(band.GetMaximum(), 11.0);
    }
}

TEST(ReplacedStatistics, KeepTheOwnOnesOfTheImageThatWasOpened) {
    for (const bool isTaken : {false, true}) {
        SCOPED_TRACE(isTaken);
        const zelto::test::TemporaryFolder folder;
        zelto::test::WriteRaster(
            folder.File("a.tif"), {.width = 300, .height = 300},
            {zelto::test::MakePixels(300, 300, [](int c, int) { return c % 2; })});
        CRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, false), GIS_SUCCESS);
        CRasterBand& band = *source.GetRasterBand(0);
        if (isTaken) {
            EXPECT_EQ(band.GetMean(), 0.5);
        }
        EXPECT_TRUE(band.ReplaceStatistics(10.0, 20.0, 15.0, 5.0));
        // A pyramid changes what later samples are; the band's own are taken before.
        EXPECT_EQ(source.BuildOverviews("NEAREST", 0, nullptr, nullptr), GIS_SUCCESS);
        EXPECT_EQ(band.GetMean(), 15.0);
        band.RestoreStatistics();
        EXPECT_EQ(band.GetMean(), 0.5);
        EXPECT_EQ(band.GetMaximum(), 1.0);
    }
}
