#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <numeric>

using Json = nlohmann::json;
using namespace zelto::test;

namespace {

Json Count(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"histogram", "--json"});
    const auto run = RunZelto(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    return Json::parse(run.output);
}

} // namespace

TEST(HistogramCommand, CountsWholeValuesOneByOne) {
    const TemporaryFolder folder;
    const std::string path = WriteRaster(folder.File("a.tif"), {.width = 6, .height = 1},
                                         {{0, 3, 3, 3, 5, 0}, {7, 7, 7, 7, 7, 7}});
    const Json result = Count({path});
    EXPECT_EQ(result["path"], path);
    ASSERT_EQ(result["bands"].size(), 2U);
    const Json& first = result["bands"][0];
    EXPECT_EQ(first["band"], 1);
    EXPECT_EQ(first["low"], -0.5);
    EXPECT_EQ(first["high"], 5.5);
    EXPECT_EQ(first["bucketWidth"], 1.0);
    EXPECT_EQ(first["counts"], (Json{2, 0, 0, 3, 0, 1}));
    EXPECT_EQ(first["counted"], 6);
    EXPECT_EQ(result["bands"][1]["counts"], Json::array({6}));
    EXPECT_EQ(result["bands"][1]["low"], 6.5);
}

TEST(HistogramCommand, LeavesOutNoData) {
    const TemporaryFolder folder;
    const std::string path =
        WriteRaster(folder.File("a.tif"),
                    {.width = 4, .height = 1, .type = GDT_Int16, .noData = -9.0}, {{-9, 4, -9, 5}});
    const Json band = Count({path})["bands"][0];
    EXPECT_EQ(band["low"], 3.5);
    EXPECT_EQ(band["counts"], (Json{1, 1}));
}

TEST(HistogramCommand, BucketsOfWholeNumbersHoldEquallyMany) {
    const TemporaryFolder folder;
    Pixels pixels(1000);
    std::iota(pixels.begin(), pixels.end(), 0.0);
    const std::string path = WriteRaster(
        folder.File("a.tif"), {.width = 100, .height = 10, .type = GDT_UInt16}, {pixels});
    const Json band = Count({path, "--buckets", "300"})["bands"][0];
    EXPECT_EQ(band["bucketWidth"], 4.0);
    ASSERT_EQ(band["counts"].size(), 250U);
    for (const Json& count : band["counts"])
        EXPECT_EQ(count, 4);
}

TEST(HistogramCommand, CountsTheGreatestOfFractionalValues) {
    const TemporaryFolder folder;
    const std::string path =
        WriteRaster(folder.File("a.tif"), {.width = 5, .height = 1, .type = GDT_Float32},
                    {{0.0, 0.2, 0.6, 0.75, 1.0}});
    const Json band = Count({path, "--buckets", "2"})["bands"][0];
    EXPECT_EQ(band["counts"], (Json{2, 3}));
    EXPECT_EQ(band["low"], 0.0);
    EXPECT_NEAR(band["high"].get<double>(), 1.0, 1e-6);
}

TEST(HistogramCommand, ARangeAndBandsCanBeChosen) {
    const TemporaryFolder folder;
    const std::string path = WriteRaster(folder.File("a.tif"), {.width = 4, .height = 1},
                                         {{1, 2, 3, 4}, {10, 20, 30, 40}, {5, 6, 7, 8}});
    const Json result = Count({path, "--bands", "3,2", "--range", "6,20"});
    ASSERT_EQ(result["bands"].size(), 2U);
    EXPECT_EQ(result["bands"][0]["band"], 3);
    EXPECT_EQ(result["bands"][0]["counted"], 3);
    EXPECT_EQ(result["bands"][1]["band"], 2);
    EXPECT_EQ(result["bands"][1]["counted"], 2);
}

TEST(HistogramCommand, TheDisplayRangeIsTwoDeviationsWithinTheValues) {
    const Json band = Count({SampleScene(), "--band", "4"})["bands"][0];
    const Json info =
        Json::parse(RunZelto({"info", "--json", "--sample", SampleScene()}).output)["bands"][3];
    EXPECT_EQ(band["displayRange"], info["displayRange"]);
    EXPECT_EQ(band["counted"], 349 * 352);
}

