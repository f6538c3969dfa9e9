#include "tests/raster/TestBand.h"

#include <array>
#include <climits>
#include <cmath>
#include <limits>

using zelto::test::MakePixels;
using zelto::test::Pixels;
using zelto::test::TestBand;
using zelto::test::Twelve;

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
const double ENDLESS = std::numeric_limits<double>::infinity();

double NearestAt(TestBand& band, double x, double y) {
    double value = -99.0;
    EXPECT_TRUE(band->GetNearestValueAt(x, y, &value)) << x << ", " << y;
    return value;
}

bool HasNearest(TestBand& band, double x, double y) {
    double value = 0.0;
    return band->GetNearestValueAt(x, y, &value);
}

} // namespace

TEST(RasterBandCache, HoldsARegionForPointQueries) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    ASSERT_TRUE(band->GetData(1, 1, 2, 2, 2, 2)); // 5 6 / 9 10
    EXPECT_EQ(NearestAt(band, 1.0, 1.0), 5.0);
    EXPECT_EQ(NearestAt(band, 1.999, 1.0), 5.0);
    EXPECT_EQ(NearestAt(band, 2.0, 1.0), 6.0);
    EXPECT_EQ(NearestAt(band, 2.5, 2.9), 10.0);
    EXPECT_FALSE(HasNearest(band, 3.0, 1.0)) << "right of the cache";
    EXPECT_FALSE(HasNearest(band, 1.0, 3.0)) << "below the cache";
    EXPECT_FALSE(HasNearest(band, 0.0, 1.0)) << "one whole sample to the left";
}

TEST(RasterBandCache, TruncationTakesUpToOneSampleLeftOfTheCache) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    ASSERT_TRUE(band->GetData(1, 1, 2, 2, 2, 2));
    EXPECT_EQ(NearestAt(band, 0.25, 1.0), 5.0); // (0.25 − 1) × 2 / 2 = −0.75, truncated to 0
    EXPECT_EQ(NearestAt(band, 1.0, 0.5), 5.0);
}

TEST(RasterBandCache, RightAndBottomEdgesPassTheRangeButNotTheCacheCheck) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    ASSERT_TRUE(band->GetData(0, 0, 4, 3, 4, 3));
    double value = -99.0;
    EXPECT_FALSE(band->GetNearestValueAt(4.0, 0.0, &value));
    EXPECT_FALSE(band->GetNearestValueAt(0.0, 3.0, &value));
    EXPECT_EQ(value, -99.0);
    // A cache that claims to reach one column further shows that the edge is in range.
    ASSERT_TRUE(band->GetData(0, 0, 1, 1, 8, 8));
    EXPECT_EQ(NearestAt(band, 0.999, 0.999), 0.0);
    EXPECT_FALSE(HasNearest(band, 4.0001, 0.0));
    EXPECT_FALSE(HasNearest(band, 0.0, 3.0001));
    EXPECT_FALSE(HasNearest(band, -0.0001, 0.0));
    EXPECT_FALSE(HasNearest(band, 0.0, -0.0001));
}

TEST(RasterBandCache, DecimatedCacheIsAddressedThroughItsScale) {
    TestBand band({.width = 4, .height = 4},
                  MakePixels(4, 4, [](int c, int r) { return r * 4 + c; }));
    ASSERT_TRUE(band->GetData(0, 0, 4, 4, 2, 2)); // pixels 1 and 3 of each direction
    EXPECT_EQ(NearestAt(band, 1.99, 0.0), 5.0);
    EXPECT_EQ(NearestAt(band, 2.0, 0.0), 7.0);
    EXPECT_EQ(NearestAt(band, 3.99, 3.99), 15.0);
}

TEST(RasterBandCache, NoDataIsWrittenButNotAnswered) {
    TestBand band({.width = 2, .height = 1, .type = GDT_Float64, .noData = 7.0},
                  {7.0 + 5e-9, 7.0 + 2e-8});
    ASSERT_TRUE(band->GetData(0, 0, 2, 1, 2, 1));
    double value = 0.0;
    EXPECT_FALSE(band->GetNearestValueAt(0.0, 0.0, &value));
    EXPECT_EQ(value, 7.0 + 5e-9);
    EXPECT_TRUE(band->GetNearestValueAt(1.0, 0.0, &value));
    EXPECT_EQ(value, 7.0 + 2e-8);
}

