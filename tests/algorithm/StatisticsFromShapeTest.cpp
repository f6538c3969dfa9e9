#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/RasterAOI.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"

using namespace zelto::test;

namespace {

class StatisticsFromShape : public RegionTest {
  protected:
    bool Compute(CRasterSource& source, CDrawShape* shape, double* covariance = nullptr) {
        const auto bands = static_cast<std::size_t>(source.GetBandCount());
        m_min.assign(bands, -999);
        m_max.assign(bands, -999);
        m_mean.assign(bands, -999);
        m_count = -999;
        return CRasterAlgorithm::ComputeStaticsFromDrawshape(&source, shape, m_count, m_min.data(),
                                                             m_max.data(), m_mean.data(),
                                                             covariance, nullptr);
    }

    __int64 m_count = 0;
    std::vector<double> m_min, m_max, m_mean;
};

} // namespace

TEST_F(StatisticsFromShape, ANullSourceAnswersFalse) {
    auto shape = Rectangle(0, 1, 1, 0);
    __int64 count = 5;
    EXPECT_FALSE(CRasterAlgorithm::ComputeStaticsFromDrawshape(nullptr, shape.get(), count, nullptr,
                                                               nullptr, nullptr, nullptr, nullptr));
}

TEST_F(StatisticsFromShape, ANullShapeMeansTheStoredStatisticsOfTheWholeRaster) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    source->GetRasterBand(0)->StoreMinMax(-7, 1234);
    EXPECT_TRUE(Compute(*source, nullptr));
    EXPECT_EQ(m_count, 100);
    EXPECT_EQ(m_max[0], 1234);
}

TEST_F(StatisticsFromShape, WithANullShapeTheCovarianceIsThatOfTheWholeRaster) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    double covariance = -1;
    EXPECT_TRUE(Compute(*source, nullptr, &covariance));
    EXPECT_EQ(m_mean[0], 2.5);
    EXPECT_EQ(covariance, 1.25);
}

TEST_F(StatisticsFromShape, ABandThatCannotBeReadCountsNothingAndTheAnswerStaysTrue) {
    auto source = OpenWithCutSecondBand();
    EXPECT_TRUE(Compute(*source, Rectangle(0, 300, 300, 0).get()));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min, (std::vector<double>{1, 1}));
    EXPECT_EQ(m_max, (std::vector<double>{5, 5}));
    EXPECT_EQ(m_mean, (std::vector<double>{3, -999}));
}

TEST_F(StatisticsFromShape, PixelsWhoseCornerLiesInTheShapeCount) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto shape = Rectangle(1.5, 7.5, 5, 3);
    EXPECT_TRUE(Compute(*source, shape.get()));
    // Corners x = 2 … 4 and y = 7 … 4; y = 3 is row 7, just below the window's last row.
    EXPECT_EQ(m_count, 3 * 4);
    EXPECT_EQ(m_min[0], 23);
    EXPECT_EQ(m_max[0], 46);
}

TEST_F(StatisticsFromShape, AShapeAcrossTheEdgeIsClippedToTheRaster) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto shape = Rectangle(7, 20, 30, 8);
    EXPECT_TRUE(Compute(*source, shape.get()));
    EXPECT_EQ(m_count, 3 * 2);
    EXPECT_EQ(m_min[0], 70);
    EXPECT_EQ(m_max[0], 91);
}

TEST_F(StatisticsFromShape, AShapeOffTheRasterAnswersFalse) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    for (auto shape : {Rectangle(11, 5, 12, 4).release(), Rectangle(-3, 5, -1, 4).release(),
                       Rectangle(4, 20, 5, 11).release(), Rectangle(4, -1, 5, -4).release()}) {
        const std::unique_ptr<CDrawShape> owner(shape);
        EXPECT_FALSE(Compute(*source, shape));
        EXPECT_EQ(m_count, -999);
    }
}

TEST_F(StatisticsFromShape, AShapeThatTouchesTheRightEdgeFindsNoColumn) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto shape = Rectangle(10, 5, 12, 3);
    // Column 10 is widened to one pixel and then cut off at the raster's width.
    EXPECT_FALSE(Compute(*source, shape.get()));
}

TEST_F(StatisticsFromShape, AShapeWithoutAnyPixelCornerCountsNothingAndSucceeds) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto shape = Rectangle(2.3, 7.8, 2.7, 7.2);
    EXPECT_TRUE(Compute(*source, shape.get()));
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(m_min[0], 0);
    EXPECT_EQ(m_mean[0], -999);
}

