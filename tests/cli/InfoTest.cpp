#include "zelto/classify/ClassifiedAssistantFile.h"

#include "tests/cli/OpenImage.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <csignal>
#include <filesystem>

using Json = nlohmann::json;
using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::RasterSpec;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

Json Describe(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"info", "--json"});
    const auto run = RunZelto(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    return Json::parse(run.output);
}

void ExpectOneLineAbout(const std::string& errors, const std::string& file) {
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
    EXPECT_NE(errors.find(file), std::string::npos) << errors;
}

} // namespace

TEST(InfoCommand, DescribesARasterFully) {
    const TemporaryFolder folder;
    const std::string path = folder.File("影像 1.tif");
    WriteRaster(path,
                {.width = 8,
                 .height = 4,
                 .type = GDT_UInt16,
                 .geoTransform = NorthUp(500000, 4000000, 30),
                 .srs = "EPSG:32650",
                 .noData = 9.0,
                 .overviews = {2}},
                {MakePixels(8, 4, [](int c, int) { return c < 4   ? 9.0
                                                          : c < 6 ? 10.0
                                                                  : 20.0; }),
                 Pixels(32, 5.0)});
    const Json facts = Describe({"--sample", path});
    EXPECT_EQ(facts["path"], path);
    EXPECT_EQ(facts["format"], "GTiff");
    EXPECT_EQ(facts["width"], 8);
    EXPECT_EQ(facts["height"], 4);
    EXPECT_EQ(facts["bandCount"], 2);
    EXPECT_EQ(facts["dataType"], "UInt16");
    EXPECT_EQ(facts["geotransform"], (Json{500000.0, 30.0, 0.0, 4000000.0, 0.0, -30.0}));
    EXPECT_EQ(
        facts["extent"],
        (Json{{"left", 500000.0}, {"top", 4000000.0}, {"right", 500240.0}, {"bottom", 3999880.0}}));
    EXPECT_EQ(facts["coordinateName"], "WGS 84 / UTM zone 50N (Transverse_Mercator/WGS 84)");
    EXPECT_EQ(facts["datum"], "WGS_1984");
    EXPECT_EQ(facts["units"], "metre");
    EXPECT_NE(facts["wkt"].get<std::string>().find("\"32650\""), std::string::npos);
    EXPECT_TRUE(facts["subdatasets"].empty());
    EXPECT_TRUE(facts["classes"].empty());
    EXPECT_EQ(facts["controlPoints"].size(), 0U);
    ASSERT_EQ(facts["bands"].size(), 2U);
    const Json& band = facts["bands"][0];
    EXPECT_EQ(band["band"], 1);
    EXPECT_EQ(band["dataType"], "UInt16");
    EXPECT_EQ(band["blockSize"], (Json{8, 4}));
    EXPECT_EQ(band["noData"], 9.0);
    EXPECT_EQ(band["colorTable"], false);
    EXPECT_EQ(band["overviews"], (Json{{4, 2}}));
    EXPECT_EQ(band["minimum"], 10.0);
    EXPECT_EQ(band["maximum"], 20.0);
    EXPECT_EQ(band["mean"], 15.0);
    EXPECT_EQ(band["standardDeviation"], 5.0);
    EXPECT_EQ(band["displayMinimum"], 10.0);
    EXPECT_EQ(band["displayMaximum"], 20.0);
    EXPECT_EQ(band["displayRange"], (Json{10.0, 20.0})) << "two deviations reach beyond both";
    EXPECT_EQ(facts["bands"][1]["mean"], 5.0);
}

TEST(InfoCommand, TheDisplayRangeIsTwoDeviationsAroundTheMean) {
    const TemporaryFolder folder;
    const std::string path = folder.File("outlier.tif");
    Pixels pixels(100, 50.0);
    pixels[7] = 150.0;
    WriteRaster(path, {.width = 10, .height = 10}, {pixels});
    const Json facts = Describe({"--sample", path});
    const Json& band = facts["bands"][0];
    EXPECT_EQ(band["displayMinimum"], 50.0);
    EXPECT_EQ(band["displayMaximum"], 150.0);
    // Mean 51, variance (99 · 1² + 99²) / 100 = 99.
    EXPECT_EQ(band["displayRange"][0], 50.0) << "raised to the minimum";
    EXPECT_NEAR(band["displayRange"][1].get<double>(), 51.0 + 2.0 * std::sqrt(99.0), 1e-9);
}

