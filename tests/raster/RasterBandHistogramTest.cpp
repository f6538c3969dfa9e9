#include "zelto/display/RasterHistogram.h"

#include "tests/raster/TestBand.h"
#include "tests/support/RecordingProgress.h"

#include <limits>

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::RecordingProgress;
using zelto::test::TestBand;

namespace {

using Counts = std::vector<int>;

Counts Histogram(CRasterBand& band, double min, double max, int buckets,
                 CDataProgress* progress = nullptr) {
    Counts counts(static_cast<std::size_t>(buckets), -1);
    EXPECT_TRUE(band.GetHistogram(min, max, buckets, counts.data(), false, false, progress));
    return counts;
}

const Pixels TEN = {0, 0, 0, 1, 2, 2, 3, 4, 4, 4};

} // namespace

TEST(BandHistogram, CountsPixelsPerBucket) {
    TestBand band({.width = 10, .height = 1}, TEN);
    // Buckets of width 1 from 1: [1,2) [2,3) [3,4) [4,5); what lies outside is not counted.
    EXPECT_EQ(Histogram(*band, 1.0, 5.0, 4), (Counts{1, 2, 1, 3}));
}

TEST(BandHistogram, AMinimumOfZeroLeavesZerosOut) {
    TestBand band({.width = 10, .height = 1}, TEN);
    // From 0.5: [0.5, 2.75) holds 1, 2, 2; [2.75, 5) holds 3, 4, 4, 4.
    EXPECT_EQ(Histogram(*band, 0.0, 5.0, 2), (Counts{3, 4}));
    ASSERT_NE(band->GetHistogramObject(), nullptr);
    double min = -1.0;
    double max = -1.0;
    int buckets = 0;
    band->GetHistogramObject()->GetHistogram(min, max, buckets, nullptr, nullptr);
    EXPECT_EQ(min, 0.0) << "the cache is keyed by what was asked";
    EXPECT_EQ(max, 5.0);
    EXPECT_EQ(buckets, 2);
}

TEST(BandHistogram, AFilteredBandCountsTheFilteredPixels) {
    const zelto::test::TemporaryFolder folder;
    // One bright pixel in the middle: the mean of 3 × 3 spreads a ninth of it over nine.
    Pixels pixels(81, 9.0);
    pixels[40] = 99.0;
    zelto::test::WriteRaster(folder.File("a.tif"), {.width = 9, .height = 9}, {pixels});
    zelto::test::WriteFile(
        folder.Path() / "a.vrt",
        "<VRTDataset rasterXSize='9' rasterYSize='9'><VRTRasterBand dataType='Byte' band='1'>"
        "<KernelFilteredSource><SourceFilename relativeToVRT='1'>a.tif</SourceFilename>"
        "<SourceBand>1</SourceBand><Kernel normalized='1'><Size>3</Size>"
        "<Coefs>1 1 1 1 1 1 1 1 1</Coefs></Kernel></KernelFilteredSource>"
        "</VRTRasterBand></VRTDataset>");
    const GDALDatasetUniquePtr view(GDALDataset::Open(folder.File("a.vrt").c_str()));
    ASSERT_NE(view, nullptr);
    CRasterBand band(view->GetRasterBand(1), true, false);
    // Buckets around 9, 19 and 99.
    EXPECT_EQ(Histogram(band, 4.0, 14.0, 1), Counts{72});
    EXPECT_EQ(Histogram(band, 14.0, 24.0, 1), Counts{9});
    EXPECT_EQ(Histogram(band, 94.0, 104.0, 1), Counts{0});
}

TEST(BandHistogram, RepeatedRequestsAreAnsweredFromTheLast) {
    TestBand band({.width = 10, .height = 1}, TEN);
    RecordingProgress first;
    const Counts counts = Histogram(*band, 0.0, 5.0, 2, &first);
    ASSERT_EQ(first.m_stages.size(), 1U);
    EXPECT_EQ(first.m_stages[0].first, L"计算直方图信息");
    EXPECT_EQ(first.m_stages[0].second, 100);
    EXPECT_FALSE(first.m_steps.empty());
    const CRasterHistogram* cached = band->GetHistogramObject();
    RecordingProgress second;
    EXPECT_EQ(Histogram(*band, 0.9e-5, 5.0 - 0.9e-5, 2, &second), counts);
    EXPECT_TRUE(second.m_stages.empty());
    EXPECT_EQ(band->GetHistogramObject(), cached);
}

TEST(BandHistogram, AnyDifferenceCountsAgain) {
    TestBand band({.width = 10, .height = 1}, TEN);
    Counts counts(16);
    const auto ask = [&](double min, double max, int buckets, bool outOfRange, bool approx) {
        RecordingProgress progress;
        EXPECT_TRUE(
            band->GetHistogram(min, max, buckets, counts.data(), outOfRange, approx, &progress));
        return progress.m_stages.size();
    };
    EXPECT_EQ(ask(1.0, 5.0, 4, false, false), 1U);
    EXPECT_EQ(ask(1.0, 5.0, 4, false, false), 0U);
    EXPECT_EQ(ask(1.0 + 2e-5, 5.0, 4, false, false), 1U);
    EXPECT_EQ(ask(1.0 + 2e-5, 5.1, 4, false, false), 1U);
    EXPECT_EQ(ask(1.0 + 2e-5, 5.1, 5, false, false), 1U);
    EXPECT_EQ(ask(1.0 + 2e-5, 5.1, 5, true, false), 1U);
    EXPECT_EQ(ask(1.0 + 2e-5, 5.1, 5, true, true), 1U);
    EXPECT_EQ(ask(1.0 + 2e-5, 5.1, 5, true, true), 0U);
}

