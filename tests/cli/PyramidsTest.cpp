#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using nlohmann::json;
using zelto::test::Pixels;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;

namespace {

std::string WriteImage(const TemporaryFolder& folder, const std::string& name, int side) {
    return zelto::test::WriteRaster(folder.File(name), {.width = side, .height = side},
                                    {Pixels(static_cast<std::size_t>(side) * side, 7.0)});
}

} // namespace

TEST(PyramidsCommand, ChecksBuildsAndChecksAgain) {
    const TemporaryFolder folder;
    const std::string large = WriteImage(folder, "large.tif", 300);
    const std::string small = WriteImage(folder, "small.tif", 100);
    auto run = RunZelto({"pyramids", "check", small, large});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + large + ": it is large and has no pyramid\n");
    EXPECT_NE(run.output.find("missing"), std::string::npos);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"large.tif", "small.tif"}));

    run = RunZelto({"pyramids", "build", large, "--resampling", "AVERAGE"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_NE(run.output.find("150x150 75x75 38x38"), std::string::npos) << run.output;

    run = RunZelto({"pyramids", "check", small, large});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
}

TEST(PyramidsCommand, PrintsJson) {
    const TemporaryFolder folder;
    const std::string large = WriteImage(folder, "大.tif", 300);
    ASSERT_EQ(RunZelto({"pyramids", "build", large}).exitStatus, 0);
    const auto run = RunZelto({"pyramids", "check", "--json", large});
    const json result = json::parse(run.output);
    ASSERT_EQ(result.size(), 1U);
    EXPECT_EQ(result[0]["path"], large);
    EXPECT_EQ(result[0]["valid"], true);
    EXPECT_EQ(result[0]["levels"], (json{"150x150", "75x75", "38x38"}));
}

TEST(PyramidsCommand, BandsCanBeChosen) {
    const TemporaryFolder folder;
    const std::string path =
        zelto::test::WriteRaster(folder.File("a.tif"), {.width = 100, .height = 100},
                                 {Pixels(10000, 1.0), Pixels(10000, 2.0)});
    ASSERT_EQ(RunZelto({"pyramids", "build", path, "--bands", "1"}).exitStatus, 0);
    GDALAllRegister();
    const GDALDatasetUniquePtr image(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    EXPECT_EQ(image->GetRasterBand(1)->GetOverviewCount(), 1);
    EXPECT_EQ(image->GetRasterBand(2)->GetOverviewCount(), 0);
}

TEST(PyramidsCommand, FailuresNameTheFile) {
    const TemporaryFolder folder;
    const std::string path = WriteImage(folder, "a.tif", 300);
    auto run = RunZelto({"pyramids", "build", path, "--resampling", "no such method"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + path + ": "), 0U) << run.errors;
    run = RunZelto({"pyramids", "build", folder.File("missing.tif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + folder.File("missing.tif") + ": No such file or directory\n");
    EXPECT_EQ(RunZelto({"pyramids", "build", path, "--bands", "2"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"pyramids"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"pyramids", "build"}).exitStatus, 2);
}