TEST(InfoCommand, ExactStatisticsSeeWhatTheSampleMisses) {
    const TemporaryFolder folder;
    const std::string path = folder.File("large.tif");
    // Every second pixel is sampled: those with odd column and row.
    WriteRaster(path, {.width = 4096, .height = 100}, {MakePixels(4096, 100, [](int c, int r) {
                    return c % 2 == 1 && r % 2 == 1 ? 7 : 100;
                })});
    const Json sampled = Describe({"--sample", path});
    EXPECT_EQ(sampled["statistics"], "sampled");
    EXPECT_EQ(sampled["bands"][0]["maximum"], 7.0);
    EXPECT_TRUE(Describe({"--stats", path})["bands"][0]["displayMaximum"].is_null());
    const Json exact = Describe({"--stats", "--sample", path});
    EXPECT_EQ(exact["statistics"], "exact");
    EXPECT_EQ(exact["bands"][0]["maximum"], 100.0);
    EXPECT_NEAR(exact["bands"][0]["mean"].get<double>(), 76.75, 1e-9);
    EXPECT_EQ(exact["bands"][0]["displayMaximum"], 7.0) << "what is shown comes from the sample";
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"large.tif"})) << "nothing is left behind";
}

TEST(InfoCommand, BandsWithoutAValidPixelHaveNoStatistics) {
    const TemporaryFolder folder;
    const std::string empty = folder.File("empty.tif");
    const std::string zero = folder.File("zero.tif");
    WriteRaster(empty, {.width = 2, .height = 2, .noData = 3.0}, {Pixels(4, 3.0)});
    WriteRaster(zero, {.width = 2, .height = 2}, {Pixels(4, 0.0)});
    for (const char* option : {"--sample", "--stats"}) {
        const Json facts = Describe({option, empty, zero});
        EXPECT_TRUE(facts[0]["bands"][0]["minimum"].is_null());
        EXPECT_TRUE(facts[0]["bands"][0]["standardDeviation"].is_null());
        EXPECT_TRUE(facts[0]["bands"][0]["displayMaximum"].is_null());
        EXPECT_EQ(facts[1]["bands"][0]["maximum"], 0.0);
        EXPECT_EQ(facts[1]["bands"][0]["mean"], 0.0);
    }
}

TEST(InfoCommand, WithoutStatisticsNoPixelIsRead) {
    const TemporaryFolder folder;
    const std::string path = folder.File("tiled.tif");
    const RasterSpec spec = {.width = 512,
                             .height = 512,
                             .type = GDT_UInt16,
                             .geoTransform = NorthUp(0, 0, 10),
                             .options = {"TILED=YES", "COMPRESS=DEFLATE"}};
    WriteRaster(path, spec, {MakePixels(512, 512, [](int c, int r) { return c * r % 977; })});
    const Json whole = Describe({path});
    EXPECT_TRUE(whole["statistics"].is_null());
    for (const char* value : {"minimum", "maximum", "mean", "standardDeviation", "displayMinimum",
                              "displayMaximum", "displayRange"})
        EXPECT_TRUE(whole["bands"][0][value].is_null()) << value;
    EXPECT_EQ(Describe({"--sample", path})["bands"][0]["maximum"], 976.0);
    const auto printed = RunZelto({"info", path});
    // Damage every tile: their places and sizes stay, what is in them is no longer DEFLATE.
    const std::string bytes = zelto::test::ReadFile(path);
    std::size_t first = bytes.size(), end = 0;
    {
        const auto image = zelto::test::OpenImage(path);
        for (int tile = 0; tile < 4; ++tile) {
            const auto item = [&](const char* what) {
                const std::string key = "BLOCK_" + std::string(what) + "_" +
                                        std::to_string(tile % 2) + "_" + std::to_string(tile / 2);
                const char* text = image->GetRasterBand(1)->GetMetadataItem(key.c_str(), "TIFF");
                return static_cast<std::size_t>(std::stoul(text != nullptr ? text : "0"));
            };
            first = std::min(first, item("OFFSET"));
            end = std::max(end, item("OFFSET") + item("SIZE"));
        }
    }
    ASSERT_LT(first, end);
    zelto::test::WriteFile(path, bytes.substr(0, first) + std::string(end - first, 'x') +
                                     bytes.substr(end));
    EXPECT_EQ(RunZelto({"info", "--stats", path}).exitStatus, 1) << "the damage is real";
    EXPECT_EQ(Describe({path}), whole);
    const auto again = RunZelto({"info", path});
    EXPECT_EQ(again.output, printed.output);
    EXPECT_EQ(again.errors, "");
}

