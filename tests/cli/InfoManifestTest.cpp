#include "tests/cli/RunZelto.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>

using Json = nlohmann::json;
using zelto::test::RunZelto;
using zelto::test::TestDataFile;

namespace {

/// Runs in the data's folder, which some virtual rasters' sources are relative to.
class InfoOfTestData : public testing::Test {
  protected:
    void SetUp() override {
        ZELTO_REQUIRE_TEST_DATA();
        m_before = std::filesystem::current_path();
        std::filesystem::current_path(TestDataFile(""));
        std::ifstream stream("manifest.json");
        const Json manifest = Json::parse(stream);
        for (const Json& file : manifest["files"]) {
            if (file["path"].get<std::string>().rfind("raster/", 0) == 0 && file.contains("gdal") &&
                !file["gdal"].is_null())
                m_files.push_back(file);
        }
        EXPECT_GT(m_files.size(), 200U);
    }
    void TearDown() override {
        if (!m_before.empty())
            std::filesystem::current_path(m_before);
    }

    std::vector<std::string> Paths(bool (*wanted)(const Json&)) const {
        std::vector<std::string> paths;
        for (const Json& file : m_files)
            if (wanted(file["gdal"]))
                paths.push_back(file["path"]);
        return paths;
    }
    const Json& Facts(const std::string& path) const {
        for (const Json& file : m_files)
            if (file["path"] == path)
                return file["gdal"];
        throw std::runtime_error("not in the manifest: " + path);
    }

    std::filesystem::path m_before;
    std::vector<Json> m_files;
};

bool Opens(const Json& facts) {
    return facts["open"] == "ok";
}
bool FailsToOpen(const Json& facts) {
    return facts["open"] == "fail";
}
bool HasReadablePixels(const Json& facts) {
    return Opens(facts) && facts["pixels_readable"] != false && facts["width"] < 10000;
}
bool HasUnreadablePixels(const Json& facts) {
    return Opens(facts) && facts["pixels_readable"] == false;
}

double Number(const Json& value) {
    return value.is_string() ? std::stod(value.get<std::string>()) : value.get<double>();
}

void ExpectNumber(const Json& found, const Json& expected, double tolerance, const char* what) {
    ASSERT_EQ(found.is_null(), expected.is_null()) << what;
    if (found.is_null())
        return;
    const double a = Number(found);
    const double b = Number(expected);
    if (std::isfinite(b))
        EXPECT_NEAR(a, b, tolerance * std::max(1.0, std::fabs(b))) << what;
    else
        EXPECT_TRUE(a == b || (std::isnan(a) && std::isnan(b))) << what << " " << a << " " << b;
}

void ExpectBand(const Json& found, const Json& expected) {
    EXPECT_EQ(found["band"], expected["band"]);
    EXPECT_EQ(found["dataType"], expected["type"]);
    EXPECT_EQ(found["blockSize"], expected["block"]);
    ExpectNumber(found["noData"], expected["nodata"], 0.0, "no-data");
    EXPECT_EQ(found["overviews"], expected.value("overviews", Json::array()));
    EXPECT_EQ(found["colorTable"], expected.contains("color_table_entries"));
}

/// Files without a geotransform map pixels to themselves, counted upwards from the bottom.
Json GeoTransform(const Json& facts) {
    if (!facts["geotransform"].is_null())
        return facts["geotransform"];
    return {0.0, 1.0, 0.0, facts["height"], 0.0, -1.0};
}

void ExpectFile(const Json& found, const Json& expected) {
    EXPECT_EQ(found["format"], expected["driver"]);
    EXPECT_EQ(found["width"], expected["width"]);
    EXPECT_EQ(found["height"], expected["height"]);
    EXPECT_EQ(found["controlPoints"].size(), expected["gcp_count"].get<std::size_t>());
    EXPECT_EQ(found["subdatasets"].size(), expected.value("subdatasets", Json::array()).size());
    const Json geoTransform = GeoTransform(expected);
    for (std::size_t i = 0; i < 6; ++i)
        ExpectNumber(found["geotransform"][i], geoTransform[i], 1e-12, "geotransform");
    ASSERT_EQ(found["bands"].size(), expected["band_info"].size());
    EXPECT_EQ(found["bandCount"], expected["bands"]);
    for (std::size_t i = 0; i < found["bands"].size(); ++i)
        ExpectBand(found["bands"][i], expected["band_info"][i]);
}

/// Against figures computed from the pixels by other means.
void ExpectStatistics(const Json& found, const Json& exact) {
    if (exact.contains("skipped"))
        return;
    if (!exact.contains("min")) {
        EXPECT_TRUE(found["minimum"].is_null());
        return;
    }
    ExpectNumber(found["minimum"], exact["min"], 1e-7, "minimum");
    ExpectNumber(found["maximum"], exact["max"], 1e-7, "maximum");
    ExpectNumber(found["mean"], exact["mean"], 1e-7, "mean");
    ExpectNumber(found["standardDeviation"], exact["stddev"], 1e-6, "deviation");
}

Json DescribeAll(std::vector<std::string> paths, const char* option) {
    paths.insert(paths.begin(), {"info", "--json", option});
    const auto run = RunZelto(paths);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return Json::parse(run.output);
}

void ExpectCleanFailure(const zelto::test::RunResult& run, const std::string& path) {
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
    EXPECT_EQ(run.errors.rfind("zelto: " + path + ": ", 0), 0U) << run.errors;
}

} // namespace

TEST_F(InfoOfTestData, EveryRasterIsDescribedAsItIs) {
    const auto paths = Paths(Opens);
    const Json found = DescribeAll(paths, "--json");
    ASSERT_EQ(found.size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        SCOPED_TRACE(paths[i]);
        ExpectFile(found[i], Facts(paths[i]));
    }
}

TEST_F(InfoOfTestData, StatisticsAreThoseOfThePixels) {
    const auto paths = Paths(HasReadablePixels);
    const Json found = DescribeAll(paths, "--stats");
    ASSERT_EQ(found.size(), paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        SCOPED_TRACE(paths[i]);
        const Json& bands = Facts(paths[i])["band_info"];
        for (std::size_t b = 0; b < bands.size(); ++b)
            ExpectStatistics(found[i]["bands"][b], bands[b]["exact"]);
    }
}

TEST_F(InfoOfTestData, DamagedFilesFailWithOneLine) {
    const auto paths = Paths(FailsToOpen);
    EXPECT_GT(paths.size(), 20U);
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        ExpectCleanFailure(RunZelto({"info", path}), path);
    }
}

TEST_F(InfoOfTestData, StatisticsOfUnreadablePixelsFailWithOneLine) {
    const auto paths = Paths(HasUnreadablePixels);
    EXPECT_GT(paths.size(), 5U);
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        ExpectCleanFailure(RunZelto({"info", "--stats", path}), path);
    }
    ExpectCleanFailure(RunZelto({"info", "--stats", "raster/corrupt/huge_dims.tif"}),
                       "raster/corrupt/huge_dims.tif");
}
