#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"

using namespace zelto::test;

namespace {

/// What the seeded operations compute, from samples that passed the filter.
struct PlainSeeded {
    long long count = 0;
    double minimum = 1.7976931348623157e308;
    double maximum = SMALLEST_POSITIVE;
    double sum = 0, squares = 0;

    void Add(double v) {
        if (v < minimum)
            minimum = v;
        if (v > maximum)
            maximum = v;
        sum += v;
        squares += v * v;
        ++count;
    }
    double Mean() const { return sum / static_cast<double>(count); }
    double Deviation() const {
        return std::sqrt(squares / static_cast<double>(count) - Mean() * Mean());
    }
};

class SeededStatistics : public RegionTest {
  protected:
    void Clear(const CRasterSource& source) {
        const auto bands = static_cast<std::size_t>(source.GetBandCount());
        for (auto* array : {&m_min, &m_max, &m_mean, &m_dev})
            array->assign(bands, -999);
        m_count = -999;
    }
    bool FromBox(CRasterSource& source, CBoundingBox box, double* low = nullptr,
                 double* high = nullptr) {
        Clear(source);
        return CRasterAlgorithm::ComputeStaticsFromBox2(&source, &box, m_count, m_min.data(),
                                                        m_max.data(), m_mean.data(), m_dev.data(),
                                                        low, high, true, nullptr);
    }
    bool FromArea(CRasterSource& source, CAOISource& area, bool skipZero = false) {
        Clear(source);
        return CRasterAlgorithm::ComputeStaticsFromAOI2(&source, &area, m_count, m_min.data(),
                                                        m_max.data(), m_mean.data(), m_dev.data(),
                                                        skipZero, nullptr);
    }
    void Expect(std::size_t band, const PlainSeeded& plain) {
        EXPECT_EQ(m_min[band], plain.minimum);
        EXPECT_EQ(m_max[band], plain.maximum);
        EXPECT_EQ(m_mean[band], plain.Mean());
        EXPECT_EQ(m_dev[band], plain.Deviation());
    }

    __int64 m_count = 0;
    std::vector<double> m_min, m_max, m_mean, m_dev;
};

/// The enlarged grid of a window for a number of bands.
struct Grid {
    double s;
    int width, height;

    Grid(int w, int h, int bands)
        : s(std::sqrt(static_cast<double>(w) * h / (16777216 / bands))),
          width(static_cast<int>(w / s)),
          height(static_cast<int>(h / s)) {}
};

} // namespace

TEST_F(SeededStatistics, NullArgumentsAnswerFalse) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    auto area = Area(Rectangle(0, 2, 2, 0));
    CBoundingBox box(0, 2, 2, 0);
    __int64 count = 5;
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromBox2(source.get(), nullptr, count, nullptr,
                                                          nullptr, nullptr, nullptr, nullptr,
                                                          nullptr, false, nullptr));
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromBox2(nullptr, &box, count, nullptr, nullptr,
                                                          nullptr, nullptr, nullptr, nullptr, false,
                                                          nullptr));
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromAOI2(
        source.get(), nullptr, count, nullptr, nullptr, nullptr, nullptr, false, nullptr));
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromAOI2(
        nullptr, area.get(), count, nullptr, nullptr, nullptr, nullptr, false, nullptr));
    EXPECT_EQ(count, 5);
}

TEST_F(SeededStatistics, ARegionOffTheRasterAnswersFalse) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    EXPECT_FALSE(FromBox(*source, {3, 2, 4, 1}));
    EXPECT_FALSE(FromArea(*source, *Area(Rectangle(-4, 2, -3, 0))));
    EXPECT_EQ(m_count, -999);
}

TEST_F(SeededStatistics, ARasterWhoseRowsRunUpwardsHasNoSamplesUnderARegion) {
    // The upper edge of a box lies below the lower one in rows: the window's height is negative.
    RasterSpec spec = UnitSpec(2, 2);
    spec.geoTransform = {0, 1, 0, 0, 0, 1};
    Open(spec, {{1, 2, 3, 4}}).reset();
    const auto source = Reopen(true);
    for (const bool skipZero : {false, true}) {
        CGISDataSource::ClearLastErrorText();
        EXPECT_FALSE(FromArea(*source, *Area(Rectangle(0, 2, 2, 0)), skipZero));
        EXPECT_EQ(CGISDataSource::GetLastErrorText(), m_path + ": the region has no pixels");
    }
    CGISDataSource::ClearLastErrorText();
    EXPECT_FALSE(FromBox(*source, {0, 2, 2, 0}));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), m_path + ": the region has no pixels");
    EXPECT_EQ(m_count, -999);
}

