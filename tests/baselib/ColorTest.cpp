#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>
#include <random>

namespace {

CClassifyDisplayItem Item(double low, double high, int number) {
    return {{static_cast<unsigned char>(number), 1, 2, 255}, low, high, L"item"};
}

/// Red of the value's colour, −1 when it has none.
int RedOf(const CClassifyDisplayTable& table, double value) {
    unsigned char r = 9;
    unsigned char g = 9;
    unsigned char b = 9;
    unsigned char a = 9;
    const bool found = table.GetColor(value, r, g, b, a);
    EXPECT_EQ(a, found ? 255 : 0);
    EXPECT_EQ(g, found ? 1 : 0);
    EXPECT_EQ(b, found ? 2 : 0);
    return found ? r : -1;
}

} // namespace

TEST(ColorRamp, IsGreyAtFirst) {
    for (const CColorRamp& ramp : {CColorRamp(), CColorRamp(std::vector<CRgbaColor>())})
        for (int v = 0; v < 256; ++v) {
            const auto value = static_cast<unsigned char>(v);
            EXPECT_EQ(ramp.Red(value), v);
            EXPECT_EQ(ramp.Green(value), v);
            EXPECT_EQ(ramp.Blue(value), v);
        }
}

TEST(ColorRamp, BlendsBetweenItsControlColours) {
    const CColorRamp ramp({{0, 0, 0, 255}, {255, 100, 0, 255}, {0, 200, 255, 255}});
    EXPECT_EQ(ramp.Red(0), 0);
    // Value 51 is at 0.4 of the first of the two intervals.
    EXPECT_EQ(ramp.Red(51), 102);
    EXPECT_EQ(ramp.Green(51), 40);
    // Value 204 is at 0.6 of the second.
    EXPECT_EQ(ramp.Red(204), 102);
    EXPECT_EQ(ramp.Green(204), 160);
    EXPECT_EQ(ramp.Blue(204), 153);
    EXPECT_EQ(ramp.Red(255), 0);
    EXPECT_EQ(ramp.Green(255), 200);
    EXPECT_EQ(ramp.Blue(255), 255);
}

TEST(ColorRamp, OneControlColourFillsIt) {
    const CColorRamp ramp({{7, 8, 9, 255}});
    for (const unsigned char value : {0, 100, 255}) {
        EXPECT_EQ(ramp.Red(value), 7);
        EXPECT_EQ(ramp.Blue(value), 9);
    }
}

TEST(ColorRamp, EntriesCanBeSetAndCopied) {
    CColorRamp ramp;
    ramp.SetColor(3, {1, 2, 3, 255});
    const CColorRamp copy(ramp);
    ramp.SetColor(3, {0, 0, 0, 255});
    EXPECT_EQ(copy.Red(3), 1);
    EXPECT_EQ(copy.Green(3), 2);
    EXPECT_EQ(copy.Blue(3), 3);
    EXPECT_EQ(copy.Red(4), 4);
}

TEST(ClassifyDisplayTable, TheLowEndBelongsToAClassAndTheHighEndDoesNot) {
    CClassifyDisplayTable table(2);
    table.AddClassifyItem(Item(0.5, 1.5, 1));
    table.AddClassifyItem(Item(1.5, 2.5, 2));
    EXPECT_EQ(RedOf(table, 0.5), 1);
    EXPECT_EQ(RedOf(table, std::nextafter(1.5, 0.0)), 1);
    EXPECT_EQ(RedOf(table, 1.5), 2);
    EXPECT_EQ(RedOf(table, 2.5), -1);
    EXPECT_EQ(RedOf(table, 0.0), -1);
    EXPECT_EQ(RedOf(table, std::numeric_limits<double>::quiet_NaN()), -1);
}

