#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using zelto::test::ExposedRasterSource;
using zelto::test::OpenDatasetCount;
using zelto::test::Pixels;
using zelto::test::RecordingLog;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;
using GeoTransform = std::array<double, 6>;

namespace {

constexpr GeoTransform TURNED = {1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0};
constexpr GeoTransform SOUTH_UP = {1000.0, 10.0, 0.0, 2000.0, 0.0, 10.0};

/// 20 × 10 pixels of the value 7.
std::wstring WritePlaced(const TemporaryFolder& folder, const GeoTransform& geoTransform) {
    WriteRaster(folder.File("a.tif"),
                {.width = 20, .height = 10, .geoTransform = geoTransform, .srs = "EPSG:32650"},
                {Pixels(200, 7.0)});
    return folder.WideFile("a.tif");
}

/// The same with four control points at the corners of (1000, 2000) … (1200, 1900).
/// @param geoTransform element text, empty for none
std::wstring WriteImageWithControlPoints(const TemporaryFolder& folder,
                                         const std::string& geoTransform) {
    WriteRaster(folder.File("pixels.tif"), {.width = 20, .height = 10}, {Pixels(200, 7.0)});
    WriteFile(folder.Path() / "a.vrt",
              "<VRTDataset rasterXSize='20' rasterYSize='10'>" + geoTransform +
                  "<GCPList Projection='EPSG:32650'>"
                  "<GCP Id='1' Pixel='0' Line='0' X='1000' Y='2000'/>"
                  "<GCP Id='2' Pixel='20' Line='0' X='1200' Y='2000'/>"
                  "<GCP Id='3' Pixel='20' Line='10' X='1200' Y='1900'/>"
                  "<GCP Id='4' Pixel='0' Line='10' X='1000' Y='1900'/></GCPList>"
                  "<VRTRasterBand dataType='Byte' band='1'><SimpleSource>"
                  "<SourceFilename relativeToVRT='1'>pixels.tif</SourceFilename>"
                  "<SourceBand>1</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>");
    return folder.WideFile("a.vrt");
}

constexpr const char* NORTH_UP_ELEMENT = "<GeoTransform>1000,10,0,2000,0,-10</GeoTransform>";

} // namespace

TEST(RasterInfo, WithoutGeoreferencingYCountsUpwardsFromTheBottomEdge) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 20, .height = 10}, {Pixels(200, 7.0)});
    for (const bool allowWarp : {true, false}) {
        ExposedRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, allowWarp),
                  GIS_SUCCESS);
        EXPECT_EQ(source.GeoTransform(), (GeoTransform{0.0, 1.0, 0.0, 10.0, 0.0, -1.0}));
        EXPECT_EQ(source.GetLeft(), 0.0);
        EXPECT_EQ(source.GetTop(), 10.0);
        EXPECT_EQ(source.GetRight(), 20.0);
        EXPECT_EQ(source.GetBottom(), 0.0);
        EXPECT_FALSE(source.HasBase());
        EXPECT_EQ(source.AllowsWarp(), allowWarp);
    }
}

TEST(RasterInfo, ARotatedImageIsShownThroughAWarpedView) {
    const TemporaryFolder folder;
    const std::wstring path = WritePlaced(folder, TURNED);
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_TRUE(source.HasBase());
    EXPECT_NE(source.GetWidth(), 20);
    EXPECT_EQ(source.GeoTransform()[2], 0.0);
    EXPECT_EQ(source.GeoTransform()[4], 0.0);
    EXPECT_GT(source.GetXResolution(), 0.0);
    EXPECT_LT(source.GetYResolution(), 0.0);
    EXPECT_EQ(source.GetDescription(), path);
    EXPECT_TRUE(source.IsProjected());
    EXPECT_EQ(source.Base()->GetRasterXSize(), 20);

    unsigned char centre = 0;
    EXPECT_EQ(source.GetPixel(&centre, source.GetWidth() / 2, source.GetHeight() / 2, PDT_Byte),
              GIS_SUCCESS);
    EXPECT_EQ(centre, 7);
    source.Close();
    EXPECT_EQ(OpenDatasetCount(), 0);
    EXPECT_FALSE(source.HasBase());
}

