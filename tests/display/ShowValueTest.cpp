#include "tests/raster/TestBand.h"

#include <array>
#include <cmath>
#include <limits>

using zelto::test::Pixels;
using zelto::test::TestBand;

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
const double ENDLESS = std::numeric_limits<double>::infinity();

TestBand EightBit() {
    return {{.width = 2, .height = 1}, {0, 255}};
}

/// A 16-bit band shown between 0 and 1000.
TestBand SixteenBit() {
    return {{.width = 2, .height = 1, .type = GDT_UInt16}, {0, 1000}};
}

} // namespace

TEST(ShowValue, EightBitBandsPassUnstretched) {
    TestBand band = EightBit();
    for (int value = 0; value < 256; ++value)
        EXPECT_EQ(band->Convert2ShowValue(value), value);
    EXPECT_EQ(band->Convert2ShowValue(300.0), 255);
    EXPECT_EQ(band->Convert2ShowValue(-4.0), 0);
    EXPECT_EQ(band->Convert2ShowValue(99.9), 99);
    EXPECT_EQ(band->Convert2ShowValue(NOT_A_NUMBER), 0);
}

TEST(ShowValue, OtherTypesAreStretchedToOneTo254) {
    TestBand band = SixteenBit();
    EXPECT_EQ(band->Convert2ShowValue(500.0), 127);
    EXPECT_EQ(band->Convert2ShowValue(0.0), 1);
    EXPECT_EQ(band->Convert2ShowValue(1000.0), 254);
    EXPECT_EQ(band->Convert2ShowValue(ENDLESS), 254);
    EXPECT_EQ(band->Convert2ShowValue(-ENDLESS), 1);
    EXPECT_EQ(band->Convert2ShowValue(NOT_A_NUMBER), 0);
}

TEST(ShowValue, ASinglePixelIsNeverStretched) {
    TestBand single({.width = 1, .height = 1, .type = GDT_UInt16}, {500});
    single->StoreMinMax(0.0, 1000.0);
    TestBand singleByte({.width = 1, .height = 1}, {50});
    std::array<int, 4> counts = {1, 2, 3, 4};
    for (int type = 0; type <= 10; ++type) {
        single->SetStretchType(static_cast<StretchType>(type));
        EXPECT_EQ(single->Convert2ShowValue(500.0), 127) << type;
        singleByte->SetCustomHistogram(0, 255, 4, counts.data());
        singleByte->SetStretchType(static_cast<StretchType>(type));
        EXPECT_EQ(singleByte->Convert2ShowValue(50.0), 50) << type;
    }
    TestBand row({.width = 2, .height = 1, .type = GDT_UInt16}, {0, 1000});
    row->SetStretchType(StretchLinear);
    EXPECT_EQ(row->Convert2ShowValue(0.0), 0) << "one row of two pixels is stretched";
}

TEST(ShowValue, ASinglePixelIsNotEqualizedEitherThoughItHasAHistogram) {
    TestBand single({.width = 1, .height = 1, .type = GDT_UInt16}, {500});
    single->StoreMinMax(0.0, 1000.0);
    ASSERT_TRUE(single->EnableHistogramEqualize());
    for (const StretchType type : {StretchNone, StretchHistEqualize, StretchAutoLevels}) {
        single->SetStretchType(type);
        EXPECT_EQ(single->Convert2ShowValue(500.0), 127) << type; // equalised: 255
        EXPECT_EQ(single->Convert2ShowValue(0.0), 1) << type;
        EXPECT_EQ(single->Convert2ShowValue(2000.0), 254) << type;
    }
}

TEST(ShowValue, LinearUsesTheWholeByteRange) {
    TestBand band = SixteenBit();
    for (const int type : {1, 2, 10, 77, -1}) {
        band->SetStretchType(static_cast<StretchType>(type));
        EXPECT_EQ(band->Convert2ShowValue(0.0), 0) << type;
        EXPECT_EQ(band->Convert2ShowValue(500.0), 127) << type;
        EXPECT_EQ(band->Convert2ShowValue(1000.0), 255) << type;
        EXPECT_EQ(band->Convert2ShowValue(-1.0), 0) << type;
        EXPECT_EQ(band->Convert2ShowValue(1e9), 255) << type;
        EXPECT_EQ(band->Convert2ShowValue(NOT_A_NUMBER), 0) << type;
    }
}