TEST(InfoCommand, AVirtualRasterWithNothingBehindItFails) {
    const TemporaryFolder folder;
    const std::string image = folder.File("image.tif");
    const std::string path = folder.File("virtual.vrt");
    WriteRaster(image, {.width = 4, .height = 4}, {Pixels(16, 3.0)});
    zelto::test::WriteFile(path, "<VRTDataset rasterXSize=\"4\" rasterYSize=\"4\"><VRTRasterBand "
                                 "dataType=\"Byte\" band=\"1\"><SimpleSource><SourceFilename "
                                 "relativeToVRT=\"1\">image.tif</SourceFilename><SourceBand>1"
                                 "</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>");
    EXPECT_EQ(Describe({path})["width"], 4);
    std::filesystem::remove(image);
    const auto run = RunZelto({"info", path});
    EXPECT_EQ(run.exitStatus, 1);
    ExpectOneLineAbout(run.errors, path);
}

TEST(InfoCommand, ARotatedImageKeepsItsSizeAndGeotransform) {
    const TemporaryFolder folder;
    const std::string path = folder.File("rotated.tif");
    WriteRaster(path, {.width = 20, .height = 10, .geoTransform = {{100, 3, 4, 200, 4, -3}}},
                {Pixels(200, 1.0)});
    const Json facts = Describe({path});
    EXPECT_EQ(facts["width"], 20);
    EXPECT_EQ(facts["geotransform"], (Json{100.0, 3.0, 4.0, 200.0, 4.0, -3.0}));
    EXPECT_EQ(facts["extent"],
              (Json{{"left", 100.0}, {"top", 280.0}, {"right", 200.0}, {"bottom", 170.0}}));
    const auto run = RunZelto({"info", path});
    EXPECT_NE(run.output.find("geotransform  100, 3, 4, 200, 4, -3"), std::string::npos)
        << run.output;
}

TEST(InfoCommand, AnImageWithControlPointsIsDescribedUnwarped) {
    const TemporaryFolder folder;
    const std::string path = folder.File("points.tif");
    WriteRaster(path, {.width = 20, .height = 10}, {Pixels(200, 1.0)});
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    GDAL_GCP points[3] = {};
    GDALInitGCPs(3, points);
    const double corners[3][4] = {{0, 0, 100, 200}, {20, 0, 160, 280}, {0, 10, 140, 170}};
    for (int i = 0; i < 3; ++i) {
        points[i].dfGCPPixel = corners[i][0];
        points[i].dfGCPLine = corners[i][1];
        points[i].dfGCPX = corners[i][2];
        points[i].dfGCPY = corners[i][3];
    }
    ASSERT_EQ(dataset->SetGCPs(3, points, ""), CE_None);
    GDALDeinitGCPs(3, points);
    dataset.reset();
    const Json facts = Describe({path});
    EXPECT_EQ(facts["width"], 20);
    EXPECT_EQ(facts["height"], 10);
    EXPECT_EQ(facts["format"], "GTiff");
    EXPECT_EQ(facts["controlPoints"].size(), 3U);
    EXPECT_EQ(facts["geotransform"], (Json{0.0, 1.0, 0.0, 10.0, 0.0, -1.0}));
}