TEST_F(SeededStatistics, NullArraysAreNotWritten) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    CBoundingBox box(0, 2, 2, 0);
    __int64 count = 0;
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromBox2(source.get(), &box, count, nullptr,
                                                         nullptr, nullptr, nullptr, nullptr,
                                                         nullptr, false, nullptr));
    EXPECT_EQ(count, 16777216);
}

TEST_F(SeededStatistics, ASmallBoxIsEnlargedToTheBudget) {
    auto source =
        Open(UnitSpec(4, 4), {MakePixels(4, 4, [](int c, int r) { return c + 4.0 * r; })});
    EXPECT_TRUE(FromBox(*source, {1, 3, 3, 1})); // pixels 5, 6, 9, 10, each a quarter
    EXPECT_EQ(m_count, 16777216);
    EXPECT_EQ(m_min[0], 5);
    EXPECT_EQ(m_max[0], 10);
    EXPECT_EQ(m_mean[0], 7.5);
    EXPECT_DOUBLE_EQ(m_dev[0], std::sqrt((25 + 36 + 81 + 100) / 4.0 - 7.5 * 7.5));
}

TEST_F(SeededStatistics, NegativeValuesLeaveTheMaximumAtTheSmallestPositiveNumber) {
    auto source = Open(UnitSpec(2, 2, GDT_Int16), {{-5, -2, -3, -4}});
    EXPECT_TRUE(FromBox(*source, {0, 2, 2, 0}));
    EXPECT_EQ(m_min[0], -5);
    EXPECT_EQ(m_max[0], SMALLEST_POSITIVE);
    EXPECT_EQ(m_mean[0], -3.5);
    EXPECT_TRUE(FromArea(*source, *Area(Rectangle(0, 2, 2, 0))));
    EXPECT_EQ(m_max[0], SMALLEST_POSITIVE);
}

TEST_F(SeededStatistics, ABandWithoutValuesZeroesItsOutputsAndEndsTheWork) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}, {0, 0, 0, 0}, {5, 6, 7, 8}});
    EXPECT_TRUE(FromBox(*source, {0, 2, 2, 0}));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min, (std::vector<double>{1, 0, -999}));
    EXPECT_EQ(m_max, (std::vector<double>{4, 0, -999}));
    EXPECT_EQ(m_mean[1], 0);
    EXPECT_EQ(m_dev[1], 0);
    EXPECT_EQ(m_mean[2], -999);
    EXPECT_TRUE(FromArea(*source, *Area(Rectangle(0, 2, 2, 0)), true));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_max, (std::vector<double>{4, 0, -999}));
}

TEST_F(SeededStatistics, ARegionThatCannotBeReadZeroesTheFirstBandAndEndsTheWork) {
    auto source = Open(UnitSpec(10, 10), {Pixels(100, 3.0), Pixels(100, 4.0)});
    // They touch the right edge: the window is column 10, which there is not.
    for (const bool box : {true, false}) {
        EXPECT_TRUE(box ? FromBox(*source, {10, 5, 12, 3})
                        : FromArea(*source, *Area(Rectangle(10, 5, 12, 3))));
        EXPECT_EQ(m_count, 0);
        for (const auto* array : {&m_min, &m_max, &m_mean, &m_dev})
            EXPECT_EQ(*array, (std::vector<double>{0, -999}));
    }
}

TEST_F(SeededStatistics, BoxesLeaveOutNoDataZerosAndWhatIsBeyondTheClips) {
    RasterSpec spec = UnitSpec(6, 1, GDT_Float32);
    spec.noData = 9.0;
    auto source = Open(spec, {{0, 9, 2, 3, 4, 50}});
    double low = 3, high = 4;
    EXPECT_TRUE(FromBox(*source, {0, 1, 6, 0}));
    EXPECT_EQ(m_min[0], 2);
    EXPECT_EQ(m_max[0], 50);
    EXPECT_TRUE(FromBox(*source, {0, 1, 6, 0}, &low));
    EXPECT_EQ(m_min[0], 3);
    EXPECT_EQ(m_max[0], 50);
    EXPECT_TRUE(FromBox(*source, {0, 1, 6, 0}, nullptr, &high));
    EXPECT_EQ(m_min[0], 2);
    EXPECT_EQ(m_max[0], 4);
    // The clips themselves are in.
    EXPECT_TRUE(FromBox(*source, {0, 1, 6, 0}, &low, &high));
    EXPECT_EQ(m_min[0], 3);
    EXPECT_EQ(m_max[0], 4);
}

