#include "zelto/algorithm/ImgSamplePixels.h"
#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/algorithm/PlainStatistics.h"
#include "tests/algorithm/RegionFixture.h"

#include <filesystem>
#include <limits>

using namespace zelto::test;

namespace {

using Samples = std::vector<std::vector<double>>;

Samples AllOf(const CImgSamplePixels& container) {
    Samples result;
    for (int i = 0; i < container.GetSampleSize(); ++i)
        result.push_back(container.Get(i));
    return result;
}

class SamplePixels : public RegionTest {
  protected:
    bool Collect(CRasterSource& source, CDrawShape& shape) {
        CImgSamplePixels container(1);
        const bool result =
            CRasterAlgorithm::GetSamplePixelFromDrawShape(&source, &shape, &container);
        m_samples = AllOf(container);
        return result;
    }

    Samples m_samples;
};

} // namespace

TEST(ImgSamplePixels, KeepsItsLabelAndItsSamplesInOrder) {
    CImgSamplePixels container(2.5);
    EXPECT_EQ(container.GetLable(), 2.5);
    EXPECT_EQ(container.GetSampleSize(), 0);
    EXPECT_EQ(container.GetElementSize(), 0);
    container.Add({1, 2, 3});
    container.Add({4, 5});
    EXPECT_EQ(container.GetSampleSize(), 2);
    EXPECT_EQ(container.GetElementSize(), 3);
    EXPECT_EQ(container.Get(1), (std::vector<double>{4, 5}));
    EXPECT_EQ(container.Get(0, 2), 3);
}

TEST(ImgSamplePixels, IndicesOutsideGiveNothing) {
    CImgSamplePixels container(1);
    EXPECT_EQ(container.Get(0, 0), 0.0);
    container.Add({1, 2, 3});
    container.Add({4, 5});
    EXPECT_TRUE(container.Get(-1).empty());
    EXPECT_TRUE(container.Get(2).empty());
    EXPECT_EQ(container.Get(-1, 0), 0.0);
    EXPECT_EQ(container.Get(0, -1), 0.0);
    EXPECT_EQ(container.Get(3, 0), 0.0);
    EXPECT_EQ(container.Get(0, 4), 0.0);
    // Equal to a count, and within the first sample's length but beyond this one's.
    EXPECT_EQ(container.Get(2, 0), 0.0);
    EXPECT_EQ(container.Get(0, 3), 0.0);
    EXPECT_EQ(container.Get(1, 2), 0.0);
}

TEST(ImgSamplePixels, CopiesAreIndependent) {
    CImgSamplePixels container(1);
    container.Add({1});
    CImgSamplePixels copy(container);
    copy.Add({2});
    EXPECT_EQ(container.GetSampleSize(), 1);
    CImgSamplePixels assigned(7);
    assigned = copy;
    EXPECT_EQ(assigned.GetLable(), 1);
    EXPECT_EQ(assigned.GetSampleSize(), 2);
}

TEST_F(SamplePixels, NullArgumentsAnswerFalse) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    auto shape = Rectangle(0, 2, 2, 0);
    CImgSamplePixels container(1);
    EXPECT_FALSE(CRasterAlgorithm::GetSamplePixelFromDrawShape(nullptr, shape.get(), &container));
    EXPECT_FALSE(CRasterAlgorithm::GetSamplePixelFromDrawShape(source.get(), nullptr, &container));
    EXPECT_FALSE(CRasterAlgorithm::GetSamplePixelFromDrawShape(source.get(), shape.get(), nullptr));
}

TEST_F(SamplePixels, AShapeOffTheImageAddsNothing) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}});
    auto shape = Rectangle(5, 2, 7, 0);
    EXPECT_FALSE(Collect(*source, *shape));
    EXPECT_TRUE(m_samples.empty());
}

TEST_F(SamplePixels, OneSamplePerPixelOneValuePerBandAfterThoseAlreadyThere) {
    auto source = Open(UnitSpec(2, 2), {{1, 2, 3, 4}, {5, 6, 7, 8}});
    auto shape = Rectangle(0, 2, 2, 0);
    CImgSamplePixels container(1);
    container.Add({42});
    EXPECT_TRUE(
        CRasterAlgorithm::GetSamplePixelFromDrawShape(source.get(), shape.get(), &container));
    EXPECT_EQ(AllOf(container), (Samples{{42}, {1, 5}, {2, 6}, {3, 7}, {4, 8}}));
}

