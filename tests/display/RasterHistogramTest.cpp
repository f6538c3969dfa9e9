#include "zelto/display/RasterHistogram.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <thread>
#include <vector>

namespace {

/// Four buckets over 0 … 3 (one per unit): cumulative shares 0.1, 0.3, 0.6, 1.
const std::array<int, 4> COUNTS = {1, 2, 3, 4};

CRasterHistogram Histogram(double min = 0.0, double max = 3.0) {
    return {min, max, 4, COUNTS.data(), false, true};
}

double Equalized(const CRasterHistogram& histogram, double value) {
    EXPECT_TRUE(histogram.GetHistEqualizationValue(value));
    return value;
}

double AutoLevel(const CRasterHistogram& histogram, double value) {
    EXPECT_TRUE(histogram.GetAutoLevesValue(value));
    return value;
}

} // namespace

TEST(RasterHistogram, KeepsACopyOfTheCounts) {
    std::array<int, 4> counts = COUNTS;
    CRasterHistogram histogram(1.5, 9.5, 4, counts.data(), true, false);
    counts[0] = 77;
    double min = 0.0;
    double max = 0.0;
    int buckets = 0;
    bool outOfRange = false;
    bool approx = true;
    const int* own = histogram.GetHistogram(min, max, buckets, &outOfRange, &approx);
    EXPECT_EQ(min, 1.5);
    EXPECT_EQ(max, 9.5);
    EXPECT_EQ(buckets, 4);
    EXPECT_TRUE(outOfRange);
    EXPECT_FALSE(approx);
    EXPECT_EQ(own[0], 1);
    EXPECT_EQ(own, histogram.GetHistogramData());
    EXPECT_EQ(histogram.GetHistogram(min, max, buckets, nullptr, nullptr), own);
}

TEST(RasterHistogram, CoincidesWithinAHundredThousandth) {
    const CRasterHistogram histogram(0.0, 3.0, 4, COUNTS.data(), false, true);
    const bool yes = true;
    const bool no = false;
    EXPECT_TRUE(histogram.IsCoincidence(0.0, 3.0, 4, &no, &yes));
    EXPECT_TRUE(histogram.IsCoincidence(1e-5, 3.0, 4, nullptr, nullptr));
    EXPECT_FALSE(histogram.IsCoincidence(1.1e-5, 3.0, 4, nullptr, nullptr));
    EXPECT_TRUE(histogram.IsCoincidence(0.0, 3.0 - 0.9e-5, 4, nullptr, nullptr));
    EXPECT_FALSE(histogram.IsCoincidence(0.0, 3.0 + 1.1e-5, 4, nullptr, nullptr));
    EXPECT_FALSE(histogram.IsCoincidence(0.0, 3.0, 5, nullptr, nullptr));
    EXPECT_FALSE(histogram.IsCoincidence(0.0, 3.0, 4, &yes, nullptr));
    EXPECT_FALSE(histogram.IsCoincidence(0.0, 3.0, 4, nullptr, &no));
    EXPECT_FALSE(histogram.IsCoincidence(std::nan(""), 3.0, 4, nullptr, nullptr));
}

TEST(RasterHistogram, WithoutCountsItHasNoBuckets) {
    CRasterHistogram histogram(0.0, 3.0, 4, nullptr, false, true);
    EXPECT_EQ(histogram.GetHistogramData(), nullptr);
    histogram.SetHistogramMap(10);
    histogram.SetAutoLevelsMap(0.01);
    double value = 2.0;
    EXPECT_TRUE(histogram.GetHistEqualizationValue(value)) << "as without a map";
    EXPECT_EQ(value, 2.0);
    EXPECT_FALSE(histogram.GetAutoLevesValue(value));
    CRasterHistogram negative(0.0, 3.0, -4, COUNTS.data(), false, true);
    negative.SetHistogramMap(10);
    EXPECT_EQ(negative.GetHistogramData(), nullptr);
}

TEST(HistogramEqualization, WithoutAMapOnlyZeroIsRefused) {
    const CRasterHistogram histogram = Histogram();
    double value = 300.5;
    EXPECT_TRUE(histogram.GetHistEqualizationValue(value));
    EXPECT_EQ(value, 300.5);
    value = 0.0;
    EXPECT_FALSE(histogram.GetHistEqualizationValue(value));
}