TEST(RasterBandCache, ImpossiblePositionsAreRefused) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    ASSERT_TRUE(band->GetData(0, 0, 4, 3, 4, 3));
    double value = 0.0;
    EXPECT_FALSE(HasNearest(band, NOT_A_NUMBER, 0.0));
    EXPECT_FALSE(HasNearest(band, 0.0, NOT_A_NUMBER));
    EXPECT_FALSE(HasNearest(band, ENDLESS, 0.0));
    EXPECT_FALSE(HasNearest(band, -ENDLESS, 0.0));
    EXPECT_FALSE(band->GetBilinearValueAt(NOT_A_NUMBER, 0.0, &value));
    EXPECT_FALSE(band->GetNearestValueAt(0.0, 0.0, nullptr));
    EXPECT_FALSE(band->GetBilinearValueAt(0.0, 0.0, nullptr));
}

TEST(RasterBandCache, WithoutACacheNothingIsFound) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    EXPECT_FALSE(HasNearest(band, 1.0, 1.0));
    ASSERT_TRUE(band->GetData(0, 0, 4, 3, 4, 3));
    band->ReleaseCache();
    EXPECT_FALSE(HasNearest(band, 1.0, 1.0));
    EXPECT_EQ(band->GetCacheDataMean(), 0.0);
}

TEST(RasterBandCache, MeanCountsEveryCachedValue) {
    TestBand band({.width = 2, .height = 2, .noData = 100.0}, {1, 2, 3, 100});
    EXPECT_EQ(band->GetCacheDataMean(), 0.0);
    ASSERT_TRUE(band->GetData(0, 0, 2, 2, 2, 2));
    EXPECT_EQ(band->GetCacheDataMean(), 106.0 / 4.0);
}

TEST(RasterBandCache, ACacheWithoutRowsHasNoMean) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    ASSERT_TRUE(band->GetData(0, 0, 4, 3, 4, 0));
    EXPECT_TRUE(std::isnan(band->GetCacheDataMean())); // 0 / 0
    EXPECT_FALSE(HasNearest(band, 1.0, 1.0));
    double value = 0.0;
    EXPECT_FALSE(band->GetBilinearValueAt(1.0, 1.0, &value));
}

TEST(RasterBandCache, AFailedReadReleasesTheCache) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    ASSERT_TRUE(band->GetData(0, 0, 4, 3, 4, 3));
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(band->GetData(2, 2, 4, 3, 4, 3));
    CPLPopErrorHandler();
    EXPECT_FALSE(HasNearest(band, 1.0, 1.0));
    EXPECT_EQ(band->GetCacheDataMean(), 0.0);
}

TEST(RasterBandCache, SizesThatCannotBeReadOrHeldAreRefused) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    EXPECT_FALSE(band->GetData(0, 0, 4, 3, -1, 3));
    EXPECT_FALSE(band->GetData(0, 0, 4, 3, 3, -1));
    EXPECT_FALSE(band->GetData(0, 0, 0, 3, 4, 3));
    EXPECT_FALSE(band->GetData(0, 0, 4, -3, 4, 3));
    EXPECT_FALSE(band->GetData(0, 0, 4, 3, INT_MAX, INT_MAX));
    EXPECT_EQ(band->GetCacheDataMean(), 0.0);
}

TEST(RasterBandCache, TheCallersBufferLeavesTheCacheAlone) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    ASSERT_TRUE(band->GetData(0, 0, 1, 1, 1, 1));
    std::array<double, 4> buffer{};
    EXPECT_TRUE(band->GetDataToBuffer(2, 1, 2, 2, 2, 2, buffer.data()));
    EXPECT_EQ(buffer, (std::array<double, 4>{6, 7, 10, 11}));
    EXPECT_EQ(NearestAt(band, 0.5, 0.5), 0.0);
    EXPECT_FALSE(band->GetDataToBuffer(0, 0, 2, 2, 2, 2, nullptr));
    EXPECT_FALSE(band->GetDataToBuffer(0, 0, 2, 2, -2, 2, buffer.data()));
    EXPECT_FALSE(band->GetDataToBuffer(0, 0, 2, 0, 2, 2, buffer.data()));
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(band->GetDataToBuffer(3, 0, 2, 2, 2, 2, buffer.data()));
    CPLPopErrorHandler();
}

