#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <optional>

using zelto::test::ExposedRasterSource;
using zelto::test::NorthUp;
using zelto::test::OpenDatasetCount;
using zelto::test::Pixels;
using zelto::test::RecordingLog;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

/// 10 × 10 pixels of 30 m in UTM zone 50 around its central meridian, value 7.
std::wstring WriteImage(const TemporaryFolder& folder, const std::string& srs) {
    WriteRaster(
        folder.File("a.tif"),
        {.width = 10, .height = 10, .geoTransform = NorthUp(500000.0, 4000000.0, 30.0), .srs = srs},
        {Pixels(100, 7.0)});
    return folder.WideFile("a.tif");
}

} // namespace

TEST(OpenAndWarped, AnotherReferenceIsReachedThroughAView) {
    const TemporaryFolder folder;
    const std::wstring path = WriteImage(folder, "EPSG:32650");
    ExposedRasterSource source;
    ASSERT_EQ(source.OpenAndWarped(path.c_str(), GIS_READONLY, "EPSG:4326"), GIS_SUCCESS);
    EXPECT_TRUE(source.HasBase());
    EXPECT_TRUE(source.IsGeographic());
    // Central meridian of the zone, 4,000 km north of the equator.
    EXPECT_NEAR(source.GetLeft(), 117.0, 1e-4);
    EXPECT_NEAR(source.GetTop(), 36.144, 1e-2);
    unsigned char centre = 0;
    source.GetPixel(&centre, source.GetWidth() / 2, source.GetHeight() / 2, PDT_Byte);
    EXPECT_EQ(centre, 7);
    source.Close();
    EXPECT_EQ(OpenDatasetCount(), 0);
}

TEST(OpenAndWarped, TheSameReferenceInAnotherFormNeedsNoView) {
    const TemporaryFolder folder;
    const std::wstring path = WriteImage(folder, "EPSG:32650");
    for (const char* target : {"EPSG:32650", "+proj=utm +zone=50 +datum=WGS84 +units=m",
                               static_cast<const char*>(nullptr), ""}) {
        ExposedRasterSource source;
        ASSERT_EQ(source.OpenAndWarped(path.c_str(), GIS_READONLY, target), GIS_SUCCESS);
        EXPECT_FALSE(source.HasBase()) << (target != nullptr ? target : "(null)");
        EXPECT_EQ(source.GetWidth(), 10);
        EXPECT_TRUE(source.AllowsWarp());
    }
}

TEST(OpenAndWarped, NorthEastSystemsStayTheSameThroughOtherFormats) {
    const TemporaryFolder folder;
    const std::wstring path = WriteImage(folder, "EPSG:4547");
    ExposedRasterSource source;
    ASSERT_EQ(source.OpenAndWarped(path.c_str(), GIS_READONLY, "EPSG:4547"), GIS_SUCCESS);
    EXPECT_FALSE(source.HasBase());
}

TEST(OpenAndWarped, ARotatedImageInItsOwnReferenceIsStillMadeNorthUp) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"),
                {.width = 10,
                 .height = 10,
                 .geoTransform = std::array<double, 6>{1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0},
                 .srs = "EPSG:32650"},
                {Pixels(100, 7.0)});
    for (const char* target : {"EPSG:32650", "EPSG:32651"}) {
        ExposedRasterSource source;
        ASSERT_EQ(source.OpenAndWarped(folder.WideFile("a.tif").c_str(), GIS_READONLY, target),
                  GIS_SUCCESS);
        EXPECT_TRUE(source.HasBase());
        EXPECT_EQ(source.GeoTransform()[2], 0.0);
        source.Close();
        EXPECT_EQ(OpenDatasetCount(), 0);
    }
}

TEST(OpenAndWarped, AnImpossibleViewIsLoggedAndFails) {
    const TemporaryFolder folder;
    const std::wstring path = WriteImage(folder, "EPSG:32650");
    const RecordingLog log;
    ExposedRasterSource source;
    EXPECT_EQ(source.OpenAndWarped(path.c_str(), GIS_READONLY, "no reference at all"),
              GIS_OPEN_FAILED);
    EXPECT_FALSE(source.IsOpened());
    EXPECT_FALSE(source.HasBase());
    EXPECT_EQ(OpenDatasetCount(), 0);
    ASSERT_EQ(log.m_records.size(), 1U);
    EXPECT_EQ(log.m_records[0].level, 4);
    EXPECT_EQ(log.m_records[0].file, L"RasterSource");
    EXPECT_EQ(log.m_records[0].function, L"CRasterSource::OpenAndWarped");
    EXPECT_EQ(log.m_records[0].message, path + L" Warped VRT Creation failed.");
}

