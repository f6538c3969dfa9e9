#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/RasterAOI.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"
#include "tests/support/RecordingProgress.h"

using namespace zelto::test;

namespace {

class StatisticsFromAoi : public RegionTest {
  protected:
    bool Compute(CRasterSource& source, CAOISource* area, bool approx = false) {
        const auto bands = static_cast<std::size_t>(source.GetBandCount());
        m_min.assign(bands, -999);
        m_max.assign(bands, -999);
        m_mean.assign(bands, -999);
        m_count = -999;
        if (area == nullptr)
            return CRasterAlgorithm::ComputeStaticsFromAOI(&source, nullptr, m_count, m_min.data(),
                                                           m_max.data(), m_mean.data(), nullptr,
                                                           approx, nullptr);
        CRasterAOI aoi(&source, area);
        return CRasterAlgorithm::ComputeStaticsFromAOI(&source, &aoi, m_count, m_min.data(),
                                                       m_max.data(), m_mean.data(), nullptr, approx,
                                                       nullptr);
    }

    __int64 m_count = 0;
    std::vector<double> m_min, m_max, m_mean;
};

} // namespace

TEST_F(StatisticsFromAoi, ANullSourceAnswersFalse) {
    __int64 count = 5;
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromAOI(nullptr, nullptr, count, nullptr, nullptr,
                                                         nullptr, nullptr, true, nullptr));
    EXPECT_EQ(count, 5);
}

TEST_F(StatisticsFromAoi, AnswersFalseAfterWritingCorrectOutputs) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    // Columns 2 … 4, rows 3 … 6: the rectangle's own right and bottom are not read.
    auto area = Area(Rectangle(2, 7, 5, 3));
    EXPECT_FALSE(Compute(*source, area.get()));
    EXPECT_EQ(m_count, 12);
    EXPECT_EQ(m_min[0], 23);
    EXPECT_EQ(m_max[0], 46);
    EXPECT_EQ(m_mean[0], 10 * 3 + 4.5);
}

TEST_F(StatisticsFromAoi, AnswersTheCovarianceResultWhenThatIsAsked) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto area = Area(Rectangle(2, 7, 5, 3));
    CRasterAOI aoi(source.get(), area.get());
    __int64 count = 0;
    double mean = 0, covariance = -1;
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI(source.get(), &aoi, count, nullptr, nullptr,
                                                        &mean, &covariance, false, nullptr));
    // Columns spread by 10 over three, rows by 1 over four: 100 × 2/3 + 5/4.
    EXPECT_DOUBLE_EQ(covariance, 200.0 / 3 + 1.25);
}

TEST_F(StatisticsFromAoi, NullArraysAreNotWritten) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto area = Area(Rectangle(0, 10, 1, 9));
    CRasterAOI aoi(source.get(), area.get());
    __int64 count = 0;
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromAOI(
        source.get(), &aoi, count, nullptr, nullptr, nullptr, nullptr, false, nullptr));
    EXPECT_EQ(count, 1);
}

TEST_F(StatisticsFromAoi, NoDataIsSkippedWithin1e8) {
    RasterSpec spec = UnitSpec(4, 1, GDT_Float64);
    spec.noData = 7.0;
    auto source = Open(spec, {{7.0, 7.000000009, 7.00000002, 9.0}});
    auto area = Area(Rectangle(0, 1, 4, 0));
    Compute(*source, area.get());
    EXPECT_EQ(m_count, 2);
    EXPECT_EQ(m_min[0], 7.00000002);
    EXPECT_EQ(m_max[0], 9.0);
}

TEST_F(StatisticsFromAoi, ABandWithoutAcceptedSamplesKeepsTheRangeOfTheBandBefore) {
    RasterSpec spec = UnitSpec(3, 1, GDT_Int16);
    spec.noData = 0.0;
    auto source = Open(spec, {{0, 0, 0}, {-5, 4, 0}, {0, 0, 0}});
    auto area = Area(Rectangle(0, 1, 3, 0));
    Compute(*source, area.get());
    EXPECT_EQ(m_count, 0); // the last band's
    EXPECT_EQ(m_min, (std::vector<double>{0, -5, -5}));
    EXPECT_EQ(m_max, (std::vector<double>{0, 4, 4}));
    EXPECT_EQ(m_mean, (std::vector<double>{-999, -0.5, -999}));
}

