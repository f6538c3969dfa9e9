#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

using namespace zelto::test;
using Json = nlohmann::json;

namespace {

/// 10 × 10 pixels of one ground unit, values 10 × column + row, and a second band of their
/// negatives.
class StatsCommand : public testing::Test {
  protected:
    StatsCommand() {
        RasterSpec spec;
        spec.width = spec.height = 10;
        spec.type = GDT_Int16;
        spec.geoTransform = NorthUp(0, 10, 1);
        spec.srs = "EPSG:32650";
        m_image = WriteRaster(m_folder.File("image.tif"), spec,
                              {MakePixels(10, 10, [](int c, int r) { return 10.0 * c + r; }),
                               MakePixels(10, 10, [](int c, int r) { return -(10.0 * c + r); })});
    }

    Json RunJson(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "stats");
        arguments.emplace_back("--json");
        const RunResult run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        return Json::parse(run.output);
    }

    TemporaryFolder m_folder;
    std::string m_image;
};

} // namespace

TEST_F(StatsCommand, OfTheWholeImageTellsThePlainTruth) {
    const Json json = RunJson({m_image});
    EXPECT_EQ(json["count"], 100);
    EXPECT_EQ(json["bands"][0], (Json{{"band", 1},
                                      {"count", 100},
                                      {"minimum", 0.0},
                                      {"maximum", 99.0},
                                      {"mean", 49.5},
                                      {"standardDeviation", std::sqrt(825.0 + 8.25)}}));
    // Of negative values the maximum is one of them.
    EXPECT_EQ(json["bands"][1]["maximum"], 0.0);
    EXPECT_EQ(json["bands"][1]["minimum"], -99.0);
    EXPECT_FALSE(json.contains("covariance"));
    EXPECT_FALSE(json.contains("sampled"));
}

TEST_F(StatsCommand, ABoxAShapeAndAnAreaGiveTheSameNumbers) {
    const std::string area = m_folder.File("area.aif");
    ASSERT_EQ(RunZelto({"aoi", "new", "--rect", "2,7,5,3", area}).exitStatus, 0);
    const Json box = RunJson({m_image, "--box", "2,7,5,3"});
    EXPECT_EQ(box["count"], 12);
    EXPECT_EQ(box["bands"][0]["mean"], 34.5);
    EXPECT_EQ(RunJson({m_image, "--aoi", area}), box);
    EXPECT_EQ(RunJson({m_image, "--shape", "polygon 2,3 2,7 5,7 5,3"}), box);
    EXPECT_EQ(RunJson({m_image, "--shape", "rectangle 2 7 5 3"}), box);
    EXPECT_EQ(RunJson({m_image, "--shape", "ellipse 2,7,5,3"})["count"], 8);
}

TEST_F(StatsCommand, RegionsAreClippedToTheImage) {
    EXPECT_EQ(RunJson({m_image, "--box", "-50,90,1,9"})["bands"][0]["count"], 1);
}

TEST_F(StatsCommand, ARegionOffTheImageCountsNothingAndSaysSo) {
    const RunResult run = RunZelto({"stats", m_image, "--box", "50,90,60,80", "--json"});
    EXPECT_EQ(run.exitStatus, 0);
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json["count"], 0);
    EXPECT_EQ(json["bands"][0]["mean"], "NaN");
    EXPECT_EQ(run.errors, "zelto: " + m_image + ": no values in the region\n");
}

TEST_F(StatsCommand, CovarianceAndCorrelationAreRows) {
    const Json json = RunJson({m_image, "--covariance"});
    EXPECT_EQ(json["covarianceCount"], 100);
    EXPECT_DOUBLE_EQ(json["covariance"][0][0], 833.25);
    EXPECT_DOUBLE_EQ(json["covariance"][1][0], -833.25);
    EXPECT_DOUBLE_EQ(json["correlation"][0][1], -1);
    EXPECT_DOUBLE_EQ(json["correlation"][1][1], 1);
    const RunResult table = RunZelto({"stats", m_image, "--covariance"});
    EXPECT_NE(table.output.find("covariance"), std::string::npos);
    EXPECT_NE(table.output.find("-833.25"), std::string::npos);
}

