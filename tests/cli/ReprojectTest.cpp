#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

using Json = nlohmann::json;
using zelto::test::RunZelto;

namespace {

/// 100 × 80 pixels of 10 m, top-left corner (500000, 4400000), zone 50.
std::string SmallRaster(const zelto::test::TemporaryFolder& folder, const std::string& srs) {
    GDALAllRegister();
    zelto::test::RasterSpec spec = {.width = 100, .height = 80, .srs = srs};
    spec.geoTransform = zelto::test::NorthUp(500000, 4400000, 10);
    return zelto::test::WriteRaster(folder.File("small.tif"), spec,
                                    {zelto::test::Pixels(8000, 1.0)});
}

/// The two numbers of the only line of output.
std::pair<double, double> OnlyPoint(const std::string& output) {
    const std::size_t blank = output.find(' ');
    EXPECT_NE(blank, std::string::npos) << output;
    return {CPLAtof(output.c_str()), CPLAtof(output.substr(blank + 1).c_str())};
}

} // namespace

TEST(ReprojectPoints, PrintsXAndYPerLine) {
    const auto run =
        RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:32650"}, "117 0\n");
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "500000.0000 0.0000\n");
    EXPECT_EQ(run.errors, "");
}

TEST(ReprojectPoints, ReadsCsvWithHeadingsCommentsAndFurtherColumns) {
    const zelto::test::TemporaryFolder folder;
    zelto::test::WriteFile(folder.File("points.csv"),
                           "lon;lat;name\r\n# a comment\n\n117;0;here\r\n 117,\t+0\n");
    const auto run = RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:32650",
                               folder.File("points.csv"), "--decimals", "1"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, "500000.0 0.0\n500000.0 0.0\n");
}

TEST(ReprojectPoints, ChosenColumnsAreReplacedAndAllOthersKept) {
    const auto run = [](const std::string& columns, const std::string& input) {
        return RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:32650",
                         "--decimals", "1", "--columns", columns},
                        input);
    };
    const auto named = run("lon,lat", "id,lat,name,lon\r\n# a remark\n\n"
                                      "1,0,\"a, \"\"b\"\"\",117\r\n2, 0 ,c,\"117\"\n");
    EXPECT_EQ(named.exitStatus, 0) << named.errors;
    EXPECT_EQ(named.output, "id,lat,name,lon\r\n# a remark\n\n"
                            "1,0.0,\"a, \"\"b\"\"\",500000.0\r\n2, 0.0 ,c,\"500000.0\"\n");
    EXPECT_EQ(run("3,2", "a;0;117;z\n").output, "a;0.0;500000.0;z\n");
    EXPECT_EQ(run("2,3", "a  117 0  z\n").output, "a  500000.0 0.0  z\n");
    EXPECT_EQ(run("1,2", "x\ty\n117\t0\n").output, "x\ty\n500000.0\t0.0\n");
    const auto unknown = run("lon,height", "lon,lat\n117,0\n");
    EXPECT_EQ(unknown.exitStatus, 1);
    EXPECT_EQ(unknown.errors, "zelto: standard input: line 1: no column is called 'height'\n");
    const auto same = run("2,lat", "lon,lat\n117,0\n");
    EXPECT_EQ(same.exitStatus, 1);
    EXPECT_EQ(same.errors, "zelto: standard input: line 1: 2 and lat are the same column\n");
    const auto bad = run("1,2", "117,0\n117,\n");
    EXPECT_EQ(bad.exitStatus, 1);
    EXPECT_NE(bad.errors.find("line 2"), std::string::npos) << bad.errors;
    EXPECT_EQ(run("lon", "").exitStatus, 2);
    EXPECT_EQ(RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:32650",
                        "--columns", "1,2", "--json"})
                  .exitStatus,
              2);
}