TEST_F(SeededStatistics, BoxesReachingOverTheEdgeAreClipped) {
    auto source =
        Open(UnitSpec(4, 4), {MakePixels(4, 4, [](int c, int r) { return c + 4.0 * r; })});
    EXPECT_TRUE(FromBox(*source, {-7, 9, 2, 2}));
    EXPECT_EQ(m_max[0], 5);
}

TEST_F(SeededStatistics, BoxesAgreeWithThePlainRule) {
    RasterSpec spec = UnitSpec(50, 40, GDT_Float64);
    spec.noData = 0.5;
    std::minstd_rand random(7);
    std::uniform_real_distribution<double> values(-2, 2);
    std::vector<Pixels> bands(3);
    for (Pixels& band : bands)
        band = MakePixels(50, 40, [&](int, int) { return std::round(values(random) * 64) / 64; });
    auto source = Open(spec, bands);
    const Grid grid(31, 17, 3);
    double low[] = {-1, -3, 0.1}, high[] = {1.5, 3, 3};
    EXPECT_TRUE(FromBox(*source, {3, 37, 34, 20}, low, high));
    for (std::size_t b = 0; b < 3; ++b) {
        PlainSeeded plain;
        for (const double v : ReadPlain(m_path, static_cast<int>(b) + 1, 3, 3, 31, 17, grid.width,
                                        grid.height, true))
            if (!IsPlainNoData(0.5, v) && v != 0 && v >= low[b] && v <= high[b])
                plain.Add(v);
        Expect(b, plain);
        if (b == 2) {
            EXPECT_EQ(m_count, plain.count);
        }
    }
}

TEST_F(SeededStatistics, AreasAgreeWithThePlainRuleAndFollowTheFirstBandsMask) {
    RasterSpec spec = UnitSpec(50, 40, GDT_Int16);
    spec.noData = 3.0;
    std::minstd_rand random(11);
    std::uniform_int_distribution<int> values(-4, 9);
    std::vector<Pixels> bands(2);
    for (Pixels& band : bands)
        band = MakePixels(50, 40, [&](int, int) { return values(random); });
    auto source = Open(spec, bands);
    auto area = Area(Ellipse(3, 37, 34, 20), Polygon({{30, 30}, {44, 33}, {40, 5}}));
    const Grid grid(41, 32, 2); // x 3 … 44, rows 3 … 35
    const auto first = ReadPlain(m_path, 1, 3, 3, 41, 32, grid.width, grid.height, true);
    const auto second = ReadPlain(m_path, 2, 3, 3, 41, 32, grid.width, grid.height, true);
    PlainSeeded plain[2];
    for (int j = 0; j < grid.height; ++j) {
        for (int i = 0; i < grid.width; ++i) {
            const std::size_t p = static_cast<std::size_t>(j) * grid.width + i;
            // What is no-data in the first band is out for the second as well.
            if (IsPlainNoData(3.0, first[p]) ||
                area->TopoRelationWithPoint(3 + i * grid.s, 40 - (3 + j * grid.s)) != TOPO_CONTAIN)
                continue;
            plain[0].Add(first[p]);
            if (!IsPlainNoData(3.0, second[p]))
                plain[1].Add(second[p]);
        }
    }
    EXPECT_TRUE(FromArea(*source, *area));
    Expect(0, plain[0]);
    Expect(1, plain[1]);
    EXPECT_EQ(m_count, plain[1].count);
}

TEST_F(SeededStatistics, SkippingZerosTakesThePlaceOfTheRegionTest) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    auto source = Open(UnitSpec(3, 1, GDT_Float32), {{0, 4, 6}});
    // The area's box is the raster, its shapes cover next to nothing of it.
    auto area = Area(Rectangle(0, 1, 0.01, 0.99), Rectangle(2.99, 0.01, 3, 0));
    EXPECT_TRUE(FromArea(*source, *area, true));
    EXPECT_EQ(m_min[0], 4);
    EXPECT_EQ(m_max[0], 6);
    source = Open(UnitSpec(3, 1, GDT_Float32), {{0, nan, 6}});
    EXPECT_TRUE(FromArea(*source, *area, true));
    EXPECT_TRUE(std::isnan(m_mean[0])); // kept, unlike zeros
    EXPECT_EQ(m_min[0], 6);
}

TEST_F(SeededStatistics, WithoutSkippingZerosTheyCount) {
    auto source = Open(UnitSpec(2, 1), {{0, 4}});
    EXPECT_TRUE(FromArea(*source, *Area(Rectangle(0, 1, 2, 0))));
    EXPECT_EQ(m_min[0], 0);
}