TEST(HistogramEqualization, MapsEachBucketToItsCumulativeShare) {
    CRasterHistogram histogram = Histogram();
    histogram.SetHistogramMap(999999); // the pixel count plays no part
    // Buckets are 1 apart; shares 0.1, 0.3, 0.6, 1 of 3, then of 255.
    EXPECT_EQ(Equalized(histogram, 0.5), 3.0 * 1 / 10 / 3.0 * 255.0);
    EXPECT_EQ(Equalized(histogram, 1.0), 3.0 * 3 / 10 / 3.0 * 255.0);
    EXPECT_EQ(Equalized(histogram, 2.99), 3.0 * 6 / 10 / 3.0 * 255.0);
    EXPECT_EQ(Equalized(histogram, 3.0), 255.0);
    EXPECT_EQ(Equalized(histogram, 1e9), 255.0) << "beyond the last bucket";
    EXPECT_EQ(Equalized(histogram, -5.0), 3.0 * 1 / 10 / 3.0 * 255.0) << "before the first";
}

TEST(HistogramEqualization, ZeroIsNeverEqualized) {
    CRasterHistogram histogram = Histogram();
    histogram.SetHistogramMap(10);
    double value = 0.0;
    EXPECT_FALSE(histogram.GetHistEqualizationValue(value));
    value = -0.0;
    EXPECT_FALSE(histogram.GetHistEqualizationValue(value));
}

TEST(HistogramEqualization, TakesTheBucketFromTheValueItselfNotFromItsDistanceToTheMinimum) {
    CRasterHistogram histogram = Histogram(10.0, 13.0);
    histogram.SetHistogramMap(10);
    // 1.0 × 11 is bucket 11, limited to 3, although 11 lies in bucket 1 of the range.
    EXPECT_EQ(Equalized(histogram, 11.0), 255.0);
    EXPECT_EQ(Equalized(histogram, 1.0), ((1.0 * (3.0 * 3 / 10) + 10.0) - 10.0) / 3.0 * 255.0);
}

TEST(HistogramEqualization, AnEmptyRangeIsRefused) {
    CRasterHistogram histogram = Histogram(5.0, 5.0);
    histogram.SetHistogramMap(10);
    double value = 5.0;
    EXPECT_FALSE(histogram.GetHistEqualizationValue(value));
    EXPECT_EQ(value, 5.0);
}

TEST(HistogramEqualization, OneBucketOrNoCountGivesNoNumber) {
    const int one = 7;
    CRasterHistogram single(0.0, 3.0, 1, &one, false, true);
    single.SetHistogramMap(7);
    EXPECT_TRUE(std::isnan(Equalized(single, 2.0))); // ∞ × 0
    const std::array<int, 4> none = {};
    CRasterHistogram empty(0.0, 3.0, 4, none.data(), false, true);
    empty.SetHistogramMap(0);
    EXPECT_TRUE(std::isnan(Equalized(empty, 2.0))); // 0 / 0
}

TEST(HistogramEqualization, LargeCountsAreSummedIn64Bits) {
    const std::array<int, 4> counts = {2000000000, 2000000000, 2000000000, 2000000000};
    CRasterHistogram histogram(0.0, 3.0, 4, counts.data(), false, true);
    histogram.SetHistogramMap(0);
    EXPECT_EQ(Equalized(histogram, 1.0), 3.0 * 0.5 / 3.0 * 255.0);
}

TEST(AutoLevels, ClipsTheThresholdAtEachEnd) {
    CRasterHistogram histogram = Histogram();
    histogram.SetAutoLevelsMap(0.2);
    // Low: 0.3 at bucket 1 exceeds 0.2: 3 × 1 / 4 = 0.75. High: 0.4 at bucket 3: 3 × 3 / 4 = 2.25.
    EXPECT_EQ(AutoLevel(histogram, 0.0), 0.0); // (0 − 0.75) / 1.5 < 0
    EXPECT_EQ(AutoLevel(histogram, 1.0), ((1 - 0.75) / 1.5) * 3.0 / 3.0 * 255.0);
    EXPECT_EQ(AutoLevel(histogram, 2.0), ((2 - 0.75) / 1.5) * 3.0 / 3.0 * 255.0);
    EXPECT_EQ(AutoLevel(histogram, 3.0), 255.0);
    EXPECT_EQ(AutoLevel(histogram, 99.0), 255.0);
    EXPECT_EQ(AutoLevel(histogram, -99.0), 0.0);
}

