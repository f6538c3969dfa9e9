#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

using Json = nlohmann::json;
using zelto::test::Pixels;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;

namespace {

std::string WriteSquare(const TemporaryFolder& folder, const std::string& name, int side) {
    return zelto::test::WriteRaster(folder.File(name), {.width = side, .height = side},
                                    {Pixels(static_cast<std::size_t>(side) * side, 7.0)});
}

} // namespace

TEST(PyramidsCommand, ChecksBuildsAndChecksAgain) {
    const TemporaryFolder folder;
    const std::string large = WriteSquare(folder, "large.tif", 300);
    const std::string small = WriteSquare(folder, "small.tif", 100);
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

TEST(PyramidsCommand, RebuildsTheLevelsInsideACompressedFileWithItsPixels) {
    const TemporaryFolder folder;
    const std::string scene = folder.File("scene.tif");
    std::filesystem::copy_file(zelto::test::SampleScene(), scene);
    const auto run = RunZelto({"pyramids", "build", scene});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    GDALAllRegister();
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(scene.c_str(), GDAL_OF_RASTER));
    GDALRasterBand* const level = dataset->GetRasterBand(1)->GetOverview(0);
    ASSERT_NE(level, nullptr);
    double sample = 0.0;
    ASSERT_EQ(level->RasterIO(GF_Read, 80, 80, 1, 1, &sample, 1, 1, GDT_Float64, 0, 0, nullptr),
              CE_None);
    EXPECT_GE(sample, 47.0) << "the least value of the band";
}

