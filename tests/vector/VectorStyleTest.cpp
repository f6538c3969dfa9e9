#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/vector/VectorLayer.h"

#include <gtest/gtest.h>

namespace {

void ExpectColor(const CRgbaColor& color, int red, int green, int blue, int alpha) {
    EXPECT_EQ(color.red, red);
    EXPECT_EQ(color.green, green);
    EXPECT_EQ(color.blue, blue);
    EXPECT_EQ(color.alpha, alpha);
}

TEST(VectorLayerStyle, StartsWithTheDefaults) {
    const CVectorLayerStyle style;
    ExpectColor(style.m_color1, 0, 0, 0, 255);
    ExpectColor(style.m_color2, 0, 0, 0, 255);
    ExpectColor(style.m_color3, 128, 0, 128, 255);
    ExpectColor(style.m_color4, 0, 0, 0, 255);
    EXPECT_TRUE(style.m_text1.empty() && style.m_text2.empty());
    EXPECT_TRUE(style.m_text3.empty() && style.m_text4.empty());
    EXPECT_EQ(style.m_value1, 6);
    EXPECT_EQ(style.m_value2, 1);
    EXPECT_EQ(style.m_value3, 256);
    EXPECT_EQ(style.m_classifyFieldNum, 0);
    EXPECT_EQ(style.m_displayType, 0);
    EXPECT_EQ(style.m_classesNum, 0);
}

TEST(VectorLabel, StartsWithTheDefaults) {
    const CVectorLabel label;
    EXPECT_EQ(label.m_value1, 0);
    ExpectColor(label.m_color, 0, 0, 0, 0);
    EXPECT_TRUE(label.m_text.empty());
    EXPECT_EQ(label.m_fontSize, 10);
    EXPECT_EQ(label.m_fontName, L"Arial");
    EXPECT_EQ(label.m_value2, 0);
    EXPECT_EQ(label.m_value3, 0);
}

TEST(VectorLayer, TheDisplayTypeIsOneOfTwo) {
    CVectorLayer layer(nullptr);
    layer.SetDisplayType(1);
    EXPECT_EQ(layer.m_style.m_displayType, 1);
    for (int ignored : {2, -1, 256, 257})
        layer.SetDisplayType(ignored);
    EXPECT_EQ(layer.m_style.m_displayType, 1);
    layer.SetDisplayType(0);
    EXPECT_EQ(layer.m_style.m_displayType, 0);
}

TEST(VectorLayer, TheClassFieldIsKeptInLayerAndStyle) {
    CVectorLayer layer(nullptr);
    EXPECT_EQ(layer.GetClassifyFieldNum(), 0);
    layer.SetClassifyFieldNum(7);
    EXPECT_EQ(layer.GetClassifyFieldNum(), 7);
    EXPECT_EQ(layer.m_style.m_classifyFieldNum, 7);
    layer.SetClassesNum(5);
    EXPECT_EQ(layer.m_style.m_classesNum, 5);
}

TEST(VectorLayer, TheClassTableIsACopy) {
    CVectorLayer layer(nullptr);
    EXPECT_EQ(layer.GetClassifyDisplayTable(), nullptr);
    CClassifyDisplayTable table;
    table.SetMinMaxValue(1, 2);
    layer.SetClassifyDisplayTable(&table);
    ASSERT_NE(layer.GetClassifyDisplayTable(), nullptr);
    EXPECT_NE(layer.GetClassifyDisplayTable(), &table);
    layer.SetClassifyDisplayTable(layer.GetClassifyDisplayTable());
    EXPECT_EQ(layer.GetClassifyDisplayTable()->GetMinValue(), 1);
    layer.SetClassifyDisplayTable(nullptr);
    EXPECT_EQ(layer.GetClassifyDisplayTable(), nullptr);
}

TEST(VectorEnumerations, CarryOgrsCodes) {
    EXPECT_EQ(int(VDF_SHAPEFILE), 1);
    EXPECT_EQ(int(VDF_AOI), 2);
    EXPECT_EQ(int(VGT_Point), 1);
    EXPECT_EQ(int(VGT_LineString), 2);
    EXPECT_EQ(int(VGT_Polygon), 3);
    EXPECT_EQ(int(VGT_MultiPoint), 4);
    EXPECT_EQ(int(VGT_MultiLineString), 5);
    EXPECT_EQ(int(VGT_MultiPolygon), 6);
    EXPECT_EQ(int(VGT_GeometryCollection), 7);
    EXPECT_EQ(int(VFT_Integer), 0);
    EXPECT_EQ(int(VFT_Real), 2);
    EXPECT_EQ(int(VFT_String), 4);
}

} // namespace