TEST(AutoLevels, AShareEqualToTheThresholdDoesNotYetCount) {
    const std::array<int, 4> counts = {1, 1, 1, 1};
    CRasterHistogram histogram(0.0, 4.0, 4, counts.data(), false, true);
    histogram.SetAutoLevelsMap(0.25);            // buckets 1 and 2: low 1, high 2
    EXPECT_EQ(AutoLevel(histogram, 2.7), 255.0); // bucket trunc(2.7 × 0.75) = 2: (2 − 1) / 1
    EXPECT_EQ(AutoLevel(histogram, 1.4), 0.0);   // bucket 1
}

TEST(AutoLevels, MapRunsOverBucketIndicesWhileTheClipsAreValues) {
    // Range 100 … 103: low 100.75, high 102.25 are far above any bucket index.
    CRasterHistogram histogram = Histogram(100.0, 103.0);
    histogram.SetAutoLevelsMap(0.2);
    EXPECT_EQ(AutoLevel(histogram, 103.0), 0.0);
}

TEST(AutoLevels, WithoutAQualifyingBucketBothClipsAreZero) {
    CRasterHistogram histogram = Histogram();
    histogram.SetAutoLevelsMap(1.0);             // no share exceeds 1
    EXPECT_EQ(AutoLevel(histogram, 3.0), 255.0); // 3 / 0 = ∞
    EXPECT_TRUE(std::isnan(AutoLevel(histogram, 0.0)));
}

TEST(AutoLevels, WithoutAMapOrRangeTheLookupIsRefused) {
    CRasterHistogram histogram = Histogram();
    double value = 1.0;
    EXPECT_FALSE(histogram.GetAutoLevesValue(value));
    CRasterHistogram empty = Histogram(5.0, 5.0);
    empty.SetAutoLevelsMap(0.01);
    EXPECT_FALSE(empty.GetAutoLevesValue(value));
    EXPECT_EQ(value, 1.0);
}

TEST(AutoLevels, TheSameThresholdBuildsTheMapOnce) {
    CRasterHistogram histogram = Histogram();
    histogram.SetAutoLevelsMap(0.01);
    // Changed counts show when the map is built anew.
    histogram.GetHistogramData()[0] = 0;
    const double before = AutoLevel(histogram, 1.0);
    histogram.SetAutoLevelsMap(0.01);
    EXPECT_EQ(AutoLevel(histogram, 1.0), before);
    histogram.SetAutoLevelsMap(0.01 + 0.9e-5);
    EXPECT_EQ(AutoLevel(histogram, 1.0), before);
    histogram.SetAutoLevelsMap(0.02);
    EXPECT_NE(AutoLevel(histogram, 1.0), before);
    EXPECT_EQ(AutoLevel(histogram, 1.0), ((1 - 0.75) / (2.25 - 0.75)) * 3.0 / 3.0 * 255.0);
}

TEST(HistogramMaps, ShareOneArray) {
    CRasterHistogram histogram = Histogram();
    histogram.SetHistogramMap(10);
    histogram.SetAutoLevelsMap(0.2);
    EXPECT_EQ(AutoLevel(histogram, 3.0), 255.0) << "auto levels replaced the equalisation map";
    histogram.SetHistogramMap(10);
    histogram.SetAutoLevelsMap(0.2);
    EXPECT_EQ(AutoLevel(histogram, 3.0), 3.0) << "the flag stays, so the equalisation map is read";
    histogram.SetAutoLevelsMap(0.3);
    EXPECT_EQ(AutoLevel(histogram, 3.0), 255.0) << "another threshold rewrites the array in place";
}

TEST(AutoLevels, SeveralThreadsMayAskForTheMapAtOnce) {
    for (int round = 0; round < 50; ++round) {
        CRasterHistogram histogram = Histogram();
        std::vector<double> found(4, -1.0);
        std::vector<std::thread> threads;
        threads.reserve(found.size());
        for (double& value : found) {
            threads.emplace_back([&histogram, &value] {
                histogram.SetAutoLevelsMap(0.2);
                value = 2.0;
                histogram.GetAutoLevesValue(value);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(found, std::vector<double>(4, ((2 - 0.75) / 1.5) * 3.0 / 3.0 * 255.0));
    }
}
