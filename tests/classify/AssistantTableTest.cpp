#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/classify/ClassifiedAssistantFile.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

std::unique_ptr<CClassifyDisplayTable> TableOf(const std::vector<int>& values) {
    CClassifiedAssistantFile file;
    for (const int value : values) {
        CClassifiedAssistantFile::ClassRecord record;
        record.m_value = value;
        record.m_color = {static_cast<unsigned char>(value), 7, 9, 0};
        record.SetName(L"class " + std::to_wstring(value));
        file.AddClass(record);
    }
    return std::unique_ptr<CClassifyDisplayTable>(file.CreateClassifyDisplayTable());
}

void ExpectRange(const std::vector<int>& values, double min, double max) {
    const auto table = TableOf(values);
    EXPECT_EQ(table->GetMinValue(), min);
    EXPECT_EQ(table->GetMaxValue(), max);
}

} // namespace

TEST(AssistantTable, HoldsOneOpaqueItemPerClassInOrder) {
    const auto table = TableOf({3, 1});
    ASSERT_EQ(table->GetItemCount(), 2);
    const CClassifyDisplayItem* item = table->GetItem(0);
    EXPECT_EQ(item->m_low, 2.5);
    EXPECT_EQ(item->m_high, 3.5);
    EXPECT_EQ(item->m_name, L"class 3");
    EXPECT_EQ(item->m_color.red, 3);
    EXPECT_EQ(item->m_color.green, 7);
    EXPECT_EQ(item->m_color.blue, 9);
    EXPECT_EQ(item->m_color.alpha, 255); // although the file's fourth byte is 0
    EXPECT_EQ(table->GetItem(1)->m_name, L"class 1");
}

TEST(AssistantTable, RangeFollowsAscendingValues) {
    ExpectRange({1, 2, 3}, 0.0, 3.0);
    ExpectRange({5}, 4.0, 5.0);
}

TEST(AssistantTable, RangeTakesTheUpperSideOfASmallerLaterClass) {
    ExpectRange({3, 1}, 1.0, 3.0);
    // 5 sets 4.5 and 4.5; 4 lowers to 4.5 (its upper side), which leaves 4.5; 2 lowers to 2.5.
    ExpectRange({5, 4, 2}, 2.0, 5.0);
    // After 2 lowered the lower end to 2.5, 3 is not below it.
    ExpectRange({5, 2, 3}, 2.0, 5.0);
}

TEST(AssistantTable, WithoutClassesSpeaksOfZeroAlone) {
    ExpectRange({}, -0.5, 0.5);
    EXPECT_EQ(TableOf({})->GetItemCount(), 0);
}

TEST(AssistantTable, ExtremeValuesDoNotOverflow) {
    const auto table = TableOf({std::numeric_limits<int>::min(), std::numeric_limits<int>::max()});
    EXPECT_EQ(table->GetItem(0)->m_low, -2147483648.5);
    EXPECT_EQ(table->GetItem(1)->m_high, 2147483647.5);
    EXPECT_EQ(table->GetMinValue(), -2147483649.0);
    EXPECT_EQ(table->GetMaxValue(), 2147483647.0);
}

TEST(AssistantTable, ShowsEachClassInItsColour) {
    const auto table = TableOf({3, 1});
    unsigned char r = 0;
    unsigned char g = 0;
    unsigned char b = 0;
    unsigned char a = 0;
    EXPECT_TRUE(table->GetColor(1.0, r, g, b, a));
    EXPECT_EQ(r, 1);
    EXPECT_EQ(a, 255);
    EXPECT_FALSE(table->GetColor(2.0, r, g, b, a));
    EXPECT_EQ(a, 0);
}