TEST(ShowValue, StandardDeviationsReplaceWhatLiesBeyondByTheBound) {
    // Mean 100, deviation 10, bounds 80 and 120.
    TestBand band({.width = 4, .height = 2, .type = GDT_UInt16},
                  {80, 120, 100, 100, 100, 100, 100, 100});
    band->StoreMinMax(0.0, 1000.0); // the display range plays no part
    band->SetStretchType(StretchStdDev);
    EXPECT_EQ(band->Convert2ShowValue(130.0), 254);
    EXPECT_EQ(band->Convert2ShowValue(100.0), 127);
    EXPECT_EQ(band->Convert2ShowValue(20.0), 1);
    EXPECT_EQ(band->Convert2ShowValue(120.0), 254);
    EXPECT_EQ(band->Convert2ShowValue(90.0), 63); // 63.75
    EXPECT_EQ(band->Convert2ShowValue(NOT_A_NUMBER), 0);
}

TEST(ShowValue, StandardDeviationsOfAConstantBand) {
    TestBand band({.width = 2, .height = 1, .type = GDT_UInt16}, {50, 50});
    band->SetStretchType(StretchStdDev);
    EXPECT_EQ(band->Convert2ShowValue(50.0), 0); // 0 / 0 is NaN
    EXPECT_EQ(band->Convert2ShowValue(51.0), 0); // replaced by the bound, then the same
}

TEST(ShowValue, EqualizationLeavesZeroAlone) {
    TestBand band({.width = 8, .height = 1}, {0, 1, 2, 2, 3, 3, 3, 10});
    ASSERT_TRUE(band->EnableHistogramEqualize());
    band->SetStretchType(StretchHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(0.0), 0);
    // Ten buckets from 0.5 to 10 of width 0.95 (the last edge is outside): 1 → bucket 0,
    // 2 → 1, 3 → 2. The map runs 9 × 1/6, 9 × 3/6, 9 × 1 …; the step is 10 / 9, so the value 1
    // takes entry trunc(0.9) = 0 and 3 takes trunc(2.7) = 2.
    EXPECT_EQ(band->Convert2ShowValue(1.0), 42); // 255 / 6 = 42.5
    EXPECT_EQ(band->Convert2ShowValue(3.0), 255);
}

TEST(ShowValue, HistogramTypesWithoutAHistogramAreLinear) {
    TestBand band = SixteenBit();
    for (const StretchType type :
         {StretchHistEqualize, StretchAutoLevels, StretchCustomHistEqualize}) {
        band->SetStretchType(type);
        EXPECT_EQ(band->Convert2ShowValue(0.0), 0) << type;
        EXPECT_EQ(band->Convert2ShowValue(1000.0), 255) << type;
    }
}

TEST(ShowValue, EachEqualizationUsesItsOwnHistogram) {
    TestBand band = SixteenBit();
    std::array<int, 4> counts = {1, 2, 3, 4};
    ASSERT_TRUE(band->SetCustomHistogram(0.0, 3.0, 4, counts.data()));
    band->SetStretchType(StretchHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(1000.0), 255) << "type 4 looks at the band's own only";
    EXPECT_EQ(band->Convert2ShowValue(1.0), 0);
    band->SetStretchType(StretchCustomHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(1.0), 76);
    band->SetStretchType(StretchAutoLevels);
    EXPECT_EQ(band->Convert2ShowValue(1.0), 0) << "auto levels neither";
}

TEST(ShowValue, ARefusedEqualizationShowsTheClampedSample) {
    TestBand band = SixteenBit();
    std::array<int, 4> counts = {1, 2, 3, 4};
    ASSERT_TRUE(band->SetCustomHistogram(5.0, 5.0, 4, counts.data())); // empty range
    band->SetStretchType(StretchCustomHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(99.5), 99);
    EXPECT_EQ(band->Convert2ShowValue(999.0), 255);
    EXPECT_EQ(band->Convert2ShowValue(-3.0), 0);
}