TEST(ClassifyDisplayTable, TheFirstOfOverlappingClassesWins) {
    CClassifyDisplayTable table(3);
    table.AddClassifyItem(Item(4, 6, 1));
    table.AddClassifyItem(Item(0, 10, 2));
    table.AddClassifyItem(Item(9, 12, 3));
    EXPECT_EQ(RedOf(table, 3), 2);
    EXPECT_EQ(RedOf(table, 5), 1);
    EXPECT_EQ(RedOf(table, 6), 2);
    EXPECT_EQ(RedOf(table, 9.5), 2);
    EXPECT_EQ(RedOf(table, 11), 3);
}

TEST(ClassifyDisplayTable, EmptyAndBoundlessRangesAreFine) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    CClassifyDisplayTable table(-5);
    table.AddClassifyItem(Item(3, 3, 1));
    table.AddClassifyItem(Item(5, 4, 2));
    table.AddClassifyItem(Item(std::numeric_limits<double>::quiet_NaN(), 4, 3));
    EXPECT_EQ(RedOf(table, 3), -1);
    table.AddClassifyItem(Item(-infinity, infinity, 4));
    EXPECT_EQ(RedOf(table, -1e308), 4);
    EXPECT_EQ(RedOf(table, infinity), -1);
    EXPECT_EQ(table.GetItemCount(), 4);
}

TEST(ClassifyDisplayTable, FindsWhatAWalkThroughTheItemsFinds) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto number = [&] { return static_cast<int>(random() % 60) * 0.5; };
        CClassifyDisplayTable table(40);
        std::vector<CClassifyDisplayItem> items;
        for (int i = 0; i < 40; ++i) {
            const double low = number();
            items.push_back(Item(low, low + number() / 4 - 1, i));
            table.AddClassifyItem(items.back());
        }
        for (double value = -2; value < 45; value += 0.125) {
            int expected = -1;
            for (auto item = items.rbegin(); item != items.rend(); ++item)
                if (item->m_low <= value && value < item->m_high)
                    expected = item->m_color.red;
            ASSERT_EQ(RedOf(table, value), expected) << value;
        }
    }
}

TEST(ClassifyDisplayTable, ManyClassesInAnyOrderTakeLittleTime) {
    constexpr int COUNT = 400'000;
    // The processor's time: that on the wall tells of other programs too.
    const std::clock_t begin = std::clock();
    for (const int step : {1, -1, 7919}) { // coprime to the count: every value once
        CClassifyDisplayTable table;
        for (int i = 0; i < COUNT; ++i) {
            const auto value = static_cast<double>(
                ((static_cast<std::int64_t>(i) * step) % COUNT + COUNT) % COUNT);
            const auto grey = static_cast<unsigned char>(static_cast<int>(value) % 251);
            table.AddClassifyItem({{grey, 1, 2, 255}, value - 0.25, value + 0.25, L""});
        }
        table.AddClassifyItem({{252, 1, 2, 255}, -10.0, COUNT + 10.0, L""});
        EXPECT_EQ(RedOf(table, -5.0), 252);
        EXPECT_EQ(RedOf(table, COUNT + 5.0), 252);
        for (int value = 0; value < COUNT; value += 997) {
            ASSERT_EQ(RedOf(table, value), value % 251);
            ASSERT_EQ(RedOf(table, value + 0.5), 252);
        }
    }
    // Minutes, if every class moved all those behind it.
    EXPECT_LT(std::clock() - begin, 20 * CLOCKS_PER_SEC);
}

TEST(ClassifyDisplayTable, GivesItsItemsAndRangeAndCopies) {
    CClassifyDisplayTable table(1);
    table.AddClassifyItem(Item(1, 2, 7));
    table.SetMinMaxValue(-3, 8);
    const CClassifyDisplayTable copy(table);
    table = CClassifyDisplayTable();
    EXPECT_EQ(table.GetItem(0), nullptr);
    EXPECT_EQ(copy.GetMinValue(), -3);
    EXPECT_EQ(copy.GetMaxValue(), 8);
    EXPECT_EQ(copy.GetItem(0)->m_name, L"item");
    EXPECT_EQ(copy.GetItem(-1), nullptr);
    EXPECT_EQ(copy.GetItem(1), nullptr);
    EXPECT_EQ(RedOf(copy, 1.5), 7);
}
