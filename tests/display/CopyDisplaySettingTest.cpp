#include "zelto/aoi/AOISource.h"

#include "tests/display/ShownRaster.h"

using namespace zelto::test;

namespace {} // namespace

TEST(CopyDisplaySetting, CopiesWhatTheSourceStores) {
    ShownRaster from = BandsOf(5);
    from.Show({4, 3, 2});
    from.SetDisplayType(static_cast<DataDisplayType>(1));
    from.m_hue = 0.1F;
    from.m_intensity = 0.2F;
    from.m_saturation = 0.3F;
    from.m_contrast = 0.4F;
    from.m_transparency = 0.5F;
    from.SetAutoLevelThresold(0.06);
    from.SetStretchType(StretchStdDev);
    ShownRaster to = BandsOf(5);
    to.CopyDisplaySetting(&from);
    EXPECT_EQ(to.GetDisplayType(), 1);
    EXPECT_EQ(to.GetShowBandArray(), (std::vector<int>{4, 3, 2}));
    EXPECT_EQ(to.m_hue, 0.1F);
    EXPECT_EQ(to.m_intensity, 0.2F);
    EXPECT_EQ(to.m_saturation, 0.3F);
    EXPECT_EQ(to.m_contrast, 0.4F);
    EXPECT_EQ(to.m_transparency, 0.5F);
    EXPECT_EQ(to.GetAutoLevelThresold(), 0.06);
    EXPECT_EQ(to.GetStretchType(), StretchStdDev);
}

TEST(CopyDisplaySetting, LeavesTheBandsStretchesAndThresholds) {
    ShownRaster from = BandsOf(3);
    from.SetAutoLevelThresold(0.06);
    from.SetStretchType(StretchStdDev);
    ShownRaster to = BandsOf(3);
    to.SetStretchType(StretchLinear);
    to.CopyDisplaySetting(&from);
    EXPECT_EQ(to.GetRasterBand(0)->GetStretchType(), StretchLinear);
    EXPECT_EQ(to.GetRasterBand(0)->GetAutoLevelThresold(), 0.01);
}

TEST(CopyDisplaySetting, SkipsBandsThatThisSourceDoesNotHave) {
    ShownRaster from = BandsOf(5);
    from.Show({4, 1, 3});
    ShownRaster to = BandsOf(3);
    to.CopyDisplaySetting(&from);
    EXPECT_EQ(to.GetShowBandArray(), (std::vector<int>{0, 1, 2}));
}

TEST(CopyDisplaySetting, TakesASingleShownBandForAllThree) {
    ShownRaster from = BandsOf(5);
    from.Show({2});
    ShownRaster to = BandsOf(4);
    to.CopyDisplaySetting(&from);
    EXPECT_EQ(to.GetShowBandArray(), (std::vector<int>{2, 2, 2}));
}

TEST(CopyDisplaySetting, TakesOnlyTheFirstBandWhereOneIsShown) {
    ShownRaster from = BandsOf(5);
    from.Show({3, 1, 0});
    ShownRaster to = BandsOf(4);
    to.Show({0});
    to.CopyDisplaySetting(&from);
    EXPECT_EQ(to.GetShowBandArray(), std::vector<int>{3});
    EXPECT_EQ(to.GetShowBandCount(), 1);
}

TEST(CopyDisplaySetting, DoesNothingForOtherKindsOfSources) {
    CAOISource area;
    area.SetDisplayType(DISPLAY_CLASSIFIED);
    ShownRaster to = BandsOf(3);
    to.CopyDisplaySetting(&area);
    to.CopyDisplaySetting(nullptr);
    EXPECT_EQ(to.GetDisplayType(), DISPLAY_DEFAULT);
    EXPECT_EQ(to.GetShowBandArray(), (std::vector<int>{0, 1, 2}));
}

TEST(WallisColorModel, NeedsTheWallisStretch) {
    ShownRaster source = BandsOf(3);
    EXPECT_FALSE(source.ReadWallisColorModel(0));
    EXPECT_EQ(source.GetRasterBand(0)->GetStretchType(), StretchNone);
    source.SetStretchType(StretchWallis);
    EXPECT_TRUE(source.ReadWallisColorModel(0));
}

