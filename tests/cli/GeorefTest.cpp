#include "tests/cli/OpenImage.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <chrono>
#include <filesystem>
#include <unistd.h>

using zelto::test::GeoTransformOf;
using zelto::test::OpenImage;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using GeoTransform = std::array<double, 6>;
using Names = std::vector<std::string>;

namespace {

/// 4 × 2 pixels of 7 without a place.
std::string WriteUnplaced(const TemporaryFolder& folder, const std::string& name,
                          const char* driver = "GTiff") {
    return zelto::test::WriteRaster(folder.File(name), {.width = 4, .height = 2, .driver = driver},
                                    {Pixels(8, 7.0)});
}

} // namespace

TEST(GeorefCommand, PlacesAnImageByABoxAndAReference) {
    const TemporaryFolder folder;
    for (const char* driver : {"GTiff", "HFA", "ENVI"}) {
        SCOPED_TRACE(driver);
        const std::string path = WriteUnplaced(folder, std::string("图") + driver, driver);
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
    const std::string path = WriteUnplaced(folder, "a.tif");
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
    const std::string path = WriteUnplaced(folder, "a.tif");
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
    ASSERT_EQ(RunZelto({"create", path, "--size", "4x2", "--box", "0,2,4,0"}).exitStatus, 0);
    ASSERT_EQ(RunZelto({"georef", path, "--box", "1000,2000,1040,1980"}).exitStatus, 0);
    EXPECT_EQ(folder.Names(), (Names{"a.tfw", "a.tif"}));
    EXPECT_EQ(ReadFile(folder.Path() / "a.tfw"),
              "10.0000000000\n0.0000000000\n0.0000000000\n-10.0000000000\n"
              "1005.0000000000\n1995.0000000000\n");
}

TEST(GeorefCommand, WrongUsageIsToldApartFromFailure) {
    const TemporaryFolder folder;
    const std::string path = WriteUnplaced(folder, "a.tif");
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

TEST(GeorefCommand, ControlPointsFromTheLineAndFromAFilePlaceAnImage) {
    const TemporaryFolder folder;
    const std::string path = WriteUnplaced(folder, "a.tif");
    ASSERT_EQ(RunZelto({"georef", path, "--box", "0,2,4,0", "--srs", "EPSG:32650"}).exitStatus, 0);
    zelto::test::WriteFile(folder.File("points.csv"),
                           "column,row,x,y\n# the corner\n0,2,500000,3999940\n");
    const auto run = RunZelto({"georef", path, "--gcp", "0,0,500000,4000000", "--gcp",
                               "4,0,500120,4000000", "--gcp-file", folder.File("points.csv")});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    {
        const auto image = OpenImage(path);
        ASSERT_EQ(image->GetGCPCount(), 3);
        EXPECT_EQ(image->GetGCPs()[1].dfGCPPixel, 4.0);
        EXPECT_EQ(image->GetGCPs()[2].dfGCPY, 3999940.0);
        EXPECT_TRUE(image->GetGCPSpatialRef()->IsProjected()) << "that of the box before";
        double terms[6];
        EXPECT_NE(image->GetGeoTransform(terms), CE_None) << "the points alone place it";
    }
    const auto info = RunZelto({"info", path});
    EXPECT_NE(info.output.find("3 in WGS 84 / UTM zone 50N"), std::string::npos) << info.output;
    EXPECT_NE(info.output.find("    3       0    2  500000  3999940\n"), std::string::npos)
        << info.output;
    const auto json = RunZelto({"info", path, "--json"});
    EXPECT_NE(json.output.find("\"controlPointReference\": {"), std::string::npos);
    // Others take their place.
    ASSERT_EQ(RunZelto({"georef", path, "--srs", "EPSG:4326", "--gcp", "0,0,117,1", "--gcp",
                        "4,0,118,1", "--gcp", "0,2,117,0", "--gcp", "4,2,118,0"})
                  .exitStatus,
              0);
    EXPECT_EQ(OpenImage(path)->GetGCPCount(), 4);
    EXPECT_TRUE(OpenImage(path)->GetGCPSpatialRef()->IsGeographic());
}

TEST(GeorefCommand, ControlPointsThatPlaceNothingAreRefused) {
    const TemporaryFolder folder;
    const std::string path = WriteUnplaced(folder, "a.tif");
    const std::string before = ReadFile(path);
    const std::vector<std::vector<std::string>> wrong = {
        {"--gcp", "0,0,1,1", "--gcp", "1,0,2,1"},
        {"--gcp", "0,0,1,1", "--gcp", "1,1,2,2", "--gcp", "2,2,3,3"},
        {"--gcp", "0,0,1"},
        {"--gcp", "0,0,1,nan", "--gcp", "1,0,2,1", "--gcp", "0,1,1,0"},
        {"--gcp", "0,0,1,1", "--gcp", "1,0,2,1", "--gcp", "0,1,1,0", "--box", "0,1,1,0"}};
    for (std::vector<std::string> line : wrong) {
        line.insert(line.begin(), {"georef", path});
        EXPECT_EQ(RunZelto(line).exitStatus, 2) << testing::PrintToString(line);
    }
    zelto::test::WriteFile(folder.File("bad.csv"), "0,0,1,1\n1,0,x,1\n");
    const auto bad = RunZelto({"georef", path, "--gcp-file", folder.File("bad.csv")});
    EXPECT_EQ(bad.exitStatus, 1);
    EXPECT_EQ(bad.errors,
              "zelto: " + folder.File("bad.csv") + ": line 2: expected column,row,x,y\n");
    EXPECT_EQ(ReadFile(path), before);
}

TEST(GeorefCommand, ManyControlPointsOnOneLineAreRefusedInLittleTime) {
    const TemporaryFolder folder;
    const std::string path = WriteUnplaced(folder, "a.tif");
    std::string line;
    for (int i = 0; i < 200'000; ++i) {
        const std::string number = std::to_string(i);
        line += number + ',' + number + ',' + number + ',' + number + '\n';
    }
    zelto::test::WriteFile(folder.File("line.csv"), line);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(RunZelto({"georef", path, "--gcp-file", folder.File("line.csv")}).exitStatus, 2);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST(GeorefCommand, AFileThatMayNotBeWrittenIsAFailure) {
    const TemporaryFolder folder;
    const std::string path = WriteUnplaced(folder, "a.tif");
    const std::string before = ReadFile(path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    if (access(path.c_str(), W_OK) == 0)
        GTEST_SKIP() << "this user may write everything";
    const auto run = RunZelto({"georef", path, "--box", "0,2,4,0"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + path + ": "), 0U) << run.errors;
    EXPECT_EQ(ReadFile(path), before);
}