TEST_F(StatisticsFromAoi, ASampleThatIsNotANumberComesFirstAndStays) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    auto source = Open(UnitSpec(3, 1, GDT_Float32), {{nan, 1, 2}});
    auto area = Area(Rectangle(0, 1, 3, 0));
    Compute(*source, area.get());
    EXPECT_EQ(m_count, 3);
    EXPECT_TRUE(std::isnan(m_min[0]) && std::isnan(m_max[0]) && std::isnan(m_mean[0]));
    // Later ones move nothing but the sum.
    source = Open(UnitSpec(3, 1, GDT_Float32), {{1, nan, 2}});
    Compute(*source, area.get());
    EXPECT_EQ(m_min[0], 1);
    EXPECT_EQ(m_max[0], 2);
    EXPECT_TRUE(std::isnan(m_mean[0]));
}

TEST_F(StatisticsFromAoi, AnAreaPartlyOffTheRasterCountsNothing) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto area = Area(Rectangle(5, 5, 12, 1));
    EXPECT_FALSE(Compute(*source, area.get()));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min[0], 0);
    EXPECT_EQ(m_max[0], 0);
    EXPECT_EQ(m_mean[0], -999);
}

TEST_F(StatisticsFromAoi, AnAreaWhollyOffTheRasterCountsNothing) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto area = Area(Rectangle(50, 50, 60, 40));
    EXPECT_FALSE(Compute(*source, area.get()));
    EXPECT_EQ(m_count, 0);
    CRasterAOI aoi(source.get(), area.get());
    double covariance = -1;
    __int64 count = 0;
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromAOI(
        source.get(), &aoi, count, nullptr, nullptr, nullptr, &covariance, false, nullptr));
}

TEST_F(StatisticsFromAoi, AnAreaFarLargerThanTheRasterAnswersFalseAtOnce) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    // 10^9 × 10 pixels and the other way round: 1,410,065,408 and more in 32 bits, so that
    // both are walked in blocks, the first of which cannot be read.
    for (const auto& points : {std::vector<CPoint2D>{{0, 10}, {1e9, 10}, {1e9, 0}},
                               std::vector<CPoint2D>{{0, 10}, {10, 10}, {10, -1e9}}}) {
        auto area = Area(Polygon(points));
        EXPECT_FALSE(Compute(*source, area.get()));
        EXPECT_EQ(m_count, 0);
        EXPECT_EQ(m_min[0], -999);
        EXPECT_EQ(m_mean[0], -999);
    }
}

TEST_F(StatisticsFromAoi, AnAreaOfMorePixelsThan32BitsCountIsRefusedAndTold) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    // 65,537 × 65,536 pixels are 65,536 in 32 bits.
    auto area = Area(Polygon({{0, 10}, {65537, 10}, {65537, 10 - 65536}}));
    EXPECT_FALSE(Compute(*source, area.get()));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              m_path + ": the region has more pixels than can be counted");
    EXPECT_EQ(m_count, -999);
}

TEST_F(StatisticsFromAoi, ABandThatCannotBeReadCountsNothingAndKeepsTheRangeOfTheBandBefore) {
    auto source = OpenWithCutSecondBand();
    auto area = Area(Rectangle(0, 300, 300, 0));
    EXPECT_FALSE(Compute(*source, area.get()));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min, (std::vector<double>{1, 1}));
    EXPECT_EQ(m_max, (std::vector<double>{5, 5}));
    EXPECT_EQ(m_mean, (std::vector<double>{3, -999}));
}

TEST_F(StatisticsFromAoi, AnAreaOfOnePixelColumnsWidthIsEmpty) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    // All vertices fall on column 3: the window has no width.
    auto area = Area(Polygon({{3.1, 9}, {3.9, 9}, {3.5, 2}}));
    EXPECT_FALSE(Compute(*source, area.get()));
    EXPECT_EQ(m_count, -999);
}

TEST_F(StatisticsFromAoi, WithoutAnAreaApproxReturnsTheStoredValues) {
    auto source = Open(UnitSpec(10, 10), {Digits(), Digits()});
    source->GetRasterBand(0)->StoreMinMax(-7, 1234);
    EXPECT_TRUE(Compute(*source, nullptr, true));
    EXPECT_EQ(m_count, 100);
    EXPECT_EQ(m_min[0], -7);
    EXPECT_EQ(m_max[0], 1234);
    EXPECT_EQ(m_mean[1], source->GetRasterBand(1)->GetMean());
}

TEST_F(StatisticsFromAoi, WithoutAnAreaExactAsksGdalAndCountsNoDataToo) {
    RasterSpec spec = UnitSpec(10, 10);
    spec.noData = 99.0;
    auto source = Open(spec, {Digits()});
    RecordingProgress progress;
    __int64 count = 0;
    double min = 0, max = 0, mean = 0;
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI(source.get(), nullptr, count, &min, &max,
                                                        &mean, nullptr, false, &progress));
    EXPECT_EQ(count, 100);
    EXPECT_EQ(min, 0);
    EXPECT_EQ(max, 98);
    EXPECT_DOUBLE_EQ(mean, (4950.0 - 99) / 99);
    ASSERT_EQ(progress.m_stages.size(), 1U);
    EXPECT_EQ(progress.m_stages[0].first, L"计算统计信息");
    EXPECT_EQ(progress.m_stages[0].second, 100);
}

