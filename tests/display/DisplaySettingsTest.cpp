#include "zelto/display/ImgEnhance.h"
#include "zelto/display/RasterHistogram.h"

#include "tests/display/ShownRaster.h"

using namespace zelto::test;

namespace {} // namespace

TEST(ShowBandNum, TakesOneToThreeBands) {
    ShownRaster source = BandsOf(4);
    int bands[] = {3, 1, 0, 2};
    EXPECT_TRUE(source.SetShowBandNum(2, bands));
    EXPECT_EQ(source.GetShowBandCount(), 2);
    EXPECT_EQ(source.GetShowBandArray(), (std::vector<int>{3, 1}));
    for (int count : {4, 0, -1}) {
        EXPECT_FALSE(source.SetShowBandNum(count, bands));
        EXPECT_EQ(source.GetShowBandArray(), (std::vector<int>{3, 1}));
        EXPECT_EQ(source.GetShowBandCount(), 2);
    }
    EXPECT_FALSE(source.SetShowBandNum(1, nullptr));
}

TEST(ShowBandNum, DoesNotCheckTheIndices) {
    ShownRaster source = BandsOf(3);
    source.Show({7, -2, 0});
    EXPECT_EQ(source.GetShowBandArray(), (std::vector<int>{7, -2, 0}));
    EXPECT_EQ(source.GetShownBand(0), nullptr);
    EXPECT_EQ(source.GetShownBand(1), nullptr);
    EXPECT_EQ(source.GetShownBand(2), source.GetRasterBand(0));
    EXPECT_EQ(source.GetShownBand(3), nullptr);
    EXPECT_EQ(source.GetShownBand(-1), nullptr);
}

TEST(ShowBandNum, RedTakesAnyBandOfTheSource) {
    ShownRaster source = BandsOf(4);
    EXPECT_TRUE(source.SetRedBandNum(3));
    EXPECT_EQ(source.GetShowBandArray(), (std::vector<int>{3, 1, 0}));
    EXPECT_FALSE(source.SetRedBandNum(4));
    EXPECT_FALSE(source.SetRedBandNum(-1));
    EXPECT_EQ(source.GetRedBandNum(), 3);
}

TEST(ShowBandNum, GreenAndBlueNeedThreeShownBands) {
    ShownRaster source = BandsOf(4);
    EXPECT_TRUE(source.SetGreenBandNum(3));
    EXPECT_TRUE(source.SetBlueBandNum(2));
    EXPECT_EQ(source.GetShowBandArray(), (std::vector<int>{2, 3, 2}));
    EXPECT_FALSE(source.SetGreenBandNum(4));
    EXPECT_FALSE(source.SetGreenBandNum(-1));
    EXPECT_FALSE(source.SetBlueBandNum(-1));
    source.Show({1});
    EXPECT_FALSE(source.SetGreenBandNum(0));
    EXPECT_FALSE(source.SetBlueBandNum(0));
    EXPECT_EQ(source.GetGreenBandNum(), 1);
    EXPECT_EQ(source.GetBlueBandNum(), 1);
}

TEST(ShowBandNum, TheGettersFollowTheNumberOfShownBands) {
    ShownRaster source = BandsOf(4);
    source.Show({3, 2, 1});
    EXPECT_EQ(source.GetRedBandNum(), 3);
    EXPECT_EQ(source.GetGreenBandNum(), 2);
    EXPECT_EQ(source.GetBlueBandNum(), 1);
    source.Show({3, 2});
    EXPECT_EQ(source.GetRedBandNum(), 3);
    EXPECT_EQ(source.GetGreenBandNum(), 0);
    EXPECT_EQ(source.GetBlueBandNum(), 0);
    const CRasterSource closed;
    EXPECT_EQ(closed.GetRedBandNum(), 0);
    EXPECT_EQ(closed.GetGreenBandNum(), 0);
    EXPECT_EQ(closed.GetBlueBandNum(), 0);
}

TEST(StretchSettings, TheTypeReachesEveryBandShownOrNot) {
    ShownRaster source = BandsOf(4);
    source.Show({1});
    source.SetStretchType(StretchStdDev);
    EXPECT_EQ(source.GetStretchType(), StretchStdDev);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(source.GetRasterBand(i)->GetStretchType(), StretchStdDev);
}

