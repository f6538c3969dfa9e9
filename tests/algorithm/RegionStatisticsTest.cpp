#include "zelto/algorithm/RegionStatistics.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"
#include "tests/support/RecordingProgress.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <numeric>
#include <random>

using namespace zelto::test;

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

class RegionStatistics : public RegionTest {
  protected:
    static void ExpectBand(const CRegionStatistics::Band& band, __int64 count, double min,
                           double max, double mean, double deviation) {
        EXPECT_EQ(band.count, count);
        EXPECT_EQ(band.minimum, min);
        EXPECT_EQ(band.maximum, max);
        EXPECT_DOUBLE_EQ(band.mean, mean);
        EXPECT_DOUBLE_EQ(band.standardDeviation, deviation);
    }
};

/// What the centres of a raster's pixels on a unit grid say.
std::vector<std::size_t> PixelsInside(int width, int height, CAOISource& area) {
    std::vector<std::size_t> inside;
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c)
            if (area.TopoRelationWithPoint(c + 0.5, height - (r + 0.5)) == TOPO_CONTAIN)
                inside.push_back(static_cast<std::size_t>(r * width + c));
    return inside;
}

double PlainPercentile(std::vector<double> values, double percent) {
    std::sort(values.begin(), values.end());
    const double position = static_cast<double>(values.size() - 1) * percent / 100;
    const auto below = static_cast<std::size_t>(position);
    const double low = values[below];
    const double high = values[std::min(below + 1, values.size() - 1)];
    return low + (high - low) * (position - static_cast<double>(below));
}

} // namespace

TEST_F(RegionStatistics, OfTheWholeRasterCountZerosAndLeaveNoDataOut) {
    RasterSpec spec = UnitSpec(4, 1);
    spec.noData = 9.0;
    auto source = Open(spec, {{0, 2, 4, 9}});
    CRegionStatistics statistics(source.get());
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ASSERT_EQ(statistics.GetBands().size(), 1U);
    ExpectBand(statistics.GetBands()[0], 3, 0, 4, 2, std::sqrt(8.0 / 3));
    EXPECT_FALSE(statistics.IsSampled());
}

TEST_F(RegionStatistics, LeaveOutWhatIsNotAFiniteNumber) {
    const double inf = std::numeric_limits<double>::infinity();
    auto source = Open(UnitSpec(5, 1, GDT_Float32), {{NOT_A_NUMBER, -inf, -1, -3, inf}});
    CRegionStatistics statistics(source.get());
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ExpectBand(statistics.GetBands()[0], 2, -3, -1, -2, 1);
}

TEST_F(RegionStatistics, OneRectangleGivenThreeWaysGivesTheSame) {
    const auto pixels = MakePixels(10, 10, [](int c, int r) { return 10.0 * c + r; });
    auto source = Open(UnitSpec(10, 10), {pixels});
    auto area = Area(Rectangle(2, 7, 5, 3));
    auto polygon = Polygon({{2, 3}, {2, 7}, {5, 7}, {5, 3}});
    CRegionStatistics statistics(source.get());
    for (int way = 0; way < 3; ++way) {
        SCOPED_TRACE(way);
        if (way == 0)
            statistics.SetAOI(area.get());
        else if (way == 1)
            statistics.SetShape(polygon.get());
        else
            statistics.SetBox({2, 7, 5, 3});
        EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        ExpectBand(statistics.GetBands()[0], 12, 23, 46, 34.5, std::sqrt(200.0 / 3 + 1.25));
    }
}

TEST_F(RegionStatistics, AreClippedToTheRaster) {
    auto source = Open(UnitSpec(4, 4), {MakePixels(4, 4, [](int c, int r) { return c + 4 * r; })});
    CRegionStatistics statistics(source.get());
    statistics.SetBox({2, 99, 99, 3});
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ExpectBand(statistics.GetBands()[0], 2, 2, 3, 2.5, 0.5);
}

