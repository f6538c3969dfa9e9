#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <numeric>

namespace {

using namespace zelto::test;
using Json = nlohmann::json;

class AoiCommand : public testing::Test {
  protected:
    std::string File(const std::string& name) { return m_folder.File(name); }
    Json Info(const std::string& name) {
        return Json::parse(RunZelto({"aoi", "info", File(name), "--json"}).output);
    }
    /// A rectangle, an ellipse and a triangle in UTM zone 50.
    void MakeThree(const std::string& name) {
        const auto run =
            RunZelto({"aoi", "new", File(name), "--rect", "0,10,10,0", "--ellipse", "20,10,30,0",
                      "--polygon", "0,20,5,30,10,20", "--srs", "EPSG:32650"});
        ASSERT_EQ(run.exitStatus, 0) << run.errors;
    }

    TemporaryFolder m_folder;
};

TEST_F(AoiCommand, NewWritesTheShapesAndInfoTellsThem) {
    MakeThree("a.aif");
    EXPECT_EQ(std::filesystem::file_size(File("a.aif")), 1584U + 33 + 33 + 1 + 4 + 3 * 16);
    const Json info = Info("a.aif");
    EXPECT_EQ(info["count"], 3);
    EXPECT_EQ(info["extent"],
              (Json{{"left", 0.0}, {"top", 30.0}, {"right", 30.0}, {"bottom", 0.0}}));
    EXPECT_EQ(info["coordinateName"], "WGS 84 / UTM zone 50N (Transverse_Mercator/WGS 84)");
    EXPECT_EQ(info["wkt"].get<std::string>().substr(0, 7), "PROJCS[");
    EXPECT_EQ(info["shapes"][0]["kind"], "rectangle");
    EXPECT_EQ(info["shapes"][1]["kind"], "ellipse");
    EXPECT_EQ(info["shapes"][1]["extent"]["right"], 30.0);
    EXPECT_EQ(info["shapes"][2]["kind"], "polygon");
    EXPECT_EQ(info["shapes"][2]["vertices"], 3);
    const auto text = RunZelto({"aoi", "info", File("a.aif")});
    EXPECT_EQ(text.exitStatus, 0);
    EXPECT_NE(text.output.find("shapes  3\n"), std::string::npos) << text.output;
    EXPECT_NE(text.output.find("extent  0,30,30,0\n"), std::string::npos) << text.output;
    EXPECT_NE(text.output.find("    2  ellipse    -           20   10     30       0\n"),
              std::string::npos)
        << text.output;
}

TEST_F(AoiCommand, NewTakesGeoJsonAsFileAndAsText) {
    WriteFile(File("in.geojson"),
              R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{},)"
              R"("geometry":{"type":"Polygon","coordinates":[[[0,0],[0,9],[9,9],[0,0]],)"
              R"([[1,2],[1,3],[2,3],[1,2]]]}}]})");
    const auto run =
        RunZelto({"aoi", "new", File("a.aif"), "--geojson", File("in.geojson"), "--geojson",
                  R"({"type":"Polygon","coordinates":[[[50,0],[50,1],[51,1],[50,0]]]})"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    const Json info = Info("a.aif");
    EXPECT_EQ(info["count"], 3) << "the hole is an area of its own";
    EXPECT_EQ(info["extent"]["right"], 51.0);
    EXPECT_EQ(info["coordinateName"], "WGS 84 (WGS_1984/WGS 84)");
}

TEST_F(AoiCommand, NewFailsForAFileWithoutPolygons) {
    WriteVector(File("p.shp"), {.type = wkbPoint}, {"POINT (1 1)"});
    const auto run = RunZelto({"aoi", "new", File("a.aif"), "--geojson", File("p.shp")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + File("p.shp") + ": holds no polygons\n");
}

TEST_F(AoiCommand, NewRefusesWhatIsNoShape) {
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {"--rect", "0,10,10"},
                                                         {"--rect", "10,10,0,0"},
                                                         {"--ellipse", "0,0,10,10"},
                                                         {"--rect", "a,b,c,d"},
                                                         {"--polygon", "0,0,1,1"},
                                                         {"--polygon", "0,0,1,1,2"},
                                                         {"--rect", "0,1,1,0", "--srs", "junk"}};
    for (auto arguments : wrong) {
        arguments.insert(arguments.begin(), {"aoi", "new", File("a.aif")});
        const auto run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 2) << run.errors;
        EXPECT_EQ(run.output, "");
    }
    EXPECT_EQ(RunZelto({"aoi", "new", File("a.tif"), "--rect", "0,1,1,0"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"aoi", "new", File("a.aif"), "--geojson", File("no.json")}).exitStatus, 1);
    EXPECT_EQ(RunZelto({"aoi", "new", File("no/a.aif"), "--rect", "0,1,1,0"}).exitStatus, 1);
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(AoiCommand, ConvertGoesToAShapefileAndBack) {
    MakeThree("a.aif");
    ASSERT_EQ(RunZelto({"aoi", "convert", File("a.aif"), File("b.shp")}).exitStatus, 0);
    EXPECT_EQ(ReadGeometries(File("b.shp")).size(), 3U);
    EXPECT_EQ(ReadGeometries(File("b.shp"))[0], "POLYGON ((0 10,10 10,10 0,0 0,0 10))");
    EXPECT_TRUE(std::filesystem::exists(File("b.prj")));
    ASSERT_EQ(RunZelto({"aoi", "convert", File("b.shp"), File("c.aif")}).exitStatus, 0);
    const Json info = Info("c.aif");
    EXPECT_EQ(info["count"], 3);
    EXPECT_EQ(info["coordinateName"], "WGS 84 / UTM zone 50N (Transverse_Mercator/WGS 84)");
}

TEST_F(AoiCommand, AnEllipseBecomesAsManyVerticesAsItsToleranceNeeds) {
    const std::string ellipse = "0,20000,40000,0";
    const auto verticesOf = [&](const std::string& name) {
        return Info(name)["shapes"][0]["vertices"].get<int>() - 1; // the first stands last as well
    };
    ASSERT_EQ(RunZelto({"aoi", "new", File("a.shp"), "--ellipse", ellipse}).exitStatus, 0);
    // A chord over an angle of 2 pi / n is a (1 - cos(pi / n)) away from the larger circle of
    // radius a at most: 0.4 m, of 40,000, with 20,000 (1 - cos(pi / 496.7)).
    EXPECT_EQ(verticesOf("a.shp"), 500);
    ASSERT_EQ(RunZelto({"aoi", "new", File("b.gpkg"), "--ellipse", ellipse, "--tolerance", "3"})
                  .exitStatus,
              0);
    EXPECT_EQ(verticesOf("b.gpkg"), 184); // 3 = 20,000 (1 - cos(pi / 181.4)), in whole quarters
    EXPECT_EQ(RunZelto({"aoi", "new", File("c.aif"), "--ellipse", ellipse, "--tolerance", "3"})
                  .exitStatus,
              2);
    EXPECT_EQ(RunZelto({"aoi", "new", File("c.shp"), "--ellipse", ellipse, "--tolerance", "0"})
                  .exitStatus,
              2);
}

TEST_F(AoiCommand, EveryGeoJsonIsBroughtIntoTheAreasSystem) {
    // On the central meridian of zone 50, 117 east of Greenwich, x is 500,000.
    WriteFile(File("in.geojson"),
              R"({"type":"Polygon","coordinates":[[[117,0],[117,1],[118,0],[117,0]]]})");
    const std::string text =
        R"({"type":"FeatureCollection",)"
        R"("crs":{"type":"name","properties":{"name":"urn:ogc:def:crs:EPSG::32650"}},)"
        R"("features":[{"type":"Feature","properties":{},"geometry":{"type":"Polygon",)"
        R"("coordinates":[[[500000,0],[500000,50],[500100,0],[500000,0]]]}}]})";
    ASSERT_EQ(RunZelto({"aoi", "new", File("a.aif"), "--srs", "EPSG:32650", "--geojson",
                        File("in.geojson"), "--geojson", text})
                  .exitStatus,
              0);
    const Json shapes = Info("a.aif")["shapes"];
    EXPECT_NEAR(shapes[0]["extent"]["left"].get<double>(), 500000, 1e-3);
    EXPECT_NEAR(shapes[0]["extent"]["right"].get<double>(), 611280, 50); // 111.3 km a degree
    EXPECT_NEAR(shapes[1]["extent"]["right"].get<double>(), 500100, 1e-3);
    // Without --srs the first one tells the system; the other is brought into it.
    ASSERT_EQ(
        RunZelto({"aoi", "new", File("b.aif"), "--geojson", File("in.geojson"), "--geojson", text})
            .exitStatus,
        0);
    const Json mixed = Info("b.aif");
    EXPECT_EQ(mixed["epsg"], 4326);
    EXPECT_NEAR(mixed["shapes"][1]["extent"]["right"].get<double>(), 117.0009, 1e-4);
}

TEST_F(AoiCommand, ShapesOfAllKindsKeepTheOrderOfTheCommandLine) {
    ASSERT_EQ(RunZelto({"aoi", "new", File("a.aif"), "--polygon", "0,20,5,30,10,20", "--rect",
                        "0,10,10,0", "--polygon=1,20,5,30,10,20", "--ellipse", "20,10,30,0",
                        "--rect", "1,10,10,0"})
                  .exitStatus,
              0);
    const Json shapes = Info("a.aif")["shapes"];
    ASSERT_EQ(shapes.size(), 5U);
    const char* const kinds[] = {"polygon", "rectangle", "polygon", "ellipse", "rectangle"};
    const double lefts[] = {0, 0, 1, 20, 1};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(shapes[i]["kind"], kinds[i]) << i;
        EXPECT_EQ(shapes[i]["extent"]["left"], lefts[i]) << i;
    }
}

TEST_F(AoiCommand, ConvertGoesToGeoPackageAndGeoJsonAndBack) {
    ASSERT_EQ(RunZelto({"aoi", "new", File("a.aif"), "--rect", "500000,100,500100,0", "--srs",
                        "EPSG:32650"})
                  .exitStatus,
              0);
    for (const char* name : {"b.gpkg", "b.geojson"}) {
        ASSERT_EQ(RunZelto({"aoi", "convert", File("a.aif"), File(name)}).exitStatus, 0) << name;
        ASSERT_EQ(RunZelto({"aoi", "convert", File(name), File("c.aif"), "--srs", "EPSG:32650",
                            "--overwrite"})
                      .exitStatus,
                  0)
            << name;
        const Json extent = Info("c.aif")["extent"];
        EXPECT_NEAR(extent["left"].get<double>(), 500000, 1e-6) << name;
        EXPECT_NEAR(extent["top"].get<double>(), 100, 1e-6) << name;
    }
    EXPECT_EQ(Info("b.geojson")["epsg"], 4326);
    EXPECT_EQ(Info("b.gpkg")["epsg"], 32650);
    ASSERT_EQ(RunZelto({"aoi", "new", File("n.aif"), "--rect", "0,1,1,0"}).exitStatus, 0);
    const auto run = RunZelto({"aoi", "convert", File("n.aif"), File("n.geojson")});
    EXPECT_EQ(run.exitStatus, 1) << "metres are no degrees";
    EXPECT_FALSE(std::filesystem::exists(File("n.geojson")));
}

TEST_F(AoiCommand, ConvertTransformsWhenAsked) {
    ASSERT_EQ(RunZelto({"aoi", "new", File("a.aif"), "--rect", "500000,110530,600000,0", "--srs",
                        "EPSG:32650"})
                  .exitStatus,
              0);
    ASSERT_EQ(
        RunZelto({"aoi", "convert", File("a.aif"), File("b.aif"), "--srs", "EPSG:4326"}).exitStatus,
        0);
    const Json extent = Info("b.aif")["extent"];
    EXPECT_NEAR(extent["left"].get<double>(), 117, 1e-9);
    EXPECT_NEAR(extent["top"].get<double>(), 1, 1e-4);
    EXPECT_NEAR(extent["bottom"].get<double>(), 0, 1e-9);
    ASSERT_EQ(RunZelto({"aoi", "new", File("n.aif"), "--rect", "0,1,1,0"}).exitStatus, 0);
    const auto run =
        RunZelto({"aoi", "convert", File("n.aif"), File("c.aif"), "--srs", "EPSG:4326"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors,
              "zelto: " + File("n.aif") + ": has no reference system to transform from\n");
}

TEST_F(AoiCommand, ConvertFailsInOneLine) {
    WriteVector(File("p.shp"), {.type = wkbPoint}, {"POINT (1 1)"});
    const auto none = RunZelto({"aoi", "convert", File("p.shp"), File("a.aif")});
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_EQ(none.errors, "zelto: " + File("p.shp") + ": holds no polygons\n");
    WriteFile(File("bad.aif"), std::string(2000, 'x'));
    const auto bad = RunZelto({"aoi", "info", File("bad.aif")});
    EXPECT_EQ(bad.exitStatus, 1);
    EXPECT_EQ(bad.errors, "zelto: " + File("bad.aif") + ": is no file of areas of interest\n");
    const auto missing = RunZelto({"aoi", "info", File("missing.aif")});
    EXPECT_EQ(missing.exitStatus, 1);
    EXPECT_EQ(missing.errors, "zelto: " + File("missing.aif") + ": No such file or directory\n");
}

TEST_F(AoiCommand, AFileThatIsCutIsToldAndNotTakenForWhole) {
    MakeThree("a.aif");
    const std::string whole = ReadFile(File("a.aif"));
    const auto expectTold = [&](const std::vector<std::string>& arguments, const std::string& why) {
        const auto run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 1) << arguments[1];
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.errors, "zelto: " + File("cut.aif") + ": " + why + "\n");
    };
    const std::pair<std::size_t, const char*> cuts[] = {
        {1584, "ends after 0 of 3 shapes"},
        {1584 + 32, "ends after 0 of 3 shapes"},
        {1584 + 33, "ends after 1 of 3 shapes"},
        {whole.size() - 1, "ends after 2 of 3 shapes"},
        {1583, "is no file of areas of interest"}};
    for (const auto& [length, end] : cuts) {
        WriteFile(File("cut.aif"), whole.substr(0, length));
        expectTold({"aoi", "info", File("cut.aif")}, end);
    }
    const auto& [size, reason] = cuts[2];
    WriteFile(File("cut.aif"), whole.substr(0, size));
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"aoi", "info", File("cut.aif"), "--json"},
          {"aoi", "hit", File("cut.aif"), "5,5"},
          {"aoi", "convert", File("cut.aif"), File("b.aif")},
          {"stats", SampleScene(), "--aoi", File("cut.aif")}})
        expectTold(arguments, reason);
    EXPECT_FALSE(std::filesystem::exists(File("b.aif")));
}

