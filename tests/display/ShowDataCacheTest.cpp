#include "tests/display/ShownRaster.h"
#include "tests/support/RecordingLog.h"

#include <array>
#include <limits>
#include <utility>

using namespace zelto::test;

namespace {

struct Rgba {
    unsigned char r = 1, g = 2, b = 3, a = 4;
    bool operator==(const Rgba&) const = default;
};

/// What the point query answers; every component before it is 1, 2, 3, 4.
std::pair<bool, Rgba> Query(CRasterSource& source, double x, double y) {
    Rgba color;
    const bool answer = source.GetShowValueFormCache(x, y, color.r, color.g, color.b, color.a);
    return {answer, color};
}

bool Fill(CRasterSource& source) {
    CBoundingBox box = source.GetExtent();
    return source.GetShowData2Cache(&box, source.GetWidth(), source.GetHeight());
}

void ExpectOneRecord(const RecordingLog& log, const std::wstring& message) {
    ASSERT_EQ(log.m_records.size(), 1U);
    EXPECT_EQ(log.m_records[0].level, 4);
    EXPECT_EQ(log.m_records[0].file, L"RasterSource");
    EXPECT_EQ(log.m_records[0].function, L"CRasterSource::GetShowData2Cache");
    EXPECT_EQ(log.m_records[0].message, message);
}

} // namespace

TEST(ShowDataCache, IsFilledForTheShownBandsUntilReleased) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 2}, {11, 12}, {21, 22}, {31, 32}});
    ASSERT_TRUE(Fill(source));
    double value = 0.0;
    for (int i : {0, 1, 2})
        EXPECT_TRUE(source.GetRasterBand(i)->GetNearestValueAt(1, 0, &value));
    EXPECT_FALSE(source.GetRasterBand(3)->GetNearestValueAt(1, 0, &value));
    source.ReleaseShowDataCache();
    for (int i : {0, 1, 2})
        EXPECT_FALSE(source.GetRasterBand(i)->GetNearestValueAt(1, 0, &value));
}

TEST(ShowDataCache, WidensTheBoxByTwoOutputPixels) {
    ShownRaster source({.width = 20, .height = 20, .geoTransform = NorthUp(0, 20, 1)},
                       {MakePixels(20, 20, [](int c, int r) { return 10 * c + r; })});
    CBoundingBox box(9, 11, 11, 9);
    ASSERT_TRUE(source.GetShowData2Cache(&box, 2, 2));
    // Columns 7 … 12 of 7 … 13: the last one is left out as in the planes.
    double value = 0.0;
    CRasterBand& band = *source.GetRasterBand(0);
    EXPECT_TRUE(band.GetNearestValueAt(7.5, 7.5, &value));
    EXPECT_EQ(value, 77.0);
    EXPECT_TRUE(band.GetNearestValueAt(12.5, 12.5, &value));
    EXPECT_EQ(value, 132.0);
    EXPECT_FALSE(band.GetNearestValueAt(13.5, 12.5, &value));
    EXPECT_FALSE(band.GetNearestValueAt(5.9, 7.5, &value));
}

TEST(ShowDataCache, SaysWhyThereIsNothingToRead) {
    ShownRaster source({.width = 20, .height = 20, .geoTransform = NorthUp(0, 20, 1)},
                       {MakePixels(20, 20, [](int, int) { return 1; })});
    CBoundingBox outside(100, 20, 120, 0);
    {
        const RecordingLog log;
        EXPECT_FALSE(source.GetShowData2Cache(&outside, 5, 5));
        ExpectOneRecord(log, L"实际要读取的栅格数据大小为0");
    }
    {
        const RecordingLog log;
        CBoundingBox inside(3.3, 17.6, 3.4, 17.5);
        EXPECT_FALSE(source.GetShowData2Cache(&inside, 5, 5)) << "columns 3 … 3 have no size";
        ExpectOneRecord(log, L"实际要读取的栅格数据大小为0");
    }
    {
        // Reaches the raster by a hundredth of an output pixel, which rounds to no sample.
        const RecordingLog log;
        CBoundingBox sliver(-2999.0, 20, -1999.0, 0);
        EXPECT_FALSE(source.GetShowData2Cache(&sliver, 1, 1));
        ExpectOneRecord(log, L"读出的内存大小为0");
    }
}