TEST_F(RegionStatistics, OfARegionWithoutPixelsAreNotNumbersButNoFailure) {
    auto source = Open(UnitSpec(4, 4), {Pixels(16, 1.0)});
    CRegionStatistics statistics(source.get());
    CAOISource empty;
    for (int way = 0; way < 3; ++way) {
        if (way == 0)
            statistics.SetBox({40, 50, 50, 40});
        else if (way == 1)
            statistics.SetBox({1.6, 1.9, 1.9, 1.6}); // no centre
        else
            statistics.SetAOI(&empty);
        EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        EXPECT_EQ(statistics.GetBands()[0].count, 0);
        EXPECT_TRUE(std::isnan(statistics.GetBands()[0].mean));
        EXPECT_TRUE(std::isnan(statistics.GetBands()[0].maximum));
        EXPECT_EQ(statistics.ComputePercentiles(2, 98, nullptr), GIS_SUCCESS);
        EXPECT_TRUE(std::isnan(statistics.GetBands()[0].lowPercentile));
        EXPECT_EQ(statistics.ComputeCovariance(nullptr), GIS_SUCCESS);
        EXPECT_EQ(statistics.GetCovariance(), std::vector<double>{0});
    }
}

TEST_F(RegionStatistics, NullMeansTheWholeRasterAndNoRasterAFailure) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}});
    CRegionStatistics statistics(source.get());
    statistics.SetBox({0, 1, 1, 0});
    statistics.SetAOI(nullptr);
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].count, 2);
    statistics.SetShape(nullptr);
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].count, 2);
    CRegionStatistics none(nullptr);
    EXPECT_EQ(none.Compute(nullptr), GIS_FAILED);
    EXPECT_EQ(none.ComputeCovariance(nullptr), GIS_FAILED);
    EXPECT_EQ(none.ComputePercentiles(2, 98, nullptr), GIS_FAILED);
}

TEST_F(RegionStatistics, OnePassWithTheCovarianceFindsWhatTwoPassesFind) {
    std::mt19937 random(4711);
    const auto noise = [&] {
        return MakePixels(300, 200, [&](int, int) { return static_cast<double>(random() % 250); });
    };
    for (const bool hasNoData : {false, true}) {
        RasterSpec spec = UnitSpec(300, 200);
        if (hasNoData)
            spec.noData = 9.0;
        auto source = Open(spec, {noise(), noise(), noise()});
        auto polygon = Polygon({{10, 20}, {280, 30}, {150, 190}});
        for (CDrawShape* shape :
             {static_cast<CDrawShape*>(nullptr), static_cast<CDrawShape*>(polygon.get())}) {
            CRegionStatistics once(source.get());
            CRegionStatistics twice(source.get());
            once.SetShape(shape);
            twice.SetShape(shape);
            ASSERT_EQ(once.ComputeWithCovariance(nullptr), GIS_SUCCESS);
            ASSERT_EQ(twice.Compute(nullptr), GIS_SUCCESS);
            ASSERT_EQ(twice.ComputeCovariance(nullptr), GIS_SUCCESS);
            EXPECT_EQ(once.GetCovariance(), twice.GetCovariance());
            EXPECT_EQ(once.GetCovarianceCount(), twice.GetCovarianceCount());
            for (std::size_t b = 0; b < 3; ++b) {
                EXPECT_EQ(once.GetBands()[b].count, twice.GetBands()[b].count);
                EXPECT_EQ(once.GetBands()[b].mean, twice.GetBands()[b].mean);
                EXPECT_EQ(once.GetBands()[b].standardDeviation,
                          twice.GetBands()[b].standardDeviation);
            }
        }
    }
}

TEST_F(RegionStatistics, PercentagesThatAreNoNumbersAreRefused) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}});
    CRegionStatistics statistics(source.get());
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ASSERT_EQ(statistics.ComputePercentiles(0, 100, nullptr), GIS_SUCCESS);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(statistics.ComputePercentiles(nan, 98, nullptr), GIS_FAILED);
    EXPECT_EQ(statistics.ComputePercentiles(2, nan, nullptr), GIS_FAILED);
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("percentage"), std::string::npos);
    EXPECT_EQ(statistics.GetBands()[0].lowPercentile, 1.0);
    EXPECT_EQ(statistics.GetBands()[0].highPercentile, 3.0);
}

TEST_F(RegionStatistics, BandsComeInTheOrderWanted) {
    auto source = Open(UnitSpec(1, 1), {{1}, {2}, {3}});
    CRegionStatistics statistics(source.get());
    statistics.SetBands({2, 0, 7, -1});
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ASSERT_EQ(statistics.GetBands().size(), 2U);
    EXPECT_EQ(statistics.GetBands()[0].index, 2);
    EXPECT_EQ(statistics.GetBands()[0].mean, 3);
    EXPECT_EQ(statistics.GetBands()[1].mean, 1);
}