TEST_F(StatisticsFromAoi, WithoutAnAreaTheCovarianceAnswersWhenItIsAsked) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}, {8, 6, 4, 2}});
    for (const bool approx : {false, true}) {
        __int64 count = 0;
        std::vector<double> mean(2, -999), covariance(4, -999);
        EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI(source.get(), nullptr, count, nullptr,
                                                            nullptr, mean.data(), covariance.data(),
                                                            approx, nullptr));
        EXPECT_EQ(count, 4);
        EXPECT_EQ(mean, (std::vector<double>{2.5, 5}));
        EXPECT_EQ(covariance, (std::vector<double>{1.25, -2.5, -2.5, 5}));
    }
    // Also where a band's statistics fail.
    RecordingProgress progress(0);
    __int64 count = 0;
    std::vector<double> mean(2, -999), covariance(4, -999);
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI(source.get(), nullptr, count, nullptr,
                                                        nullptr, mean.data(), covariance.data(),
                                                        false, &progress));
}

TEST_F(StatisticsFromAoi, WithoutAnAreaACancelledBandMakesTheAnswerFalse) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    RecordingProgress progress(0);
    __int64 count = 0;
    double mean = 0;
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromAOI(
        source.get(), nullptr, count, nullptr, nullptr, &mean, nullptr, false, &progress));
    EXPECT_EQ(count, 100);
}

TEST_F(StatisticsFromAoi, WithoutAnAreaAndAMeanTheExactRangeIsStored) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    CRasterBand& band = *source->GetRasterBand(0);
    band.StoreMinMax(-7, 1234);
    __int64 count = 0;
    double min = 0, max = 0;
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI(source.get(), nullptr, count, &min, &max,
                                                        nullptr, nullptr, false, nullptr));
    EXPECT_EQ(min, 0);
    EXPECT_EQ(max, 99);
    EXPECT_EQ(band.GetMaximum(), 99);
    EXPECT_FALSE(band.IsStoredMinMaxFixed());
    // While it is fixed the stored range is the answer, also to an exact question.
    band.StoreMinMax(-7, 1234);
    band.SetStoredMinMaxFixed(true);
    EXPECT_TRUE(CRasterAlgorithm::ComputeStaticsFromAOI(source.get(), nullptr, count, &min, &max,
                                                        nullptr, nullptr, false, nullptr));
    EXPECT_EQ(max, 1234);
}

TEST_F(StatisticsFromAoi, RandomAreasOverRandomRastersAgreeWithThePlainRule) {
    const GDALDataType types[] = {GDT_Byte,  GDT_UInt16,  GDT_Int16,  GDT_UInt32,
                                  GDT_Int32, GDT_Float32, GDT_Float64};
    for (unsigned seed = 1; seed <= 42; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        RasterSpec spec = UnitSpec(37, 31, types[seed % 7]);
        spec.geoTransform = std::array<double, 6>{3, 1.3, 0, 50, 0, -1.7};
        if (seed % 3 != 0)
            spec.noData = 3.0;
        std::vector<Pixels> bands(3);
        std::uniform_real_distribution<double> values(-20, 60);
        for (Pixels& band : bands)
            band = MakePixels(37, 31, [&](int, int) { return std::floor(values(random) * 2) / 2; });
        auto source = Open(spec, bands);
        auto area = Area(RandomPolygon(random, 50), RandomPolygon(random, 50));
        CRasterAOI aoi(source.get(), area.get());
        const CRect rect = aoi.GetRect();
        const int w = rect.right - rect.left, h = rect.bottom - rect.top;
        if (w < 1 || h < 1)
            continue;
        std::vector<std::vector<double>> samples;
        for (int b = 1; b <= 3; ++b)
            samples.push_back(ReadPlain(m_path, b, rect.left, rect.top, w, h, w, h, false));
        const auto plain = PlainMoments(samples, w, h, spec.noData, [&](int i, int j) {
            return aoi.IsInAOI(rect.left + i, rect.top + j);
        });
        EXPECT_FALSE(Compute(*source, area.get()));
        EXPECT_EQ(m_count, plain.count.back());
        EXPECT_EQ(m_min, plain.minimum);
        EXPECT_EQ(m_max, plain.maximum);
        EXPECT_EQ(m_mean, plain.mean);
    }
}
