#include "zelto/algorithm/RasterAlgorithm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

constexpr double pi = std::numbers::pi;

struct Ihs {
    double i = -1.0, h = -1.0, s = -1.0;
};
struct Rgb {
    double r = -1.0, g = -1.0, b = -1.0;
};
struct Cmyk {
    double c = -1.0, m = -1.0, y = -1.0, k = -1.0;
};

Ihs ToIhs(double r, double g, double b) {
    Ihs v;
    CRasterAlgorithm::RGBtoIHS(r, g, b, v.i, v.h, v.s);
    return v;
}

Rgb ToRgb(double i, double h, double s) {
    Rgb v;
    CRasterAlgorithm::IHStoRGB(i, h, s, v.r, v.g, v.b);
    return v;
}

Cmyk ToCmyk(double r, double g, double b) {
    Cmyk v;
    CRasterAlgorithm::RGB2Cmyk(r, g, b, v.c, v.m, v.y, v.k);
    return v;
}

Rgb FromCmyk(const Cmyk& v) {
    Rgb rgb;
    CRasterAlgorithm::Cmyk2RGB(v.c, v.m, v.y, v.k, rgb.r, rgb.g, rgb.b);
    return rgb;
}

} // namespace

TEST(RGBtoIHS, IntensityIsTheSumOverTheRootOfThree) {
    EXPECT_DOUBLE_EQ(ToIhs(10, 20, 30).i, 60.0 / std::sqrt(3.0));
}

TEST(RGBtoIHS, GreyHasHueOfAQuarterTurnAndNoSaturation) {
    for (double grey : {0.0, 1.0, 77.0, 255.0}) {
        const Ihs v = ToIhs(grey, grey, grey);
        EXPECT_EQ(v.h, pi / 2.0) << grey;
        EXPECT_EQ(v.s, 0.0) << grey;
    }
}

TEST(RGBtoIHS, EqualRedAndGreenHaveHueOfAQuarterTurnWhateverBlueIs) {
    EXPECT_EQ(ToIhs(10, 10, 200).h, pi / 2.0);
    EXPECT_EQ(ToIhs(200, 200, 10).h, pi / 2.0);
    EXPECT_DOUBLE_EQ(ToIhs(10, 10, 200).s, std::abs(20.0 - 400.0) / std::sqrt(6.0));
}

TEST(RGBtoIHS, RedAboveGreenAddsHalfATurn) {
    const double x = (200.0 - 100.0) / std::sqrt(2.0);
    const double y = (300.0 - 2.0 * 50.0) / std::sqrt(6.0);
    EXPECT_DOUBLE_EQ(ToIhs(200, 100, 50).h, std::atan(y / x) + pi);
}

TEST(RGBtoIHS, GreenAboveRedAddsNothing) {
    const double x = (100.0 - 200.0) / std::sqrt(2.0);
    const double y = (300.0 - 2.0 * 50.0) / std::sqrt(6.0);
    EXPECT_DOUBLE_EQ(ToIhs(100, 200, 50).h, std::atan(y / x));
    EXPECT_DOUBLE_EQ(ToIhs(100, 200, 50).s, std::sqrt(x * x + y * y));
}

TEST(IHStoRGB, WithoutSaturationGivesTheGreyOfTheIntensity) {
    const Rgb v = ToRgb(90.0 * std::sqrt(3.0), 1.0, 0.0);
    EXPECT_DOUBLE_EQ(v.r, 90.0);
    EXPECT_DOUBLE_EQ(v.g, 90.0);
    EXPECT_DOUBLE_EQ(v.b, 90.0);
}

TEST(IHStoRGB, FollowsTheFormulaWithTheHueTurnedAQuarter) {
    const double i = 150.0, h = 0.7, s = 40.0;
    const double c = std::cos(h + pi / 2.0) * s;
    const double d = -(std::sin(h + pi / 2.0) * s) / std::sqrt(2.0);
    const double m = i / std::sqrt(3.0);
    const Rgb v = ToRgb(i, h, s);
    EXPECT_DOUBLE_EQ(v.r, d + (c / std::sqrt(6.0) + m));
    EXPECT_DOUBLE_EQ(v.g, c / std::sqrt(6.0) + m - d);
    EXPECT_DOUBLE_EQ(v.b, m - 2.0 / std::sqrt(6.0) * c);
}

TEST(IHStoRGB, LimitsEveryChannelToTheByteRange) {
    const Rgb bright = ToRgb(1000.0, 0.0, 0.0);
    EXPECT_EQ(bright.r, 255.0);
    EXPECT_EQ(bright.g, 255.0);
    EXPECT_EQ(bright.b, 255.0);
    const Rgb dark = ToRgb(-1000.0, 0.0, 0.0);
    EXPECT_EQ(dark.r, 0.0);
    EXPECT_EQ(dark.g, 0.0);
    EXPECT_EQ(dark.b, 0.0);
}

