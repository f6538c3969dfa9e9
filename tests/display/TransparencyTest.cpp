#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/display/ShownRaster.h"

#include <cmath>
#include <cstdint>
#include <limits>

using namespace zelto::test;

namespace {

/// Alphas of a 2 × 2 image of alphas 255, 0, 7, 128 after the transparency.
Bytes Alphas(ShownRaster& source, float transparency) {
    source.m_transparency = transparency;
    Bytes image{1, 2, 3, 255, 4, 5, 6, 0, 7, 8, 9, 7, 10, 11, 12, 128};
    source.ApplyTransparenVal(image.data(), 2, 2);
    for (int p = 0; p < 4; ++p)
        EXPECT_EQ(
            Bytes(image.begin() + 4 * p, image.begin() + 4 * p + 3),
            (Bytes{static_cast<unsigned char>(3 * p + 1), static_cast<unsigned char>(3 * p + 2),
                   static_cast<unsigned char>(3 * p + 3)}));
    return {image[3], image[7], image[11], image[15]};
}

} // namespace

TEST(Transparency, SetsEveryVisiblePixelOfSeveralBands) {
    ShownRaster source = BandsOf(3);
    EXPECT_EQ(Alphas(source, 0.5F), (Bytes{128, 0, 128, 128})); // 255 − 127
    EXPECT_EQ(Alphas(source, 0.0F), (Bytes{255, 0, 255, 255}));
    EXPECT_EQ(Alphas(source, 1.0F), (Bytes{0, 0, 0, 0}));
    source.Show({0, 1});
    EXPECT_EQ(Alphas(source, 0.25F), (Bytes{192, 0, 192, 192})); // 255 − 63
}

TEST(Transparency, OfASingleBandNeedsTheRamp) {
    ShownRaster source = BandsOf(1);
    const Bytes unchanged{255, 0, 7, 128};
    EXPECT_EQ(Alphas(source, 0.5F), unchanged);
    source.SetDisplayType(static_cast<DataDisplayType>(1));
    EXPECT_EQ(Alphas(source, 0.5F), unchanged) << "no ramp";
    CColorRamp ramp = DistinctRamp();
    source.SetColorRamp(&ramp);
    EXPECT_EQ(Alphas(source, 0.5F), (Bytes{128, 0, 128, 128}));
    source.SetDisplayType(DISPLAY_CLASSIFIED);
    EXPECT_EQ(Alphas(source, 0.5F), unchanged);
}

TEST(Transparency, ProductIsSinglePrecision) {
    ShownRaster source = BandsOf(3);
    for (int step = 0; step <= 255; ++step) {
        const float t = std::nextafter(static_cast<float>(step) / 255.0F, 0.0F);
        const float product = t * 255.0F;
        EXPECT_EQ(Alphas(source, t)[0], 255 - static_cast<int>(product)) << step;
    }
}

TEST(Transparency, ValuesOutsideTheRangeWrap) {
    ShownRaster source = BandsOf(3);
    EXPECT_EQ(Alphas(source, 2.0F)[0], static_cast<unsigned char>(~510));
    EXPECT_EQ(Alphas(source, -0.5F)[0], static_cast<unsigned char>(~-127));
    EXPECT_EQ(Alphas(source, std::numeric_limits<float>::quiet_NaN())[0], 255);
}

TEST(Transparency, OfAnAlphaPlaneOfDoublesFollowsTheSameRule) {
    ShownRaster source = BandsOf(3);
    source.m_transparency = 0.5F;
    std::vector<double> alpha{255.0, 0.0, 7.0, 128.0};
    source.ApplyTransparenVal(alpha.data(), 2, 2);
    EXPECT_EQ(alpha, (std::vector<double>{128.0, 0.0, 128.0, 128.0}));
    source.Show({0});
    alpha[0] = 7.0;
    source.ApplyTransparenVal(alpha.data(), 2, 2);
    EXPECT_EQ(alpha[0], 7.0);
}

TEST(Transparency, NothingHappensWithoutABuffer) {
    ShownRaster source = BandsOf(3);
    source.m_transparency = 0.5F;
    Bytes image(4, 200);
    double alpha = 200.0;
    source.ApplyTransparenVal(static_cast<unsigned char*>(nullptr), 1, 1);
    source.ApplyTransparenVal(static_cast<double*>(nullptr), 1, 1);
    source.ApplyTransparenVal(image.data(), 0, 1);
    source.ApplyTransparenVal(image.data(), 1, 0);
    source.ApplyTransparenVal(&alpha, 0, 1);
    source.ApplyTransparenVal(&alpha, 1, -1);
    source.ApplyShowDataHISC(1, 1, nullptr);
    source.ApplyShowDataHISC(nullptr, nullptr, nullptr, 1, 1);
    source.ComputeShowDataStatics(nullptr, 1, 1);
    source.ComputeShowDataStatics(image.data(), 0, 1);
    source.ComputeShowDataStatics(image.data(), 1, 0);
    EXPECT_EQ(image, Bytes(4, 200));
    EXPECT_EQ(alpha, 200.0);
    EXPECT_EQ(source.GetShowMeans()[0], 0.0);
    EXPECT_FALSE(source.IsShowStatisticsKnown());
}

TEST(Transparency, OfASourceThatShowsNoBandChangesNothing) {
    struct Hidden : CRasterSource {
        using CRasterSource::ApplyTransparenVal;
    } source;
    ASSERT_EQ(source.GetShowBandCount(), 0);
    source.m_transparency = 0.5F;
    Bytes image(4, 200);
    source.ApplyTransparenVal(image.data(), 1, 1);
    EXPECT_EQ(image, Bytes(4, 200));
}