TEST_F(RegionStatistics, BandsThatTheRasterDoesNotHaveAreLeftOut) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}, {5, 7}});
    CRegionStatistics statistics(source.get());
    statistics.SetBands({2, 1, -1});
    ASSERT_EQ(statistics.GetBands().size(), 1U);
    EXPECT_EQ(statistics.GetBands()[0].index, 1);
    CRegionStatistics none(nullptr);
    none.SetBands({0});
    EXPECT_TRUE(none.GetBands().empty());
}

TEST_F(RegionStatistics, OfNoBandsReadNothingAndSucceed) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}});
    CRegionStatistics statistics(source.get());
    statistics.SetBands({});
    RecordingProgress progress;
    EXPECT_EQ(statistics.ComputeWithCovariance(&progress), GIS_SUCCESS);
    EXPECT_TRUE(statistics.GetBands().empty());
    EXPECT_TRUE(statistics.GetCovariance().empty());
    EXPECT_TRUE(progress.m_steps.empty());
    CRegionStatistics::Products products;
    EXPECT_EQ(statistics.ComputeProducts(products, nullptr), GIS_SUCCESS);
    EXPECT_EQ(products.count, 0);
    EXPECT_TRUE(products.products.empty());
}

TEST_F(RegionStatistics, TheCovarianceTakesCompletePixelsAroundTheirOwnMeans) {
    RasterSpec spec = UnitSpec(4, 1, GDT_Float32);
    spec.noData = 9.0;
    auto source = Open(spec, {{1, 9, 3, NOT_A_NUMBER}, {2, 2, 6, 100}});
    CRegionStatistics statistics(source.get());
    EXPECT_EQ(statistics.ComputeCovariance(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetCovarianceCount(), 2);
    EXPECT_EQ(statistics.GetCovariance(), (std::vector<double>{1, 2, 2, 4}));
}

TEST_F(RegionStatistics, ALargeMeanDoesNotDrownTheDeviation) {
    // Sums of squares of these lose every digit of the deviation.
    auto source =
        Open(UnitSpec(100, 100, GDT_Float64),
             {MakePixels(100, 100, [](int c, int) { return 1e9 + (c % 2 == 0 ? -0.5 : 0.5); })});
    CRegionStatistics statistics(source.get());
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].mean, 1e9);
    EXPECT_DOUBLE_EQ(statistics.GetBands()[0].standardDeviation, 0.5);
}

TEST_F(RegionStatistics, TheCovarianceIsFoundInOnePassAroundLargeMeansToo) {
    constexpr int SIDE = 600; // several strips
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::normal_distribution<double> noise(0.0, 1.0);
    std::vector<Pixels> bands(3);
    for (int p = 0; p < SIDE * SIDE; ++p) {
        const double shared = noise(random);
        bands[0].push_back(1e9 + shared);
        bands[1].push_back(-3e8 + p * 1e-5 + shared);
        bands[2].push_back(5.0 + noise(random));
    }
    auto source = Open(UnitSpec(SIDE, SIDE, GDT_Float64), bands);
    CRegionStatistics statistics(source.get());
    RecordingProgress progress;
    EXPECT_EQ(statistics.ComputeCovariance(&progress), GIS_SUCCESS);
    EXPECT_EQ(progress.m_stages.size(), 1U);
    std::array<long double, 3> means{};
    for (std::size_t b = 0; b < 3; ++b)
        means[b] = std::accumulate(bands[b].begin(), bands[b].end(), 0.0L) / (SIDE * SIDE);
    for (std::size_t a = 0; a < 3; ++a)
        for (std::size_t b = 0; b < 3; ++b) {
            long double sum = 0.0L;
            for (std::size_t p = 0; p < bands[a].size(); ++p)
                sum += (bands[a][p] - means[a]) * (bands[b][p] - means[b]);
            EXPECT_NEAR(statistics.GetCovariance()[a * 3 + b],
                        static_cast<double>(sum / (SIDE * SIDE)), 1e-9)
                << a << " " << b;
        }
}

