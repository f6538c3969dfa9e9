#include "zelto/display/ImgEnhance.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/geometry/Point2D.h"

#include "tests/raster/TestBand.h"

#include <array>

using zelto::test::Pixels;
using zelto::test::TestBand;

namespace {

/// A 16-bit band shown between 0 and 1000.
TestBand TwoOfSixteenBits() {
    return {{.width = 2, .height = 1, .type = GDT_UInt16}, {0, 1000}};
}

std::array<unsigned char, 256> InvertedTable() {
    std::array<unsigned char, 256> table{};
    for (int i = 0; i < 256; ++i)
        table[static_cast<std::size_t>(i)] = static_cast<unsigned char>(255 - i);
    return table;
}

} // namespace

TEST(SetStretchData, ZoomLinear002TakesTheThirdAndFourthValue) {
    TestBand band({.width = 2, .height = 1}, {0, 255});
    band->SetStretchData(StretchZoomLinear002, -1, -2, 50, 200, -3, -4);
    EXPECT_EQ(band->GetStretchType(), StretchZoomLinear002);
    EXPECT_EQ(band->Convert2ShowValue(125), 127); // 75 × 255 / 150
}

TEST(SetStretchData, WallisTakesMeanDeviationClampsAndTargetsInThisOrder) {
    TestBand band({.width = 2, .height = 1}, {0, 255});
    band->SetStretchData(StretchWallis, 100, 20, 10, 240, 130, 50);
    EXPECT_EQ(band->GetStretchType(), StretchWallis);
    EXPECT_EQ(band->Convert2ShowValue(122), 180);
    EXPECT_EQ(band->Convert2ShowValue(0), 10);
    EXPECT_EQ(band->Convert2ShowValue(255), 240);
}

TEST(SetStretchData, ZoomLinearIsTheIdentityOverTheWholeRange) {
    TestBand band({.width = 2, .height = 1}, {0, 255});
    band->SetStretchData(StretchZoomLinear, 7, 8, 0, 255, 9, 10);
    for (int value = 1; value <= 254; ++value)
        EXPECT_EQ(band->Convert2ShowValue(value), value);
    EXPECT_EQ(band->Convert2ShowValue(0), 1);
    EXPECT_EQ(band->Convert2ShowValue(255), 254);
}

TEST(SetStretchData, ZoomLinearOnANarrowRange) {
    TestBand band({.width = 2, .height = 1}, {0, 255});
    band->SetStretchData(StretchZoomLinear, 7, 8, 50, 200, 9, 10);
    EXPECT_EQ(band->Convert2ShowValue(100), 220); // 100 × 1.7 + 50
}

TEST(SetStretchData, OtherTypesRemoveTheObjectAndKeepTheStoredType) {
    TestBand band({.width = 2, .height = 1}, {0, 255});
    band->SetStretchData(StretchZoomLinear, 0, 0, 50, 200, 0, 0);
    band->SetStretchData(StretchLinear, 1, 2, 3, 4, 5, 6);
    EXPECT_EQ(band->GetStretchType(), StretchZoomLinear);
    EXPECT_EQ(band->Convert2ShowValue(100), 100) << "without an object: plain min-max";
}

TEST(SetStretchType, LeavesTheObjectAsItIs) {
    TestBand band({.width = 2, .height = 1}, {0, 255});
    band->SetStretchData(StretchZoomLinear, 0, 0, 50, 200, 0, 0);
    band->SetStretchType(StretchLinear);
    EXPECT_EQ(band->Convert2ShowValue(100), 100);
    band->SetStretchType(StretchZoomLinear);
    EXPECT_EQ(band->Convert2ShowValue(100), 220);
}

TEST(EnableHistogramEqualize, TakesAtMost256Buckets) {
    TestBand band = TwoOfSixteenBits();
    ASSERT_TRUE(band->EnableHistogramEqualize());
    double min = 0.0;
    double max = 0.0;
    int buckets = 0;
    bool outOfRange = true;
    bool approx = false;
    band->GetHistogramObject()->GetHistogram(min, max, buckets, &outOfRange, &approx);
    EXPECT_EQ(min, 0.0);
    EXPECT_EQ(max, 1000.0);
    EXPECT_EQ(buckets, 256);
    EXPECT_FALSE(outOfRange);
    EXPECT_TRUE(approx);
    EXPECT_EQ(band->GetStretchType(), StretchNone) << "the stretch is the host's business";
}

