#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <ogrsf_frmts.h>

#include <algorithm>

using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;
using Json = nlohmann::json;

namespace {

/// 4 × 4 pixels of one ground unit from (0, 4) down; two bands, row · 10 + column and a hundred
/// more.
std::string Image(const TemporaryFolder& folder, const std::string& srs = "") {
    const auto values = [](double more) {
        return MakePixels(4, 4, [=](int c, int r) { return 10 * r + c + more; });
    };
    return WriteRaster(
        folder.File("image.tif"),
        {.width = 4, .height = 4, .type = GDT_Int16, .geoTransform = NorthUp(0, 4, 1), .srs = srs},
        {values(0), values(100)});
}

/// "north", two squares of one pixel each, and "a, \"b\"", a square from (1.5, 0) to (4, 2).
std::string Fields(const TemporaryFolder& folder) {
    WriteFile(folder.Path() / "fields.geojson", R"({"type":"FeatureCollection","features":[
      {"type":"Feature","properties":{"name":"north","kind":1},"geometry":{"type":"MultiPolygon",
       "coordinates":[[[[0,3],[1,3],[1,4],[0,4],[0,3]]],[[[3,3],[4,3],[4,4],[3,4],[3,3]]]]}},
      {"type":"Feature","properties":{"name":"a, \"b\"","kind":2},"geometry":{"type":"Polygon",
       "coordinates":[[[1.5,0],[4,0],[4,2],[1.5,2],[1.5,0]]]}}]})");
    return folder.File("fields.geojson");
}

Json Measure(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "zonal");
    arguments.emplace_back("--json");
    const auto run = RunZelto(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return Json::parse(run.output, nullptr, false);
}

} // namespace

TEST(ZonalCommand, HasARowForEveryFeatureAndBand) {
    const TemporaryFolder folder;
    const auto run = RunZelto({"zonal", Image(folder), Fields(folder), "--csv", "--id-field",
                               "name", "--include-fields", "kind"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    // Centres: 0 and 3; then columns 2 and 3 (1.5 lies on the edge and is in) of rows 2 and 3.
    EXPECT_EQ(run.output, "name,kind,band,count,minimum,maximum,sum,mean,standardDeviation\n"
                          "north,1,1,2,0,3,3,1.5,1.5\n"
                          "north,1,2,2,100,103,203,101.5,1.5\n"
                          "\"a, \"\"b\"\"\",2,1,6,21,33,162,27,5.066228051190222\n"
                          "\"a, \"\"b\"\"\",2,2,6,121,133,762,127,5.066228051190222\n");
}

TEST(ZonalCommand, WeighsByCoverageAndFindsPercentiles) {
    const TemporaryFolder folder;
    const Json json = Measure({Image(folder), Fields(folder), "--weights", "coverage", "--bands",
                               "1", "--percentiles", "0,50,100"});
    EXPECT_EQ(json["weights"], "coverage");
    ASSERT_EQ(json["zones"].size(), 2U);
    EXPECT_EQ(json["zones"][1]["id"], "1");
    const Json& band = json["zones"][1]["bands"][0];
    EXPECT_EQ(band["count"], 6);
    EXPECT_DOUBLE_EQ(band["weight"], 5.0);
    EXPECT_DOUBLE_EQ(band["sum"], 0.5 * (21 + 31) + 22 + 23 + 32 + 33);
    EXPECT_EQ(band["percentile0"], 21);
    EXPECT_EQ(band["percentile100"], 33);
}

TEST(ZonalCommand, WritesACopyOfTheZonesWithTheResults) {
    const TemporaryFolder folder;
    const std::string image = Image(folder);
    const std::string fields = Fields(folder);
    for (const char* name : {"out.gpkg", "out.shp", "out.geojson"}) {
        const std::string out = folder.File(name);
        const auto run = RunZelto({"zonal", image, fields, "--out", out, "--bands", "2",
                                   "--weights", "coverage", "--percentiles", "50"});
        ASSERT_EQ(run.exitStatus, 0) << run.errors;
        EXPECT_EQ(run.output, out + ": 2 zones\n");
        GDALAllRegister();
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(out.c_str(), GDAL_OF_VECTOR));
        ASSERT_NE(dataset, nullptr) << name;
        OGRLayer& layer = *dataset->GetLayer(0);
        ASSERT_EQ(layer.GetFeatureCount(), 2);
        const OGRFeatureUniquePtr first(layer.GetNextFeature());
        EXPECT_STREQ(first->GetFieldAsString("name"), "north") << name;
        EXPECT_EQ(first->GetFieldAsInteger("b2_count"), 2) << name;
        EXPECT_DOUBLE_EQ(first->GetFieldAsDouble("b2_weight"), 2) << name;
        EXPECT_DOUBLE_EQ(first->GetFieldAsDouble("b2_mean"), 101.5) << name;
        EXPECT_DOUBLE_EQ(first->GetFieldAsDouble("b2_p50"), 101.5) << name;
        ASSERT_NE(first->GetGeometryRef(), nullptr);
        EXPECT_DOUBLE_EQ(first->GetGeometryRef()->toGeometryCollection()->get_Area(), 2);
    }
}

TEST(ZonalCommand, ZonesInAnotherSystemAreTransformed) {
    const TemporaryFolder folder;
    // A degree of the equator in Mercator's metres: 111,319.49.
    const std::string image = WriteRaster(
        folder.File("mercator.tif"),
        {.width = 4, .height = 4, .geoTransform = NorthUp(0, 400000, 100000), .srs = "EPSG:3857"},
        {Pixels(16, 5)});
    WriteFile(folder.Path() / "lonlat.geojson", R"({"type":"FeatureCollection","features":[
      {"type":"Feature","properties":{},"geometry":{"type":"Polygon",
       "coordinates":[[[0,0],[1,0],[1,1],[0,1],[0,0]]]}}]})");
    const Json json = Measure({image, folder.File("lonlat.geojson"), "--weights", "coverage"});
    EXPECT_NEAR(json["zones"][0]["bands"][0]["weight"].get<double>(), 1.1131949 * 1.1132515, 1e-4);
}