TEST_F(SamplePixels, APixelAtypicalInOneBandIsLost) {
    Pixels first(16, 10.0), second(16, 20.0);
    first[5] = 200;
    second[0] = 19;
    second[1] = 21;
    auto source = Open(UnitSpec(4, 4), {first, second});
    EXPECT_TRUE(Collect(*source, *Rectangle(0, 4, 4, 0)));
    // 200 is sqrt(15) deviations off; 19 and 21 are more than two off as well.
    EXPECT_EQ(m_samples.size(), 13U);
    for (const auto& sample : m_samples)
        EXPECT_EQ(sample, (std::vector<double>{10, 20}));
}

TEST_F(SamplePixels, ExactlyTwoDeviationsOffIsStillTypical) {
    // Mean 2 of 0 … 0, 10 (four zeros, one ten): deviation 4, bounds −6 and 10.
    auto source = Open(UnitSpec(5, 1), {{0, 0, 0, 0, 10}});
    EXPECT_TRUE(Collect(*source, *Rectangle(0, 1, 5, 0)));
    EXPECT_EQ(m_samples.size(), 5U);
}

TEST_F(SamplePixels, TheLastBandsNoDataValueCountsForAllBands) {
    RasterSpec spec = UnitSpec(4, 1);
    auto source = Open(spec, {{1, 2, 3, 2}, {7, 7, 7, 7}});
    source->GetRasterBand(1)->SetNoDataValue(3.000000001, false);
    EXPECT_TRUE(Collect(*source, *Rectangle(0, 1, 4, 0)));
    EXPECT_EQ(m_samples, (Samples{{1, 7}, {2, 7}, {2, 7}}));
    // The first band's own value is of no account.
    source->GetRasterBand(1)->ClearNoDataValue(false);
    source->GetRasterBand(0)->SetNoDataValue(2, false);
    EXPECT_TRUE(Collect(*source, *Rectangle(0, 1, 4, 0)));
    EXPECT_EQ(m_samples.size(), 4U);
}

TEST_F(SamplePixels, NoDataPixelsTakePartInTheStatistics) {
    // Without the 200 the mean were 10 and the deviation 1; with it 12 is typical.
    auto source = Open(UnitSpec(6, 1), {{9, 11, 9, 11, 12, 200}});
    source->GetRasterBand(0)->SetNoDataValue(200, false);
    EXPECT_TRUE(Collect(*source, *Rectangle(0, 1, 6, 0)));
    EXPECT_EQ(m_samples, (Samples{{9}, {11}, {9}, {11}, {12}}));
}

TEST_F(SamplePixels, WhereTheMeanIsNotANumberEveryValueIsTypical) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    auto source = Open(UnitSpec(3, 1, GDT_Float32), {{1, nan, 300}});
    EXPECT_TRUE(Collect(*source, *Rectangle(0, 1, 3, 0)));
    ASSERT_EQ(m_samples.size(), 3U);
    EXPECT_EQ(m_samples[0], (std::vector<double>{1}));
    EXPECT_TRUE(std::isnan(m_samples[1][0]));
    EXPECT_EQ(m_samples[2], (std::vector<double>{300}));
}

TEST_F(SamplePixels, LargeShapesAreDecimatedToTwoToThe24Samples) {
    // 4,200 × 4,200 = 17,640,000 pixels; of the shape's box a sliver along the diagonal.
    RasterSpec spec = UnitSpec(4200, 4200);
    spec.options = {"COMPRESS=PACKBITS"};
    auto source = Open(spec, {MakePixels(4200, 4200, [](int c, int r) {
                           return c % 100 == 0 ? 200.0 : (c + 3 * r) % 7;
                       })});
    auto shape = Polygon({{0, 4200}, {4200, 0}, {4200, 3}});
    const double s = std::sqrt(17640000 * 5.9604644775390625e-08);
    const int buf = static_cast<int>(4200 / s);
    const auto values = ReadPlain(m_path, 1, 0, 0, 4200, 4200, buf, buf, false);
    std::vector<double> inside;
    for (int j = 0; j < buf; ++j)
        for (int i = 0; i < buf; ++i)
            if (shape->TopoRelationWithPoint({i * s, 4200 - j * s}, 0.0, 1) == TOPO_CONTAIN)
                inside.push_back(values[static_cast<std::size_t>(j) * buf + i]);
    ASSERT_FALSE(inside.empty());
    double mean = 0, squares = 0;
    for (const double v : inside)
        mean += v;
    mean /= static_cast<double>(inside.size());
    for (const double v : inside)
        squares += (v - mean) * (v - mean);
    const double deviation = std::sqrt(squares / static_cast<double>(inside.size()));
    Samples plain;
    for (const double v : inside)
        if (v >= mean - 2 * deviation && v <= mean + 2 * deviation)
            plain.push_back({v});
    EXPECT_TRUE(Collect(*source, *shape));
    EXPECT_EQ(m_samples, plain);
}