TEST_F(RegionStatistics, ReportProgressAndCanBeCancelled) {
    auto source = Open(UnitSpec(400, 400), {Pixels(160000, 1.0)});
    CRegionStatistics statistics(source.get());
    RecordingProgress progress;
    EXPECT_EQ(statistics.Compute(&progress), GIS_SUCCESS);
    ASSERT_EQ(progress.m_stages.size(), 1U);
    EXPECT_EQ(progress.m_stages[0].first, L"计算统计信息");
    EXPECT_EQ(progress.m_steps.back().first, 100);
    RecordingProgress cancelling(0);
    EXPECT_EQ(statistics.Compute(&cancelling), GIS_FAILED);
    RecordingProgress again(0);
    EXPECT_EQ(statistics.ComputeCovariance(&again), GIS_FAILED);
}

TEST_F(RegionStatistics, PercentilesThatAreCancelledKeepThoseThatWere) {
    auto source = Open(UnitSpec(5, 1), {{1, 2, 3, 4, 5}});
    CRegionStatistics statistics(source.get());
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ASSERT_EQ(statistics.ComputePercentiles(0, 100, nullptr), GIS_SUCCESS);
    RecordingProgress cancelling(0);
    EXPECT_EQ(statistics.ComputePercentiles(25, 75, &cancelling), GIS_FAILED);
    EXPECT_EQ(statistics.GetBands()[0].lowPercentile, 1);
    EXPECT_EQ(statistics.GetBands()[0].highPercentile, 5);
}

TEST_F(RegionStatistics, PercentilesOfAnotherRegionThanWasComputedAreRefused) {
    auto source = Open(UnitSpec(5, 1), {{1, 2, 3, 4, 5}});
    CRegionStatistics statistics(source.get());
    statistics.SetBox({0, 1, 3, 0});
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    // No values, fewer than were counted, more, and as many others.
    for (const CBoundingBox& box : {CBoundingBox(8, 1, 9, 0), CBoundingBox(0, 1, 1, 0),
                                    CBoundingBox(0, 1, 5, 0), CBoundingBox(2, 1, 5, 0)}) {
        statistics.SetBox(box);
        CGISDataSource::ClearLastErrorText();
        EXPECT_EQ(statistics.ComputePercentiles(50, 100, nullptr), GIS_FAILED) << box.m_right;
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  m_path + ": the region has other values than were counted");
    }
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ASSERT_EQ(statistics.ComputePercentiles(50, 100, nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].lowPercentile, 4);
    EXPECT_EQ(statistics.GetBands()[0].highPercentile, 5);
}

TEST_F(RegionStatistics, OfARasterThatCannotBeReadFail) {
    auto source =
        Open(UnitSpec(300, 300), {MakePixels(300, 300, [](int c, int) { return c % 9; })});
    source.reset();
    std::filesystem::resize_file(m_path, 20000);
    source = Reopen();
    CRegionStatistics statistics(source.get());
    EXPECT_EQ(statistics.Compute(nullptr), GIS_FAILED);
    EXPECT_EQ(statistics.ComputeWithCovariance(nullptr), GIS_FAILED);
    EXPECT_TRUE(statistics.GetCovariance().empty());
}

TEST_F(RegionStatistics, LargeRegionsAreSampledOnlyWhenThatIsWanted) {
    RasterSpec spec = UnitSpec(4200, 4200);
    spec.options = {"COMPRESS=PACKBITS"};
    auto source = Open(spec, {MakePixels(4200, 4200, [](int c, int r) {
                           return c == 1001 && r == 1001 ? 200.0 : 1.0;
                       })});
    CRegionStatistics statistics(source.get());
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_EQ(statistics.GetBands()[0].count, 4200 * 4200);
    EXPECT_EQ(statistics.GetBands()[0].maximum, 200);
    statistics.SetApprox(true);
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_TRUE(statistics.IsSampled());
    EXPECT_LE(statistics.GetBands()[0].count, 16777216);
    EXPECT_GT(statistics.GetBands()[0].count, 16700000);
}