TEST(EnableHistogramEqualize, TakesOneBucketPerUnitOfASmallRange) {
    TestBand band({.width = 3, .height = 1, .type = GDT_Float32}, {1.0, 2.0, 11.75});
    ASSERT_TRUE(band->EnableHistogramEqualize());
    double min = 0.0;
    double max = 0.0;
    int buckets = 0;
    band->GetHistogramObject()->GetHistogram(min, max, buckets, nullptr, nullptr);
    EXPECT_EQ(buckets, 10); // 10.75 truncated
    TestBand exact({.width = 2, .height = 1, .type = GDT_UInt16}, {10, 266});
    ASSERT_TRUE(exact->EnableHistogramEqualize());
    exact->GetHistogramObject()->GetHistogram(min, max, buckets, nullptr, nullptr);
    EXPECT_EQ(buckets, 256);
}

TEST(EnableHistogramEqualize, ARangeBelowOneAsksForNoBucketsAndFails) {
    TestBand band({.width = 2, .height = 1, .type = GDT_Float32}, {0.25, 0.75});
    CPLPushErrorHandler(CPLQuietErrorHandler);
    EXPECT_FALSE(band->EnableHistogramEqualize());
    EXPECT_EQ(band->GetHistogramObject(), nullptr);
    // With a histogram from before, that one is used.
    std::array<int, 4> counts{};
    ASSERT_TRUE(band->GetHistogram(0.1, 1.0, 4, counts.data(), false, false, nullptr));
    EXPECT_TRUE(band->EnableHistogramEqualize());
    CPLPopErrorHandler();
}

TEST(EnableHistogramEqualize, ReusesACoincidingHistogram) {
    TestBand band = TwoOfSixteenBits();
    ASSERT_TRUE(band->EnableHistogramEqualize());
    const CRasterHistogram* first = band->GetHistogramObject();
    ASSERT_TRUE(band->EnableHistogramEqualize());
    EXPECT_EQ(band->GetHistogramObject(), first);
}

TEST(SetCustomHistogram, EqualizesThroughTheCallersCounts) {
    TestBand band({.width = 2, .height = 1}, {0, 3});
    std::array<int, 4> counts = {1, 2, 3, 4};
    ASSERT_TRUE(band->SetCustomHistogram(0.0, 3.0, 4, counts.data()));
    band->SetStretchType(StretchCustomHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(1), 76);  // 0.3 × 255 = 76.5
    EXPECT_EQ(band->Convert2ShowValue(2), 153); // 0.6 × 255
    EXPECT_EQ(band->Convert2ShowValue(0), 0);
    std::array<int, 4> other = {4, 0, 0, 0};
    ASSERT_TRUE(band->SetCustomHistogram(0.0, 3.0, 4, other.data()));
    EXPECT_EQ(band->Convert2ShowValue(1), 255);
    EXPECT_EQ(band->GetHistogramObject(), nullptr) << "the band's own histogram is another one";
}

TEST(SetCustomHistogram, WithoutBucketsTheSampleIsShownWrapped) {
    TestBand band({.width = 2, .height = 1}, {0, 3});
    EXPECT_TRUE(band->SetCustomHistogram(0.0, 3.0, 0, nullptr));
    band->SetStretchType(StretchCustomHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(300), 44);
    EXPECT_EQ(band->Convert2ShowValue(0), 0);
}

TEST(SetCustomHistogram, MissingCountsAreRefusedAndThePresentOneStays) {
    TestBand band({.width = 2, .height = 1}, {0, 3});
    std::array<int, 4> counts = {1, 2, 3, 4};
    ASSERT_TRUE(band->SetCustomHistogram(0.0, 3.0, 4, counts.data()));
    EXPECT_FALSE(band->SetCustomHistogram(0.0, 3.0, 4, nullptr));
    EXPECT_FALSE(band->SetCustomHistogram(0.0, 3.0, -1, counts.data()));
    band->SetStretchType(StretchCustomHistEqualize);
    EXPECT_EQ(band->Convert2ShowValue(1), 76); // 0.3 × 255 = 76.5
}

TEST(SetEnhancedData, StoresTableLineTypeAndPoints) {
    TestBand band({.width = 2, .height = 1}, {0, 255});
    auto table = InvertedTable();
    CPoint2D points[] = {{0, 255}, {255, 0}};
    ASSERT_TRUE(band->SetEnhancedData(table.data(), HistogramLineCurve, points, 2));
    CImgEnhance* enhancer = band->GetEnhancer();
    ASSERT_NE(enhancer, nullptr);
    EXPECT_EQ(enhancer->GetLineType(), HistogramLineCurve);
    EXPECT_EQ(enhancer->GetCurvePoints().size(), 2U);
    ASSERT_TRUE(band->SetEnhancedData(table.data(), HistogramLineStraight, nullptr, 2));
    EXPECT_EQ(band->GetEnhancer(), enhancer);
    EXPECT_TRUE(enhancer->GetCurvePoints().empty());
    EXPECT_FALSE(band->SetEnhancedData(nullptr, HistogramLineStraight, points, 2));
    band->SetStretchType(StretchEnhanceTable);
    EXPECT_EQ(band->Convert2ShowValue(100), 155);
}