TEST(OpenAndWarped, AViewWithoutRowsFails) {
    const TemporaryFolder folder;
    // A line of pixels along the equator, which another zone shows as straight.
    const std::array<double, 6> flat = {500000.0, -10000.0, 0.0, 0.0, 0.0, -1e-9};
    WriteRaster(folder.File("a.tif"),
                {.width = 10, .height = 10, .geoTransform = flat, .srs = "EPSG:32650"},
                {Pixels(100, 7.0)});
    const RecordingLog log;
    ExposedRasterSource source;
    EXPECT_EQ(source.OpenAndWarped(folder.WideFile("a.tif").c_str(), GIS_READONLY, "EPSG:32651"),
              GIS_OPEN_FAILED);
    EXPECT_FALSE(source.IsOpened());
    EXPECT_EQ(OpenDatasetCount(), 0);
    ASSERT_EQ(log.m_records.size(), 1U);
    EXPECT_EQ(log.m_records[0].level, 4);
}

TEST(OpenAndWarped, AnImageWithoutGeoreferencingCannotBeWarped) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 10, .height = 10}, {Pixels(100, 7.0)});
    CRasterSource source;
    EXPECT_EQ(source.OpenAndWarped(folder.WideFile("a.tif").c_str(), GIS_READONLY, "EPSG:4326"),
              GIS_OPEN_FAILED);
    EXPECT_FALSE(source.IsOpened());
}

namespace {

/// Columns of one value each, 10 × 10 pixels of a degree from 100°E 50°N, and none at −1.
std::wstring WriteColumns(const TemporaryFolder& folder, std::optional<double> noData) {
    WriteRaster(
        folder.File("c.tif"),
        {.width = 10,
         .height = 10,
         .type = GDT_Int16,
         .geoTransform = NorthUp(100.0, 50.0, 1.0),
         .srs = "EPSG:4326",
         .noData = noData},
        {zelto::test::MakePixels(10, 10, [](int c, int) { return 10 + c; }), Pixels(100, 5.0)});
    return folder.WideFile("c.tif");
}

constexpr double DEGREE = 111319.49079327357; // metres on the equator of a ball of 6,378,137 m

/// A row of values of the view's band.
std::vector<short> RowOf(CRasterSource& source, int band, int row) {
    std::vector<short> values(static_cast<std::size_t>(source.GetWidth()));
    EXPECT_EQ(source.GetRasterBand(band)->ReadBlock(0, row, source.GetWidth(), 1, values.data(),
                                                    source.GetWidth(), 1, PDT_Int16, 0, 0),
              GIS_SUCCESS);
    return values;
}

} // namespace

TEST(OpenWarpedToGrid, ShowsTheFileOnTheGridThatIsGiven) {
    const TemporaryFolder folder;
    const std::wstring path = WriteColumns(folder, {});
    // In Mercator's system columns stay columns: six of them, two beyond the left edge.
    const double grid[6] = {98.0 * DEGREE, DEGREE, 0.0, 45.5 * DEGREE, 0.0, -DEGREE / 10.0};
    ExposedRasterSource source;
    ASSERT_EQ(source.OpenWarpedToGrid(path.c_str(), GIS_READONLY, "EPSG:3395", grid, 6, 2),
              GIS_SUCCESS);
    EXPECT_TRUE(source.HasBase());
    EXPECT_EQ(source.GetWidth(), 6);
    EXPECT_EQ(source.GetHeight(), 2);
    EXPECT_EQ(source.GetLeft(), 98.0 * DEGREE);
    EXPECT_EQ(source.GetXResolution(), DEGREE);
    EXPECT_TRUE(source.IsProjected());
    EXPECT_EQ(RowOf(source, 0, 0), (std::vector<short>{0, 0, 10, 11, 12, 13}));
    EXPECT_EQ(RowOf(source, 1, 1), (std::vector<short>{0, 0, 5, 5, 5, 5}));
}

TEST(OpenWarpedToGrid, FillsWhatTheFileDoesNotReachWithItsNoDataValue) {
    const TemporaryFolder folder;
    const std::wstring path = WriteColumns(folder, 11.0);
    const double grid[6] = {99.0 * DEGREE, DEGREE, 0.0, 45.5 * DEGREE, 0.0, -DEGREE / 10.0};
    CRasterSource source;
    ASSERT_EQ(source.OpenWarpedToGrid(path.c_str(), GIS_READONLY, "EPSG:3395", grid, 4, 1),
              GIS_SUCCESS);
    EXPECT_EQ(RowOf(source, 0, 0), (std::vector<short>{11, 10, 11, 12}));
    EXPECT_EQ(source.GetRasterBand(0)->GetNoDataValue(), 11.0);
}