TEST(PyramidsCommand, PrintsJson) {
    const TemporaryFolder folder;
    const std::string large = WriteSquare(folder, "大.tif", 300);
    ASSERT_EQ(RunZelto({"pyramids", "build", large}).exitStatus, 0);
    const auto run = RunZelto({"pyramids", "check", "--json", large});
    const Json result = Json::parse(run.output);
    ASSERT_EQ(result.size(), 1U);
    EXPECT_EQ(result[0]["path"], large);
    EXPECT_EQ(result[0]["valid"], true);
    EXPECT_EQ(result[0]["levels"], (Json{"150x150", "75x75", "38x38"}));
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
    const std::string path = WriteSquare(folder, "a.tif", 300);
    auto run = RunZelto({"pyramids", "build", path, "--resampling", "no such method"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(
        run.errors.rfind("zelto: pyramids build: --resampling: no such method not in {NEAREST,", 0),
        0U)
        << run.errors;
    run = RunZelto({"pyramids", "build", folder.File("missing.tif")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + folder.File("missing.tif") + ": No such file or directory\n");
    EXPECT_EQ(RunZelto({"pyramids", "build", path, "--bands", "2"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"pyramids"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"pyramids", "build"}).exitStatus, 2);
}

TEST(PyramidsCommand, WrongArgumentsLeaveThePyramid) {
    const TemporaryFolder folder;
    for (const char* name : {"a.tif", "a.pix", "a.img"}) {
        SCOPED_TRACE(name);
        const bool isPcidsk = name == std::string("a.pix");
        const std::string path = folder.File(name);
        ASSERT_EQ(RunZelto({"create", path, "--size", "600x600"}).exitStatus, 0);
        ASSERT_EQ(RunZelto({"pyramids", "build", path}).exitStatus, 0);
        const auto before = RunZelto({"pyramids", "check", "--json", path});
        EXPECT_EQ(Json::parse(before.output)[0]["levels"].size(), isPcidsk ? 2U : 4U);
        EXPECT_EQ(RunZelto({"pyramids", "build", path, "--resampling", "FOO"}).exitStatus, 2);
        EXPECT_EQ(RunZelto({"pyramids", "build", path, "--bands", "9"}).exitStatus, 2);
        EXPECT_EQ(RunZelto({"pyramids", "check", "--json", path}).output, before.output);
    }
}

TEST(PyramidsCommand, LevelsInsideAreRebuiltWithoutTakingThePyramidOfAnother) {
    const TemporaryFolder folder;
    const std::string inside = folder.File("a.tif");
    zelto::test::WriteRaster(inside,
                             {.width = 300, .height = 300, .type = GDT_Byte, .overviews = {2, 4}},
                             {Pixels(90000, 1.0)});
    zelto::test::WriteRaster(folder.File("a.dat"), {.width = 300, .height = 300, .driver = "ENVI"},
                             {Pixels(90000, 2.0)});
    ASSERT_EQ(RunZelto({"pyramids", "build", folder.File("a.dat")}).exitStatus, 0);
    const std::string levels = zelto::test::ReadFile(folder.File("a.rrd"));
    ASSERT_FALSE(levels.empty());
    const auto run = RunZelto({"pyramids", "build", inside});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(zelto::test::ReadFile(folder.File("a.rrd")), levels);
    for (const char* name : {"a.tif", "a.dat"}) {
        const auto check = RunZelto({"pyramids", "check", "--json", folder.File(name)});
        EXPECT_FALSE(Json::parse(check.output)[0]["levels"].empty()) << name;
    }
}

TEST(PyramidsCommand, ImagesOfOneStemKeepTheirPyramids) {
    const TemporaryFolder folder;
    std::vector<std::string> paths;
    const std::pair<const char*, const char*> images[] = {
        {"s.img", "50"}, {"s.tif", "120"}, {"s.pix", "200"}};
    for (const auto& [name, value] : images) {
        paths.push_back(folder.File(name));
        ASSERT_EQ(
            RunZelto({"create", paths.back(), "--size", "600x600", "--fill", value}).exitStatus, 0);
    }
    for (const int turn : {0, 1, 2, 1, 0}) {
        const auto run = RunZelto({"pyramids", "build", paths[turn]});
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        EXPECT_EQ(run.errors, "");
    }
    GDALAllRegister();
    for (int i = 0; i < 3; ++i) {
        const GDALDatasetUniquePtr image(GDALDataset::Open(paths[i].c_str(), GDAL_OF_RASTER));
        double value = 0.0;
        ASSERT_EQ(image->GetRasterBand(1)->RasterIO(GF_Read, 0, 0, 600, 600, &value, 1, 1,
                                                    GDT_Float64, 0, 0, nullptr),
                  CE_None);
        EXPECT_EQ(value, std::stod(images[i].second)) << paths[i];
        EXPECT_GT(image->GetRasterBand(1)->GetOverviewCount(), 0) << paths[i];
    }
}

TEST(PyramidsCommand, AnImagineFileWhosePyramidAnotherImageTookIsToldOf) {
    const TemporaryFolder folder;
    const std::string imagine = folder.File("s.img");
    const std::string geotiff = folder.File("s.tif");
    for (const std::string& path : {imagine, geotiff})
        ASSERT_EQ(RunZelto({"create", path, "--size", "300x300"}).exitStatus, 0);
    {
        // As GDAL itself does with these settings.
        GDALAllRegister();
        const CPLConfigOptionSetter reduced("USE_RRD", "YES", false);
        const CPLConfigOptionSetter reducedImagine("HFA_USE_RRD", "YES", false);
        int level = 2;
        for (const std::string& path : {imagine, geotiff}) {
            const GDALDatasetUniquePtr image(
                GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
            ASSERT_EQ(image->BuildOverviews("NEAREST", 1, &level, 0, nullptr, nullptr, nullptr),
                      CE_None);
        }
    }
    auto run = RunZelto({"render", imagine, folder.File("out.png")});
    EXPECT_EQ(run.errors, "zelto: warning: " + imagine +
                              ": its pyramid is in a file that another image claims; build it "
                              "anew\n");
    EXPECT_EQ(RunZelto({"pyramids", "build", imagine}).exitStatus, 0);
    EXPECT_EQ(RunZelto({"pyramids", "build", geotiff}).exitStatus, 0);
    for (const std::string& path : {imagine, geotiff})
        EXPECT_EQ(RunZelto({"pyramids", "check", path}).errors, "") << path;
}