TEST_F(StatsCommand, PercentilesAreInterpolated) {
    const Json json = RunJson({m_image, "--percentiles", "2,98", "--bands", "1"});
    EXPECT_DOUBLE_EQ(json["bands"][0]["lowPercentile"], 1.98);
    EXPECT_DOUBLE_EQ(json["bands"][0]["highPercentile"], 97.02);
}

TEST_F(StatsCommand, BandsAreNumberedFromOneInTheOrderWanted) {
    const Json json = RunJson({m_image, "--bands", "2,1"});
    EXPECT_EQ(json["bands"][0]["band"], 2);
    EXPECT_EQ(json["bands"][1]["band"], 1);
    EXPECT_EQ(RunZelto({"stats", m_image, "--bands", "3"}).exitStatus, 2);
}

TEST_F(StatsCommand, EachShapeOfAnAreaHasItsOwnRows) {
    const std::string area = m_folder.File("area.aif");
    ASSERT_EQ(
        RunZelto({"aoi", "new", "--rect", "0,10,1,9", "--ellipse", "2,7,5,3", area}).exitStatus, 0);
    const Json json = RunJson({m_image, "--aoi", area, "--each"});
    ASSERT_EQ(json["shapes"].size(), 2U);
    EXPECT_EQ(json["shapes"][0]["shape"], "1 rectangle");
    EXPECT_EQ(json["shapes"][0]["count"], 1);
    EXPECT_EQ(json["shapes"][1]["shape"], "2 ellipse");
    EXPECT_EQ(json["shapes"][1]["count"], 8);
    const RunResult csv =
        RunZelto({"stats", m_image, "--aoi", area, "--each", "--csv", "--bands", "1"});
    EXPECT_EQ(csv.output.substr(0, csv.output.find("\n2")),
              "shape,band,count,minimum,maximum,mean,standardDeviation\n"
              "1 rectangle,1,1,0,0,0,0");
    EXPECT_EQ(RunZelto({"stats", m_image, "--each"}).exitStatus, 2);
}

TEST_F(StatsCommand, CsvHasTheCovariancesInColumns) {
    const RunResult run =
        RunZelto({"stats", m_image, "--csv", "--covariance", "--box", "0,10,2,9"});
    EXPECT_EQ(run.output,
              "band,count,minimum,maximum,mean,standardDeviation,covariance1,covariance2\n"
              "1,2,0,10,5,5,25,-25\n"
              "2,2,-10,0,-5,5,-25,25\n");
}

TEST_F(StatsCommand, AnAreaInAnotherReferenceSystemIsTransformed) {
    RasterSpec spec;
    spec.width = spec.height = 100;
    spec.geoTransform = NorthUp(500000, 4430000, 10);
    spec.srs = "EPSG:32650";
    const std::string image = WriteRaster(m_folder.File("utm.tif"), spec, {Pixels(10000, 5.0)});
    const std::string area = m_folder.File("degrees.geojson");
    // About 500,170 … 500,427 east and 4,429,550 … 4,429,772 north.
    WriteFile(area, R"({"type":"Polygon","coordinates":[[[117.002,40.016],[117.005,40.016],)"
                    R"([117.005,40.018],[117.002,40.018],[117.002,40.016]]]})");
    const Json json = RunJson({image, "--aoi", area});
    EXPECT_NEAR(json["count"].get<double>(), 25.6 * 22.2, 30);
}