TEST(ShowDataCache, NamesTheBandThatCannotBeRead) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 2}, {11, 12}});
    source.Show({1, 8, 0});
    const RecordingLog log;
    EXPECT_FALSE(Fill(source));
    ExpectOneRecord(log, L"读取第9波段数据出错");
    double value = 0.0;
    EXPECT_TRUE(source.GetRasterBand(1)->GetNearestValueAt(0, 0, &value)) << "stays filled";
    EXPECT_FALSE(source.GetRasterBand(0)->GetNearestValueAt(0, 0, &value));
}

TEST(ShowDataCache, NamesBandsOfAnyIndex) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 2}});
    for (const auto& [index, message] :
         {std::pair{-1, L"读取第0波段数据出错"},
          {std::numeric_limits<int>::max(), L"读取第-2147483648波段数据出错"}}) {
        const RecordingLog log;
        source.Show({index});
        EXPECT_FALSE(Fill(source));
        ExpectOneRecord(log, message);
    }
}

TEST(ShowDataCache, AGridWithoutAPixelWidthOrHeightIsNotRead) {
    const Pixels pixels = MakePixels(20, 20, [](int, int) { return 1; });
    CBoundingBox box(0, 20, 20, 0);
    {
        // A quarter turn: x = row, y = 20 − column. Columns and rows are both met.
        ShownRaster source(
            {.width = 20, .height = 20, .geoTransform = std::array<double, 6>{0, 0, 1, 20, -1, 0}},
            {pixels});
        const RecordingLog log;
        EXPECT_FALSE(source.GetShowData2Cache(&box, 5, 5));
        ExpectOneRecord(log, L"转换之后的宽度为0");
    }
    {
        // Sheared: x = column + row, y = 20 − column. Only the pixel height is missing.
        ShownRaster source(
            {.width = 20, .height = 20, .geoTransform = std::array<double, 6>{0, 1, 1, 20, -1, 0}},
            {pixels});
        const RecordingLog log;
        EXPECT_FALSE(source.GetShowData2Cache(&box, 5, 5));
        ExpectOneRecord(log, L"转换之后的高度为0");
    }
}

TEST(ShowDataCache, WithoutALoggerItStillAnswersFalse) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 2}});
    CBoundingBox outside(100, 20, 120, 0);
    EXPECT_FALSE(source.GetShowData2Cache(&outside, 5, 5));
    EXPECT_FALSE(source.GetShowData2Cache(nullptr, 5, 5));
    EXPECT_FALSE(source.GetShowData2Cache(&outside, 0, 5));
    EXPECT_FALSE(source.GetShowData2Cache(&outside, 5, -5));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    CBoundingBox broken(nan, nan, nan, nan);
    EXPECT_FALSE(source.GetShowData2Cache(&broken, 5, 5));
}

TEST(ShowValueFromCache, IsRedGreenBlueOfThreeBands) {
    ShownRaster source({.width = 2, .height = 1, .geoTransform = NorthUp(0, 1, 1)},
                       {{1, 2}, {11, 12}, {21, 22}});
    EXPECT_FALSE(Query(source, 1.5, 0.5).first) << "nothing cached";
    ASSERT_TRUE(Fill(source));
    EXPECT_EQ(Query(source, 1.5, 0.5), std::pair(true, Rgba{2, 12, 22, 255}));
    EXPECT_EQ(Query(source, 5.5, 0.5), std::pair(false, Rgba{1, 2, 3, 0}));
}

