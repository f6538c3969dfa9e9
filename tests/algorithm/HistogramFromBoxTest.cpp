#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"

#include <filesystem>
#include <limits>
#include <numeric>

using namespace zelto::test;

namespace {

class HistogramFromBox : public RegionTest {
  protected:
    bool Compute(CRasterSource& source, CBoundingBox box, double low = -1e300, double high = 1e300,
                 int band = 0, int bins = 256) {
        m_histogram.assign(256, -999);
        m_min = m_max = m_mean = m_low = m_high = -999;
        m_count = -999;
        return CRasterAlgorithm::ComputeBandHistogramFromBox(
            &source, band, &box, m_histogram.data(), bins, m_min, m_max, m_mean, m_low, m_high, low,
            high, m_count, false, nullptr);
    }
    int Counted() const { return std::accumulate(m_histogram.begin(), m_histogram.end(), 0); }

    std::vector<int> m_histogram;
    double m_min = 0, m_max = 0, m_mean = 0, m_low = 0, m_high = 0;
    __int64 m_count = 0;
};

} // namespace

TEST_F(HistogramFromBox, NullArgumentsAnswerFalse) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}});
    CBoundingBox box(0, 1, 2, 0);
    int histogram[256];
    int* histograms[] = {histogram};
    double d = 0;
    __int64 count = 5;
    const auto one = [&](CRasterSource* s, CBoundingBox* b, int* h) {
        return CRasterAlgorithm::ComputeBandHistogramFromBox(s, 0, b, h, 256, d, d, d, d, d, d, d,
                                                             count, false, nullptr);
    };
    const auto all = [&](CRasterSource* s, CBoundingBox* b, int** h) {
        return CRasterAlgorithm::ComputeHistogramFromBox(s, b, h, &d, &d, &d, &d, &d, &d, &d, count,
                                                         false, nullptr);
    };
    EXPECT_FALSE(one(nullptr, &box, histogram));
    EXPECT_FALSE(one(source.get(), nullptr, histogram));
    EXPECT_FALSE(one(source.get(), &box, nullptr));
    EXPECT_FALSE(all(nullptr, &box, histograms));
    EXPECT_FALSE(all(source.get(), nullptr, histograms));
    EXPECT_FALSE(all(source.get(), &box, nullptr));
    EXPECT_EQ(count, 5);
}

TEST_F(HistogramFromBox, ABoxOffTheRasterOrOfOnePixelAnswersFalse) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}});
    EXPECT_FALSE(Compute(*source, {5, 1, 7, 0}));
    EXPECT_FALSE(Compute(*source, {0.1, 0.9, 0.8, 0.2}));
    EXPECT_EQ(m_histogram[0], -999);
}

TEST_F(HistogramFromBox, ABoxOfMorePixelsThan32BitsCountAnswersFalseAndTellsSo) {
    // 65,537 × 65,536 pixels are 65,536 in 32 bits.
    m_path = m_folder.File("large.vrt");
    WriteFile(m_path, "<VRTDataset rasterXSize='65537' rasterYSize='65536'>"
                      "<GeoTransform>0,1,0,65536,0,-1</GeoTransform>"
                      "<VRTRasterBand dataType='Byte' band='1'/></VRTDataset>");
    const auto source = Reopen();
    EXPECT_FALSE(Compute(*source, {0, 65536, 65537, 0}));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_path + ": the region has more pixels than can be counted");
    EXPECT_EQ(m_count, -999);
}

TEST_F(HistogramFromBox, ABandThatTheRasterDoesNotHaveCountsNothing) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}});
    for (const int band : {-1, 1}) {
        EXPECT_TRUE(Compute(*source, {0, 1, 2, 0}, -1e300, 1e300, band));
        EXPECT_EQ(m_count, 0);
        EXPECT_EQ(m_min, -999);
        EXPECT_EQ(m_histogram[0], -999);
    }
}

TEST_F(HistogramFromBox, TheEndsOfTheRangeAreNotCounted) {
    // Bins are trunc((v − 10) / 255 × 255 + 0.5): v − 10.
    auto source = Open(UnitSpec(6, 1, GDT_UInt16), {{10, 11, 12, 12, 264, 265}});
    EXPECT_TRUE(Compute(*source, {0, 1, 6, 0}));
    EXPECT_EQ(m_count, 6);
    EXPECT_EQ(m_min, 10);
    EXPECT_EQ(m_max, 265);
    EXPECT_DOUBLE_EQ(m_mean, (10 + 11 + 24 + 264 + 265) / 6.0);
    EXPECT_EQ(m_low, 0);
    EXPECT_EQ(m_high, 255);
    EXPECT_EQ(m_histogram[0], 0);
    EXPECT_EQ(m_histogram[1], 1);
    EXPECT_EQ(m_histogram[2], 2);
    EXPECT_EQ(m_histogram[254], 1);
    EXPECT_EQ(m_histogram[255], 0);
    EXPECT_EQ(Counted(), 4);
}

