#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"

#include <filesystem>

using namespace zelto::test;

namespace {

class BandApproxStatistics : public RegionTest {
  protected:
    bool Compute(CRasterSource& source, double* low = nullptr, double* high = nullptr) {
        m_count = -999;
        m_min = m_max = m_mean = m_dev = -999;
        return CRasterAlgorithm::ComputeBandApproxStatics(source.GetRasterBand(0)->GetGDALBand(),
                                                          m_count, m_min, m_max, m_mean, m_dev, low,
                                                          high, false, nullptr);
    }

    __int64 m_count = 0;
    double m_min = 0, m_max = 0, m_mean = 0, m_dev = 0;
};

} // namespace

TEST_F(BandApproxStatistics, ANullBandAnswersFalse) {
    EXPECT_FALSE(CRasterAlgorithm::ComputeBandApproxStatics(
        nullptr, m_count, m_min, m_max, m_mean, m_dev, nullptr, nullptr, false, nullptr));
}

TEST_F(BandApproxStatistics, ABandOfOnePixelAnswersFalse) {
    auto source = Open(UnitSpec(1, 1), {{7}});
    EXPECT_FALSE(Compute(*source));
    EXPECT_EQ(m_count, -999);
}

TEST_F(BandApproxStatistics, ZerosAreLeftOut) {
    auto source = Open(UnitSpec(4, 1), {{0, 2, 4, 0}});
    EXPECT_TRUE(Compute(*source));
    EXPECT_EQ(m_count, 2);
    EXPECT_EQ(m_min, 2);
    EXPECT_EQ(m_max, 4);
    EXPECT_EQ(m_mean, 3);
    EXPECT_EQ(m_dev, 1);
}

TEST_F(BandApproxStatistics, TheClipsThemselvesAreIn) {
    auto source = Open(UnitSpec(5, 1), {{1, 2, 3, 4, 5}});
    double low = 2, high = 4;
    EXPECT_TRUE(Compute(*source, &low, &high));
    EXPECT_EQ(m_count, 3);
    EXPECT_EQ(m_min, 2);
    EXPECT_EQ(m_max, 4);
}

TEST_F(BandApproxStatistics, NegativeValuesLeaveTheMaximumAtTheSmallestPositiveNumber) {
    auto source = Open(UnitSpec(2, 1, GDT_Int16), {{-3, -5}});
    EXPECT_TRUE(Compute(*source));
    EXPECT_EQ(m_min, -5);
    EXPECT_EQ(m_max, 2.2250738585072014e-308);
}

TEST_F(BandApproxStatistics, WithoutAValueEverythingIsZeroAndTheAnswerFalse) {
    auto source = Open(UnitSpec(2, 1), {{0, 0}});
    EXPECT_FALSE(Compute(*source));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min, 0);
    EXPECT_EQ(m_max, 0);
    EXPECT_EQ(m_mean, 0);
    EXPECT_EQ(m_dev, 0);
}

TEST_F(BandApproxStatistics, WhatGdalReportsAsNoDataIsLeftOutThoughTheBandHasNone) {
    // A virtual band that has none reports −10000 all the same.
    Open(UnitSpec(3, 1, GDT_Float64), {{-10000, 2, 4}});
    const std::string vrt =
        "<VRTDataset rasterXSize='3' rasterYSize='1'><VRTRasterBand dataType='Float64' band='1'>"
        "<SimpleSource><SourceFilename>" +
        m_path +
        "</SourceFilename><SourceBand>1</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>";
    GDALDatasetUniquePtr dataset(GDALDataset::Open(vrt.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(dataset, nullptr);
    GDALRasterBand* band = dataset->GetRasterBand(1);
    int has = 1;
    ASSERT_EQ(band->GetNoDataValue(&has), -10000);
    ASSERT_EQ(has, 0);
    EXPECT_TRUE(CRasterAlgorithm::ComputeBandApproxStatics(
        band, m_count, m_min, m_max, m_mean, m_dev, nullptr, nullptr, false, nullptr));
    EXPECT_EQ(m_count, 2);
    EXPECT_EQ(m_min, 2);
}

TEST_F(BandApproxStatistics, ALargeBandIsReadAs1024SamplesOfItsLongerSide) {
    RasterSpec spec = UnitSpec(3000, 1000, GDT_UInt16);
    auto source = Open(
        spec, {MakePixels(3000, 1000, [](int c, int r) { return 1.0 + (c * 7 + r * 3) % 1000; })});
    const auto samples = ReadPlain(m_path, 1, 0, 0, 3000, 1000, 1024, 341, true);
    double sum = 0, squares = 0;
    for (const double v : samples) {
        sum += v;
        squares += v * v;
    }
    const double n = 1024.0 * 341;
    EXPECT_TRUE(Compute(*source));
    EXPECT_EQ(m_count, 1024 * 341);
    EXPECT_EQ(m_mean, sum / n);
    EXPECT_EQ(m_dev, std::sqrt(squares / n - m_mean * m_mean));
}

TEST_F(BandApproxStatistics, AFailedReadAnswersFalse) {
    auto source = Open(UnitSpec(300, 300), {MakePixels(300, 300, [](int, int) { return 5.0; })});
    source.reset();
    std::filesystem::resize_file(m_path, 20000);
    source = Reopen();
    EXPECT_FALSE(Compute(*source));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_mean, -999);
}
