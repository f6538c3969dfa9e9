#include "tests/cli/JsonSchema.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

using namespace zelto::test;
using Json = nlohmann::json;

namespace {

struct SchemaCase {
    std::string schema;
    std::vector<std::string> words; ///< "SCENE" and names of the folder's files among them
};

/// A folder with a file of every kind.
class Schemas : public testing::TestWithParam<SchemaCase> {
  protected:
    Schemas() {
        RasterSpec spec = {.width = 4, .height = 4, .type = GDT_Float32};
        spec.geoTransform = NorthUp(500000, 40, 10);
        spec.srs = "EPSG:32650";
        spec.noData = NAN;
        WriteRaster(m_folder.File("a.tif"), spec, {Pixels(16, 1.5), Pixels(16, 2.5)});
        WriteRaster(m_folder.File("d.tif"), spec, {Pixels(16, 3.5)});
        WriteFile(m_folder.File("z.geojson"),
                  R"({"type":"FeatureCollection","crs":{"type":"name","properties":{"name":
                  "urn:ogc:def:crs:EPSG::32650"}},"features":[{"type":"Feature","properties":
                  {"name":"A"},"geometry":{"type":"Polygon","coordinates":
                  [[[500000,0],[500030,0],[500000,30],[500000,0]]]}}]})");
        WriteRaster(m_folder.File("b.tif"), {.width = 4, .height = 4, .overviews = {2}},
                    {Pixels(16, 1.0)});
        Run({"georef", m_folder.File("b.tif"), "--gcp", "0,0,117,1", "--gcp", "4,0,118,1", "--gcp",
             "0,4,117,0", "--srs", "EPSG:4326"});
        Run({"aoi", "new", m_folder.File("a.aif"), "--rect", "500000,40,500020,20", "--polygon",
             "500000,0,500030,0,500000,30", "--srs", "EPSG:32650"});
        Run({"aoi", "new", m_folder.File("n.aif"), "--ellipse", "0,1,1,0"});
        WriteFile(m_folder.File("c.csv"), "1,2,3,4,name\n");
        Run({"classes", "write", m_folder.File("c.csv"), m_folder.File("a.acf")});
        Run({"samples", "collect", m_folder.File("a.tif"), "--aoi", m_folder.File("a.aif"), "-o",
             m_folder.File("a.smp")});
        WriteFile(m_folder.File("s.csv"), "1,name,2,3\n");
        WriteVector(m_folder.File("a.shp"), {.type = wkbPoint, .srs = "EPSG:4326"},
                    {"POINT (1 1)"});
    }

    static void Run(const std::vector<std::string>& words) {
        const auto run = RunZelto(words);
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
    }

    TemporaryFolder m_folder;
};

} // namespace

TEST_P(Schemas, AreWhatTheCommandsPrint) {
    std::vector<std::string> words;
    for (const std::string& word : GetParam().words)
        words.push_back(word == "SCENE" ? SampleScene()
                        : word.find('.') == 1 && word.find(',') == std::string::npos
                            ? m_folder.File(word)
                            : word);
    words.emplace_back("--json");
    const auto run = RunZelto(words, "117 1\n");
    ASSERT_EQ(run.errors, "");
    EXPECT_EQ(Mismatch(Json::parse(run.output), GetParam().schema), "") << run.output;
}

INSTANTIATE_TEST_SUITE_P(
    AllCommands, Schemas,
    testing::Values(
        SchemaCase{"info", {"info", "SCENE", "--stats", "--sample"}},
        SchemaCase{"info", {"info", "a.tif", "b.tif", "--stats"}},
        SchemaCase{"info", {"info", "b.tif"}}, SchemaCase{"aoi-info", {"aoi", "info", "a.aif"}},
        SchemaCase{"aoi-info", {"aoi", "info", "n.aif"}},
        SchemaCase{"aoi-hit", {"aoi", "hit", "a.aif", "500001,39"}},
        SchemaCase{"aoi-mask", {"aoi", "mask", "a.aif", "a.tif", "m.tif"}},
        SchemaCase{"classes-show", {"classes", "show", "a.acf"}},
        SchemaCase{"histogram", {"histogram", "SCENE", "--buckets", "8"}},
        SchemaCase{"pyramids", {"pyramids", "check", "SCENE", "b.tif"}},
        SchemaCase{"reproject-points",
                   {"reproject", "points", "--from", "EPSG:4326", "--to", "EPSG:32650"}},
        SchemaCase{"reproject-box",
                   {"reproject", "box", "--from", "EPSG:4326", "--to", "EPSG:32650", "--box",
                    "117,1,118,0"}},
        SchemaCase{"reproject-window",
                   {"reproject", "window", "SCENE", "--srs", "EPSG:4326", "--box",
                    "-34.88,-7.98,-34.85,-8.02"}},
        SchemaCase{"reproject-grid", {"reproject", "grid", "SCENE", "--srs", "EPSG:4326"}},
        SchemaCase{"reproject-grid",
                   {"reproject", "grid", "SCENE", "--srs", "EPSG:4326", "--order", "0"}},
        SchemaCase{"samples-collect", {"samples", "collect", "a.tif", "--aoi", "a.aif"}},
        SchemaCase{"samples-collect", {"samples", "import", "s.csv", "i.smp"}},
        SchemaCase{"samples-show", {"samples", "show", "a.smp"}},
        SchemaCase{"srs-info", {"srs", "info", "EPSG:32650"}},
        SchemaCase{"srs-info", {"srs", "info", "EPSG:4978"}},
        SchemaCase{"srs-compare", {"srs", "compare", "EPSG:4326", "EPSG:32650"}},
        SchemaCase{"srs-gk", {"srs", "gk", "EPSG:4490", "--zone", "39", "--width", "3"}},
        SchemaCase{"stats", {"stats", "SCENE", "--covariance", "--percentiles", "2,98"}},
        SchemaCase{"stats", {"stats", "a.tif", "--aoi", "a.aif", "--each"}},
        SchemaCase{"stats", {"stats", "SCENE", "b.tif"}},
        SchemaCase{"stats", {"stats", "a.tif", "d.tif", "--aoi", "a.aif", "--each"}},
        SchemaCase{"zonal", {"zonal", "a.tif", "z.geojson"}},
        SchemaCase{"zonal",
                   {"zonal", "a.tif", "z.geojson", "--weights", "coverage", "--id-field", "name",
                    "--include-fields", "name", "--percentiles", "10,50"}},
        SchemaCase{"vector-info", {"vector", "info", "a.shp"}}),
    [](const testing::TestParamInfo<SchemaCase>& tested) {
        std::string name = std::to_string(tested.index) + tested.param.schema;
        name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
        return name;
    });