TEST(FinishedImage, TakesEachAdjustmentAlone) {
    for (float CRasterSource::*const adjustment :
         {&CRasterSource::m_hue, &CRasterSource::m_intensity, &CRasterSource::m_saturation}) {
        ShownRaster source = BandsOf(3);
        source.*adjustment = 0.25F;
        const Bytes before = {10, 90, 200, 255};
        Bytes image = before;
        Bytes expected = before;
        source.ApplyShowDataHISC(1, 1, image.data());
        CRasterAlgorithm::AdjustHIS(expected.data(), 1, 1, source.m_hue, source.m_intensity,
                                    source.m_saturation);
        EXPECT_EQ(image, expected);
        EXPECT_NE(image, before);
        double r = 200, g = 90, b = 10, r2 = 200, g2 = 90, b2 = 10;
        source.ApplyShowDataHISC(&r, &g, &b, 1, 1);
        CRasterAlgorithm::AdjustHIS(&r2, &g2, &b2, 1, 1, source.m_hue, source.m_intensity,
                                    source.m_saturation);
        EXPECT_EQ(r, r2);
        EXPECT_EQ(g, g2);
        EXPECT_EQ(b, b2);
        EXPECT_FALSE(r == 200 && g == 90 && b == 10);
    }
}

TEST(FinishedImage, OfPlanesTakesEachAdjustmentAlone) {
    for (float CRasterSource::*const adjustment :
         {&CRasterSource::m_hue, &CRasterSource::m_intensity, &CRasterSource::m_saturation}) {
        ShownRaster source({.width = 1, .height = 1}, {{10}, {90}, {200}});
        source.Show({0, 1, 2});
        auto expected = source.Planes(3);
        source.*adjustment = 0.25F;
        unsigned char* planes[] = {expected[0].data(), expected[1].data(), expected[2].data()};
        CRasterAlgorithm::AdjustHIS(planes, 1, 1, source.m_hue, source.m_intensity,
                                    source.m_saturation);
        EXPECT_EQ(source.Planes(3), expected);
        EXPECT_NE(expected, (std::vector<Bytes>{{10}, {90}, {200}}));
    }
}

TEST(FinishedImage, TakesTransparencyThenHueThenContrast) {
    ShownRaster source = BandsOf(3);
    const Bytes before{10, 90, 200, 255, 50, 60, 70, 0};
    Bytes expected = before;
    source.m_transparency = 0.5F;
    source.m_saturation = 0.2F;
    source.m_contrast = 0.3F;
    source.ApplyTransparenVal(expected.data(), 2, 1);
    CRasterAlgorithm::AdjustHIS(expected.data(), 2, 1, 0.0F, 0.0F, 0.2F);
    CRasterAlgorithm::AdjustContrast(expected.data(), 2, 1, 0.3F);
    Bytes image = before;
    source.ApplyShowDataHISC(2, 1, image.data());
    EXPECT_EQ(image, expected);
}

TEST(FinishedImage, IsLeftAloneWhereNothingIsSet) {
    ShownRaster source = BandsOf(3);
    Bytes image{10, 90, 200, 7};
    source.ApplyShowDataHISC(1, 1, image.data());
    EXPECT_EQ(image, (Bytes{10, 90, 200, 7}));
    double r = 300.5, g = -2.5, b = 1.5;
    source.ApplyShowDataHISC(&r, &g, &b, 1, 1);
    EXPECT_EQ(r, 300.5);
    EXPECT_EQ(g, -2.5);
    EXPECT_EQ(b, 1.5);
}

TEST(FinishedImage, OfDoublesTakesHueThenContrastButNoTransparency) {
    ShownRaster source = BandsOf(3);
    source.m_transparency = 0.5F;
    source.m_intensity = 0.1F;
    source.m_contrast = -0.3F;
    double r = 200, g = 90, b = 10, r2 = 200, g2 = 90, b2 = 10;
    source.ApplyShowDataHISC(&r, &g, &b, 1, 1);
    CRasterAlgorithm::AdjustHIS(&r2, &g2, &b2, 1, 1, 0.0F, 0.1F, 0.0F);
    CRasterAlgorithm::AdjustContrast(&r2, &g2, &b2, 1, 1, -0.3F);
    EXPECT_EQ(r, r2);
    EXPECT_EQ(g, g2);
    EXPECT_EQ(b, b2);
}

TEST(FinishedImage, HasStatisticsOfItsOpaquePixels) {
    ShownRaster source = BandsOf(3);
    const Bytes image{3, 2, 10, 255, 9, 9, 90, 0, 5, 4, 30, 1};
    source.ComputeShowDataStatics(image.data(), 3, 1);
    EXPECT_TRUE(source.IsShowStatisticsKnown());
    EXPECT_EQ(source.GetShowMeans()[0], 20.0);
    EXPECT_EQ(source.GetShowStandardDeviations()[0], 10.0);
    EXPECT_EQ(source.GetShowMeans()[1], 3.0);
    EXPECT_EQ(source.GetShowMeans()[2], 4.0);
    ShownRaster empty = BandsOf(3);
    const Bytes hidden{3, 2, 10, 0};
    empty.ComputeShowDataStatics(hidden.data(), 1, 1);
    EXPECT_FALSE(empty.IsShowStatisticsKnown());
    EXPECT_EQ(empty.GetShowMeans()[0], 0.0);
}