TEST(ShowValueAt, ConvertsTheNearestCachedSample) {
    TestBand band({.width = 2, .height = 1, .type = GDT_UInt16, .noData = 9.0}, {0, 1000});
    unsigned char shown = 77;
    EXPECT_FALSE(band->GetShowValueAt(0.5, 0.5, &shown)) << "no cache";
    ASSERT_TRUE(band->GetData(0, 0, 2, 1, 2, 1));
    EXPECT_TRUE(band->GetShowValueAt(1.5, 0.5, &shown));
    EXPECT_EQ(shown, 254);
    EXPECT_TRUE(band->GetShowValueAt(0.5, 0.5, &shown));
    EXPECT_EQ(shown, 1);
    EXPECT_FALSE(band->GetShowValueAt(0.5, 0.5, nullptr));
    ASSERT_TRUE(band->SetNoDataValue(1000, false));
    EXPECT_FALSE(band->GetShowValueAt(1.5, 0.5, &shown));
}

TEST(ColorTableLookup, GivesTheEntryOfTheCachedSample) {
    TestBand band({.width = 3, .height = 1, .type = GDT_Byte}, {0, 1, 200}, GDAL_OF_UPDATE);
    unsigned char r = 1;
    unsigned char g = 2;
    unsigned char b = 3;
    unsigned char a = 4;
    ASSERT_TRUE(band->GetData(0, 0, 3, 1, 3, 1));
    EXPECT_FALSE(band->GetRGBDataFromColorTable(0.5, 0.5, r, g, b, a)) << "no table";
    EXPECT_EQ(r, 1);
    GDALColorTable table;
    const GDALColorEntry entry{10, 300, 30, 128}; // 300 is cut to 8 bits
    table.SetColorEntry(1, &entry);
    ASSERT_EQ(band->SetColorTable(&table), GIS_SUCCESS);
    EXPECT_TRUE(band->GetRGBDataFromColorTable(1.5, 0.5, r, g, b, a));
    EXPECT_EQ(r, 10);
    EXPECT_EQ(g, 44);
    EXPECT_EQ(b, 30);
    EXPECT_EQ(a, 128);
    EXPECT_FALSE(band->GetRGBDataFromColorTable(1.5, 5.0, r, g, b, a)) << "outside the band";
}

TEST(ColorTableLookup, ValuesBeyondTheTableAreTransparentBlack) {
    TestBand band({.width = 1, .height = 1, .type = GDT_UInt16}, {300}, GDAL_OF_UPDATE);
    GDALColorTable table;
    const GDALColorEntry entry{10, 20, 30, 128};
    table.SetColorEntry(1, &entry);
    ASSERT_EQ(band->SetColorTable(&table), GIS_SUCCESS);
    ASSERT_TRUE(band->GetData(0, 0, 1, 1, 1, 1));
    unsigned char r = 1;
    unsigned char g = 2;
    unsigned char b = 3;
    unsigned char a = 4;
    EXPECT_TRUE(band->GetRGBDataFromColorTable(0.5, 0.5, r, g, b, a));
    EXPECT_EQ(static_cast<int>(r) + g + b + a, 0);
}

TEST(ColorTableLookup, AfterColoursGivenAsRecordsIsOfThem) {
    TestBand band({.width = 2, .height = 1, .type = GDT_Byte}, {0, 1}, GDAL_OF_UPDATE);
    GDALColorTable table;
    const GDALColorEntry entry{10, 20, 30, 128};
    table.SetColorEntry(1, &entry);
    ASSERT_EQ(band->SetColorTable(&table), GIS_SUCCESS);
    // GDAL frees the table that the band's pointer is of.
    std::array<tagColorEntry, 3> records{};
    records[1] = {50, 60, 70, 80};
    ASSERT_EQ(band->SetColorTable(records.data(), 3), GIS_SUCCESS);
    ASSERT_TRUE(band->GetData(0, 0, 2, 1, 2, 1));
    unsigned char r = 1;
    unsigned char g = 2;
    unsigned char b = 3;
    unsigned char a = 4;
    EXPECT_TRUE(band->GetRGBDataFromColorTable(1.5, 0.5, r, g, b, a));
    EXPECT_EQ(r, 50);
    EXPECT_EQ(g, 60);
    EXPECT_EQ(b, 70);
}