TEST_F(AoiCommand, NewTakesFiniteNumbersOnly) {
    const auto expectRefused = [&](const std::string& shape, const std::string& numbers,
                                   const std::string& number) {
        const auto run = RunZelto({"aoi", "new", File("n.aif"), shape, numbers});
        EXPECT_EQ(run.exitStatus, 2) << numbers;
        EXPECT_EQ(run.errors, "zelto: " + shape + ": '" + number + "' is not a finite number\n");
    };
    for (const std::string n :
         {"nan", "NaN", "-nan", "inf", "-inf", "infinity", "1e400", "-1e400"}) {
        expectRefused("--rect", n + ",10,10,0", n);
        const auto text =
            RunZelto({"aoi", "new", File("n.aif"), "--geojson",
                      R"({"type":"Polygon","coordinates":[[[0,0],[5,)" + n + "],[10,0],[0,0]]]}"});
        EXPECT_EQ(text.exitStatus, 1) << n << text.errors;
    }
    expectRefused("--rect", "0,10,10,nan", "nan");
    expectRefused("--ellipse", "0,inf,10,0", "inf");
    expectRefused("--polygon", "0,0,5,-1e400,10,0", "-1e400");
    // Each number is finite, the width is not.
    EXPECT_EQ(RunZelto({"aoi", "new", File("n.aif"), "--rect", "-1e308,1,1e308,0"}).exitStatus, 2);
    EXPECT_FALSE(std::filesystem::exists(File("n.aif")));
}

