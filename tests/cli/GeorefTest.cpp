#include "tests/cli/OpenImage.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

using zelto::test::OpenImage;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using GeoTransform = std::array<double, 6>;
using Names = std::vector<std::string>;

namespace {

GeoTransform GeoTransformOf(const std::string& path) {
    GeoTransform geoTransform = {};
    EXPECT_EQ(OpenImage(path)->GetGeoTransform(geoTransform.data()), CE_None);
    return geoTransform;
}

/// 4 × 2 pixels of 7 without a place.
std::string WriteImage(const TemporaryFolder& folder, const std::string& name,
                       const char* driver = "GTiff") {
    return zelto::test::WriteRaster(folder.File(name), {.width = 4, .height = 2, .driver = driver},
                                    {Pixels(8, 7.0)});
}

} // namespace

TEST(GeorefCommand, PlacesAnImageByABoxAndAReference) {
    const TemporaryFolder folder;
    for (const char* driver : {"GTiff", "HFA", "ENVI"}) {
        SCOPED_TRACE(driver);
        const std::string path = WriteImage(folder, std::string("图") + driver, driver);
        const auto run =
            RunZelto({"georef", path, "--box", "-80,2060,0,2020", "--srs", "EPSG:32650"});
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(GeoTransformOf(path), (GeoTransform{-80.0, 20.0, 0.0, 2060.0, 0.0, -20.0}));
        EXPECT_TRUE(OpenImage(path)->GetSpatialRef()->IsProjected());
        EXPECT_EQ(ReadBand(path, 1), Pixels(8, 7.0));
    }
}

TEST(GeorefCommand, TakesTheSixTermsOfARotatedImage) {
    const TemporaryFolder folder;
    const std::string path = WriteImage(folder, "a.tif");
    ASSERT_EQ(RunZelto({"georef", path, "--geotransform", "1000,8,3,2000,3,-8"}).exitStatus, 0);
    EXPECT_EQ(GeoTransformOf(path), (GeoTransform{1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0}));
    EXPECT_EQ(OpenImage(path)->GetSpatialRef(), nullptr);
    // The reference alone leaves the place.
    ASSERT_EQ(RunZelto({"georef", path, "--srs", "EPSG:4326"}).exitStatus, 0);
    EXPECT_EQ(GeoTransformOf(path), (GeoTransform{1000.0, 8.0, 3.0, 2000.0, 3.0, -8.0}));
    EXPECT_TRUE(OpenImage(path)->GetSpatialRef()->IsGeographic());
}

TEST(GeorefCommand, ControlPointsGiveWayOnRequestAndLeaveTheirReference) {
    const TemporaryFolder folder;
    const std::string path = WriteImage(folder, "a.tif");
    {
        const GDALDatasetUniquePtr image(
            GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
        GDAL_GCP points[3];
        GDALInitGCPs(3, points);
        for (int i = 0; i < 3; ++i) {
            points[i].dfGCPPixel = i % 2 * 4;
            points[i].dfGCPLine = i / 2 * 2;
            points[i].dfGCPX = 1000.0 + 10.0 * points[i].dfGCPPixel;
            points[i].dfGCPY = 2000.0 - 10.0 * points[i].dfGCPLine;
        }
        OGRSpatialReference reference;
        ASSERT_EQ(reference.importFromEPSG(32650), OGRERR_NONE);
        EXPECT_EQ(image->SetGCPs(3, points, &reference), CE_None);
        GDALDeinitGCPs(3, points);
    }
    const auto refused = RunZelto({"georef", path, "--box", "1000,2000,1040,1980"});
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_EQ(refused.errors,
              "zelto: " + path + ": control points place it; --clear-points removes them\n");
    EXPECT_EQ(OpenImage(path)->GetGCPCount(), 3);
    const auto run = RunZelto({"georef", path, "--clear-points", "--box", "1000,2000,1040,1980"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(OpenImage(path)->GetGCPCount(), 0);
    EXPECT_EQ(GeoTransformOf(path), (GeoTransform{1000.0, 10.0, 0.0, 2000.0, 0.0, -10.0}));
    ASSERT_NE(OpenImage(path)->GetSpatialRef(), nullptr);
    EXPECT_TRUE(OpenImage(path)->GetSpatialRef()->IsProjected());
}

TEST(GeorefCommand, AWorldFileMovesWithItsImage) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.tif");
    ASSERT_EQ(RunZelto({"create", path, "--size", "4,2", "--box", "0,2,4,0"}).exitStatus, 0);
    ASSERT_EQ(RunZelto({"georef", path, "--box", "1000,2000,1040,1980"}).exitStatus, 0);
    EXPECT_EQ(folder.Names(), (Names{"a.tfw", "a.tif"}));
    EXPECT_EQ(ReadFile(folder.Path() / "a.tfw"),
              "10.0000000000\n0.0000000000\n0.0000000000\n-10.0000000000\n"
              "1005.0000000000\n1995.0000000000\n");
}

TEST(GeorefCommand, WrongUsageIsToldApartFromFailure) {
    const TemporaryFolder folder;
    const std::string path = WriteImage(folder, "a.tif");
    const std::vector<std::vector<std::string>> wrong = {
        {"georef"},
        {"georef", path},
        {"georef", path, "--box", "1,2,3"},
        {"georef", path, "--box", "3,2,1,0"},
        {"georef", path, "--box", "0,inf,4,0"},
        {"georef", path, "--geotransform", "0,1,0,0,0,-1,5"},
        {"georef", path, "--geotransform", "0,0,0,0,0,-1"},
        {"georef", path, "--geotransform", "0,1,0,0,0,nan"},
        {"georef", path, "--geotransform", "0,1,0,0,0,-1", "--box", "0,2,4,0"},
    };
    for (const auto& line : wrong)
        EXPECT_EQ(RunZelto(line).exitStatus, 2) << testing::PrintToString(line);
    const std::vector<std::vector<std::string>> failing = {
        {"georef", path, "--srs", "no reference at all"},
        {"georef", folder.File("missing.tif"), "--box", "0,2,4,0"},
    };
    for (const auto& line : failing) {
        const auto run = RunZelto(line);
        EXPECT_EQ(run.exitStatus, 1) << testing::PrintToString(line);
        EXPECT_EQ(run.errors.find("zelto: "), 0U) << run.errors;
        EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
    }
    GeoTransform none = {};
    EXPECT_NE(OpenImage(path)->GetGeoTransform(none.data()), CE_None);
}