TEST(ShowValueFromCache, StopsAtTheFirstBandWithoutAValue) {
    ShownRaster source({.width = 1, .height = 1, .geoTransform = NorthUp(0, 1, 1), .noData = 0.0},
                       {{9}, {0}, {8}});
    ASSERT_TRUE(Fill(source));
    EXPECT_EQ(Query(source, 0.5, 0.5), std::pair(false, Rgba{9, 2, 3, 0}));
}

TEST(ShowValueFromCache, OfTwoBandsLeavesBlue) {
    ShownRaster source({.width = 1, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{9}, {7}});
    source.Show({1, 0});
    ASSERT_TRUE(Fill(source));
    EXPECT_EQ(Query(source, 0.5, 0.5), std::pair(true, Rgba{7, 9, 3, 255}));
}

TEST(ShowValueFromCache, OfOneBandIsGreyOrRampOrClass) {
    ShownRaster source({.width = 3, .height = 1, .geoTransform = NorthUp(0, 1, 1), .noData = 99.0},
                       {{100, 25, 99}});
    ASSERT_TRUE(Fill(source));
    EXPECT_EQ(Query(source, 0.5, 0.5), std::pair(true, Rgba{100, 100, 100, 255}));
    EXPECT_EQ(Query(source, 2.5, 0.5), std::pair(false, Rgba{1, 2, 3, 0}));
    CColorRamp ramp = DistinctRamp();
    source.SetColorRamp(&ramp);
    source.SetDisplayType(static_cast<DataDisplayType>(1));
    EXPECT_EQ(Query(source, 0.5, 0.5), std::pair(true, Rgba{100, 155, 50, 255}));
    CClassifyDisplayTable table = TwoClasses();
    source.SetClassifyDisplayTable(&table);
    source.SetDisplayType(DISPLAY_CLASSIFIED);
    EXPECT_EQ(Query(source, 1.5, 0.5), std::pair(true, Rgba{4, 5, 6, 255}))
        << "opaque whatever the class says";
    EXPECT_EQ(Query(source, 0.5, 0.5), std::pair(true, Rgba{0, 0, 0, 255}));
    EXPECT_FALSE(Query(source, 2.5, 0.5).first);
}

TEST(ShowValueFromCache, OfAPaletteIsItsEntry) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("i.tif"), {.width = 3, .height = 1}, {{0, 1, 2}});
    ShownRaster source(R"(<VRTDataset rasterXSize="3" rasterYSize="1">
  <GeoTransform>0, 1, 0, 1, 0, -1</GeoTransform>
  <VRTRasterBand dataType="Byte" band="1"><ColorInterp>Palette</ColorInterp>
    <ColorTable><Entry c1="10" c2="20" c3="30" c4="255"/>
      <Entry c1="11" c2="21" c3="31" c4="100"/><Entry c1="12" c2="22" c3="32" c4="0"/></ColorTable>
    <SimpleSource><SourceFilename>)" +
                       folder.File("i.tif") + R"(</SourceFilename><SourceBand>1</SourceBand>
    </SimpleSource></VRTRasterBand>
</VRTDataset>)");
    ASSERT_TRUE(Fill(source));
    EXPECT_EQ(Query(source, 0.5, 0.5), std::pair(true, Rgba{10, 20, 30, 255}));
    EXPECT_EQ(Query(source, 1.5, 0.5), std::pair(true, Rgba{11, 21, 31, 100}));
    EXPECT_EQ(Query(source, 2.5, 0.5), std::pair(false, Rgba{12, 22, 32, 0})) << "alpha 0";
    EXPECT_EQ(Query(source, 9.5, 0.5), std::pair(false, Rgba{1, 2, 3, 0}));
}

TEST(ShowValueFromCache, OfShownBandsThatDoNotExistIsFalse) {
    ShownRaster source({.width = 1, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{9}});
    source.Show({4});
    EXPECT_FALSE(Query(source, 0.5, 0.5).first);
    source.Show({4, 5, 6});
    EXPECT_FALSE(Query(source, 0.5, 0.5).first);
    source.ReleaseShowDataCache();
}
