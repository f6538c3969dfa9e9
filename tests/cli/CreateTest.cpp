#include "tests/cli/OpenImage.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

using zelto::test::OpenImage;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;
using Names = std::vector<std::string>;

TEST(CreateCommand, MakesARasterAsDescribed) {
    const TemporaryFolder folder;
    const auto run = RunZelto({"create", folder.File("图.tif"), "--size", "4x3", "--bands", "2",
                               "--type", "int16", "--box", "1000,2060,1080,2000", "--srs",
                               "EPSG:32650", "--no-data", "-1", "--fill", "7"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(folder.Names(), (Names{"图.tfw", "图.tif"}));
    const auto image = OpenImage(folder.File("图.tif"));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetRasterXSize(), 4);
    EXPECT_EQ(image->GetRasterYSize(), 3);
    EXPECT_EQ(image->GetRasterCount(), 2);
    EXPECT_EQ(image->GetRasterBand(1)->GetRasterDataType(), GDT_Int16);
    EXPECT_EQ(image->GetRasterBand(2)->GetNoDataValue(), -1.0);
    std::array<double, 6> geoTransform = {};
    EXPECT_EQ(image->GetGeoTransform(geoTransform.data()), CE_None);
    EXPECT_EQ(geoTransform, (std::array<double, 6>{1000.0, 20.0, 0.0, 2060.0, 0.0, -20.0}));
    EXPECT_TRUE(image->GetSpatialRef()->IsProjected());
    EXPECT_EQ(ReadBand(folder.File("图.tif"), 2), Pixels(12, 7.0));
}

TEST(CreateCommand, TakesALayoutFromAnotherFile) {
    const TemporaryFolder folder;
    zelto::test::RasterSpec spec = {.width = 5, .height = 4, .type = GDT_Float32};
    spec.geoTransform = std::array<double, 6>{10.0, 2.0, 1.0, 20.0, 1.0, -2.0};
    spec.srs = "EPSG:4326";
    zelto::test::WriteRaster(folder.File("model.tif"), spec, {Pixels(20, 1.0), Pixels(20, 2.0)});
    ASSERT_EQ(
        RunZelto({"create", folder.File("a.img"), "--like", folder.File("model.tif")}).exitStatus,
        0);
    const auto image = OpenImage(folder.File("a.img"));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetRasterXSize(), 5);
    EXPECT_EQ(image->GetRasterCount(), 2);
    EXPECT_EQ(image->GetRasterBand(1)->GetRasterDataType(), GDT_Float32);
    std::array<double, 6> geoTransform = {};
    EXPECT_EQ(image->GetGeoTransform(geoTransform.data()), CE_None);
    for (std::size_t i = 0; i < geoTransform.size(); ++i)
        EXPECT_NEAR(geoTransform[i], (*spec.geoTransform)[i], 1e-9) << "its rotation is kept";
    ASSERT_EQ(RunZelto({"create", folder.File("b.tif"), "--like", folder.File("model.tif"),
                        "--bands", "1", "--type", "Byte"})
                  .exitStatus,
              0);
    EXPECT_EQ(OpenImage(folder.File("b.tif"))->GetRasterBand(1)->GetRasterDataType(), GDT_Byte);
}

TEST(CreateCommand, EnviHeadersNameTheDataFileBesideThem) {
    const TemporaryFolder folder;
    EXPECT_EQ(RunZelto({"create", folder.File("a.hdr"), "--size", "4x3"}).exitStatus, 0);
    EXPECT_EQ(
        RunZelto({"create", folder.File("b"), "--size", "4x3", "--format", "envi"}).exitStatus, 0);
    EXPECT_EQ(folder.Names(), (Names{"a", "a.hdr", "b", "b.hdr"}));
}

TEST(CreateCommand, ReplacesAnOlderFileOnlyWithACompleteOne) {
    const TemporaryFolder folder;
    zelto::test::WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1}, {{1.0, 2.0}});
    const auto failed = RunZelto({"create", folder.File("a.tif"), "--size", "70000x70000",
                                  "--bands", "70000", "--type", "Float64", "--overwrite"});
    EXPECT_EQ(failed.exitStatus, 1);
    EXPECT_EQ(failed.errors.find("zelto: " + folder.File("a.tif") + ": "), 0U) << failed.errors;
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), (Pixels{1.0, 2.0}));
    EXPECT_EQ(folder.Names(), Names{"a.tif"});
    const auto refused = RunZelto({"create", folder.File("a.tif"), "--size", "3x1"});
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_EQ(refused.errors,
              "zelto: " + folder.File("a.tif") + ": it exists; --overwrite replaces it\n");
    EXPECT_EQ(
        RunZelto({"create", folder.File("a.tif"), "--size", "3x1", "--fill", "5", "--overwrite"})
            .exitStatus,
        0);
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), Pixels(3, 5.0));
    EXPECT_EQ(folder.Names(), Names{"a.tif"});
}

TEST(CreateCommand, CreationOptionsReachGeoTiffAlone) {
    const TemporaryFolder folder;
    EXPECT_EQ(RunZelto({"create", folder.File("a.tif"), "--size", "3x3", "--co", "COMPRESS=LZW",
                        "--co", "TFW=NO"})
                  .exitStatus,
              0);
    EXPECT_STREQ(OpenImage(folder.File("a.tif"))->GetMetadataItem("COMPRESSION", "IMAGE_STRUCTURE"),
                 "LZW");
    EXPECT_EQ(RunZelto({"create", folder.File("a.img"), "--size", "3x3", "--co", "COMPRESSED=YES"})
                  .exitStatus,
              2);
}

TEST(CreateCommand, WrongUsageEndsWithTwo) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.tif");
    const std::vector<std::vector<std::string>> lines = {
        {"create"},
        {"create", path},
        {"create", path, "--size", "3"},
        {"create", path, "--size", "3.5,4"},
        {"create", path, "--size", "0x4"},
        {"create", path, "--size", "1e300,4"},
        {"create", path, "--size", "3x4", "--type", "Bit"},
        {"create", path, "--size", "3x4", "--bands", "0"},
        {"create", path, "--size", "3x4", "--format", "Painting"},
        {"create", path, "--size", "3x4", "--box", "1,2,3"},
        {"create", path, "--size", "3x4", "--box", "3,2,1,0"},
        {"create", path, "--size", "3x4", "--box", "0,inf,1,0"},
        {"create", path, "--size", "3x4", "--co", "COMPRESS"},
        {"create", folder.File("a.unknown"), "--size", "3x4"},
    };
    for (const auto& line : lines)
        EXPECT_EQ(RunZelto(line).exitStatus, 2) << testing::PrintToString(line);
    EXPECT_TRUE(folder.Names().empty());
}

TEST(CreateCommand, ImpossibleWorkEndsWithOneAndOneLine) {
    const TemporaryFolder folder;
    const std::vector<std::vector<std::string>> lines = {
        {"create", folder.File("a.png"), "--size", "3x4"},
        {"create", folder.File("a.jp2"), "--size", "3x4"},
        {"create", folder.File("missing/a.tif"), "--size", "3x4"},
        {"create", folder.File("a.tif"), "--size", "3x4", "--srs", "no reference at all"},
        {"create", folder.File("a.tif"), "--like", folder.File("missing.tif")},
    };
    for (const auto& line : lines) {
        const auto run = RunZelto(line);
        EXPECT_EQ(run.exitStatus, 1) << testing::PrintToString(line);
        EXPECT_EQ(run.errors.find("zelto: "), 0U) << run.errors;
        EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
    }
    EXPECT_TRUE(folder.Names().empty());
}