TEST(IHStoRGB, UndoesTheOtherDirectionWhereRedAndGreenDiffer) {
    std::mt19937 random(71);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int n = 0; n < 1000; ++n) {
        const double r = byte(random), g = byte(random), b = byte(random);
        if (r == g)
            continue;
        const Ihs v = ToIhs(r, g, b);
        const Rgb back = ToRgb(v.i, v.h, v.s);
        EXPECT_NEAR(back.r, r, 1e-9);
        EXPECT_NEAR(back.g, g, 1e-9);
        EXPECT_NEAR(back.b, b, 1e-9);
    }
}

TEST(IHStoRGB, KeepsTheBluerOfTwoColoursOfEqualRedAndGreen) {
    // Both sides of grey have a hue of a quarter turn: (100, 100, 70) comes back mirrored.
    for (double blue : {70.0, 110.0}) {
        const Ihs v = ToIhs(100, 100, blue);
        const Rgb back = ToRgb(v.i, v.h, v.s);
        EXPECT_NEAR(back.r, blue == 70.0 ? 80.0 : 100.0, 1e-9);
        EXPECT_NEAR(back.g, blue == 70.0 ? 80.0 : 100.0, 1e-9);
        EXPECT_NEAR(back.b, 110.0, 1e-9);
    }
}

TEST(RGB2Cmyk, GivesTheInksOfThePrimaries) {
    const Cmyk red = ToCmyk(255, 0, 0);
    EXPECT_EQ(red.c, 0.0);
    EXPECT_EQ(red.m, 1.0);
    EXPECT_EQ(red.y, 1.0);
    EXPECT_EQ(red.k, 0.0);
    const Cmyk cyan = ToCmyk(0, 255, 255);
    EXPECT_EQ(cyan.c, 1.0);
    EXPECT_EQ(cyan.m, 0.0);
    EXPECT_EQ(cyan.y, 0.0);
}

TEST(RGB2Cmyk, PrintsBlackWithBlackInkAlone) {
    const Cmyk black = ToCmyk(0, 0, 0);
    EXPECT_EQ(black.c, 0.0);
    EXPECT_EQ(black.m, 0.0);
    EXPECT_EQ(black.y, 0.0);
    EXPECT_EQ(black.k, 1.0);
}

TEST(RGB2Cmyk, PrintsGreyWithBlackInkAlone) {
    const Cmyk grey = ToCmyk(51, 51, 51);
    EXPECT_EQ(grey.c, 0.0);
    EXPECT_EQ(grey.m, 0.0);
    EXPECT_EQ(grey.y, 0.0);
    EXPECT_DOUBLE_EQ(grey.k, 0.8);
}

TEST(RGB2Cmyk, LimitsColoursOutsideTheByteRange) {
    const Cmyk v = ToCmyk(300, -20, 0);
    EXPECT_EQ(v.c, 0.0);
    EXPECT_EQ(v.m, 1.0);
    EXPECT_EQ(v.y, 1.0);
    EXPECT_EQ(v.k, 0.0);
}

TEST(Cmyk2RGB, UndoesTheOtherDirectionForEveryColourInSteps) {
    for (int r = 0; r <= 255; r += 15)
        for (int g = 0; g <= 255; g += 15)
            for (int b = 0; b <= 255; b += 15) {
                const Rgb back = FromCmyk(ToCmyk(r, g, b));
                ASSERT_NEAR(back.r, r, 1e-10);
                ASSERT_NEAR(back.g, g, 1e-10);
                ASSERT_NEAR(back.b, b, 1e-10);
            }
}

TEST(Cmyk2RGB, MultipliesEachInkByTheBlack) {
    const Rgb v = FromCmyk({0.25, 0.5, 1.0, 0.2});
    EXPECT_DOUBLE_EQ(v.r, 255.0 * 0.75 * 0.8);
    EXPECT_DOUBLE_EQ(v.g, 255.0 * 0.5 * 0.8);
    EXPECT_EQ(v.b, 0.0);
}

TEST(Cmyk2RGB, LimitsInksToTheirRange) {
    const Rgb v = FromCmyk({-1.0, 2.0, 0.0, -0.5});
    EXPECT_EQ(v.r, 255.0);
    EXPECT_EQ(v.g, 0.0);
    EXPECT_EQ(v.b, 255.0);
}

TEST(Cmyk2IHS, IsTheIntensityOfTheInksColour) {
    Ihs v;
    CRasterAlgorithm::Cmyk2IHS(0.0, 1.0, 1.0, 0.0, v.i, v.h, v.s);
    const Ihs red = ToIhs(255, 0, 0);
    EXPECT_EQ(v.i, red.i);
    EXPECT_EQ(v.h, red.h);
    EXPECT_EQ(v.s, red.s);
}

TEST(IHS2Cmyk, IsTheInksOfTheColour) {
    const Ihs v = ToIhs(200, 100, 50);
    Cmyk inks;
    CRasterAlgorithm::IHS2Cmyk(v.i, v.h, v.s, inks.c, inks.m, inks.y, inks.k);
    const Cmyk expected = ToCmyk(200, 100, 50);
    EXPECT_NEAR(inks.c, expected.c, 1e-12);
    EXPECT_NEAR(inks.m, expected.m, 1e-12);
    EXPECT_NEAR(inks.y, expected.y, 1e-12);
    EXPECT_NEAR(inks.k, expected.k, 1e-12);
}
