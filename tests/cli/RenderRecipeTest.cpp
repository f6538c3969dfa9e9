#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>

using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RunZelto;
using zelto::test::SampleScene;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;
using Json = nlohmann::json;

namespace {

/// Draws the image with the options and keeps the recipe, and again by the recipe alone.
void ExpectTheSameBytes(const std::string& image, const std::vector<std::string>& options) {
    const TemporaryFolder folder;
    std::vector<std::string> first = {"render", image, folder.File("a.png"), "--save-recipe",
                                      folder.File("look.json")};
    first.insert(first.end(), options.begin(), options.end());
    const auto made = RunZelto(first);
    ASSERT_EQ(made.exitStatus, 0) << made.errors;
    const auto again = RunZelto({"render", image, folder.File("b.png"), "--recipe",
                                 folder.File("look.json"), "--save-recipe", folder.File("c.json")});
    ASSERT_EQ(again.exitStatus, 0) << again.errors;
    EXPECT_EQ(ReadFile(folder.Path() / "a.png"), ReadFile(folder.Path() / "b.png"));
    EXPECT_EQ(ReadFile(folder.Path() / "look.json"), ReadFile(folder.Path() / "c.json"));
}

std::string SmallImage(const TemporaryFolder& folder) {
    return WriteRaster(
        folder.File("image.tif"),
        {.width = 30, .height = 20, .type = GDT_UInt16, .geoTransform = NorthUp(0, 20, 1)},
        {MakePixels(30, 20, [](int column, int row) { return 100 * row + column; })});
}

} // namespace

TEST(RenderRecipe, TheSameRecipeGivesTheSameBytes) {
    ExpectTheSameBytes(SampleScene(), {"--size", "200x", "--bands", "4,3,2"});
    ExpectTheSameBytes(SampleScene(), {"--size", "150x", "--bands", "4", "--ramp", "viridis",
                                       "--stretch", "percent", "--clip", "1,99", "--gamma", "1.4"});
    ExpectTheSameBytes(SampleScene(), {"--size", "90x70", "--stretch", "wallis", "--hue", "0.2",
                                       "--contrast", "0.3", "--transparency", "0.1"});
    ExpectTheSameBytes(SampleScene(), {"--size", "90x", "--stretch", "equalize", "--stretch-from",
                                       "view", "--srs", "EPSG:4326"});
}

TEST(RenderRecipe, HoldsTheAreaAndWhatIsOutside) {
    const TemporaryFolder folder;
    const std::string image = SmallImage(folder);
    WriteFile(folder.Path() / "area.geojson",
              R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{},
              "geometry":{"type":"Polygon","coordinates":
              [[[2,2],[20,3],[25,18],[4,12],[2,2]]]}}]})");
    ExpectTheSameBytes(image, {"--aoi", folder.File("area.geojson"), "--outside", "black",
                               "--stretch", "linear", "--stretch-from", "aoi"});
}

TEST(RenderRecipe, TheViewMayBeAnother) {
    const TemporaryFolder folder;
    const std::string image = SmallImage(folder);
    const std::string recipe = folder.File("look.json");
    ASSERT_EQ(RunZelto({"render", image, folder.File("a.tif"), "--save-recipe", recipe, "--stretch",
                        "linear", "--range", "0,2000"})
                  .exitStatus,
              0);
    ASSERT_EQ(RunZelto({"render", image, folder.File("b.tif"), "--recipe", recipe, "--box",
                        "10,10,11,9", "--size", "1x1"})
                  .exitStatus,
              0);
    EXPECT_EQ(ReadBand(folder.File("b.tif"), 1),
              (zelto::test::Pixels{std::floor((1000 + 10) / 2000.0 * 255)}));
    ASSERT_EQ(RunZelto({"render", image, folder.File("c.tif"), "--recipe", recipe, "--size", "15x"})
                  .exitStatus,
              0);
    EXPECT_EQ(ReadBand(folder.File("c.tif"), 1).size(), 150U);
}

TEST(RenderRecipe, BesideARecipeNoOptionSaysOtherwise) {
    const TemporaryFolder folder;
    const std::string image = SmallImage(folder);
    const std::string recipe = folder.File("look.json");
    ASSERT_EQ(RunZelto({"render", image, folder.File("a.png"), "--save-recipe", recipe}).exitStatus,
              0);
    const std::vector<std::vector<std::string>> others = {
        {"--bands", "1"},  {"--stretch", "none"}, {"--gamma", "2"}, {"--ramp", "heat"},
        {"--hue", "0.1"},  {"--aoi", image},      {"--exact"},      {"--srs", "EPSG:4326"},
        {"--clip", "2,9"}, {"--contact-sheet"}};
    for (const auto& other : others) {
        std::vector<std::string> all = {"render", image, folder.File("b.png"), "--recipe", recipe};
        all.insert(all.end(), other.begin(), other.end());
        EXPECT_EQ(RunZelto(all).exitStatus, 2) << other[0];
    }
    EXPECT_EQ(RunZelto({"render", image, folder.File("b.png"), "--contact-sheet", "--save-recipe",
                        recipe})
                  .exitStatus,
              2);
}

TEST(RenderRecipe, ARecipeThatIsNoneIsNamedWithTheMember) {
    const TemporaryFolder folder;
    const std::string image = SmallImage(folder);
    const std::string recipe = folder.File("look.json");
    ASSERT_EQ(RunZelto({"render", image, folder.File("a.png"), "--save-recipe", recipe}).exitStatus,
              0);
    Json json = Json::parse(ReadFile(recipe));
    EXPECT_EQ(json["bands"][0]["band"], 1);
    EXPECT_EQ(json["bands"][0]["stretch"], "stddev");
    EXPECT_EQ(json["view"]["width"], 30);
    json["view"]["depth"] = 3;
    WriteFile(recipe, json.dump());
    const auto run = RunZelto({"render", image, folder.File("b.png"), "--recipe", recipe});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + recipe + ": view.depth: a recipe has no such member\n");
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "b.png"));
}