TEST_F(RegionStatistics, RandomRegionsAgreeWithPlainSortingAndSumming) {
    const GDALDataType types[] = {GDT_Byte, GDT_UInt16, GDT_Int32, GDT_Float32, GDT_Float64};
    for (unsigned seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        RasterSpec spec = UnitSpec(40, 33, types[seed % 5]);
        if (seed % 2 == 0)
            spec.noData = 3.0;
        std::uniform_real_distribution<double> values(-30, 70);
        const bool whole = seed % 3 == 0;
        std::vector<Pixels> bands(2);
        for (Pixels& band : bands)
            band = MakePixels(40, 33, [&](int, int) {
                return whole ? std::round(values(random)) : values(random);
            });
        auto source = Open(spec, bands);
        auto area = Area(RandomPolygon(random, 40), RandomPolygon(random, 40));
        CRegionStatistics statistics(source.get());
        statistics.SetAOI(area.get());
        ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        ASSERT_EQ(statistics.ComputePercentiles(7, 91.5, nullptr), GIS_SUCCESS);
        const auto inside = PixelsInside(40, 33, *area);
        for (int b = 0; b < 2; ++b) {
            const auto samples = ReadPlain(m_path, b + 1, 0, 0, 40, 33, 40, 33, false);
            std::vector<double> kept;
            for (const std::size_t p : inside)
                if (!IsPlainNoData(spec.noData, samples[p]))
                    kept.push_back(samples[p]);
            const auto& band = statistics.GetBands()[static_cast<std::size_t>(b)];
            ASSERT_EQ(band.count, static_cast<__int64>(kept.size()));
            if (kept.empty())
                continue;
            const double n = static_cast<double>(kept.size());
            double sum = 0, squares = 0;
            for (const double v : kept)
                sum += v;
            for (const double v : kept)
                squares += (v - sum / n) * (v - sum / n);
            EXPECT_EQ(band.minimum, *std::min_element(kept.begin(), kept.end()));
            EXPECT_EQ(band.maximum, *std::max_element(kept.begin(), kept.end()));
            EXPECT_NEAR(band.mean, sum / n, 1e-12 * (1 + std::fabs(sum / n)));
            EXPECT_NEAR(band.standardDeviation, std::sqrt(squares / n), 1e-10);
            EXPECT_DOUBLE_EQ(band.lowPercentile, PlainPercentile(kept, 7));
            EXPECT_DOUBLE_EQ(band.highPercentile, PlainPercentile(kept, 91.5));
        }
    }
}

TEST_F(RegionStatistics, OnARotatedGridPixelCentresDecideToo) {
    RasterSpec spec = UnitSpec(30, 20);
    const std::array<double, 6> g = {8, 1.1, 0.3, 45, 0.2, -1.4};
    spec.geoTransform = g;
    Open(spec, {MakePixels(30, 20, [](int c, int r) { return (c * 7 + r * 3) % 251; })});
    auto source = Reopen(true);
    auto polygon = Polygon({{12, 22}, {38, 30}, {30, 48}});
    long long count = 0;
    for (int r = 0; r < 20; ++r)
        for (int c = 0; c < 30; ++c)
            count += polygon->TopoRelationWithPoint({g[0] + (c + 0.5) * g[1] + (r + 0.5) * g[2],
                                                     g[3] + (c + 0.5) * g[4] + (r + 0.5) * g[5]},
                                                    0.0, 1) == TOPO_CONTAIN
                         ? 1
                         : 0;
    CRegionStatistics statistics(source.get());
    statistics.SetShape(polygon.get());
    EXPECT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    EXPECT_GT(count, 50);
    EXPECT_EQ(statistics.GetBands()[0].count, count);
}

TEST_F(RegionStatistics, HistogramsCountTheValuesBetweenTheirBounds) {
    auto source = Open(UnitSpec(6, 1, GDT_Float32), {{-1, 0, 0.5, 1, 1.99, 2}});
    CRegionStatistics statistics(source.get());
    std::vector<__int64> counts(2, 77);
    EXPECT_EQ(statistics.ComputeHistogram(0, 0, 1, counts, nullptr), GIS_SUCCESS);
    EXPECT_EQ(counts, (std::vector<__int64>{2, 2}));
    EXPECT_EQ(statistics.ComputeHistogram(1, 0, 1, counts, nullptr), GIS_FAILED);
    EXPECT_EQ(statistics.ComputeHistogram(-1, 0, 1, counts, nullptr), GIS_FAILED);
    EXPECT_EQ(statistics.ComputeHistogram(0, 0, 0, counts, nullptr), GIS_FAILED);
}

