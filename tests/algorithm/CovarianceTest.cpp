#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/RasterAOI.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"

using namespace zelto::test;

namespace {

class Covariance : public RegionTest {
  protected:
    bool FromArea(CRasterSource& source, CAOISource& area, const double* mean,
                  bool approx = false) {
        CRasterAOI aoi(&source, &area);
        Clear(source);
        return CRasterAlgorithm::ComputeCovarianceFromAOI(&source, &aoi, mean, m_covariance.data(),
                                                          approx, nullptr);
    }
    bool FromShape(CRasterSource& source, CDrawShape* shape, const double* mean) {
        Clear(source);
        return CRasterAlgorithm::ComputeCovarianceFromDrawshape(&source, shape, mean,
                                                                m_covariance.data(), nullptr);
    }
    void Clear(CRasterSource& source) {
        m_covariance.assign(static_cast<std::size_t>(source.GetBandCount()) *
                                static_cast<std::size_t>(source.GetBandCount()),
                            -999);
    }
    void Expect(const std::vector<double>& plain) {
        ASSERT_EQ(m_covariance.size(), plain.size());
        for (std::size_t i = 0; i < plain.size(); ++i)
            EXPECT_EQ(m_covariance[i], plain[i]) << "entry " << i;
    }

    std::vector<double> m_covariance;
};

std::vector<Pixels> RandomBands(std::minstd_rand& random, int bands, int w, int h) {
    std::uniform_int_distribution<int> values(0, 40);
    std::vector<Pixels> result(static_cast<std::size_t>(bands));
    for (Pixels& band : result)
        band = MakePixels(w, h, [&](int, int) { return values(random); });
    return result;
}

} // namespace

TEST_F(Covariance, NullArgumentsAnswerFalse) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}});
    double mean = 2, covariance = -1;
    EXPECT_FALSE(CRasterAlgorithm::ComputeCovarianceFromAOI(nullptr, nullptr, &mean, &covariance,
                                                            true, nullptr));
    EXPECT_FALSE(CRasterAlgorithm::ComputeCovarianceFromAOI(source.get(), nullptr, &mean, nullptr,
                                                            true, nullptr));
    auto shape = Rectangle(0, 1, 2, 0);
    EXPECT_FALSE(CRasterAlgorithm::ComputeCovarianceFromDrawshape(nullptr, shape.get(), &mean,
                                                                  &covariance, nullptr));
    EXPECT_FALSE(CRasterAlgorithm::ComputeCovarianceFromDrawshape(source.get(), shape.get(), &mean,
                                                                  nullptr, nullptr));
}

TEST_F(Covariance, IsThePopulationFormAndSymmetric) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}, {8, 6, 4, 2}});
    const double mean[] = {2.5, 5};
    auto area = Area(Rectangle(0, 2, 2, 0));
    EXPECT_TRUE(FromArea(*source, *area, mean));
    EXPECT_EQ(m_covariance, (std::vector<double>{1.25, -2.5, -2.5, 5}));
    EXPECT_TRUE(FromShape(*source, Rectangle(0, 2, 2, 0.5).get(), mean));
    EXPECT_EQ(m_covariance, (std::vector<double>{1.25, -2.5, -2.5, 5}));
}

TEST_F(Covariance, TheMeansAreTheCallersAndNullMeansCountAsZero) {
    auto source = Open(UnitSpec(2, 1), {{1, 3}, {2, 2}});
    auto area = Area(Rectangle(0, 1, 2, 0));
    EXPECT_TRUE(FromArea(*source, *area, nullptr));
    EXPECT_EQ(m_covariance, (std::vector<double>{5, 4, 4, 4}));
}

