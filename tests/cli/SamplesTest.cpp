#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>

using namespace zelto::test;
using Json = nlohmann::json;

namespace {

/// 4 × 2 pixels: two of water (1, 2 / 11, 12) on the left, two of wood on the right, per row.
class SamplesCommand : public testing::Test {
  protected:
    SamplesCommand() {
        RasterSpec spec;
        spec.width = 4;
        spec.height = 2;
        spec.geoTransform = NorthUp(0, 2, 1);
        m_image = WriteRaster(m_folder.File("image.tif"), spec,
                              {{1, 2, 50, 52, 1, 2, 50, 52}, {11, 12, 60, 62, 11, 12, 60, 62}});
        m_area = m_folder.File("area.aif");
        EXPECT_EQ(
            RunZelto({"aoi", "new", "--rect", "0,2,2,0", "--rect", "2,2,4,0", m_area}).exitStatus,
            0);
    }

    TemporaryFolder m_folder;
    std::string m_image;
    std::string m_area;
};

const char* const ALL_PIXELS = "label,class,band1,band2\n"
                               "7,\"water\",1,11\n"
                               "7,\"water\",2,12\n"
                               "7,\"water\",1,11\n"
                               "7,\"water\",2,12\n"
                               "9,\"wood\",50,60\n"
                               "9,\"wood\",52,62\n"
                               "9,\"wood\",50,60\n"
                               "9,\"wood\",52,62\n";

} // namespace