TEST(RasterInfo, WithoutWarpingARotatedImageKeepsItsSizeAndLosesItsRotation) {
    const TemporaryFolder folder;
    const std::wstring path = WritePlaced(folder, TURNED);
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_FALSE(source.HasBase());
    EXPECT_EQ(source.GetWidth(), 20);
    EXPECT_EQ(source.GetHeight(), 10);
    EXPECT_EQ(source.GeoTransform(), (GeoTransform{1000.0, 8.0, 0.0, 2000.0, 0.0, -8.0}));
    EXPECT_EQ(source.GetRight(), 1160.0);
}

TEST(RasterInfo, ForDisplayARotatedImageStaysAsItIs) {
    const TemporaryFolder folder;
    const std::wstring path = WritePlaced(folder, TURNED);
    ExposedRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_FALSE(source.HasBase());
    EXPECT_EQ(source.GeoTransform(), TURNED);
    // x runs to 1000 + 20·8 + 10·3, y from 2000 − 10·8 to 2000 + 20·3
    EXPECT_EQ(source.GetRight(), 1190.0);
    EXPECT_EQ(source.GetBottom(), 1920.0);
    EXPECT_EQ(source.GetTop(), 2060.0);
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), (GeoTransform{1000.0, 8.0, 0.0, 2000.0, 0.0, -8.0}));
}

TEST(RasterInfo, ASouthUpImageIsWarpedOrForcedNorthUp) {
    const TemporaryFolder folder;
    const std::wstring path = WritePlaced(folder, SOUTH_UP);
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_TRUE(source.HasBase());
    EXPECT_EQ(source.GetTop(), 2100.0);
    EXPECT_EQ(source.GetBottom(), 2000.0);
    EXPECT_EQ(source.GetYResolution(), -10.0);
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_FALSE(source.HasBase());
    EXPECT_EQ(source.GetTop(), 2000.0);
    EXPECT_EQ(source.GetBottom(), 1900.0);
}

TEST(RasterInfo, ANegativePixelWidthIsNotNorthUp) {
    const TemporaryFolder folder;
    const std::wstring path = WritePlaced(folder, {1000.0, -10.0, 0.0, 2000.0, 0.0, -10.0});
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), (GeoTransform{1000.0, 10.0, 0.0, 2000.0, 0.0, -10.0}));
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_TRUE(source.HasBase());
    EXPECT_EQ(source.GetLeft(), 800.0);
}

TEST(RasterInfo, ControlPointsAreWarpedAlsoBesideAValidGeotransform) {
    for (const char* element : {NORTH_UP_ELEMENT, ""}) {
        const TemporaryFolder folder;
        const std::wstring path = WriteImageWithControlPoints(folder, element);
        for (const bool forDisplay : {false, true}) {
            ExposedRasterSource source;
            source.SetForDisplay(forDisplay);
            ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
            EXPECT_TRUE(source.HasBase());
            EXPECT_NEAR(source.GetLeft(), 1000.0, 1.0);
            EXPECT_NEAR(source.GetTop(), 2000.0, 1.0);
            EXPECT_NEAR(source.GetRight(), 1200.0, 10.0);
        }
    }
}

TEST(RasterInfo, ControlPointsWithoutWarpingAreIgnored) {
    const TemporaryFolder folder;
    std::wstring path = WriteImageWithControlPoints(folder, NORTH_UP_ELEMENT);
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_FALSE(source.HasBase());
    EXPECT_EQ(source.GeoTransform(), (GeoTransform{1000.0, 10.0, 0.0, 2000.0, 0.0, -10.0}));

    path = WriteImageWithControlPoints(folder, "");
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), (GeoTransform{0.0, 1.0, 0.0, 10.0, 0.0, -1.0}));
}