TEST(HistogramCommand, PrintsATableForPeople) {
    const TemporaryFolder folder;
    const std::string path =
        WriteRaster(folder.File("a.tif"), {.width = 4, .height = 1}, {{1, 1, 1, 2}});
    const auto run = RunZelto({"histogram", path});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "band 1: 4 values, shown from 1 to 2\n"
                          "  from   to  count\n"
                          "   0.5  1.5      3  ########################################\n"
                          "   1.5  2.5      1  #############\n");
}

TEST(HistogramCommand, DrawsAPlot) {
    const TemporaryFolder folder;
    const std::string png = folder.File("直方图.png");
    const auto run = RunZelto({"histogram", SampleScene(), "--band", "4", "--png", png});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output.rfind("band 4: 122848 values, shown from 13.193 to 105.28\n", 0), 0U);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"直方图.png"});
    GDALAllRegister();
    const GDALDatasetUniquePtr picture(GDALDataset::Open(png.c_str(), GDAL_OF_RASTER));
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->GetRasterXSize(), 960);
    EXPECT_EQ(picture->GetRasterYSize(), 540);
}

TEST(HistogramCommand, SaysWhatIsWrong) {
    const TemporaryFolder folder;
    const std::string path = WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1}, {{1, 2}});
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{"--band", "2"},
                                                  {"--band", "0"},
                                                  {"--range", "5,5"},
                                                  {"--range", "5"},
                                                  {"--buckets", "-1"},
                                                  {"--buckets", "70000"},
                                                  {"--png", "a.jpg"},
                                                  {"--png", "a"}}) {
        std::vector<std::string> arguments{"histogram", path};
        arguments.insert(arguments.end(), wrong.begin(), wrong.end());
        const auto run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 2) << wrong[0] << ' ' << wrong[1];
        EXPECT_NE(run.errors, "");
    }
    EXPECT_EQ(RunZelto({"histogram", folder.File("no.tif")}).exitStatus, 1);
    const auto run = RunZelto({"histogram", path, "--png", folder.File("no/such/folder/a.png")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_NE(run.errors.find("a.png"), std::string::npos) << run.errors;
}

TEST(HistogramCommand, OfNothingButNoDataFails) {
    const TemporaryFolder folder;
    const std::string path =
        WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1, .noData = 3.0}, {{3, 3}});
    const auto run = RunZelto({"histogram", path});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_NE(run.errors.find(path), std::string::npos) << run.errors;
}

TEST(HistogramCommand, CountsTheValuesOfARegionAlone) {
    const TemporaryFolder folder;
    const std::string path =
        WriteRaster(folder.File("a.tif"),
                    {.width = 4, .height = 2, .geoTransform = NorthUp(0, 2, 1), .noData = 9.0},
                    {{1, 2, 2, 100, 9, 2, 3, 100}, {5, 5, 6, 7, 5, 5, 6, 7}});
    const Json result = Count({path, "--box", "0,2,3,0"});
    EXPECT_EQ(result["bands"][0]["low"], 0.5);
    EXPECT_EQ(result["bands"][0]["counts"], (Json{1, 3, 1}));
    EXPECT_EQ(result["bands"][1]["counts"], (Json{4, 2}));
    EXPECT_EQ(Count({path, "--shape", "polygon 0 0 0 2 3 2 3 0"}), result);
    // The display range is the image's all the same.
    EXPECT_EQ(result["bands"][1]["displayRange"], Count({path})["bands"][1]["displayRange"]);
    EXPECT_EQ(
        Count({path, "--band", "1", "--box", "0,2,3,0", "--range", "2,4"})["bands"][0]["counts"],
        (Json{3, 1, 0}));
    const auto off = RunZelto({"histogram", path, "--box", "10,12,11,11"});
    EXPECT_EQ(off.exitStatus, 1);
    EXPECT_EQ(off.errors, "zelto: " + path + ": no values in the region\n");
}
