#include "tests/cli/RunZelto.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace zelto::test;
using Json = nlohmann::json;

TEST(VectorCommand, InfoTellsLayersAndFields) {
    const TemporaryFolder folder;
    WriteVector(folder.File("a.gpkg"),
                {.driver = "GPKG",
                 .layer = "places",
                 .type = wkbPoint,
                 .srs = "EPSG:4326",
                 .fields = {{"name", OFTString}, {"height", OFTReal}}},
                {"POINT (1 2)", "POINT (5 9)"});
    const auto run = RunZelto({"vector", "info", folder.File("a.gpkg"), "--json"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    const Json info = Json::parse(run.output);
    EXPECT_EQ(info["format"], "GPKG");
    ASSERT_EQ(info["layers"].size(), 1U);
    const Json& layer = info["layers"][0];
    EXPECT_EQ(layer["name"], "places");
    EXPECT_EQ(layer["geometry"], "Point");
    EXPECT_EQ(layer["features"], 2);
    EXPECT_EQ(layer["extent"],
              (Json{{"left", 1.0}, {"top", 9.0}, {"right", 5.0}, {"bottom", 2.0}}));
    EXPECT_EQ(layer["coordinateName"], "WGS 84");
    EXPECT_EQ(layer["fields"][1], (Json{{"name", "height"}, {"type", "Real"}}));
    const auto text = RunZelto({"vector", "info", folder.File("a.gpkg")});
    EXPECT_EQ(text.output, folder.File("a.gpkg") + ": GPKG, 1 layer\n\n" +
                               "layer     places\n"
                               "geometry  Point\n"
                               "features  2\n"
                               "extent    1,9,5,2\n"
                               "system    WGS 84\n"
                               "field     name (String)\n"
                               "field     height (Real)\n");
}

TEST(VectorCommand, AnEmptyLayerHasNoExtent) {
    const TemporaryFolder folder;
    WriteVector(folder.File("a.shp"), {.type = wkbPolygon}, {});
    const Json info =
        Json::parse(RunZelto({"vector", "info", folder.File("a.shp"), "--json"}).output);
    EXPECT_TRUE(info["layers"][0]["extent"].is_null());
    EXPECT_EQ(info["layers"][0]["coordinateName"], "");
}

TEST(VectorCommand, WhatIsNoVectorFileFails) {
    const auto run = RunZelto({"vector", "info", "missing.shp"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: missing.shp: No such file or directory\n");
    EXPECT_EQ(RunZelto({"vector", "info", SampleScene()}).exitStatus, 1);
    EXPECT_EQ(RunZelto({"vector"}).exitStatus, 2);
}

TEST(VectorCommand, RealFilesAreDescribed) {
    ZELTO_REQUIRE_TEST_DATA();
    const Json info = Json::parse(
        RunZelto({"vector", "info", TestDataFile("vector/multi_layer.gpkg"), "--json"}).output);
    ASSERT_EQ(info["layers"].size(), 3U);
    EXPECT_EQ(info["layers"][2]["features"], 50);
    EXPECT_EQ(info["layers"][0]["coordinateName"], "SIRGAS 2000 / UTM zone 25S");
}

} // namespace