TEST(BandHistogram, TheFlagsOnlyKeyTheCache) {
    TestBand band({.width = 10, .height = 1}, TEN);
    Counts counts(2);
    EXPECT_TRUE(band->GetHistogram(1.0, 3.0, 2, counts.data(), true, true, nullptr));
    EXPECT_EQ(counts, (Counts{1, 2})) << "values out of range are never counted";
    bool outOfRange = false;
    bool approx = false;
    double min = 0.0;
    double max = 0.0;
    int buckets = 0;
    band->GetHistogramObject()->GetHistogram(min, max, buckets, &outOfRange, &approx);
    EXPECT_TRUE(outOfRange);
    EXPECT_TRUE(approx);
}

TEST(BandHistogram, FailuresKeepTheLastOne) {
    TestBand band({.width = 10, .height = 1}, TEN);
    Histogram(*band, 1.0, 5.0, 4);
    const CRasterHistogram* cached = band->GetHistogramObject();
    Counts counts(4);
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(band->GetHistogram(3.0, 3.0, 4, counts.data(), false, false, nullptr));
    EXPECT_FALSE(band->GetHistogram(5.0, 3.0, 4, counts.data(), false, false, nullptr));
    EXPECT_FALSE(band->GetHistogram(0.0, 0.5, 4, counts.data(), false, false, nullptr));
    RecordingProgress cancelled(0);
    EXPECT_FALSE(band->GetHistogram(1.0, 6.0, 4, counts.data(), false, false, &cancelled));
    EXPECT_FALSE(band->GetHistogram(1.0, 5.0, 0, counts.data(), false, false, nullptr));
    EXPECT_FALSE(band->GetHistogram(1.0, 5.0, -3, counts.data(), false, false, nullptr));
    EXPECT_FALSE(band->GetHistogram(1.0, 5.0, 4, nullptr, false, false, nullptr));
    CPLPopErrorHandler();
    EXPECT_EQ(band->GetHistogramObject(), cached);
}

TEST(BandHistogram, LeavesOutNoDataAndNaN) {
    TestBand band({.width = 4, .height = 1, .type = GDT_Float32, .noData = 2.0},
                  {1.0, 2.0, std::numeric_limits<double>::quiet_NaN(), 3.0});
    EXPECT_EQ(Histogram(*band, 1.0, 4.0, 3), (Counts{1, 0, 1}));
}

TEST(BandHistogram, CountsExactlyUpToAHundredMebipixels) {
    // Sparse, so that only the block with the one pixel is stored.
    TestBand band({.width = 64, .height = 64}, Pixels(64 * 64, 0.0));
    const std::string path = band.Folder().File("large.tif");
    CPLStringList options;
    options.SetNameValue("SPARSE_OK", "TRUE");
    options.SetNameValue("TILED", "YES");
    GDALDatasetUniquePtr dataset(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        path.c_str(), 10240, 10240, 1, GDT_Byte, options.List()));
    std::uint8_t value = 200;
    ASSERT_EQ(dataset->GetRasterBand(1)->RasterIO(GF_Write, 777, 333, 1, 1, &value, 1, 1, GDT_Byte,
                                                  0, 0, nullptr),
              CE_None);
    dataset.reset(GDALDataset::Open((dataset.reset(), path.c_str()), GDAL_OF_RASTER));
    CRasterBand large(dataset->GetRasterBand(1), false, true);
    EXPECT_EQ(Histogram(large, 199.5, 200.5, 1), (Counts{1}));
}

TEST(BandHistogram, BeyondThatItIsGdalsApproximation) {
    zelto::test::TemporaryFolder folder;
    const std::string path = folder.File("large.tif");
    GDALAllRegister();
    CPLStringList options;
    options.SetNameValue("SPARSE_OK", "TRUE");
    options.SetNameValue("TILED", "YES");
    GDALDatasetUniquePtr dataset(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        path.c_str(), 10241, 10240, 1, GDT_Byte, options.List()));
    std::vector<std::uint8_t> block(1000 * 1000, 200);
    ASSERT_EQ(dataset->GetRasterBand(1)->RasterIO(GF_Write, 500, 300, 1000, 1000, block.data(),
                                                  1000, 1000, GDT_Byte, 0, 0, nullptr),
              CE_None);
    int levels[] = {16};
    ASSERT_EQ(dataset->BuildOverviews("NEAREST", 1, levels, 0, nullptr, nullptr, nullptr), CE_None);
    dataset.reset();

    dataset.reset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    CRasterBand large(dataset->GetRasterBand(1), false, true);
    const Counts found = Histogram(large, -0.5, 255.5, 256);
    dataset.reset();
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"large.tif"}));

    dataset.reset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    std::vector<GUIntBig> expected(256);
    ASSERT_EQ(dataset->GetRasterBand(1)->GetHistogram(-0.5, 255.5, 256, expected.data(), FALSE,
                                                      TRUE, nullptr, nullptr),
              CE_None);
    EXPECT_EQ(found, Counts(expected.begin(), expected.end()));
    EXPECT_LT(found[0] + found[200], 10241 * 100) << "a sample, not every pixel";
}

TEST(BandHistogram, AGivenOneIsNoAnswerToARequest) {
    TestBand band({.width = 10, .height = 1}, TEN);
    const Counts counted = Histogram(*band, 1.0, 5.0, 4);
    const Counts given = {100, 200, 300, 400};
    ASSERT_TRUE(band->SetHistogram(1.0, 5.0, 4, given.data()));
    EXPECT_EQ(Histogram(*band, 1.0, 5.0, 4), counted);
    EXPECT_EQ(Histogram(*band, 1.0, 5.0, 4), counted);
}
