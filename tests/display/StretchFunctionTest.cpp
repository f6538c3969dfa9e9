#include "zelto/display/WallisStretch.h"
#include "zelto/display/ZoomLinear.h"
#include "zelto/display/ZoomLinear002.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

const double NO_VALUE = std::numeric_limits<double>::quiet_NaN();
const double INFINITE_VALUE = std::numeric_limits<double>::infinity();

CZoomLinear ZoomLinear(double inputLow, double inputHigh, double outputLow, double outputHigh) {
    return {StretchZoomLinear, inputLow, inputHigh, -1, -2, outputLow, outputHigh, -3, -4};
}

CZoomLinear002 ZoomLinear002(double low, double high) {
    return {StretchZoomLinear002, -1, -2, -3, -4, low, high, -5, -6};
}

/// Source mean 100, deviation 20; target mean 130, deviation 50.
CWallisStretch Wallis(double lowerClamp, double upperClamp) {
    return {StretchWallis, 300, 400, 100, 20, lowerClamp, upperClamp, 130, 50};
}

} // namespace

TEST(ZoomLinear, ScaleIsInputSpanOverOutputSpan) {
    const CZoomLinear object = ZoomLinear(0, 255, 50, 200);
    EXPECT_EQ(object.GetScale(), 1.7);
    EXPECT_EQ(object.GetOffset(), 50.0);
    EXPECT_EQ(object.GetStretchValue8UB(100), 220); // 100 × 1.7 + 50
    EXPECT_EQ(object.GetStretchType(), StretchZoomLinear);
}

TEST(ZoomLinear, OffsetTakesTheInputLowTimesTheScale) {
    const CZoomLinear object = ZoomLinear(10, 30, 40, 50); // scale 2
    EXPECT_EQ(object.GetScale(), 2.0);
    EXPECT_EQ(object.GetOffset(), 20.0);
    EXPECT_EQ(object.GetStretchValue8UB(50.4), 120); // 120.8, truncated
}

TEST(ZoomLinear, AnOutputSpanThatIsNotPositiveHasScaleZero) {
    EXPECT_EQ(ZoomLinear(0, 255, 60, 60).GetScale(), 0.0);
    EXPECT_EQ(ZoomLinear(0, 255, 60, 20).GetScale(), 0.0);
    EXPECT_EQ(ZoomLinear(0, 255, 60, 20).GetStretchValue8UB(200), 60);
    EXPECT_EQ(ZoomLinear(0, 255, 60, NO_VALUE).GetScale(), 0.0);
}

TEST(ZoomLinear, ClampsToTheByteRange) {
    const CZoomLinear object = ZoomLinear(0, 255, -10, 245);
    EXPECT_EQ(object.GetStretchValue8UB(5), 0);
    EXPECT_EQ(object.GetStretchValue8UB(10.5), 0);
    EXPECT_EQ(object.GetStretchValue8UB(11), 1);
    EXPECT_EQ(object.GetStretchValue8UB(265), 255);
    EXPECT_EQ(object.GetStretchValue8UB(1e300), 255);
    EXPECT_EQ(object.GetStretchValue8UB(-INFINITE_VALUE), 0);
    EXPECT_EQ(object.GetStretchValue8UB(NO_VALUE), 0);
}

TEST(ZoomLinear002, SpreadsLowToHighOverTheByteRange) {
    const CZoomLinear002 object = ZoomLinear002(50, 200);
    EXPECT_EQ(object.GetLow(), 50.0);
    EXPECT_EQ(object.GetHigh(), 200.0);
    EXPECT_EQ(object.GetStretchValue8UB(100), 85); // 50 × 255 / 150
    EXPECT_EQ(object.GetStretchValue8UB(125), 127);
}

TEST(ZoomLinear002, ClampsToOneAnd254) {
    const CZoomLinear002 object = ZoomLinear002(50, 200);
    EXPECT_EQ(object.GetStretchValue8UB(50), 1);
    EXPECT_EQ(object.GetStretchValue8UB(0), 1);
    EXPECT_EQ(object.GetStretchValue8UB(200), 254);
    EXPECT_EQ(object.GetStretchValue8UB(INFINITE_VALUE), 254);
}

TEST(ZoomLinear002, AnEmptyRangeIsDecidedByTheClamps) {
    const CZoomLinear002 object = ZoomLinear002(50, 50);
    EXPECT_EQ(object.GetStretchValue8UB(60), 254); // +∞
    EXPECT_EQ(object.GetStretchValue8UB(40), 1);   // −∞
    EXPECT_EQ(object.GetStretchValue8UB(50), 0);   // NaN truncates to 0
}

TEST(Wallis, BringsMeanAndDeviationToTheTarget) {
    // (x − 100) × 250 / (100 + 10) + 130
    EXPECT_EQ(Wallis(0, 255).GetStretchValue8UB(100), 130);
    EXPECT_EQ(Wallis(0, 255).GetStretchValue8UB(122), 180); // 22 × 250 / 110 = 50
    EXPECT_EQ(Wallis(0, 255).GetStretchValue8UB(78), 80);
    EXPECT_EQ(Wallis(0, 255).GetStretchValue8UB(101), 132); // 132.27
}

TEST(Wallis, ClampsBelowThenAbove) {
    EXPECT_EQ(Wallis(90, 200).GetStretchValue8UB(0), 90);
    EXPECT_EQ(Wallis(90, 200).GetStretchValue8UB(255), 200);
    EXPECT_EQ(Wallis(210, 200).GetStretchValue8UB(100), 200) << "the upper clamp comes last";
}

TEST(Wallis, ClampsBeyondAByteWrap) {
    EXPECT_EQ(Wallis(0, 300).GetStretchValue8UB(255), 44); // 300 − 256
    EXPECT_EQ(Wallis(-10, 255).GetStretchValue8UB(0), 246);
}

TEST(Wallis, StoresTheOutputBoundsWithoutUsingThem) {
    const CWallisStretch object = Wallis(0, 255);
    EXPECT_EQ(object.GetOutputLow(), 300.0);
    EXPECT_EQ(object.GetOutputHigh(), 400.0);
    EXPECT_EQ(object.GetStretchType(), StretchWallis);
}

TEST(Wallis, WithoutAnyDeviationTheFunctionIsUndefinedAndShowsZero) {
    const CWallisStretch object(StretchWallis, 0, 255, 100, 0, 0, 255, 130, 0);
    EXPECT_EQ(object.GetStretchValue8UB(100), 0); // 0 × 0 / 0
}

TEST(Wallis, AnInfiniteSourceMeanShowsZero) {
    const CWallisStretch object(StretchWallis, 0, 255, -INFINITE_VALUE, 20, 5, 250, 130, 50);
    EXPECT_EQ(object.GetStretchValue8UB(100), 0); // the weight-zero mean turns it into NaN
}

TEST(StretchFunctions, AreCopiedWithTheirParameters) {
    const CZoomLinear source = ZoomLinear(0, 255, 50, 200);
    CZoomLinear copy(source);
    EXPECT_EQ(copy.GetStretchValue8UB(100), 220);
    copy = ZoomLinear(0, 255, 0, 255);
    EXPECT_EQ(copy.GetStretchValue8UB(100), 100);
}