TEST(ReprojectPoints, GaussKrugerPositionsAreThoseOfTheClassicSeries) {
    // Worked with the textbook series, to a tenth of a millimetre.
    const auto at = [](const char* from, const char* to) {
        return OnlyPoint(
            RunZelto({"reproject", "points", "--from", from, "--to", to}, "117.5 40\n").output);
    };
    const auto [x, y] = at("EPSG:4490", "EPSG:4548");
    EXPECT_NEAR(x, 542697.0238, 1e-3);
    EXPECT_NEAR(y, 4429648.7838, 1e-3);
    const auto [xianX, xianY] = at("EPSG:4610", "EPSG:2384");
    EXPECT_NEAR(xianX, 542697.0440, 1e-3);
    EXPECT_NEAR(xianY, 4429650.8500, 1e-3);
}

TEST(ReprojectPoints, TransverseMercatorGivesThePublishedExample) {
    // Ordnance Survey, A guide to coordinate systems in Great Britain, annexe C:
    // 52°39'27.2531" N 1°43'4.5177" E is at 651409.903 m, 313177.270 m of the National Grid.
    const auto run = RunZelto(
        {"reproject", "points", "--from", "EPSG:4277", "--to", "EPSG:27700", "--decimals", "3"},
        "1.7179215833 52.6575703056\n");
    EXPECT_EQ(run.output, "651409.903 313177.270\n");
}

TEST(ReprojectPoints, SevenParametersGiveThePublishedExample) {
    // Guidance note 7-2 of the EPSG registry, method 9606: WGS 72 to WGS 84.
    const auto run = RunZelto({"reproject", "points", "--from", "EPSG:4322", "--to", "EPSG:4326",
                               "--from-shift", "0,0,4.5,0,0,0.554,0.219"},
                              "4 55\n");
    EXPECT_EQ(run.exitStatus, 0);
    const auto [x, y] = OnlyPoint(run.output);
    EXPECT_NEAR((x - 4) * 3600, 0.554, 5e-4);
    EXPECT_NEAR((y - 55) * 3600, 0.090, 5e-4);
}

TEST(ReprojectPoints, WithoutAPlaceAreInfiniteAndCounted) {
    const auto run = RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:3395"},
                              "0 400\n0 0\n");
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output.substr(0, 18), "Infinity Infinity\n");
    EXPECT_EQ(run.errors, "zelto: standard input: 1 of 2 points have no place in EPSG:3395\n");
    const auto none =
        RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:3395"}, "0 400\n");
    EXPECT_EQ(none.exitStatus, 1);
}

TEST(ReprojectPoints, AsJsonSayWhichAreKnown) {
    const auto run =
        RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:3395", "--json"},
                 "0 400\n0 0\n");
    const Json points = Json::parse(run.output);
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[0]["known"], false);
    EXPECT_EQ(points[1]["known"], true);
    EXPECT_NEAR(points[1]["x"].get<double>(), 0.0, 1e-9);
}

TEST(ReprojectPoints, ManyLinesComeOutInOrder) {
    std::string input;
    for (int i = 0; i < 70000; ++i)
        input += std::to_string(i % 180) + " 0\n";
    const auto run = RunZelto(
        {"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:4326", "--decimals", "0"},
        input);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.output, input);
}

TEST(ReprojectPoints, BadInputFailsInOneLine) {
    const std::vector<std::string> command = {"reproject", "points", "--from",
                                              "EPSG:4326", "--to",   "EPSG:3395"};
    const auto run = RunZelto(command, "1 2\nabc 3\n");
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: standard input: line 2: 'abc 3' does not start with x and y\n");
    auto missing = command;
    missing.push_back("/no/such/file");
    EXPECT_EQ(RunZelto(missing).errors, "zelto: /no/such/file: No such file or directory\n");
    auto shift = command;
    shift.insert(shift.end(), {"--from-shift", "1,2,3"});
    EXPECT_EQ(RunZelto(shift).exitStatus, 2);
    const auto junk = RunZelto({"reproject", "points", "--from", "junk", "--to", "EPSG:3395"});
    EXPECT_EQ(junk.exitStatus, 1);
    EXPECT_EQ(junk.errors, "zelto: junk: cannot be read as a spatial reference\n");
}