TEST(ShowValue, AHistogramWithoutAMapShowsTheWrappedSample) {
    TestBand band({.width = 2, .height = 1, .type = GDT_UInt16}, {1, 1000});
    std::array<int, 4> counts{};
    ASSERT_TRUE(band->GetHistogram(1.0, 5.0, 4, counts.data(), false, true, nullptr));
    band->SetStretchType(StretchHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(300.0), 44);
    EXPECT_EQ(band->Convert2ShowValue(0.0), 0);
    EXPECT_EQ(band->Convert2ShowValue(-1.0), 255);
}

TEST(ShowValue, RefusedAutoLevelsShowTheClampedSample) {
    TestBand band = SixteenBit();
    const std::array<int, 2> counts = {4, 4};
    ASSERT_TRUE(band->SetHistogram(5, 5, 2, counts.data())); // no range to find a bucket in
    band->SetStretchType(StretchAutoLevels);
    EXPECT_EQ(band->Convert2ShowValue(900), 255);
    EXPECT_EQ(band->Convert2ShowValue(-4), 0);
    EXPECT_EQ(band->Convert2ShowValue(77), 77);
}

TEST(ShowValue, AutoLevelsClipTheThreshold) {
    // Values 1 … 4 once to four times, in the buckets [1,2) … [4,5): shares 0.1, 0.3, 0.6, 1.
    TestBand band({.width = 10, .height = 1}, {1, 2, 2, 3, 3, 3, 4, 4, 4, 4});
    std::array<int, 4> counts{};
    ASSERT_TRUE(band->GetHistogram(1.0, 5.0, 4, counts.data(), false, true, nullptr));
    band->SetStretchType(StretchAutoLevels);
    band->SetAutoLevelThresold(0.2);
    // low = 4 × 1 / 4 + 1 = 2, high = 3 × 4 / 4 + 1 = 4; entries (i − 2) / 2 × 255;
    // the value v takes entry trunc((v − 1) × 0.75).
    EXPECT_EQ(band->Convert2ShowValue(1.0), 0);
    EXPECT_EQ(band->Convert2ShowValue(4.0), 0);   // entry 2
    EXPECT_EQ(band->Convert2ShowValue(5.0), 127); // entry 3: 127.5
    band->SetAutoLevelThresold(0.35);
    // low 3 (0.6 > 0.35 at bucket 2), high 4 (0.4): entry 3 is 0.
    EXPECT_EQ(band->Convert2ShowValue(5.0), 0) << "the map follows the threshold";
}

TEST(ShowValue, ZoomObjectsGetTheClampedNormalisedSample) {
    TestBand band = SixteenBit();
    band->SetStretchData(StretchZoomLinear, 0, 0, 0, 255, 0, 0); // identity
    EXPECT_EQ(band->Convert2ShowValue(0.0), 1);
    EXPECT_EQ(band->Convert2ShowValue(500.0), 127);
    EXPECT_EQ(band->Convert2ShowValue(1e9), 254);
    band->SetStretchData(StretchZoomLinear002, 0, 0, 0, 255, 0, 0);
    EXPECT_EQ(band->Convert2ShowValue(500.0), 127);
    // The clamp comes before the function and does not truncate: 127.5 spreads to 255 × 2.5 / 5.
    band->SetStretchData(StretchZoomLinear002, 0, 0, 125, 130, 0, 0);
    EXPECT_EQ(band->Convert2ShowValue(500.0), 127);
}

TEST(ShowValue, ZoomLinear002TakesEightBitSamplesAsTheyAre) {
    TestBand band({.width = 2, .height = 1}, {100, 110});
    band->SetStretchData(StretchZoomLinear002, 0, 0, 100, 200, 0, 0);
    EXPECT_EQ(band->Convert2ShowValue(150.0), 127);
    EXPECT_EQ(band->Convert2ShowValue(999.0), 254); // clamped to 254: (254 − 100) × 2.55 > 254
    band->SetStretchData(StretchZoomLinear, 0, 0, 0, 255, 0, 0);
    EXPECT_EQ(band->Convert2ShowValue(105.0), 127) << "type 8 normalises 8-bit samples, too";
}