TEST(InfoCommand, ListsTheClassesOfAnAssistantFile) {
    const TemporaryFolder folder;
    const std::string path = folder.File("landcover.tif");
    WriteRaster(path, {.width = 2, .height = 1}, {{1, 2}});
    CClassifiedAssistantFile file;
    CClassifiedAssistantFile::ClassRecord water;
    water.m_value = 1;
    water.m_color = {0, 0, 255, 255};
    water.SetName(L"水体");
    file.SetClasses({water});
    ASSERT_TRUE(file.WriteClssifiedAssistantFile(folder.WideFile("landcover.acf")));
    const Json facts = Describe({path});
    EXPECT_EQ(facts["classes"], (Json{{{"value", 1.0}, {"color", {0, 0, 255}}, {"name", "水体"}}}));
    EXPECT_NE(RunZelto({"info", path}).output.find("水体"), std::string::npos);
}

TEST(InfoCommand, TellsAPaletteFromGrey) {
    const TemporaryFolder folder;
    const std::string path = folder.File("palette.tif");
    WriteRaster(path, {.width = 2, .height = 1}, {{0, 1}});
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    GDALColorTable table;
    const GDALColorEntry red{255, 0, 0, 255};
    table.SetColorEntry(1, &red);
    ASSERT_EQ(dataset->GetRasterBand(1)->SetColorTable(&table), CE_None);
    dataset.reset();
    const Json band = Describe({path})["bands"][0];
    EXPECT_EQ(band["colorTable"], true);
    EXPECT_EQ(band["colorTableEntries"], 256);
}

TEST(InfoCommand, SpecialNumbersAreWordsInJson) {
    const TemporaryFolder folder;
    const std::string path = folder.File("nan.tif");
    const double nan = std::nan("");
    WriteRaster(path, {.width = 2, .height = 1, .type = GDT_Float32, .noData = nan}, {{nan, 4.0}});
    EXPECT_EQ(Describe({path})["bands"][0]["noData"], "NaN");
    EXPECT_EQ(Describe({"--stats", path})["bands"][0]["mean"], 4.0);
}

TEST(InfoCommand, PrintsTablesForPeople) {
    const auto run = RunZelto({"info", "--stats", "--sample", "--srs", zelto::test::SampleScene()});
    EXPECT_EQ(run.exitStatus, 0);
    for (const char* expected :
         {"GTiff, GeoTIFF", "349 x 352 pixels", "6 of Byte", "SIRGAS 2000 / UTM zone 25S", "metre",
          "band  minimum  maximum     mean  deviation  shown from", "79.1477", "PROJCS[\"SIRGAS"})
        EXPECT_NE(run.output.find(expected), std::string::npos) << expected << "\n" << run.output;
    EXPECT_EQ(RunZelto({"info", zelto::test::SampleScene()}).output.find("79.1477"),
              std::string::npos);
}

TEST(InfoCommand, FilesThatFailAreNamedAndTheOthersDescribed) {
    const TemporaryFolder folder;
    const std::string good = folder.File("good.tif");
    WriteRaster(good, {.width = 2, .height = 1}, {{0, 1}});
    const std::string empty = folder.File("empty.tif");
    zelto::test::WriteFile(empty, "");
    const std::string text = folder.File("text.tif");
    zelto::test::WriteFile(text, "not an image\n");
    const std::string missing = folder.File("missing.tif");
    for (const std::string& file : {empty, text, missing, folder.Path().string()}) {
        const auto run = RunZelto({"info", file});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.output, "");
        ExpectOneLineAbout(run.errors, file);
    }
    EXPECT_NE(RunZelto({"info", missing}).errors.find("No such file"), std::string::npos);
    const auto run = RunZelto({"info", "--json", missing, good, empty});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(Json::parse(run.output).size(), 1U);
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 2);
    EXPECT_EQ(RunZelto({"info"}).exitStatus, 2);
}

TEST(InfoCommand, AListThatIsInterruptedFails) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.tif");
    WriteRaster(path, {.width = 2, .height = 1}, {{0, 1}});
    std::vector<std::string> arguments(3000, path);
    arguments.insert(arguments.begin(), {"info", "--json"});
    const auto run = RunZelto(arguments, "", [](pid_t process) {
        zelto::test::WaitUntilItListens(process);
        kill(process, SIGINT);
    });
    EXPECT_EQ(run.exitStatus, 130);
    EXPECT_EQ(run.errors, "zelto: interrupted\n");
    EXPECT_EQ(run.output, "");
}
