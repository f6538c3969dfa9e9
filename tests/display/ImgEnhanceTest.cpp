#include "zelto/display/ImgEnhance.h"

#include <gtest/gtest.h>

#include <array>

namespace {

std::array<unsigned char, 256> Inverted() {
    std::array<unsigned char, 256> table{};
    for (int i = 0; i < 256; ++i)
        table[static_cast<std::size_t>(i)] = static_cast<unsigned char>(255 - i);
    return table;
}

} // namespace

TEST(ImgEnhance, WithoutATableValuesPass) {
    CImgEnhance enhance;
    EXPECT_EQ(enhance.GetEnhancedTable(), nullptr);
    EXPECT_EQ(enhance.GetEnhancedValue(77), 77);
    EXPECT_FALSE(enhance.SetEnhancedTable(nullptr));
    EXPECT_EQ(enhance.GetEnhancedTable(), nullptr);
}

TEST(ImgEnhance, CopiesTheTable) {
    CImgEnhance enhance;
    auto table = Inverted();
    EXPECT_TRUE(enhance.SetEnhancedTable(table.data()));
    table[0] = 3;
    EXPECT_EQ(enhance.GetEnhancedValue(0), 255);
    EXPECT_EQ(enhance.GetEnhancedValue(255), 0);
    const unsigned char* first = enhance.GetEnhancedTable();
    EXPECT_TRUE(enhance.SetEnhancedTable(table.data()));
    EXPECT_EQ(enhance.GetEnhancedTable(), first) << "allocated once";
    EXPECT_EQ(enhance.GetEnhancedValue(0), 3);
}

TEST(ImgEnhance, CopiesAreIndependent) {
    CImgEnhance source;
    auto table = Inverted();
    source.SetEnhancedTable(table.data());
    source.SetLineType(HistogramLineCurve);
    const CPoint2D points[] = {{1, 2}, {3, 4}};
    source.SetCurvePoints(points, 2);

    CImgEnhance copy(source);
    CImgEnhance assigned;
    assigned = source;
    source.GetEnhancedTable()[0] = 9;
    for (CImgEnhance* other : {&copy, &assigned}) {
        EXPECT_EQ(other->GetEnhancedValue(0), 255);
        EXPECT_EQ(other->GetLineType(), HistogramLineCurve);
        ASSERT_EQ(other->GetCurvePoints().size(), 2U);
        EXPECT_EQ(other->GetCurvePoints()[1].y, 4.0);
    }
    assigned = CImgEnhance();
    EXPECT_EQ(assigned.GetEnhancedTable(), nullptr);
    assigned = *&assigned;
    CImgEnhance copyOfNone{CImgEnhance()};
    EXPECT_EQ(copyOfNone.GetEnhancedTable(), nullptr);
}

TEST(ImgEnhance, CurvePointsAreReplaced) {
    CImgEnhance enhance;
    const CPoint2D points[] = {{1, 2}, {3, 4}};
    enhance.SetCurvePoints(points, 2);
    enhance.SetCurvePoints(points, 1);
    EXPECT_EQ(enhance.GetCurvePoints().size(), 1U);
    enhance.SetCurvePoints(points, 0);
    EXPECT_TRUE(enhance.GetCurvePoints().empty());
    enhance.SetCurvePoints(points, 2);
    enhance.SetCurvePoints(nullptr, 2);
    EXPECT_TRUE(enhance.GetCurvePoints().empty());
}