TEST_F(AoiCommand, HitNamesTheShapesAtAPoint) {
    MakeThree("a.aif");
    const Json hit = Json::parse(RunZelto({"aoi", "hit", File("a.aif"), "5,5", "--json"}).output);
    EXPECT_EQ(hit["inside"], true);
    ASSERT_EQ(hit["shapes"].size(), 1U);
    EXPECT_EQ(hit["shapes"][0]["number"], 1);
    const Json corner =
        Json::parse(RunZelto({"aoi", "hit", File("a.aif"), "20.5,9.5", "--json"}).output);
    EXPECT_EQ(corner["inside"], false) << "in the ellipse's box, not in the ellipse";
    const auto text = RunZelto({"aoi", "hit", File("a.aif"), "25,5"});
    EXPECT_NE(text.output.find("    2  ellipse"), std::string::npos) << text.output;
    EXPECT_EQ(RunZelto({"aoi", "hit", File("a.aif"), "-50,5"}).output,
              "no shape holds the point\n");
    EXPECT_EQ(RunZelto({"aoi", "hit", File("a.aif"), "5"}).exitStatus, 2);
}

TEST_F(AoiCommand, MaskBurnsTheAreaOntoTheImagesGrid) {
    WriteRaster(File("i.tif"), {.width = 20, .height = 10, .geoTransform = NorthUp(100, 200, 2)},
                {MakePixels(20, 10, [](int, int) { return 7; })});
    // Columns 5 to 9 and rows 2 to 4, and one pixel more around.
    ASSERT_EQ(RunZelto({"aoi", "new", File("a.aif"), "--rect", "110,196,120,190"}).exitStatus, 0);
    const auto run =
        RunZelto({"aoi", "mask", File("a.aif"), File("i.tif"), File("m.tif"), "--json"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(Json::parse(run.output)["inside"], 7 * 5);
    EXPECT_EQ(Json::parse(run.output)["pixels"], 200);
    const Pixels mask = ReadBand(File("m.tif"), 1);
    EXPECT_EQ(mask, MakePixels(20, 10, [](int column, int row) {
                  return column >= 4 && column <= 10 && row >= 1 && row <= 5 ? 1 : 0;
              }));
}

TEST_F(AoiCommand, MaskMarksWhatStatisticsCountInShapesThatCrossThemselves) {
    WriteRaster(File("i.tif"), {.width = 60, .height = 40, .geoTransform = NorthUp(0, 40, 1)},
                {MakePixels(60, 40, [](int, int) { return 7; })});
    // A bow tie and a rectangle apart from it.
    ASSERT_EQ(RunZelto({"aoi", "new", File("a.shp"), "--polygon",
                        "5.2,5.1,35.3,35.4,35.3,5.1,5.2,35.4", "--rect", "45,30,55,10"})
                  .exitStatus,
              0);
    const auto run = RunZelto({"aoi", "mask", File("a.shp"), File("i.tif"), File("m.tif")});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    const Pixels mask = ReadBand(File("m.tif"), 1);
    // Pixel centres between the two lines that cross, and one pixel more around.
    const auto isHeld = [](int column, int row) {
        const double x = column + 0.5;
        const double y = 40 - (row + 0.5);
        const double slope = (35.4 - 5.1) / (35.3 - 5.2);
        const double rising = 5.1 + slope * (x - 5.2);
        const double falling = 35.4 - slope * (x - 5.2);
        const bool inTie =
            x > 5.2 && x < 35.3 && y > std::min(rising, falling) && y < std::max(rising, falling);
        return inTie || (x > 45 && x < 55 && y > 10 && y < 30);
    };
    int counted = 0;
    for (int row = 1; row < 39; ++row)
        for (int column = 1; column < 59; ++column) {
            counted += isHeld(column, row);
            bool expected = false;
            for (int k = 0; k < 9; ++k)
                expected |= isHeld(column + k % 3 - 1, row + k / 3 - 1);
            ASSERT_EQ(mask[std::size_t(row) * 60 + std::size_t(column)] != 0, expected)
                << column << ", " << row;
        }
    const auto statistics = RunZelto({"stats", File("i.tif"), "--aoi", File("a.shp"), "--json"});
    EXPECT_EQ(Json::parse(statistics.output)["count"], counted);
}

TEST_F(AoiCommand, MaskTransformsAnAreaInAnotherSystem) {
    WriteRaster(File("i.tif"),
                {.width = 10,
                 .height = 10,
                 .geoTransform = NorthUp(500000, 1000, 100),
                 .srs = "EPSG:32650"},
                {MakePixels(10, 10, [](int, int) { return 7; })});
    ASSERT_EQ(
        RunZelto({"aoi", "new", File("a.aif"), "--rect", "116,1,118,-1", "--srs", "EPSG:4326"})
            .exitStatus,
        0);
    const auto run = RunZelto({"aoi", "mask", File("a.aif"), File("i.tif"), File("m.tif")});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, File("m.tif") + ": 100 of 100 pixels inside\n");
}

TEST_F(AoiCommand, MaskFailsInOneLine) {
    MakeThree("a.aif");
    EXPECT_EQ(RunZelto({"aoi", "mask", File("a.aif"), File("no.tif"), File("m.tif")}).exitStatus,
              1);
    const auto run = RunZelto({"aoi", "mask", File("a.aif"), SampleScene(), File("no/m.tif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + File("no/m.tif") + ": "), 0U) << run.errors;
}

TEST_F(AoiCommand, RealFilesBecomeAreas) {
    ZELTO_REQUIRE_TEST_DATA();
    const auto run =
        RunZelto({"aoi", "convert", TestDataFile("vector/polygon_5000.geojson"), File("a.aif")});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(Info("a.aif")["shapes"][0]["vertices"], 5001);
}

} // namespace