TEST(RasterBandBilinear, ExchangesTheWeightsOfTheRightAndTheLowerNeighbour) {
    TestBand band({.width = 2, .height = 2}, {10, 20, 40, 80});
    ASSERT_TRUE(band->GetData(0, 0, 2, 2, 2, 2));
    double value = 0.0;
    EXPECT_TRUE(band->GetBilinearValueAt(0.25, 0.5, &value));
    // dx = 0.25, dy = 0.5: 0.375 × 10 + 0.375 × 20 + 0.125 × 40 + 0.125 × 80
    EXPECT_EQ(value, 3.75 + 7.5 + 5.0 + 10.0);
    EXPECT_TRUE(band->GetBilinearValueAt(0.5, 0.0, &value));
    EXPECT_EQ(value, 0.5 * 10 + 0.5 * 40) << "moving right blends in the lower neighbour";
}

TEST(RasterBandBilinear, LastColumnAndRowGiveTheNearestSample) {
    TestBand band({.width = 2, .height = 2}, {10, 20, 40, 80});
    ASSERT_TRUE(band->GetData(0, 0, 2, 2, 2, 2));
    double value = 0.0;
    EXPECT_TRUE(band->GetBilinearValueAt(1.5, 0.5, &value));
    EXPECT_EQ(value, 20.0);
    EXPECT_TRUE(band->GetBilinearValueAt(0.5, 1.5, &value));
    EXPECT_EQ(value, 40.0);
    EXPECT_FALSE(band->GetBilinearValueAt(2.0, 0.5, &value));
    EXPECT_FALSE(band->GetBilinearValueAt(-0.1, 0.5, &value));
    EXPECT_FALSE(band->GetBilinearValueAt(0.5, 2.1, &value));
}

TEST(RasterBandBilinear, LeftOfTheCacheTheFractionIsNegative) {
    // x = 0.5 truncates to column 0 of a cache that starts at 1, with dx = −0.5.
    TestBand band({.width = 3, .height = 2}, {0, 10, 20, 0, 40, 80});
    ASSERT_TRUE(band->GetData(1, 0, 2, 2, 2, 2));
    double value = 0.0;
    EXPECT_TRUE(band->GetBilinearValueAt(0.5, 0.5, &value));
    EXPECT_EQ(value, 0.75 * 10 + 0.75 * 20 + -0.25 * 40 + -0.25 * 80);
    EXPECT_FALSE(band->GetBilinearValueAt(0.0, 0.5, &value)) << "column −1: nearest, which fails";
}

TEST(RasterBandBilinear, AnyNoDataNeighbourRefusesTheBlend) {
    for (int position = 0; position < 4; ++position) {
        Pixels pixels = {1, 2, 3, 4};
        pixels[static_cast<std::size_t>(position)] = 9;
        TestBand band({.width = 2, .height = 2, .noData = 9.0}, pixels);
        ASSERT_TRUE(band->GetData(0, 0, 2, 2, 2, 2));
        double value = -1.0;
        EXPECT_FALSE(band->GetBilinearValueAt(0.5, 0.5, &value)) << position;
        EXPECT_EQ(value, -1.0);
    }
}

TEST(RasterBandCache, SizesBeyondAnyMemoryAreRefused) {
    TestBand band({.width = 4, .height = 3}, Twelve());
    constexpr int SIDE = 1 << 25; // 2^53 bytes of samples
    EXPECT_FALSE(band->GetData(0, 0, 4, 3, SIDE, SIDE));
    EXPECT_EQ(band->GetCacheDataMean(), 0.0);
    double sample = 7.0;
    EXPECT_FALSE(band->GetDataToBuffer(0, 0, 4, 3, 1, -1, &sample));
    EXPECT_EQ(sample, 7.0);
}

TEST(RasterBandBilinear, AboveTheCacheTheNearestSampleIsAskedForAndMissing) {
    TestBand band({.width = 2, .height = 3}, {0, 0, 10, 20, 40, 80});
    ASSERT_TRUE(band->GetData(0, 1, 2, 2, 2, 2));
    double value = -1.0;
    EXPECT_FALSE(band->GetBilinearValueAt(0.5, 0.0, &value));
    EXPECT_EQ(value, -1.0);
    EXPECT_TRUE(band->GetBilinearValueAt(0.5, 0.5, &value)) << "row 0 with dy = -0.5";
}
