#include "zelto/Zelto.h"

#include "tests/support/CopiedProcess.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <filesystem>
#include <unistd.h>

using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

/// Three rasters of one band: red 4 × 4 pixels of 1, green 8 × 8 of 0.5 in the same place, blue
/// 3 × 3 of 2 that begins half a unit further right and down.
class ComposedRaster : public testing::Test {
  protected:
    ComposedRaster() {
        Make("red.tif", 4, NorthUp(0.0, 4.0, 1.0), "EPSG:32650", GDT_Byte);
        Make("green.tif", 8, NorthUp(0.0, 4.0, 0.5), "EPSG:32650", GDT_Byte);
        Make("blue.tif", 3, NorthUp(0.5, 3.5, 2.0), "EPSG:32649", GDT_UInt16);
        Open(red, "red.tif");
        Open(green, "green.tif");
        Open(blue, "blue.tif");
    }

    void Make(const std::string& name, int size, const std::array<double, 6>& geoTransform,
              const std::string& srs, GDALDataType type) {
        WriteRaster(
            m_folder.File(name),
            {.width = size, .height = size, .type = type, .geoTransform = geoTransform, .srs = srs},
            {MakePixels(size, size, [](int column, int row) { return 10 * row + column; })});
    }

    void Open(CRasterSource& source, const std::string& name) {
        ASSERT_EQ(source.Open(m_folder.WideFile(name).c_str(), GIS_READONLY, true), GIS_SUCCESS);
    }

    GISError Compose(CComposedRaster& composed) {
        return composed.CreateRaster(&red, red.GetRasterBand(0), &green, green.GetRasterBand(0),
                                     &blue, blue.GetRasterBand(0));
    }

    /// For a process that has composed nothing yet: ends it with 0 when the names of its first
    /// and second composed rasters are right.
    [[noreturn]] void ComposeTwiceAndExit() {
        CComposedRaster first;
        CComposedRaster second;
        const bool right = Compose(first) == GIS_SUCCESS && Compose(second) == GIS_SUCCESS &&
                           first.GetFileName() == L"RGBComposedFile" &&
                           second.GetFileName() == L"RGBComposedFile2";
        std::filesystem::remove_all(m_folder.Path());
        zelto::test::EndCopy(right ? 0 : 1);
    }

    TemporaryFolder m_folder;
    CRasterSource red;
    CRasterSource green;
    CRasterSource blue;
};

/// Number behind the name; 1 for the plain one.
int NumberOf(const CComposedRaster& composed) {
    const std::wstring name = composed.GetFileName();
    const std::wstring plain = L"RGBComposedFile";
    EXPECT_EQ(name.substr(0, plain.size()), plain);
    return name == plain ? 1 : std::stoi(name.substr(plain.size()));
}

} // namespace