TEST(ReprojectBox, SamplesTheEdges) {
    const std::vector<std::string> command = {"reproject", "box",           "--from",
                                              "EPSG:4326", "--to",          "EPSG:32650",
                                              "--box",     "114,61,120,60", "--json"};
    auto corners = command;
    corners.insert(corners.end(), {"--step", "0"});
    const Json sampled = Json::parse(RunZelto(command).output);
    const Json plain = Json::parse(RunZelto(corners).output);
    // The parallel's lowest point lies on the central meridian, between the corners.
    EXPECT_LT(sampled["bottom"].get<double>() + 3000, plain["bottom"].get<double>());
    EXPECT_EQ(sampled["top"], plain["top"]);
    const auto middle = OnlyPoint(
        RunZelto({"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:32650"}, "117 60\n")
            .output);
    EXPECT_NEAR(sampled["bottom"].get<double>(), middle.second, 1e-3);
}

TEST(ReprojectBox, PrintsABoxThatCanBeGivenAgain) {
    const auto run = RunZelto({"reproject", "box", "--from", "EPSG:32650", "--to", "EPSG:32650",
                               "--box", "500000,200,500100,100"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(std::count(run.output.begin(), run.output.end(), ','), 3);
    EXPECT_EQ(run.output.back(), '\n');
}

TEST(ReprojectBox, WithoutAPlaceFails) {
    const auto status = [](const char* box, const char* to) {
        return RunZelto({"reproject", "box", "--from", "EPSG:4326", "--to", to, "--box", box})
            .exitStatus;
    };
    EXPECT_EQ(status("114,60,120,61", "EPSG:32650"), 1);
    EXPECT_EQ(status("170,1,-170,0", "EPSG:3395"), 1);
    EXPECT_EQ(status("0,100,10,80", "EPSG:3395"), 1);
    EXPECT_EQ(status("0,10,10", "EPSG:3395"), 2);
    EXPECT_EQ(status("0,10,10,0", "junk"), 1);
}

TEST(ReprojectWindow, IsThePixelsWidenedByFive) {
    const zelto::test::TemporaryFolder folder;
    const std::string raster = SmallRaster(folder, "EPSG:32650");
    const auto run = RunZelto({"reproject", "window", raster, "--srs", "EPSG:32650", "--box",
                               "500207,4399691,500402,4399499", "--json"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    const Json window = Json::parse(run.output);
    EXPECT_EQ(window["column"], 15);
    EXPECT_EQ(window["row"], 25);
    EXPECT_EQ(window["width"], 30);
    EXPECT_EQ(window["height"], 30);
}

TEST(ReprojectWindow, NamesThePixelsOfSouthUpAndRotatedImages) {
    struct Lay {
        std::array<double, 6> geoTransform;
        int column;
        int row;
        int width;
        int height;
    };
    const Lay lays[] = {
        // Rows count from the south: the box is in columns 20 to 40, rows 29 to 49.
        {{500000, 10, 0, 4399200, 0, 10}, 15, 24, 30, 30},
        // Columns run to the south and rows to the east: columns 30 to 50, rows 20 to 40.
        {{500000, 0, 10, 4400000, -10, 0}, 25, 15, 30, 30},
        // Columns run to the north-east and rows to the south-east, each 10 m east and as much
        // north or south of the origin: column = (east + north) / 20, row = (east - north) / 20.
        // The box is 207 to 402 m east and 299 to 491 m north of it: columns 25.3 to 44.65, rows
        // -14.2 to 5.15.
        {{500000, 10, 10, 4399200, 10, -10}, 20, 0, 29, 10},
    };
    for (const Lay& lay : lays) {
        const zelto::test::TemporaryFolder folder;
        zelto::test::RasterSpec spec = {.width = 100, .height = 80, .srs = "EPSG:32650"};
        spec.geoTransform = lay.geoTransform;
        const std::string raster = zelto::test::WriteRaster(folder.File("lies.tif"), spec,
                                                            {zelto::test::Pixels(8000, 1.0)});
        const auto run = RunZelto({"reproject", "window", raster, "--srs", "EPSG:32650", "--box",
                                   "500207,4399691,500402,4399499", "--json"});
        ASSERT_EQ(run.exitStatus, 0) << run.errors;
        EXPECT_EQ(Json::parse(run.output), Json({{"column", lay.column},
                                                 {"row", lay.row},
                                                 {"width", lay.width},
                                                 {"height", lay.height}}));
    }
}

TEST(ReprojectWindow, BesideTheImageOrWithoutASystemFails) {
    const zelto::test::TemporaryFolder folder;
    const std::string raster = SmallRaster(folder, "EPSG:32650");
    const auto beside = RunZelto({"reproject", "window", raster, "--srs", "EPSG:32650", "--box",
                                  "600000,4399691,600402,4399499"});
    EXPECT_EQ(beside.exitStatus, 1);
    EXPECT_EQ(beside.errors,
              "zelto: " + raster + ": the box lies beside it or has no place in its system\n");
    const zelto::test::TemporaryFolder other;
    const std::string nowhere = SmallRaster(other, "");
    const auto unknown =
        RunZelto({"reproject", "window", nowhere, "--srs", "EPSG:32650", "--box", "0,1,1,0"});
    EXPECT_EQ(unknown.errors, "zelto: " + nowhere + ": has no spatial reference\n");
    EXPECT_EQ(
        RunZelto({"reproject", "window", "/no/file", "--srs", "EPSG:32650", "--box", "0,1,1,0"})
            .errors,
        "zelto: /no/file: No such file or directory\n");
}

TEST(ReprojectGrid, ResidualsShrinkWithTheOrder) {
    double former = 1.0;
    for (const char* order : {"1", "2", "3"}) {
        const auto run = RunZelto({"reproject", "grid", zelto::test::SampleScene(), "--srs",
                                   "EPSG:4326", "--order", order, "--json"});
        ASSERT_EQ(run.exitStatus, 0) << run.errors;
        const Json grid = Json::parse(run.output);
        const double largest = grid["largest"][0].get<double>();
        EXPECT_LT(largest, former);
        former = largest / 10;
        EXPECT_EQ(grid["points"], (Json{20, 20}));
        EXPECT_EQ(grid["column"].size(), grid["row"].size());
    }
}

TEST(ReprojectGrid, OfOrderZeroInterpolates) {
    const auto run = RunZelto({"reproject", "grid", zelto::test::SampleScene(), "--srs",
                               "EPSG:4326", "--order", "0", "--json"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    const Json grid = Json::parse(run.output);
    EXPECT_LT(grid["largest"][0].get<double>(), 1e-3);
    EXPECT_FALSE(grid.contains("column"));
}

TEST(ReprojectGrid, PrintsResidualsAndCoefficients) {
    const auto run = RunZelto({"reproject", "grid", zelto::test::SampleScene(), "--srs",
                               "EPSG:4326", "--order", "1", "--points", "5"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output.substr(0, 17), "residual (pixels)");
    EXPECT_NE(run.output.find("\nterm"), std::string::npos);
    EXPECT_NE(run.output.find("\nv "), std::string::npos);
}

TEST(ReprojectGrid, RefusesOrdersAndCountsThatFitNothing) {
    const auto status = [](const char* option, const char* value) {
        return RunZelto({"reproject", "grid", zelto::test::SampleScene(), "--srs", "EPSG:4326",
                         option, value})
            .exitStatus;
    };
    EXPECT_EQ(status("--order", "4"), 2);
    EXPECT_EQ(status("--points", "3"), 2);
    EXPECT_EQ(status("--box", "10,0,0,10"), 2);
    EXPECT_EQ(status("--box", "0,95,10,85"), 1);
}