TEST(StretchSettings, TheThresholdReachesEveryBandShownOrNot) {
    ShownRaster source = BandsOf(4);
    EXPECT_EQ(source.GetAutoLevelThresold(), 0.01);
    source.Show({1});
    source.SetAutoLevelThresold(0.07);
    EXPECT_EQ(source.GetAutoLevelThresold(), 0.07);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(source.GetRasterBand(i)->GetAutoLevelThresold(), 0.07);
}

TEST(StretchSettings, TheStretchNumberIsStored) {
    ShownRaster source = BandsOf(1);
    EXPECT_EQ(source.GetShowStretchNum(), 0);
    EXPECT_TRUE(source.SetShowStretchNum(-17));
    EXPECT_EQ(source.GetShowStretchNum(), -17);
}

TEST(StretchSettings, EqualisationIsPreparedForTheShownBandsOrForAll) {
    ShownRaster source = BandsOf(4);
    source.Show({2, 2, 0});
    EXPECT_TRUE(source.EnableHistogramEqualize());
    EXPECT_NE(source.GetRasterBand(0)->GetHistogramObject(), nullptr);
    EXPECT_EQ(source.GetRasterBand(1)->GetHistogramObject(), nullptr);
    EXPECT_NE(source.GetRasterBand(2)->GetHistogramObject(), nullptr);
    EXPECT_TRUE(source.AllBandHistogramEqualize());
    EXPECT_NE(source.GetRasterBand(1)->GetHistogramObject(), nullptr);
    source.Show({9});
    EXPECT_TRUE(source.EnableHistogramEqualize());
}

TEST(ColorRampSetting, IsACopyThatReplacesTheOneBefore) {
    ShownRaster source = BandsOf(1);
    EXPECT_EQ(source.GetColorRamp(), nullptr);
    CColorRamp ramp = DistinctRamp();
    source.SetColorRamp(&ramp);
    ASSERT_NE(source.GetColorRamp(), nullptr);
    EXPECT_NE(source.GetColorRamp(), &ramp);
    ramp.SetColor(7, {9, 9, 9, 255});
    EXPECT_EQ(source.GetColorRamp()->Red(7), 7);
    source.SetColorRamp(&ramp);
    EXPECT_EQ(source.GetColorRamp()->Red(7), 9);
    source.SetColorRamp(source.GetColorRamp());
    EXPECT_EQ(source.GetColorRamp()->Red(7), 9);
    source.SetColorRamp(nullptr);
    EXPECT_EQ(source.GetColorRamp(), nullptr);
}

TEST(ClassTableSetting, IsACopyThatReplacesTheOneBefore) {
    ShownRaster source = BandsOf(1);
    CClassifyDisplayTable table = TwoClasses();
    source.SetClassifyDisplayTable(&table);
    ASSERT_NE(source.GetClassifyDisplayTable(), nullptr);
    EXPECT_NE(source.GetClassifyDisplayTable(), &table);
    EXPECT_EQ(source.GetClassifyDisplayTable()->GetItemCount(), 2);
    source.SetClassifyDisplayTable(nullptr);
    EXPECT_EQ(source.GetClassifyDisplayTable(), nullptr);
}

TEST(RgbCache, IsHandedOverAndFreedWithItsUseFlag) {
    ShownRaster source = BandsOf(1);
    source.SetUseCache(true);
    source.DeleteRGBCache(); // without a cache nothing changes
    EXPECT_TRUE(source.IsUseRGBCache());
    auto* cache = new unsigned char[16];
    source.SetRGBCache(cache);
    EXPECT_EQ(source.GetRGBCache(), cache);
    source.DeleteRGBCache();
    EXPECT_EQ(source.GetRGBCache(), nullptr);
    EXPECT_FALSE(source.IsUseRGBCache());
    source.SetRGBCache(new unsigned char[16]); // freed when the source is closed
}

TEST(RgbCache, TheDensityArrayIsFreed) {
    ShownRaster source = BandsOf(1);
    source.ClearRGBShowHisDensity();
    source.m_showDensity = new double[8];
    source.ClearRGBShowHisDensity();
    EXPECT_EQ(source.m_showDensity, nullptr);
}