TEST_F(Covariance, APixelWithoutDataInOneBandIsOutForAll) {
    RasterSpec spec = UnitSpec(4, 1);
    spec.noData = 9.0;
    auto source = Open(spec, {{1, 9, 3, 5}, {2, 2, 4, 9}});
    auto area = Area(Rectangle(0, 1, 4, 0));
    EXPECT_TRUE(FromArea(*source, *area, nullptr));
    EXPECT_EQ(m_covariance, (std::vector<double>{5, 7, 7, 10}));
}

TEST_F(Covariance, WithoutPixelsEveryEntryIsZero) {
    RasterSpec spec = UnitSpec(2, 1);
    spec.noData = 9.0;
    auto source = Open(spec, {{9, 9}, {1, 2}});
    auto area = Area(Rectangle(0, 1, 2, 0));
    EXPECT_TRUE(FromArea(*source, *area, nullptr));
    EXPECT_EQ(m_covariance, std::vector<double>(4, 0.0));
    EXPECT_TRUE(FromShape(*source, Rectangle(0.2, 0.8, 0.6, 0.3).get(), nullptr));
    EXPECT_EQ(m_covariance, std::vector<double>(4, 0.0));
}

TEST_F(Covariance, ANullAreaOrShapeIsTheWholeRaster) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    const double mean = 2.5;
    double covariance = -1;
    EXPECT_TRUE(CRasterAlgorithm::ComputeCovarianceFromAOI(source.get(), nullptr, &mean,
                                                           &covariance, false, nullptr));
    EXPECT_EQ(covariance, 1.25);
    EXPECT_TRUE(FromShape(*source, nullptr, &mean));
    EXPECT_EQ(m_covariance[0], 1.25);
}

TEST_F(Covariance, AreasWithoutPixelsOrPartlyOffTheRasterAnswerFalse) {
    auto source = Open(UnitSpec(10, 10), {MakePixels(10, 10, [](int c, int) { return c; })});
    EXPECT_FALSE(FromArea(*source, *Area(Polygon({{3.1, 9}, {3.9, 9}, {3.5, 2}})), nullptr));
    EXPECT_FALSE(FromArea(*source, *Area(Rectangle(50, 50, 60, 40)), nullptr));
    EXPECT_FALSE(FromArea(*source, *Area(Rectangle(5, 5, 12, 1)), nullptr));
    EXPECT_FALSE(FromShape(*source, Rectangle(50, 50, 60, 40).get(), nullptr));
}

TEST_F(Covariance, RegionsOfNoRowOrNoColumnAreRefusedAndTold) {
    auto source = Open(UnitSpec(10, 10), {MakePixels(10, 10, [](int c, int) { return c; })});
    // All vertices fall on row 3: the window has no height.
    EXPECT_FALSE(FromArea(*source, *Area(Polygon({{1, 6.9}, {8, 6.9}, {4, 6.2}})), nullptr));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), m_path + ": the region has no pixels");
    CGISDataSource::ClearLastErrorText();
    // Column 10 is widened to one pixel and then cut off at the raster's width.
    EXPECT_FALSE(FromShape(*source, Rectangle(10, 5, 12, 3).get(), nullptr));
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), m_path + ": the region has no pixels");
    EXPECT_EQ(m_covariance[0], -999);
}

TEST_F(Covariance, RandomAreasAgreeWithThePlainRuleForAnyNumberOfBands) {
    for (unsigned seed = 1; seed <= 27; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        const int bands = 1 + static_cast<int>(seed % 9);
        RasterSpec spec = UnitSpec(37, 31, seed % 2 == 0 ? GDT_Float32 : GDT_UInt16);
        if (seed % 3 != 0)
            spec.noData = 3.0;
        auto source = Open(spec, RandomBands(random, bands, 37, 31));
        auto area = Area(RandomPolygon(random, 30), Ellipse(2, 30, 20, 12));
        std::vector<double> mean;
        for (int b = 0; b < bands; ++b)
            mean.push_back(17.3 + b);
        CRasterAOI aoi(source.get(), area.get());
        const CRect rect = aoi.GetRect();
        const int w = rect.right - rect.left, h = rect.bottom - rect.top;
        std::vector<std::vector<double>> samples;
        for (int b = 1; b <= bands; ++b)
            samples.push_back(ReadPlain(m_path, b, rect.left, rect.top, w, h, w, h, false));
        if (samples[0].empty()) {
            EXPECT_FALSE(FromArea(*source, *area, mean.data()));
            continue;
        }
        EXPECT_TRUE(FromArea(*source, *area, mean.data()));
        Expect(PlainCovariance(samples, w, h, spec.noData, mean, [&](int i, int j) {
            return aoi.IsInAOI(rect.left + i, rect.top + j);
        }));
    }
}