TEST(OpenWarpedToGrid, BandsWithoutANoDataValueKeepAllTheirsBesideOneThatHasOne) {
    const TemporaryFolder folder;
    WriteColumns(folder, {});
    const auto bandOf = [](const std::string& number, const std::string& noData) {
        return "<VRTRasterBand dataType='Int16' band='" + number + "'>" + noData +
               "<SimpleSource><SourceFilename "
               "relativeToVRT='1'>c.tif</SourceFilename><SourceBand>" +
               number + "</SourceBand></SimpleSource></VRTRasterBand>";
    };
    zelto::test::WriteFile(folder.Path() / "c.vrt",
                           "<VRTDataset rasterXSize='10' rasterYSize='10'><SRS>EPSG:4326</SRS>"
                           "<GeoTransform>100,1,0,50,0,-1</GeoTransform>" +
                               bandOf("1", "<NoDataValue>11</NoDataValue>") + bandOf("2", "") +
                               "</VRTDataset>");
    const double grid[6] = {99.0 * DEGREE, DEGREE, 0.0, 45.5 * DEGREE, 0.0, -DEGREE / 10.0};
    CRasterSource source;
    ASSERT_EQ(source.OpenWarpedToGrid(folder.WideFile("c.vrt").c_str(), GIS_READONLY, "EPSG:3395",
                                      grid, 4, 1),
              GIS_SUCCESS);
    EXPECT_EQ(RowOf(source, 0, 0), (std::vector<short>{11, 10, 11, 12}));
    EXPECT_EQ(RowOf(source, 1, 0), (std::vector<short>{0, 5, 5, 5}));
}

TEST(OpenWarpedToGrid, InItsOwnReferenceTheFileKeepsItsOwnGrid) {
    const TemporaryFolder folder;
    const std::wstring path = WriteColumns(folder, {});
    const double grid[6] = {100.0, 0.5, 0.0, 50.0, 0.0, -0.5};
    for (const char* target : {"EPSG:4326", static_cast<const char*>(nullptr)}) {
        ExposedRasterSource source;
        ASSERT_EQ(source.OpenWarpedToGrid(path.c_str(), GIS_READONLY, target, grid, 20, 20),
                  GIS_SUCCESS);
        EXPECT_FALSE(source.HasBase());
        EXPECT_EQ(source.GetWidth(), 10);
    }
}

TEST(OpenWarpedToGrid, AGridWithoutPlaceOrPixelsFails) {
    const TemporaryFolder folder;
    const std::wstring path = WriteColumns(folder, {});
    const double grid[6] = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    CRasterSource source;
    const auto open = [&](const double* terms, int width, int height) {
        return source.OpenWarpedToGrid(path.c_str(), GIS_READONLY, "EPSG:3395", terms, width,
                                       height);
    };
    EXPECT_EQ(open(nullptr, 1, 1), GIS_OPEN_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              "the grid of a view has no geotransform or no pixels");
    EXPECT_EQ(open(grid, 0, 1), GIS_OPEN_FAILED);
    EXPECT_EQ(open(grid, 1, 0), GIS_OPEN_FAILED);
    EXPECT_FALSE(source.IsOpened());
}

TEST(OpenWarpedToGrid, ARotatedGridNeedsAViewOverTheViewWhichThereIsNot) {
    const TemporaryFolder folder;
    const std::wstring path = WriteColumns(folder, {});
    const double grid[6] = {100.0 * DEGREE, DEGREE, DEGREE, 50.0 * DEGREE, 0.0, -DEGREE};
    const RecordingLog log;
    ExposedRasterSource source;
    ASSERT_EQ(source.OpenWarpedToGrid(path.c_str(), GIS_READONLY, "EPSG:3395", grid, 2, 2),
              GIS_SUCCESS);
    EXPECT_EQ(source.GetWidth(), 2);
    EXPECT_EQ(source.GeoTransform()[2], DEGREE) << "it is shown as it is";
    ASSERT_EQ(log.m_records.size(), 1U);
    EXPECT_EQ(log.m_records[0].message, path + L" Warped VRT Creation failed.");
    source.Close();
    EXPECT_EQ(OpenDatasetCount(), 0);
}

TEST(OpenWarpedToGrid, AnImageWithoutAPlaceCannotBeShownOnAGrid) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 2, .height = 2}, {Pixels(4, 1.0)});
    const double grid[6] = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    CRasterSource source;
    EXPECT_EQ(source.OpenWarpedToGrid(folder.WideFile("a.tif").c_str(), GIS_READONLY, "EPSG:4326",
                                      grid, 2, 2),
              GIS_OPEN_FAILED);
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
    EXPECT_EQ(OpenDatasetCount(), 0);
}