TEST(RasterInfo, AWarpedViewHasFullBandsEvenWhenOpenedSimply) {
    const TemporaryFolder folder;
    const std::wstring path = WritePlaced(folder, SOUTH_UP);
    ExposedRasterSource source;
    ASSERT_EQ(source.OpenSimple(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterBand(0)->GetMean(), 7.0);
    ASSERT_EQ(source.OpenSimple(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterBand(0)->GetMean(), 0.0);
}

TEST(RasterInfo, AFailedViewIsNotedAndTheFileItselfUsed) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a.vrt", "<VRTDataset rasterXSize='20' rasterYSize='10'>"
                                       "<GeoTransform>1000,0,0,2000,0,10</GeoTransform>"
                                       "<VRTRasterBand dataType='Byte' band='1'/></VRTDataset>");
    const std::wstring path = folder.WideFile("a.vrt");
    const RecordingLog log;
    ExposedRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_FALSE(source.HasBase());
    EXPECT_EQ(source.GeoTransform(), (GeoTransform{1000.0, 0.0, 0.0, 2000.0, 0.0, 10.0}));
    ASSERT_EQ(log.m_records.size(), 1U);
    EXPECT_EQ(log.m_records[0].level, 3);
    EXPECT_EQ(log.m_records[0].file, L"RasterSource");
    EXPECT_EQ(log.m_records[0].function, L"CRasterSource::GetRasterInfo");
    EXPECT_EQ(log.m_records[0].message, path + L" Warped VRT Creation failed.");
    // The grid has no inverse: every ground point maps to the first pixel.
    int col = -1;
    int row = -1;
    source.GroundToImage(1000.0, 2010.0, col, row);
    EXPECT_EQ(col, 0);
    EXPECT_EQ(row, 0);
    source.Close();
    EXPECT_EQ(OpenDatasetCount(), 0);
}

TEST(RasterInfo, AViewWithoutColumnsOrRowsIsAFailedOne) {
    const TemporaryFolder folder;
    // Mirrored pixels as long as this leave no room for one in a view of square pixels.
    for (const auto& [width, height] : {std::pair{-1000.0, -0.001}, std::pair{-0.001, -1e9}}) {
        const GeoTransform geoTransform = {0.0, width, 0.0, 0.0, 0.0, height};
        WriteRaster(folder.File("a.tif"), {.width = 10, .height = 10, .geoTransform = geoTransform},
                    {Pixels(100, 7.0)});
        const RecordingLog log;
        ExposedRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
        EXPECT_FALSE(source.HasBase());
        EXPECT_EQ(source.GetWidth(), 10);
        EXPECT_EQ(source.GetHeight(), 10);
        EXPECT_EQ(source.GeoTransform(), geoTransform);
        ASSERT_EQ(log.m_records.size(), 1U);
        EXPECT_EQ(log.m_records[0].level, 3);
        EXPECT_EQ(log.m_records[0].message,
                  folder.WideFile("a.tif") + L" Warped VRT Creation failed.");
        source.Close();
        EXPECT_EQ(OpenDatasetCount(), 0);
    }
}

TEST(RasterInfo, TheRastersTypeIsTheFirstBands) {
    const TemporaryFolder folder;
    for (int type = GDT_Byte; type <= GDT_Float64; ++type) {
        WriteRaster(folder.File("a.tif"),
                    {.width = 2, .height = 1, .type = static_cast<GDALDataType>(type)},
                    {{1.0, 2.0}});
        CRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
        EXPECT_EQ(static_cast<int>(source.GetRasterDataType()), type);
    }
}

TEST(RasterInfo, EveryTermDecidesWhetherAnImageIsNorthUp) {
    using Terms = std::array<double, 6>;
    for (const Terms& terms :
         {Terms{10, 1, 0, 20, 0, -1}, Terms{10, 1, 0.5, 20, 0, -1}, Terms{10, 1, 0, 20, 0.5, -1},
          Terms{10, -1, 0, 20, 0, -1}, Terms{10, 1, 0, 20, 0, 1}}) {
        SCOPED_TRACE(testing::PrintToString(terms));
        const TemporaryFolder folder;
        WriteRaster(folder.File("a.tif"), {.width = 4, .height = 4, .geoTransform = terms},
                    {Pixels(16, 7.0)});
        ExposedRasterSource source;
        ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
        EXPECT_EQ(source.HasBase(), terms != (Terms{10, 1, 0, 20, 0, -1}));
        EXPECT_EQ(source.GeoTransform()[2], 0.0);
        EXPECT_LT(source.GeoTransform()[5], 0.0);
    }
}

TEST(RasterInfo, ASourceWithoutAPlaceForAReferenceOpensWithItsText) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"),
                {.width = 2,
                 .height = 1,
                 .geoTransform = zelto::test::NorthUp(10.0, 20.0, 1.0),
                 .srs = "EPSG:4326"},
                {{1, 2}});
    ExposedRasterSource source;
    source.GiveUpReference();
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetProjectionWKT().find("GEOGCS[\"WGS 84\""), 0U);
    EXPECT_EQ(source.GetOGRSpatialReference(), nullptr);
}