TEST_F(StatsCommand, WrongOptionsAreWrongUsage) {
    const std::vector<std::vector<std::string>> wrong = {
        {"--box", "1,2,3"},
        {"--box", "5,1,2,4"},
        {"--box", "0,9,9,0", "--shape", "rectangle 0,9,9,0"},
        {"--shape", "star 1,2,3,4"},
        {"--shape", "polygon 1,2,3,4"},
        {"--shape", "polygon 1,2,3,4,5"},
        {"--shape", ""},
        {"--percentiles", "98,2"},
        {"--percentiles", "2"},
        {"--percentiles", "nan,5"},
        {"--json", "--csv"},
    };
    for (auto arguments : wrong) {
        SCOPED_TRACE(arguments.front() + " " + arguments.back());
        arguments.insert(arguments.begin(), {"stats", m_image});
        const RunResult run = RunZelto(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_NE(run.errors, "");
    }
}

TEST_F(StatsCommand, FilesThatCannotBeReadAreNamed) {
    RunResult run = RunZelto({"stats", m_folder.File("none.tif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + m_folder.File("none.tif") + ": No such file or directory\n");
    run = RunZelto({"stats", m_image, "--aoi", m_folder.File("none.aif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_NE(run.errors.find("none.aif"), std::string::npos);
}

TEST_F(StatsCommand, RealImagesHaveTheKnownFigures) {
    ZELTO_REQUIRE_TEST_DATA();
    const Json manifest = Json::parse(std::ifstream(TestDataFile("manifest.json")));
    int checked = 0;
    for (const Json& file : manifest["files"]) {
        const std::string path = file["path"];
        const bool isPlain =
            path.rfind("raster/gtiff/", 0) == 0 || path.rfind("raster/src/", 0) == 0;
        if (!isPlain || !file.contains("gdal") || !file["gdal"].contains("band_info") ||
            file.value("open", "") == "fail" || checked > 40)
            continue;
        SCOPED_TRACE(path);
        const RunResult run = RunZelto({"stats", TestDataFile(path), "--json"});
        if (run.exitStatus != 0)
            continue;
        const Json json = Json::parse(run.output);
        const Json& bands = file["gdal"]["band_info"];
        for (std::size_t b = 0; b < bands.size(); ++b) {
            const Json& exact = bands[b].value("exact", Json());
            const bool known = exact.is_object() && exact.value("mean", Json()).is_number() &&
                               bands[b]["type"].get<std::string>().find('C') != 0;
            if (!known)
                continue;
            const Json& band = json["bands"][b];
            EXPECT_EQ(band["count"], exact["valid"]) << b;
            EXPECT_DOUBLE_EQ(band["minimum"], exact["min"]) << b;
            EXPECT_DOUBLE_EQ(band["maximum"], exact["max"]) << b;
            const double mean = exact["mean"], deviation = exact["stddev"];
            EXPECT_NEAR(band["mean"], mean, 1e-12 * (1 + std::fabs(mean))) << b;
            EXPECT_NEAR(band["standardDeviation"], deviation, 1e-9 * (1 + deviation)) << b;
            ++checked;
        }
    }
    EXPECT_GT(checked, 20);
}

TEST_F(StatsCommand, RealShapesHoldTheKnownNumbersOfPixels) {
    ZELTO_REQUIRE_TEST_DATA();
    const Json json = RunJson({TestDataFile("raster/src/L7_ETMs.tif"), "--bands", "1", "--each",
                               "--aoi", TestDataFile("vector/roi_over_l7.geojson")});
    // gdal_rasterize with its centre rule finds 1200 1700 3000 225 0 0 1 0 122848 1102 2802 400
    // in the twelve polygons; the holes (300; 300 and 200 pixels) are areas of their own here.
    std::vector<int> counts;
    for (const Json& shape : json["shapes"])
        counts.push_back(shape["count"]);
    EXPECT_EQ(counts, (std::vector<int>{1200, 2000, 300, 3500, 300, 200, 225, 0, 0, 1, 0, 122848,
                                        1102, 2802, 400}));
}
