#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

/// 16-bit values 0 … 99 in a row of pixels of one ground unit, from x = 0.
std::string Ramp(const TemporaryFolder& folder, GDALDataType type = GDT_UInt16) {
    return WriteRaster(folder.File("ramp.tif"),
                       {.width = 100, .height = 1, .type = type, .geoTransform = NorthUp(0, 1, 1)},
                       {MakePixels(100, 1, [](int column, int) { return column; })});
}

/// What the linear stretch makes of 0 … 99 between two values.
Pixels LinearBetween(double low, double high) {
    return MakePixels(100, 1, [=](int value, int) {
        return std::floor(std::clamp((value - low) / (high - low) * 255.0, 0.0, 255.0));
    });
}

/// The red of the picture that `render` draws with the options.
Pixels Render(const TemporaryFolder& folder, const std::string& image,
              std::vector<std::string> options) {
    const std::string out = folder.File("out.png");
    options.insert(options.begin(), {"render", image, out, "--overwrite"});
    const auto run = RunZelto(options);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return ReadBand(out, 1);
}

} // namespace

TEST(RenderStretch, PercentClipsTheShareThatIsAsked) {
    const TemporaryFolder folder;
    const std::string image = Ramp(folder);
    EXPECT_EQ(Render(folder, image, {"--stretch", "percent", "--clip", "10,95"}),
              LinearBetween(9.9, 94.05));
    EXPECT_EQ(Render(folder, image, {"--stretch", "percent"}), LinearBetween(1.98, 97.02));
    EXPECT_EQ(Render(folder, image, {"--stretch", "auto"}), LinearBetween(1.98, 97.02));
    EXPECT_EQ(Render(folder, Ramp(folder, GDT_Byte), {"--stretch", "auto"}),
              MakePixels(100, 1, [](int column, int) { return column; }));
}

TEST(RenderStretch, TheRangeIsGivenInSampleValues) {
    const TemporaryFolder folder;
    EXPECT_EQ(Render(folder, Ramp(folder), {"--stretch", "linear", "--range", "20,60"}),
              LinearBetween(20, 60));
}

TEST(RenderStretch, TheBoundsComeFromTheViewOrTheArea) {
    const TemporaryFolder folder;
    const std::string image = Ramp(folder);
    const Pixels view = Render(
        folder, image,
        {"--stretch", "linear", "--stretch-from", "view", "--box", "20,1,40,0", "--size", "20x1"});
    const Pixels all = LinearBetween(20, 39);
    EXPECT_EQ(view, Pixels(all.begin() + 20, all.begin() + 40));
    WriteFile(folder.Path() / "area.geojson",
              R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{},
              "geometry":{"type":"Polygon","coordinates":
              [[[10,0],[31,0],[31,1],[10,1],[10,0]]]}}]})");
    const std::string area = folder.File("area.geojson");
    const Pixels masked =
        Render(folder, image, {"--stretch", "linear", "--stretch-from", "aoi", "--aoi", area});
    const Pixels expected = LinearBetween(10, 30);
    EXPECT_EQ(Pixels(masked.begin() + 10, masked.begin() + 31),
              Pixels(expected.begin() + 10, expected.begin() + 31));
}

TEST(RenderStretch, GammaBendsWhatAStretchShows) {
    const TemporaryFolder folder;
    Pixels expected = LinearBetween(0, 99);
    for (double& value : expected)
        value = std::round(255 * std::sqrt(value / 255));
    EXPECT_EQ(Render(folder, Ramp(folder), {"--stretch", "linear", "--gamma", "2"}), expected);
}

TEST(RenderStretch, OptionsThatTheStretchDoesNotTakeAreRefused) {
    const TemporaryFolder folder;
    const std::string image = Ramp(folder);
    const auto refuse = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"render", image, folder.File("out.png"), "--stretch"});
        const auto run = RunZelto(options);
        EXPECT_EQ(run.exitStatus, 2) << run.errors;
        return run.errors;
    };
    EXPECT_EQ(refuse({"stddev", "--clip", "2,98"}),
              "zelto: --clip: belongs to --stretch percent, auto, not to stddev\n");
    EXPECT_EQ(refuse({"percent", "--range", "2,98"}),
              "zelto: --range: belongs to --stretch table, linear, not to percent\n");
    EXPECT_EQ(refuse({"none", "--stretch-from", "view"}).find("zelto: --stretch-from: belongs"),
              0U);
    EXPECT_EQ(refuse({"wallis", "--exact"}).find("zelto: --exact: belongs"), 0U);
    EXPECT_EQ(refuse({"linear", "--threshold", "0.1"}),
              "zelto: --threshold: belongs to --stretch autolevels, not to linear\n");
    refuse({"equalize", "--gamma", "2"});
    refuse({"linear", "--low", "2"});
    refuse({"linear", "--wallis-model", "2"});
    refuse({"percent", "--clip", "98,2"});
    refuse({"percent", "--clip", "2"});
    refuse({"linear", "--range", "5,5"});
    refuse({"linear", "--range", "5,6,7"});
    refuse({"linear", "--range", "5,6", "--stretch-from", "view"});
    refuse({"linear", "--gamma", "0"});
    refuse({"linear", "--stretch-from", "moon"});
    refuse({"zoom", "--low", "9", "--high", "3"});
    EXPECT_EQ(refuse({"linear", "--stretch-from", "aoi"}),
              "zelto: --stretch-from aoi: needs --aoi\n");
    EXPECT_NE(refuse({"percnt"}).find("did you mean percent?"), std::string::npos);
}

TEST(RenderStretch, TheNumberOfRangesMustFitTheBands) {
    const TemporaryFolder folder;
    const auto run = RunZelto({"render", Ramp(folder), folder.File("out.png"), "--stretch",
                               "linear", "--range", "1,2,3,4"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + folder.File("ramp.tif") + ": "), 0U) << run.errors;
}

TEST(RenderStretch, TheContactSheetGivesEachStretchWhatItTakes) {
    const TemporaryFolder folder;
    const std::string out = folder.File("sheet.png");
    const auto run = RunZelto({"render", Ramp(folder), out, "--contact-sheet", "--clip", "5,95",
                               "--gamma", "2", "--stretch-from", "view", "--threshold", "0.02"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
}

TEST(RenderStretch, HistogramsOfValuesCloseTogetherAreRefusedInsteadOfShownOtherwise) {
    const TemporaryFolder folder;
    const std::string image =
        WriteRaster(folder.File("index.tif"), {.width = 4, .height = 1, .type = GDT_Float32},
                    {{0.1, 0.2, 0.3, 0.4}});
    const std::string out = folder.File("out.png");
    const auto run = RunZelto({"render", image, out, "--stretch", "equalize"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + image +
                              ": the values of a band lie too close together for a histogram\n");
    const auto sheet = RunZelto({"render", image, out, "--contact-sheet"});
    EXPECT_EQ(sheet.exitStatus, 0);
    EXPECT_NE(sheet.errors.find("the sheet leaves equalize out"), std::string::npos);
}