TEST_F(RegionStatistics, HistogramsOfABandThatCannotBeReadFail) {
    auto source = OpenWithCutSecondBand();
    CRegionStatistics statistics(source.get());
    std::vector<__int64> counts(1);
    EXPECT_EQ(statistics.ComputeHistogram(0, 0, 10, counts, nullptr), GIS_SUCCESS);
    EXPECT_EQ(counts[0], 90000);
    EXPECT_EQ(statistics.ComputeHistogram(1, 0, 10, counts, nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText().find(m_path + ": "), 0U);
}

TEST_F(RegionStatistics, HistogramsOfSeveralBandsAreThoseOfEachBandAlone) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::minstd_rand random(seed);
    RasterSpec spec = UnitSpec(70, 50, GDT_Int16);
    spec.noData = 7.0;
    const auto draw = [&](int, int) { return static_cast<double>(random() % 500); };
    auto source =
        Open(spec, {MakePixels(70, 50, draw), MakePixels(70, 50, draw), MakePixels(70, 50, draw)});
    auto polygon = Polygon({{3, 5}, {66, 20}, {30, 48}});
    for (const __int64 kept : {0, 100'000}) {
        CRegionStatistics statistics(source.get());
        statistics.SetShape(polygon.get());
        statistics.SetSampleSize(kept);
        ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
        // A band may come twice, and bands in any order.
        std::vector<CRegionStatistics::Histogram> together(4);
        for (CRegionStatistics::Histogram& histogram : together) {
            histogram.position = static_cast<int>(random() % 3);
            histogram.low = static_cast<double>(random() % 100);
            histogram.width = 1.0 + static_cast<double>(random() % 40);
            histogram.counts.assign(1 + random() % 20, 55);
        }
        ASSERT_EQ(statistics.ComputeHistograms(together, nullptr), GIS_SUCCESS);
        for (const CRegionStatistics::Histogram& histogram : together) {
            std::vector<__int64> alone(histogram.counts.size());
            ASSERT_EQ(statistics.ComputeHistogram(histogram.position, histogram.low,
                                                  histogram.width, alone, nullptr),
                      GIS_SUCCESS);
            EXPECT_EQ(histogram.counts, alone);
        }
        together.back().position = 3;
        EXPECT_EQ(statistics.ComputeHistograms(together, nullptr), GIS_FAILED);
    }
}

TEST_F(RegionStatistics, ValuesKeptInMemoryAnswerAsThoseReadAgain) {
    std::minstd_rand random(20260117);
    RasterSpec spec = UnitSpec(60, 40, GDT_Int16);
    spec.noData = 7.0;
    const auto draw = [&](int, int) { return static_cast<double>(random() % 500); };
    auto source = Open(spec, {MakePixels(60, 40, draw), MakePixels(60, 40, draw)});
    CRegionStatistics read(source.get());
    CRegionStatistics kept(source.get());
    kept.SetSampleSize(60 * 40 * 2);
    for (CRegionStatistics* statistics : {&read, &kept}) {
        statistics->SetBox({10, 35, 45, 5});
        ASSERT_EQ(statistics->Compute(nullptr), GIS_SUCCESS);
        ASSERT_EQ(statistics->ComputePercentiles(3, 71, nullptr), GIS_SUCCESS);
    }
    EXPECT_FALSE(kept.IsSampled());
    for (std::size_t b = 0; b < 2; ++b) {
        EXPECT_EQ(kept.GetBands()[b].count, read.GetBands()[b].count);
        EXPECT_EQ(kept.GetBands()[b].lowPercentile, read.GetBands()[b].lowPercentile);
        EXPECT_EQ(kept.GetBands()[b].highPercentile, read.GetBands()[b].highPercentile);
        std::vector<__int64> counts[2] = {std::vector<__int64>(16), std::vector<__int64>(16)};
        const int band = static_cast<int>(b);
        ASSERT_EQ(read.ComputeHistogram(band, 20, 25, counts[0], nullptr), GIS_SUCCESS);
        ASSERT_EQ(kept.ComputeHistogram(band, 20, 25, counts[1], nullptr), GIS_SUCCESS);
        EXPECT_EQ(counts[0], counts[1]);
    }
    kept.SetSampleSize(1000);
    ASSERT_EQ(kept.Compute(nullptr), GIS_SUCCESS);
    EXPECT_TRUE(kept.IsSampled());
    EXPECT_LE(kept.GetBands()[0].count, 500);
    EXPECT_GT(kept.GetBands()[0].count, 400);
}