TEST_F(SamplePixels, AShapeWithoutAnyPixelCornerAddsNothingAndSucceeds) {
    auto source = Open(UnitSpec(4, 4), {Pixels(16, 3.0)});
    EXPECT_TRUE(Collect(*source, *Rectangle(1.2, 2.8, 1.7, 2.3)));
    EXPECT_TRUE(m_samples.empty());
}

TEST_F(SamplePixels, AnEmptyWindowAnswersFalse) {
    auto source = Open(UnitSpec(4, 4), {Pixels(16, 3.0)});
    EXPECT_FALSE(Collect(*source, *Rectangle(4, 3, 7, 1)));
}

TEST_F(SamplePixels, AFailedReadAnswersFalse) {
    auto source = Open(UnitSpec(300, 300), {Pixels(90000, 3.0)});
    source.reset();
    std::filesystem::resize_file(m_path, 20000);
    source = Reopen();
    EXPECT_FALSE(Collect(*source, *Rectangle(0, 300, 300, 0)));
    EXPECT_TRUE(m_samples.empty());
}

TEST_F(SamplePixels, RandomShapesAgreeWithThePlainRule) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        std::normal_distribution<double> values(50, 20);
        std::vector<Pixels> pixels(3);
        for (Pixels& band : pixels)
            band = MakePixels(25, 22, [&](int, int) { return std::round(values(random)); });
        auto source = Open(UnitSpec(25, 22, GDT_Int16), pixels);
        const double noData = 50;
        source->GetRasterBand(2)->SetNoDataValue(noData, false);
        auto shape = RandomPolygon(random, 22);
        Samples plain;
        std::vector<std::size_t> inside;
        CBoundingBox box = shape->m_extent, extent = source->GetExtent();
        if (!box.Intersect(&extent)) {
            EXPECT_FALSE(Collect(*source, *shape));
            continue;
        }
        const CRect rect = source->GroundToImage(&box);
        for (int r = rect.top; r < std::min(rect.bottom, 22); ++r)
            for (int c = rect.left; c < std::min(rect.right, 25); ++c)
                if (shape->TopoRelationWithPoint({1.0 * c, 22.0 - r}, 0.0, 1) == TOPO_CONTAIN)
                    inside.push_back(static_cast<std::size_t>(r * 25 + c));
        double mean[3] = {}, deviation[3] = {};
        for (std::size_t b = 0; b < 3; ++b) {
            for (const std::size_t p : inside)
                mean[b] += pixels[b][p];
            mean[b] /= static_cast<double>(inside.size());
            for (const std::size_t p : inside)
                deviation[b] += (pixels[b][p] - mean[b]) * (pixels[b][p] - mean[b]);
            deviation[b] = std::sqrt(deviation[b] / static_cast<double>(inside.size()));
        }
        for (const std::size_t p : inside) {
            bool typical = true;
            std::vector<double> sample;
            for (std::size_t b = 0; b < 3; ++b) {
                const double v = pixels[b][p];
                typical = typical && v != noData && v >= mean[b] - 2 * deviation[b] &&
                          v <= mean[b] + 2 * deviation[b];
                sample.push_back(v);
            }
            if (typical)
                plain.push_back(sample);
        }
        Collect(*source, *shape);
        EXPECT_EQ(m_samples, plain);
    }
}

TEST_F(SamplePixels, OfAnImageWithoutBandsHaveNoValues) {
    const std::vector<Pixels> bands = {Pixels(64, 1.0), Pixels(64, 2.0)};
    const auto source = Open(UnitSpec(8, 8), bands);
    std::filesystem::rename(WriteContainer(m_folder.File("two.nc"), UnitSpec(8, 8), bands), m_path);
    ASSERT_EQ(source->Reopen(GIS_READONLY, false), GIS_NOT_SUPPORTED);
    ASSERT_EQ(source->GetBandCount(), 0);
    EXPECT_TRUE(Collect(*source, *Rectangle(1, 7, 7, 4)));
    EXPECT_EQ(m_samples, Samples(6 * 3)) << "one for each pixel";
}