TEST(ZonalCommand, ZonesWithoutValuesAreTold) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "far.geojson", R"({"type":"FeatureCollection","features":[
      {"type":"Feature","properties":{},"geometry":{"type":"Polygon",
       "coordinates":[[[50,0],[51,0],[51,1],[50,0]]]}},
      {"type":"Feature","properties":{},"geometry":null}]})");
    const auto run = RunZelto({"zonal", Image(folder), folder.File("far.geojson"), "--csv"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_NE(run.output.find("0,1,0,NaN,NaN,0,NaN,NaN\n"), std::string::npos) << run.output;
    EXPECT_EQ(run.errors,
              "zelto: " + folder.File("far.geojson") + ": 2 of the zones have no values\n");
}

TEST(ZonalCommand, WhatIsNoZoneOrNoFieldIsRefused) {
    const TemporaryFolder folder;
    const std::string image = Image(folder);
    const std::string fields = Fields(folder);
    WriteFile(folder.Path() / "points.geojson", R"({"type":"FeatureCollection","features":[
      {"type":"Feature","properties":{},"geometry":{"type":"Point","coordinates":[1,1]}}]})");
    const auto points = RunZelto({"zonal", image, folder.File("points.geojson")});
    EXPECT_EQ(points.exitStatus, 1);
    EXPECT_EQ(points.errors,
              "zelto: " + folder.File("points.geojson") + ": feature 0: a zone is no polygon\n");
    EXPECT_EQ(RunZelto({"zonal", image, fields, "--id-field", "nme"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"zonal", image, fields, "--include-fields", "kind,nme"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"zonal", image, fields, "--layer", "other"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"zonal", image, fields, "--percentiles", "101"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"zonal", image, fields, "--weights", "some"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"zonal", image, folder.File("none.shp")}).exitStatus, 1);
    EXPECT_EQ(
        RunZelto({"zonal", image, fields, "--out", folder.File("nowhere/out.gpkg")}).exitStatus, 1);
}