TEST_F(StatisticsFromShape, ALineIsAShapeToo) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    CDrawShape* shape = nullptr;
    CDrawPolygon diagonal;
    diagonal.AddVertex({0, 0});
    diagonal.AddVertex({9, 9});
    shape = &diagonal;
    EXPECT_TRUE(Compute(*source, shape)); // two vertices enclose nothing
    EXPECT_EQ(m_count, 0);
}

TEST_F(StatisticsFromShape, TheCovarianceAnswersWhenItIsAsked) {
    auto source = Open(UnitSpec(10, 10), {Digits()});
    auto shape = Rectangle(2, 7, 5, 3);
    double covariance = -1;
    EXPECT_TRUE(Compute(*source, shape.get(), &covariance));
    EXPECT_DOUBLE_EQ(covariance, 200.0 / 3 + 1.25);
}

TEST_F(StatisticsFromShape, LargeShapesAreDecimatedToTwoToThe24Samples) {
    // 4,200 × 4,200 = 17,640,000 pixels, one in a hundred set.
    RasterSpec spec = UnitSpec(4200, 4200);
    spec.options = {"COMPRESS=PACKBITS"};
    auto source = Open(spec, {MakePixels(4200, 4200, [](int c, int r) {
                           return c % 10 == 0 && r % 10 == 0 ? 200.0 : c % 7;
                       })});
    auto shape = Ellipse(0, 4200, 4200, 0);
    const double s = std::sqrt(17640000 * 5.9604644775390625e-08);
    const int buf = static_cast<int>(4200 / s);
    const auto samples = ReadPlain(m_path, 1, 0, 0, 4200, 4200, buf, buf, false);
    const auto plain = PlainMoments({samples}, buf, buf, {}, [&](int i, int j) {
        return shape->TopoRelationWithPoint({i * s, 4200 - j * s}, 0.0, 1) == TOPO_CONTAIN;
    });
    EXPECT_TRUE(Compute(*source, shape.get()));
    EXPECT_EQ(m_count, plain.count[0]);
    EXPECT_EQ(m_mean, plain.mean);
    EXPECT_EQ(m_max, plain.maximum);
}

TEST_F(StatisticsFromShape, RandomShapesOverRandomRastersAgreeWithThePlainRule) {
    const GDALDataType types[] = {GDT_Byte,  GDT_UInt16,  GDT_Int16,  GDT_UInt32,
                                  GDT_Int32, GDT_Float32, GDT_Float64};
    for (unsigned seed = 1; seed <= 42; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        RasterSpec spec = UnitSpec(37, 31, types[seed % 7]);
        const bool rotated = seed % 2 == 0;
        std::array<double, 6> g = {3, 1.3, 0, 50, 0, -1.7};
        if (rotated)
            g = {8, 1.1, 0.3, 45, 0.2, -1.4};
        spec.geoTransform = g;
        if (seed % 3 != 0)
            spec.noData = 3.0;
        std::vector<Pixels> bands(2);
        std::uniform_real_distribution<double> values(-20, 60);
        for (Pixels& band : bands)
            band = MakePixels(37, 31, [&](int, int) { return std::floor(values(random) * 2) / 2; });
        Open(spec, bands);
        auto source = Reopen(rotated);
        std::unique_ptr<CDrawShape> shape = RandomPolygon(random, 50);
        if (seed % 5 == 0)
            shape = Ellipse(5, 44, 33, 12);
        CBoundingBox box = shape->m_extent;
        CBoundingBox extent = source->GetExtent();
        if (!box.Intersect(&extent)) {
            EXPECT_FALSE(Compute(*source, shape.get()));
            continue;
        }
        CRect rect = source->GroundToImage(&box);
        const int x0 = std::max(rect.left, 0), y0 = std::max(rect.top, 0);
        const int w = std::min(rect.right, 37) - x0, h = std::min(rect.bottom, 31) - y0;
        if (w * h <= 0) {
            EXPECT_FALSE(Compute(*source, shape.get()));
            continue;
        }
        std::vector<std::vector<double>> samples;
        for (int b = 1; b <= 2; ++b)
            samples.push_back(ReadPlain(m_path, b, x0, y0, w, h, w, h, false));
        const auto plain = PlainMoments(samples, w, h, spec.noData, [&](int i, int j) {
            const double px = i + x0, py = j + y0;
            return shape->TopoRelationWithPoint(
                       {g[0] + px * g[1] + py * g[2], g[3] + px * g[4] + py * g[5]}, 0.0, 1) ==
                   TOPO_CONTAIN;
        });
        EXPECT_TRUE(Compute(*source, shape.get()));
        EXPECT_EQ(m_count, plain.count.back());
        EXPECT_EQ(m_min, plain.minimum);
        EXPECT_EQ(m_max, plain.maximum);
        EXPECT_EQ(m_mean, plain.mean);
    }
}