TEST_F(HistogramFromBox, ABandOfOneValueCountsNothing) {
    auto source = Open(UnitSpec(4, 1), {{7, 7, 7, 7}});
    EXPECT_TRUE(Compute(*source, {0, 1, 4, 0}));
    EXPECT_EQ(m_count, 4);
    EXPECT_EQ(m_min, 7);
    EXPECT_EQ(m_max, 7);
    EXPECT_EQ(Counted(), 0);
}

TEST_F(HistogramFromBox, ValuesLeftOutOfTheStatisticsAreCountedInBins) {
    RasterSpec spec = UnitSpec(6, 1, GDT_Float32);
    spec.noData = 100.0;
    auto source = Open(spec, {{0, 100, -50, 205, 60, 150}});
    // Statistics over −50 … 205 leave out 0 (zero) and 100 (no-data); bins are v + 50.
    EXPECT_TRUE(Compute(*source, {0, 1, 6, 0}));
    EXPECT_EQ(m_count, 4);
    EXPECT_EQ(m_min, -50);
    EXPECT_EQ(m_max, 205);
    EXPECT_EQ(m_mean, 91.25);
    for (const int bin : {50, 150, 110, 200})
        EXPECT_EQ(m_histogram[static_cast<std::size_t>(bin)], 1) << bin;
    EXPECT_EQ(Counted(), 4);
}

TEST_F(HistogramFromBox, ClippedValuesAreCountedWhereTheyFallInTheRange) {
    auto source = Open(UnitSpec(4, 1, GDT_Float32), {{10, 20, 265, 15}});
    EXPECT_TRUE(Compute(*source, {0, 1, 4, 0}, 10, 20));
    EXPECT_EQ(m_count, 3);
    EXPECT_EQ(m_max, 20);
    // 15 → trunc(127.5 + 0.5) = 128; 265 is far beyond bin 254.
    EXPECT_EQ(m_histogram[128], 1);
    EXPECT_EQ(Counted(), 1);
}

TEST_F(HistogramFromBox, WhatIsNotANumberIsNeitherCountedNorBinned) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    auto source = Open(UnitSpec(4, 1, GDT_Float32), {{nan, 10, 20, 265}});
    EXPECT_TRUE(Compute(*source, {0, 1, 4, 0}));
    EXPECT_EQ(m_count, 3);
    EXPECT_EQ(m_min, 10);
    EXPECT_EQ(m_max, 265);
    EXPECT_DOUBLE_EQ(m_mean, 295 / 3.0);
    EXPECT_EQ(m_histogram[10], 1);
    EXPECT_EQ(Counted(), 1);
}

TEST_F(HistogramFromBox, WithEverythingClippedTheCountIsZeroAndTheMeanNotANumber) {
    auto source = Open(UnitSpec(4, 1), {{1, 2, 3, 4}});
    EXPECT_TRUE(Compute(*source, {0, 1, 4, 0}, 50, 60));
    EXPECT_EQ(m_count, 0);
    EXPECT_TRUE(std::isnan(m_mean));
    EXPECT_EQ(m_min, 1.7976931348623157e308);
    EXPECT_EQ(m_max, SMALLEST_POSITIVE);
    // (v − min) / (max − min) is just below 1 here: bin 255, not counted.
    EXPECT_EQ(Counted(), 0);
}

TEST_F(HistogramFromBox, NegativeValuesLeaveTheMaximumAtTheSmallestPositiveNumber) {
    auto source = Open(UnitSpec(3, 1, GDT_Int16), {{-4, -2, -1}});
    EXPECT_TRUE(Compute(*source, {0, 1, 3, 0}));
    EXPECT_EQ(m_max, SMALLEST_POSITIVE);
    EXPECT_EQ(m_histogram[128], 1); // −2: 127.5 + 0.5
    EXPECT_EQ(m_histogram[191], 1); // −1: 191.25 + 0.5
}

TEST_F(HistogramFromBox, BinsBeyondTheBinCountAreNotCounted) {
    auto source = Open(UnitSpec(6, 1, GDT_UInt16), {{10, 11, 12, 12, 264, 265}});
    EXPECT_TRUE(Compute(*source, {0, 1, 6, 0}, -1e300, 1e300, 0, 2));
    EXPECT_EQ(m_histogram[0], 0);
    EXPECT_EQ(m_histogram[1], 1);
    EXPECT_EQ(m_histogram[2], -999); // not even zeroed
    EXPECT_TRUE(Compute(*source, {0, 1, 6, 0}, -1e300, 1e300, 0, 0));
    EXPECT_EQ(m_histogram[0], -999);
    EXPECT_TRUE(Compute(*source, {0, 1, 6, 0}, -1e300, 1e300, 0, -3));
    EXPECT_EQ(m_count, 6);
}

TEST_F(HistogramFromBox, ABandTheRasterDoesNotHaveCountsNothing) {
    auto source = Open(UnitSpec(4, 1), {{1, 2, 3, 4}});
    EXPECT_TRUE(Compute(*source, {0, 1, 4, 0}, -1e300, 1e300, 1));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min, -999);
    EXPECT_EQ(m_histogram[5], -999);
}

