#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

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