TEST(ShowValue, WallisGetsTheWrappedNormalisedSample) {
    TestBand band({.width = 2, .height = 1, .type = GDT_UInt16}, {0, 255});
    // Source deviation 9.6 and target deviation 10 give 50 / 50: y = x − 100 + 100.
    band->SetStretchData(StretchWallis, 100, 9.6, 0, 255, 100, 10);
    EXPECT_EQ(band->Convert2ShowValue(300.0), 44) << "normalised 300 wraps";
    EXPECT_EQ(band->Convert2ShowValue(-1.0), 255);
    EXPECT_EQ(band->Convert2ShowValue(70.9), 70);
}

TEST(ShowValue, ObjectTypesWithoutAnObjectAreLinear) {
    TestBand band = SixteenBit();
    for (const StretchType type : {StretchZoomLinear002, StretchWallis, StretchZoomLinear}) {
        band->SetStretchType(type);
        EXPECT_EQ(band->Convert2ShowValue(0.0), 0) << type;
        EXPECT_EQ(band->Convert2ShowValue(1000.0), 255) << type;
    }
}

TEST(ShowValue, AnObjectOfAnotherTypeServesTheTypeNowSet) {
    TestBand band = SixteenBit();
    band->SetStretchData(StretchZoomLinear002, 0, 0, 50, 200, 0, 0);
    band->SetStretchType(StretchWallis);
    // Normalised 127.5 truncates to 127; (127 − 50) × 255 / 150 = 130.9
    EXPECT_EQ(band->Convert2ShowValue(500.0), 130);
    band->SetStretchType(StretchZoomLinear);
    EXPECT_EQ(band->Convert2ShowValue(500.0), 131); // (127.5 − 50) × 1.7 = 131.75
}

TEST(ShowValue, TheEnhancementTableComesLastAndForTypeOneOnly) {
    TestBand band = SixteenBit();
    std::array<unsigned char, 256> table{};
    table[127] = 9;
    table[255] = 8;
    ASSERT_TRUE(band->SetEnhancedData(table.data(), HistogramLineStraight, nullptr, 0));
    band->SetStretchType(StretchEnhanceTable);
    EXPECT_EQ(band->Convert2ShowValue(500.0), 9);
    EXPECT_EQ(band->Convert2ShowValue(5000.0), 8);
    band->SetStretchType(StretchLinear);
    EXPECT_EQ(band->Convert2ShowValue(500.0), 127);
}

TEST(ShowValue, AnEmptyDisplayRangeIsDecidedByTheClamps) {
    TestBand band = SixteenBit();
    band->StoreMinMax(10.0, 10.0);
    EXPECT_EQ(band->Convert2ShowValue(11.0), 254);
    EXPECT_EQ(band->Convert2ShowValue(9.0), 1);
    EXPECT_EQ(band->Convert2ShowValue(10.0), 0);
    band->SetStretchType(StretchLinear);
    EXPECT_EQ(band->Convert2ShowValue(11.0), 255);
    EXPECT_EQ(band->Convert2ShowValue(9.0), 0);
    EXPECT_EQ(band->Convert2ShowValue(10.0), 0);
}

TEST(Convert2Byte, StretchesAllButEightBitBands) {
    TestBand eight = EightBit();
    eight->StoreMinMax(100.0, 110.0);
    EXPECT_EQ(eight->Convert2Byte(105.0), 105);
    EXPECT_EQ(eight->Convert2Byte(256.0), 255);
    EXPECT_EQ(eight->Convert2Byte(-1.0), 0);
    TestBand sixteen = SixteenBit();
    sixteen->SetStretchType(StretchStdDev); // the stretch plays no part
    EXPECT_EQ(sixteen->Convert2Byte(500.0), 127);
    EXPECT_EQ(sixteen->Convert2Byte(-5.0), 1);
    EXPECT_EQ(sixteen->Convert2Byte(1000.0), 254);
    EXPECT_EQ(sixteen->Convert2Byte(NOT_A_NUMBER), 0);
}