TEST_F(HistogramFromBox, AFailedReadCountsNothingAndLeavesTheOutputs) {
    auto source = Open(UnitSpec(300, 300), {MakePixels(300, 300, [](int, int) { return 5.0; })});
    source.reset();
    std::filesystem::resize_file(m_path, 20000);
    source = Reopen();
    EXPECT_TRUE(Compute(*source, {0, 300, 300, 0}));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min, -999);
    EXPECT_EQ(m_mean, -999);
    EXPECT_EQ(m_high, -999);
}

TEST_F(HistogramFromBox, FourMillionPixelsAreReadOneByOneAndSixMillionAreNot) {
    RasterSpec spec = UnitSpec(3000, 2000);
    spec.options = {"COMPRESS=PACKBITS"};
    const auto value = [](int c, int r) { return 1.0 + (c + r) % 256 % 255; };
    auto source = Open(spec, {MakePixels(3000, 2000, value), MakePixels(3000, 2000, value),
                              MakePixels(3000, 2000, value)});
    EXPECT_TRUE(Compute(*source, {0, 2000, 2000, 0}));
    EXPECT_EQ(m_count, 4'000'000);
    EXPECT_TRUE(Compute(*source, {0, 2000, 3000, 0}));
    const double s = std::sqrt(6e6 / (16777216 / 3));
    EXPECT_EQ(m_count, static_cast<__int64>(3000 / s) * static_cast<__int64>(2000 / s));
}

TEST_F(HistogramFromBox, AllBandsAgreeWithEachBandAlone) {
    std::minstd_rand random(5);
    std::uniform_real_distribution<double> values(-40, 300);
    std::vector<Pixels> pixels(3);
    for (Pixels& band : pixels)
        band = MakePixels(20, 15, [&](int, int) { return std::round(values(random)); });
    RasterSpec spec = UnitSpec(20, 15, GDT_Float32);
    spec.noData = 17.0;
    auto source = Open(spec, pixels);
    CBoundingBox box(3, 13, 18, 1);
    std::vector<std::vector<int>> histograms(3, std::vector<int>(256, -1));
    int* pointers[] = {histograms[0].data(), histograms[1].data(), histograms[2].data()};
    double min[3], max[3], mean[3], low[3], high[3];
    double lowClip[] = {-30, 0, 20}, highClip[] = {300, 200, 280};
    __int64 count = -1;
    EXPECT_TRUE(CRasterAlgorithm::ComputeHistogramFromBox(source.get(), &box, pointers, min, max,
                                                          mean, low, high, lowClip, highClip, count,
                                                          true, nullptr));
    for (int b = 0; b < 3; ++b) {
        SCOPED_TRACE(b);
        EXPECT_TRUE(Compute(*source, box, lowClip[b], highClip[b], b));
        EXPECT_EQ(histograms[static_cast<std::size_t>(b)], m_histogram);
        EXPECT_EQ(min[b], m_min);
        EXPECT_EQ(max[b], m_max);
        EXPECT_EQ(mean[b], m_mean);
        EXPECT_EQ(low[b], 0);
        EXPECT_EQ(high[b], 255);
        std::vector<int> plain(256, 0);
        double sum = 0;
        long long n = 0;
        const auto samples = ReadPlain(m_path, b + 1, 3, 2, 15, 12, 15, 12, false);
        for (const double v : samples) {
            const int bin = static_cast<int>((v - m_min) / (m_max - m_min) * 255 + 0.5);
            if (bin >= 1 && bin <= 254)
                ++plain[static_cast<std::size_t>(bin)];
            if (v != 0 && v != 17 && lowClip[b] <= v && v <= highClip[b]) {
                sum += v;
                ++n;
            }
        }
        EXPECT_EQ(m_histogram, plain);
        EXPECT_EQ(m_mean, sum / static_cast<double>(n));
        EXPECT_EQ(m_count, n);
    }
    EXPECT_EQ(count, m_count);
}

TEST_F(HistogramFromBox, OfABandThatCannotBeReadTheOutputsStayAndTheNextBandFollows) {
    auto source = OpenWithCutSecondBand();
    std::vector<int> first(256, -1), second(256, -1);
    int* pointers[] = {first.data(), second.data()};
    double min[] = {-9, -9}, max[] = {-9, -9}, mean[] = {-9, -9}, low[2], high[2];
    CBoundingBox box(0, 300, 300, 0);
    __int64 count = -1;
    EXPECT_TRUE(CRasterAlgorithm::ComputeHistogramFromBox(source.get(), &box, pointers, min, max,
                                                          mean, low, high, nullptr, nullptr, count,
                                                          false, nullptr));
    EXPECT_EQ(mean[0], 3);
    EXPECT_EQ(mean[1], -9);
    EXPECT_EQ(max[1], -9);
    EXPECT_EQ(count, 0);
}