TEST_F(SamplesCommand, CollectPrintsEveryPixelAsCsv) {
    const RunResult run = RunZelto({"samples", "collect", m_image, "--aoi", m_area, "--labels",
                                    "7,9", "--names", "water,wood", "--csv"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, ALL_PIXELS);
}

TEST_F(SamplesCommand, ATableOfPixelsBecomesASampleFile) {
    WriteFile(m_folder.File("pixels.csv"), ALL_PIXELS);
    const std::string out = m_folder.File("out.smp");
    const RunResult run = RunZelto({"samples", "import", m_folder.File("pixels.csv"), out});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    const Json classes =
        Json::parse(RunZelto({"samples", "show", out, "--json"}).output)["classes"];
    ASSERT_EQ(classes.size(), 2U);
    EXPECT_EQ(classes[0]["name"], "water");
    EXPECT_EQ(classes[0]["values"], (Json{7, 4, 0}));
    EXPECT_EQ(classes[0]["firstArray"], (Json{1.5, 11.5}));
    EXPECT_EQ(classes[1]["thirdArray"], (Json{52.0, 62.0}));
    // Means of 1, 2, 1, 2: a variance of 0.25, and both bands go together.
    EXPECT_EQ(classes[0]["matrix"], (Json{0.25, 0.25, 0.25, 0.25}));
    EXPECT_TRUE(classes[0]["shapes"].empty());
    for (const char* line : {"7,water,1", "7.5,water,1,2", "x,water,1,2", "7,water,1,nan"}) {
        WriteFile(m_folder.File("bad.csv"), std::string("7,water,1,2\n") + line + "\n");
        const RunResult bad =
            RunZelto({"samples", "import", m_folder.File("bad.csv"), m_folder.File("bad.smp")});
        EXPECT_EQ(bad.exitStatus, 1) << line;
        EXPECT_NE(bad.errors.find("line 2"), std::string::npos) << bad.errors;
        EXPECT_FALSE(std::filesystem::exists(m_folder.File("bad.smp")));
    }
}

TEST_F(SamplesCommand, CollectDescribesTheClasses) {
    const RunResult run = RunZelto({"samples", "collect", m_image, "--aoi", m_area, "--json"});
    const Json classes = Json::parse(run.output)["classes"];
    ASSERT_EQ(classes.size(), 2U);
    EXPECT_EQ(classes[0]["name"], "class 1");
    EXPECT_EQ(classes[0]["label"], 1.0);
    EXPECT_EQ(classes[0]["pixels"], 4);
    EXPECT_EQ(classes[1]["bands"][1],
              (Json{{"band", 2}, {"mean", 61.0}, {"minimum", 60.0}, {"maximum", 62.0}}));
}

TEST_F(SamplesCommand, OneLabelMakesOneClassOfAllShapes) {
    const RunResult run =
        RunZelto({"samples", "collect", m_image, "--aoi", m_area, "--labels", "3", "--json"});
    const Json classes = Json::parse(run.output)["classes"];
    ASSERT_EQ(classes.size(), 1U);
    EXPECT_EQ(classes[0]["shapes"], 2);
    EXPECT_EQ(classes[0]["pixels"], 8);
}

TEST_F(SamplesCommand, SampleFilesAreWrittenShownAndExported) {
    const std::string file = m_folder.File("classes.smp");
    ASSERT_EQ(RunZelto({"samples", "collect", m_image, "--aoi", m_area, "--labels", "7,9",
                        "--names", "water,wood", "-o", file})
                  .exitStatus,
              0);
    // Header; per class name, integers, three arrays, integers, matrix, integers and a rectangle.
    EXPECT_EQ(std::filesystem::file_size(file),
              312U + 2 * (256 + 16 + 2 * 24 + 8 + 4 * 8 + 8 + (1 + 32)));
    const RunResult show = RunZelto({"samples", "show", file, "--json"});
    const Json water = Json::parse(show.output)["classes"][0];
    EXPECT_EQ(water["name"], "water");
    EXPECT_EQ(water["values"], (Json{7, 4, 0}));
    EXPECT_EQ(water["firstArray"], (Json{1.5, 11.5}));
    EXPECT_EQ(water["secondArray"], (Json{1.0, 11.0}));
    EXPECT_EQ(water["thirdArray"], (Json{2.0, 12.0}));
    EXPECT_EQ(water["matrix"], (Json{0.25, 0.25, 0.25, 0.25}));
    EXPECT_EQ(water["shapes"][0]["kind"], "rectangle");
    EXPECT_EQ(water["shapes"][0]["extent"],
              (Json{{"left", 0.0}, {"top", 2.0}, {"right", 2.0}, {"bottom", 0.0}}));
    EXPECT_EQ(RunZelto({"samples", "export", m_image, file}).output, ALL_PIXELS);
    EXPECT_NE(RunZelto({"samples", "show", file}).output.find("wood"), std::string::npos);
}

TEST_F(SamplesCommand, AnAttributeTellsTheClass) {
    const std::string vector = m_folder.File("classes.geojson");
    const auto feature = [](const std::string& name, const std::string& ring) {
        return R"({"type":"Feature","properties":{"kind":")" + name +
               R"("},"geometry":{"type":"Polygon","coordinates":[[)" + ring + "]]}}";
    };
    WriteFile(vector, R"({"type":"FeatureCollection","features":[)" +
                          feature("wood", "[2,0],[2,2],[4,2],[4,0],[2,0]") + "," +
                          feature("water", "[0,0],[0,2],[2,2],[2,0],[0,0]") + "," +
                          feature("wood", "[2,1],[2,2],[3,2],[3,1],[2,1]") + "]}");
    const RunResult run =
        RunZelto({"samples", "collect", m_image, "--aoi", vector, "--field", "kind", "--json"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    const Json classes = Json::parse(run.output)["classes"];
    ASSERT_EQ(classes.size(), 2U);
    EXPECT_EQ(classes[0]["name"], "wood");
    EXPECT_EQ(classes[0]["label"], 1.0);
    EXPECT_EQ(classes[0]["shapes"], 2);
    // Of polygons the top edge is outside: only the second row's corners are in, and none of
    // the second polygon's.
    EXPECT_EQ(classes[0]["pixels"], 2);
    EXPECT_EQ(classes[1]["name"], "water");
    const RunResult wrong =
        RunZelto({"samples", "collect", m_image, "--aoi", vector, "--field", "sort"});
    EXPECT_EQ(wrong.exitStatus, 1);
    EXPECT_EQ(wrong.errors, "zelto: " + vector + ": has no field 'sort'\n");
}

TEST_F(SamplesCommand, ShapesOffTheImageAreRemarkedOn) {
    const std::string area = m_folder.File("off.aif");
    ASSERT_EQ(RunZelto({"aoi", "new", "--rect", "20,22,22,20", area}).exitStatus, 0);
    const RunResult run = RunZelto({"samples", "collect", m_image, "--aoi", area});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_NE(run.errors.find("class 1: 1 of its shapes lie off the image"), std::string::npos);
    EXPECT_NE(run.errors.find("class 1: no pixels"), std::string::npos);
}

TEST_F(SamplesCommand, WrongOptionsAreWrongUsage) {
    const std::vector<std::string> start = {"samples", "collect", m_image, "--aoi", m_area};
    for (const std::vector<std::string>& options :
         std::vector<std::vector<std::string>>{{"--labels", "1,2,3"},
                                               {"--labels", "a,b"},
                                               {"--names", "one"},
                                               {"--names", "one,two,three"},
                                               {"--labels", "1,2", "--field", "kind"},
                                               {"--csv", "--json"}}) {
        SCOPED_TRACE(options.front() + " " + options.back());
        std::vector<std::string> arguments = start;
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(RunZelto(arguments).exitStatus, 2);
    }
}

TEST_F(SamplesCommand, WhatIsNoSampleFileIsSaidToBeNone) {
    const RunResult run = RunZelto({"samples", "show", m_image});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + m_image + ": is no sample file\n");
    EXPECT_EQ(RunZelto({"samples", "show", m_folder.File("none.smp")}).errors,
              "zelto: " + m_folder.File("none.smp") + ": No such file or directory\n");
}

TEST_F(SamplesCommand, TrainingAreasOfARealSceneGiveTheirClasses) {
    ZELTO_REQUIRE_TEST_DATA();
    const RunResult run =
        RunZelto({"samples", "collect", TestDataFile("raster/src/L7_ETMs.tif"), "--aoi",
                  TestDataFile("vector/training_l7.geojson"), "--field", "class", "--json"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    const Json classes = Json::parse(run.output)["classes"];
    ASSERT_EQ(classes.size(), 3U);
    EXPECT_EQ(classes[0]["name"], "water");
    // Water is dark in the near infrared (band 4), vegetation bright.
    EXPECT_LT(classes[0]["bands"][3]["maximum"], classes[1]["bands"][3]["minimum"]);
}