TEST(WallisColorModel, GivesEachShownBandTheModelsTarget) {
    struct Target {
        double low, high, mean, deviation;
    };
    const Target models[3][3] = {
        {{67, 255, 129.372, 27.8402}, {71, 255, 159.449, 23.7367}, {68, 255, 122.46, 18.5736}},
        {{5, 250, 134.775, 55.4334}, {5, 250, 137.542, 51.3291}, {7, 250, 132.134, 52.6864}},
        {{0, 252, 87.8847, 68.2869}, {0, 255, 101.007, 58.9089}, {0, 255, 109.724, 55.0128}}};
    // Any other number is model 1.
    for (const auto& [number, model] : {std::pair{0, 0}, {1, 1}, {2, 2}, {3, 1}, {-1, 1}}) {
        ShownRaster source({.width = 3, .height = 1},
                           {{10, 60, 200}, {20, 70, 150}, {5, 100, 250}});
        source.Interleaved(); // the show means and deviations
        source.SetStretchType(StretchWallis);
        ASSERT_TRUE(source.GetRasterBand(0)->GetData(0, 0, 3, 1, 3, 1));
        ASSERT_TRUE(source.ReadWallisColorModel(number));
        double none = -5.0;
        source.GetRasterBand(0)->GetNearestValueAt(1, 0, &none);
        EXPECT_EQ(none, -5.0) << "the cache is freed";
        for (int k = 0; k < 3; ++k) {
            const Target& target = models[model][k];
            const double mean = source.GetShowMeans()[k];
            const double deviation = source.GetShowStandardDeviations()[k];
            ASSERT_GT(deviation, 0.0);
            CRasterBand& band = *source.GetRasterBand(k);
            const double range = band.GetMaximum() - band.GetMinimum();
            const double x = 100.0;
            const double normalised =
                static_cast<int>((x - band.GetMinimum()) / range * 255.0) & 255;
            double y = (normalised - mean) * (5.0 * target.deviation) /
                           (5.0 * deviation + target.deviation / 5.0) +
                       target.mean;
            y = std::min(std::max(y, target.low), target.high);
            EXPECT_EQ(band.Convert2ShowValue(x), static_cast<unsigned char>(y)) << number << k;
        }
    }
}

TEST(WallisColorModel, TouchesOnlyTheShownBands) {
    ShownRaster source = BandsOf(4);
    source.SetStretchType(StretchWallis);
    source.Show({3});
    source.GetRasterBand(0)->SetStretchType(StretchLinear);
    source.GetRasterBand(3)->SetStretchType(StretchLinear);
    EXPECT_TRUE(source.ReadWallisColorModel(1));
    EXPECT_EQ(source.GetRasterBand(0)->GetStretchType(), StretchLinear);
    EXPECT_EQ(source.GetRasterBand(3)->GetStretchType(), StretchWallis);
}

TEST(WallisColorModel, ASourceThatWasNotDrawnHasShowMeansOfZero) {
    ShownRaster source = BandsOf(1);
    source.SetStretchType(StretchWallis);
    ASSERT_TRUE(source.ReadWallisColorModel(1));
    // (255 − 0) × 5 × 55.4334 / (0 + 55.4334 / 5) + 134.775 is beyond the upper clamp of 250.
    EXPECT_EQ(source.GetRasterBand(0)->Convert2ShowValue(200.0), 250);
    EXPECT_EQ(source.GetRasterBand(0)->Convert2ShowValue(10.0), 134);
}

TEST(WallisColorModel, PassesOverShownBandsThatDoNotExist) {
    ShownRaster source({.width = 3, .height = 1}, {{10, 60, 200}, {20, 70, 150}});
    source.SetStretchType(StretchWallis);
    source.Show({0, 7, 1});
    EXPECT_TRUE(source.ReadWallisColorModel(1));
    EXPECT_NE(source.GetRasterBand(0)->GetStretchFunction(), nullptr);
    EXPECT_NE(source.GetRasterBand(1)->GetStretchFunction(), nullptr);
}