TEST_F(Covariance, RandomShapesAgreeWithThePlainRule) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        RasterSpec spec = UnitSpec(37, 31, GDT_Int16);
        if (seed % 3 != 0)
            spec.noData = 3.0;
        auto source = Open(spec, RandomBands(random, 4, 37, 31));
        auto shape = RandomPolygon(random, 30);
        const std::vector<double> mean = {20, 19, 18, 21};
        CBoundingBox box = shape->m_extent, extent = source->GetExtent();
        if (!box.Intersect(&extent))
            continue;
        const CRect rect = source->GroundToImage(&box);
        const int w = std::min(rect.right, 37) - rect.left;
        const int h = std::min(rect.bottom, 31) - rect.top;
        if (w < 1 || h < 1)
            continue;
        std::vector<std::vector<double>> samples;
        for (int b = 1; b <= 4; ++b)
            samples.push_back(ReadPlain(m_path, b, rect.left, rect.top, w, h, w, h, false));
        EXPECT_TRUE(FromShape(*source, shape.get(), mean.data()));
        Expect(PlainCovariance(samples, w, h, spec.noData, mean, [&](int i, int j) {
            return shape->TopoRelationWithPoint(
                       {static_cast<double>(rect.left + i), 31.0 - (rect.top + j)}, 0.0, 1) ==
                   TOPO_CONTAIN;
        }));
    }
}

TEST_F(Covariance, LargeAreasAreReadInBlocksAtTheirOwnPlaceOrDecimated) {
    // 4 bands of 2,100 × 2,100: 4,410,000 pixels, over the share of 4,194,304.
    std::vector<Pixels> bands;
    for (int b = 0; b < 4; ++b)
        bands.push_back(MakePixels(
            2200, 2200, [b](int c, int r) { return (c * 31 + r * 17 + b * (c / 100)) % 200; }));
    auto source = Open(UnitSpec(2200, 2200), bands);
    auto area = Area(Ellipse(50, 2150, 2150, 50));
    CRasterAOI aoi(source.get(), area.get());
    aoi.Initialize();
    const std::vector<double> mean = {100, 99, 98, 97};
    std::vector<std::vector<double>> samples;
    for (int b = 1; b <= 4; ++b)
        samples.push_back(ReadPlain(m_path, b, 50, 50, 2100, 2100, 2100, 2100, false));
    EXPECT_TRUE(FromArea(*source, *area, mean.data()));
    Expect(PlainCovariance(samples, 2100, 2100, {}, mean,
                           [&](int i, int j) { return aoi.IsInAOI(50 + i, 50 + j); }));

    const double s = std::sqrt(4410000 / 4194304.0);
    const int buf = static_cast<int>(2100 / s);
    samples.clear();
    for (int b = 1; b <= 4; ++b)
        samples.push_back(ReadPlain(m_path, b, 50, 50, 2100, 2100, buf, buf, false));
    EXPECT_TRUE(FromArea(*source, *area, mean.data(), true));
    Expect(PlainCovariance(samples, buf, buf, {}, mean, [&](int i, int j) {
        return aoi.IsInAOI(static_cast<int>(i * s + 50), static_cast<int>(j * s + 50));
    }));
}