TEST_F(ComposedRaster, CoversTheCommonExtentAtTheRedResolution) {
    red.SetStretchType(StretchStdDev);
    CComposedRaster composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    // 0.5 … 4 across and 0 … 3.5 up: three and a half pixels of 1, rounded to 4.
    EXPECT_EQ(composed.GetWidth(), 4);
    EXPECT_EQ(composed.GetHeight(), 4);
    EXPECT_DOUBLE_EQ(composed.GetXResolution(), 3.5 / 4);
    EXPECT_DOUBLE_EQ(composed.GetYResolution(), -3.5 / 4);
    EXPECT_DOUBLE_EQ(composed.GetLeft(), 0.5);
    EXPECT_DOUBLE_EQ(composed.GetTop(), 3.5);
    EXPECT_DOUBLE_EQ(composed.GetRight(), 4.0);
    EXPECT_DOUBLE_EQ(composed.GetBottom(), 0.0);
    EXPECT_EQ(composed.GetBandCount(), 3);
    EXPECT_EQ(composed.GetRasterBand(1), green.GetRasterBand(0));
    EXPECT_EQ(composed.GetShowBandArray(), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(composed.GetShowBandCount(), 3);
    EXPECT_EQ(composed.GetRasterDataType(), PDT_UInt16) << "the blue source's";
    EXPECT_EQ(composed.GetSpatialReferenceWKT(), blue.GetSpatialReferenceWKT());
    EXPECT_TRUE(composed.IsProjected());
    EXPECT_EQ(composed.GetStretchType(), StretchStdDev) << "the red source's";
    EXPECT_EQ(composed.GetDescription(), L"Composed Raster");
    EXPECT_EQ(composed.GetFilePath(), L"");
    EXPECT_TRUE(composed.IsComposedRaster());
    EXPECT_FALSE(red.IsComposedRaster());
}

TEST_F(ComposedRaster, OfAProcessTheFirstHasNoDigitsAndTheSecondTheDigitTwo) {
    // Runs this test in a new process up to here.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(ComposeTwiceAndExit(), testing::ExitedWithCode(0), "");
}

TEST_F(ComposedRaster, LaterOnesAreNumbered) {
    CComposedRaster first;
    CComposedRaster second;
    ASSERT_EQ(Compose(first), GIS_SUCCESS);
    ASSERT_EQ(Compose(second), GIS_SUCCESS);
    EXPECT_EQ(NumberOf(second), NumberOf(first) + 1);
    ASSERT_EQ(Compose(first), GIS_SUCCESS);
    EXPECT_EQ(NumberOf(first), NumberOf(second) + 1);
}

TEST_F(ComposedRaster, NullArgumentsAreRefused) {
    CComposedRaster composed;
    CRasterBand* band = red.GetRasterBand(0);
    EXPECT_EQ(composed.CreateRaster(nullptr, band, &green, band, &blue, band), GIS_FAILED);
    EXPECT_EQ(composed.CreateRaster(&red, nullptr, &green, band, &blue, band), GIS_FAILED);
    EXPECT_EQ(composed.CreateRaster(&red, band, nullptr, band, &blue, band), GIS_FAILED);
    EXPECT_EQ(composed.CreateRaster(&red, band, &green, nullptr, &blue, band), GIS_FAILED);
    EXPECT_EQ(composed.CreateRaster(&red, band, &green, band, nullptr, band), GIS_FAILED);
    EXPECT_EQ(composed.CreateRaster(&red, band, &green, band, &blue, nullptr), GIS_FAILED);
}

TEST_F(ComposedRaster, SourcesWithoutACommonPixelAreRefused) {
    for (const double left : {100.0, 4.0}) {
        SCOPED_TRACE(left);
        Make("far.tif", 3, NorthUp(left, 4.0, 1.0), "", GDT_Byte);
        CRasterSource far;
        Open(far, "far.tif");
        CComposedRaster composed;
        EXPECT_EQ(composed.CreateRaster(&red, red.GetRasterBand(0), &far, far.GetRasterBand(0),
                                        &blue, blue.GetRasterBand(0)),
                  GIS_FAILED);
        std::vector<unsigned char> out(4 * 4 * 4, 7);
        CBoundingBox box(0.0, 4.0, 4.0, 0.0);
        EXPECT_FALSE(composed.GetShowData(&box, 4, 4, out.data(), true));
    }
}

TEST_F(ComposedRaster, SourcesThatOnlyTouchAreRefusedWhicheverTheyAre) {
    Make("far.tif", 3, NorthUp(100.0, 4.0, 1.0), "", GDT_Byte);
    Make("below.tif", 4, NorthUp(0.0, 0.0, 1.0), "", GDT_Byte);
    CRasterSource far;
    CRasterSource below;
    Open(far, "far.tif");
    Open(below, "below.tif");
    CComposedRaster composed;
    EXPECT_EQ(composed.CreateRaster(&red, red.GetRasterBand(0), &green, green.GetRasterBand(0),
                                    &far, far.GetRasterBand(0)),
              GIS_FAILED);
    EXPECT_EQ(composed.CreateRaster(&red, red.GetRasterBand(0), &below, below.GetRasterBand(0),
                                    &below, below.GetRasterBand(0)),
              GIS_FAILED)
        << "4 × 0 pixels are common";
}

TEST_F(ComposedRaster, ARefusedCompositionHasNoShownBand) {
    Make("far.tif", 3, NorthUp(100.0, 4.0, 1.0), "", GDT_Byte);
    CRasterSource far;
    Open(far, "far.tif");
    CComposedRaster composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    composed.SetBlueBandNum(1);
    EXPECT_EQ(composed.GetBlueBandNum(), 1);
    ASSERT_EQ(composed.CreateRaster(&far, far.GetRasterBand(0), &green, green.GetRasterBand(0),
                                    &blue, blue.GetRasterBand(0)),
              GIS_FAILED);
    EXPECT_EQ(composed.GetRedBandNum(), 0);
    EXPECT_EQ(composed.GetGreenBandNum(), 0);
    EXPECT_EQ(composed.GetBlueBandNum(), 0);
    {
        const zelto::test::RecordingLog log;
        CBoundingBox box = composed.GetExtent();
        EXPECT_FALSE(composed.GetShowData2Cache(&box, 4, 4));
        ASSERT_EQ(log.m_records.size(), 1U);
        EXPECT_EQ(log.m_records[0].message, L"读取第1波段数据出错");
    }
    EXPECT_TRUE(composed.SetRedBandNum(2));
    EXPECT_EQ(composed.GetShowBandArray(), (std::vector<int>{2}));
}

TEST_F(ComposedRaster, TheBandsKeepTheirOwnStretch) {
    CComposedRaster composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    green.SetStretchType(StretchLinear);
    composed.SetStretchType(StretchHistEqualize);
    EXPECT_EQ(red.GetRasterBand(0)->GetStretchType(), StretchNone);
    EXPECT_EQ(green.GetRasterBand(0)->GetStretchType(), StretchLinear);
    EXPECT_EQ(composed.GetStretchType(), StretchNone);
}

TEST_F(ComposedRaster, ItsPartsAreTheThreeSourcesAndNoOther) {
    CComposedRaster composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    EXPECT_TRUE(composed.IsPartOfRaster(&red));
    EXPECT_TRUE(composed.IsPartOfRaster(&green));
    EXPECT_TRUE(composed.IsPartOfRaster(&blue));
    CRasterSource again;
    Open(again, "red.tif");
    EXPECT_FALSE(composed.IsPartOfRaster(&again)) << "also one of the same file";
    EXPECT_FALSE(composed.IsPartOfRaster(nullptr));
}

TEST_F(ComposedRaster, PixelsComeFromEachSourcesOwnPosition) {
    CComposedRaster composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    // Pixel (3, 3) begins at 0.5 + 3 · 0.875 = 3.125, 3.5 − 2.625 = 0.875: red column 3, row 3;
    // green column 6, row 6; blue column 1, row 1.
    unsigned short values[3] = {};
    ASSERT_EQ(composed.GetPixel(values, 3, 3, PDT_Unknown), GIS_SUCCESS);
    EXPECT_EQ(values[0], 33);
    EXPECT_EQ(values[1], 66);
    EXPECT_EQ(values[2], 11);
    double asDoubles[3] = {};
    ASSERT_EQ(composed.GetPixel(asDoubles, 0, 0, PDT_Float64), GIS_SUCCESS);
    EXPECT_EQ(asDoubles[1], 11.0) << "0.5, 3.5 is green column 1, row 1";
    EXPECT_EQ(composed.GetPixel(nullptr, 0, 0, PDT_Byte), GIS_FAILED);
    EXPECT_EQ(composed.GetPixel(values, 4, 0, PDT_Byte), GIS_FAILED);
    EXPECT_EQ(composed.GetPixel(values, 0, -1, PDT_Byte), GIS_FAILED);
    EXPECT_EQ(composed.GetPixel(values, -1, 0, PDT_Byte), GIS_FAILED);
    EXPECT_EQ(composed.GetPixel(values, 0, 4, PDT_Byte), GIS_FAILED);
}

TEST_F(ComposedRaster, WhoseHostHasTakenTheReferenceHandleKeepsTheText) {
    struct Bare : CComposedRaster {
        Bare() {
            m_spatialReference->Release();
            m_spatialReference = nullptr;
        }
    } composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    EXPECT_EQ(composed.GetSpatialReferenceWKT(), blue.GetSpatialReferenceWKT());
    EXPECT_FALSE(composed.IsProjected());
}

TEST_F(ComposedRaster, ABandThatIsNotThereLeavesItsValue) {
    CComposedRaster composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    int bands[] = {0, 7, 2};
    ASSERT_TRUE(composed.SetShowBandNum(3, bands));
    unsigned short values[] = {500, 501, 502};
    ASSERT_EQ(composed.GetPixel(values, 3, 3, PDT_Unknown), GIS_SUCCESS);
    EXPECT_EQ(values[0], 33);
    EXPECT_EQ(values[1], 501);
    EXPECT_EQ(values[2], 11);
    // So does one that is smaller than its source: of the 4 × 4 pixels of red, 3 × 3.
    ASSERT_EQ(composed.CreateRaster(&red, blue.GetRasterBand(0), &green, green.GetRasterBand(0),
                                    &blue, blue.GetRasterBand(0)),
              GIS_SUCCESS);
    values[0] = 500;
    ASSERT_EQ(composed.GetPixel(values, 3, 3, PDT_Unknown), GIS_SUCCESS);
    EXPECT_EQ(values[0], 500);
    EXPECT_EQ(values[1], 66);
}

TEST_F(ComposedRaster, ClosingForgetsTheSourcesAndLeavesThemOpen) {
    CComposedRaster composed;
    ASSERT_EQ(Compose(composed), GIS_SUCCESS);
    composed.Close();
    EXPECT_FALSE(composed.IsPartOfRaster(&red));
    EXPECT_EQ(composed.GetRasterBand(0), nullptr);
    EXPECT_TRUE(composed.GetShowBandArray().empty());
    EXPECT_TRUE(red.IsOpened());
    unsigned char value = 0;
    EXPECT_EQ(red.GetRasterBand(0)->GetPixel(&value, 2, 1, PDT_Byte), GIS_SUCCESS);
    EXPECT_EQ(value, 12);
}
