#include "tests/cli/OpenImage.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <thread>

using zelto::test::GeoTransformOf;
using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::OpenImage;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::RunZelto;
using zelto::test::SampleScene;
using zelto::test::TemporaryFolder;
using Names = std::vector<std::string>;

namespace {

/// 10 × 8 pixels of 100·band + 10·row + column, three bands, UInt16, no-data 0, 5 m pixels.
std::string WriteThreeBands(const TemporaryFolder& folder) {
    zelto::test::RasterSpec spec = {.width = 10, .height = 8, .type = GDT_UInt16};
    spec.geoTransform = NorthUp(1000.0, 2000.0, 5.0);
    spec.srs = "EPSG:32650";
    spec.noData = 0.0;
    std::vector<Pixels> bands;
    for (int band = 1; band <= 3; ++band)
        bands.push_back(MakePixels(
            10, 8, [=](int column, int row) { return 100.0 * band + 10.0 * row + column; }));
    return zelto::test::WriteRaster(folder.File("in.tif"), spec, bands);
}

} // namespace

TEST(CopyCommand, CopiesEverythingOfAnImage) {
    const TemporaryFolder folder;
    const std::string in = WriteThreeBands(folder);
    for (const char* name : {"a.img", "a.pix", "影.tif"}) {
        const auto run = RunZelto({"copy", in, folder.File(name)});
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        for (int band = 1; band <= 3; ++band)
            EXPECT_EQ(ReadBand(folder.File(name), band), ReadBand(in, band));
        const auto image = OpenImage(folder.File(name));
        EXPECT_EQ(image->GetRasterBand(1)->GetRasterDataType(), GDT_UInt16);
        EXPECT_EQ(image->GetRasterBand(1)->GetNoDataValue(), 0.0);
        EXPECT_TRUE(image->GetSpatialRef()->IsProjected());
        EXPECT_EQ(GeoTransformOf(folder.File(name)), NorthUp(1000.0, 2000.0, 5.0));
    }
}

TEST(CopyCommand, BandsWindowAndTypeCanBeChosen) {
    const TemporaryFolder folder;
    const std::string in = WriteThreeBands(folder);
    ASSERT_EQ(RunZelto({"copy", in, folder.File("a.tif"), "--bands", "3,1", "--window", "2,3,4,2",
                        "--type", "Float32"})
                  .exitStatus,
              0);
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), (Pixels{332, 333, 334, 335, 342, 343, 344, 345}));
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 2), (Pixels{132, 133, 134, 135, 142, 143, 144, 145}));
    EXPECT_EQ(GeoTransformOf(folder.File("a.tif")), NorthUp(1010.0, 1985.0, 5.0));
    EXPECT_EQ(OpenImage(folder.File("a.tif"))->GetRasterBand(1)->GetRasterDataType(), GDT_Float32);
}

TEST(CopyCommand, ABoxChoosesThePixelsItTouches) {
    const TemporaryFolder folder;
    const std::string in = WriteThreeBands(folder);
    ASSERT_EQ(
        RunZelto({"copy", in, folder.File("a.tif"), "--box", "1011,1984,1029,1976"}).exitStatus, 0);
    EXPECT_EQ(GeoTransformOf(folder.File("a.tif")), NorthUp(1010.0, 1985.0, 5.0));
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), (Pixels{132, 133, 134}));
}

TEST(CopyCommand, PartsBeyondTheImageAreCutOff) {
    const TemporaryFolder folder;
    const std::string in = WriteThreeBands(folder);
    ASSERT_EQ(RunZelto({"copy", in, folder.File("a.tif"), "--window", "8,6,50,50"}).exitStatus, 0);
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), (Pixels{168, 169, 178, 179}));
    const auto outside = RunZelto({"copy", in, folder.File("b.tif"), "--window", "10,0,5,5"});
    EXPECT_EQ(outside.exitStatus, 1);
    EXPECT_EQ(outside.errors, "zelto: " + in + ": the part asked for lies outside the image\n");
}

TEST(CopyCommand, NarrowTypesClampAndLeaveOutNoDataTheyCannotHold) {
    const TemporaryFolder folder;
    zelto::test::RasterSpec spec = {.width = 3, .height = 1, .type = GDT_Float32};
    spec.noData = -9999.0;
    const std::string in =
        zelto::test::WriteRaster(folder.File("in.tif"), spec, {{-9999.0, 2.5, 300.7}});
    ASSERT_EQ(RunZelto({"copy", in, folder.File("a.tif"), "--type", "Byte"}).exitStatus, 0);
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), (Pixels{0.0, 3.0, 255.0}));
    int has = 1;
    OpenImage(folder.File("a.tif"))->GetRasterBand(1)->GetNoDataValue(&has);
    EXPECT_EQ(has, 0);
}

TEST(CopyCommand, KeepsRotationsControlPointsAndColours) {
    ZELTO_REQUIRE_TEST_DATA();
    const TemporaryFolder folder;
    const std::string rotated = zelto::test::TestDataFile("raster/georef/l7_rotated17.tif");
    ASSERT_EQ(RunZelto({"copy", rotated, folder.File("a.tif")}).exitStatus, 0);
    EXPECT_EQ(GeoTransformOf(folder.File("a.tif")), GeoTransformOf(rotated));
    const std::string points = zelto::test::TestDataFile("raster/georef/l7_gcp4_affine.tif");
    ASSERT_EQ(
        RunZelto({"copy", points, folder.File("b.tif"), "--window", "10,20,30,30"}).exitStatus, 0);
    const auto from = OpenImage(points);
    const auto to = OpenImage(folder.File("b.tif"));
    ASSERT_EQ(to->GetGCPCount(), 4);
    EXPECT_EQ(to->GetGCPs()[0].dfGCPPixel, from->GetGCPs()[0].dfGCPPixel - 10);
    EXPECT_EQ(to->GetGCPs()[0].dfGCPLine, from->GetGCPs()[0].dfGCPLine - 20);
    EXPECT_EQ(to->GetGCPs()[0].dfGCPX, from->GetGCPs()[0].dfGCPX);
}

TEST(CopyCommand, AColourTableGoesAlong) {
    const TemporaryFolder folder;
    const std::string in =
        zelto::test::WriteRaster(folder.File("in.tif"), {.width = 3, .height = 1}, {{0, 1, 2}});
    {
        const GDALDatasetUniquePtr image(
            GDALDataset::Open(in.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
        GDALColorTable table;
        const GDALColorEntry orange = {255, 128, 0, 255};
        table.SetColorEntry(1, &orange);
        ASSERT_EQ(image->GetRasterBand(1)->SetColorTable(&table), CE_None);
    }
    ASSERT_EQ(RunZelto({"copy", in, folder.File("a.tif")}).exitStatus, 0);
    const auto image = OpenImage(folder.File("a.tif"));
    const GDALColorTable* table = image->GetRasterBand(1)->GetColorTable();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->GetColorEntry(1)->c2, 128);
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), (Pixels{0, 1, 2}));
}

TEST(CopyCommand, KeepsWhatTheBandsSayAndTheMask) {
    const TemporaryFolder folder;
    zelto::test::RasterSpec spec = {.width = 3, .height = 2, .type = GDT_Int16};
    spec.geoTransform = NorthUp(0.0, 2.0, 1.0);
    const std::string in = zelto::test::WriteRaster(folder.File("in.tif"), spec,
                                                    {{1, 2, 3, 4, 5, 6}, {6, 5, 4, 3, 2, 1}});
    {
        const CPLConfigOptionSetter inside("GDAL_TIFF_INTERNAL_MASK", "YES", true);
        const GDALDatasetUniquePtr image(
            GDALDataset::Open(in.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
        image->SetMetadataItem("SENSOR", "OLI");
        GDALRasterBand& band = *image->GetRasterBand(2);
        band.SetDescription("near infrared");
        band.SetScale(0.5);
        band.SetOffset(-3.0);
        band.SetUnitType("K");
        band.SetMetadataItem("WAVELENGTH", "0.86");
        band.SetMetadataItem("STATISTICS_MAXIMUM", "6");
        ASSERT_EQ(image->CreateMaskBand(GMF_PER_DATASET), CE_None);
        unsigned char mask[6] = {255, 0, 255, 0, 255, 0};
        ASSERT_EQ(image->GetRasterBand(1)->GetMaskBand()->RasterIO(GF_Write, 0, 0, 3, 2, mask, 3, 2,
                                                                   GDT_Byte, 0, 0, nullptr),
                  CE_None);
    }
    for (const char* name : {"out.tif", "out.img"}) {
        SCOPED_TRACE(name);
        const auto run = RunZelto({"copy", in, folder.File(name), "--window", "1,0,2,2"});
        ASSERT_EQ(run.exitStatus, 0) << run.errors;
        const auto image = OpenImage(folder.File(name));
        EXPECT_STREQ(image->GetMetadataItem("SENSOR"), "OLI");
        GDALRasterBand& band = *image->GetRasterBand(2);
        EXPECT_STREQ(band.GetDescription(), "near infrared");
        EXPECT_EQ(band.GetScale(), 0.5);
        EXPECT_EQ(band.GetOffset(), -3.0);
        EXPECT_STREQ(band.GetUnitType(), "K");
        EXPECT_STREQ(band.GetMetadataItem("WAVELENGTH"), "0.86");
        EXPECT_EQ(band.GetMetadataItem("STATISTICS_MAXIMUM"), nullptr) << "that of a part differs";
        unsigned char mask[4] = {};
        if (band.GetMaskFlags() != GMF_PER_DATASET) {
            EXPECT_NE(run.errors.find("cannot hold a mask"), std::string::npos) << run.errors;
            continue;
        }
        ASSERT_EQ(
            band.GetMaskBand()->RasterIO(GF_Read, 0, 0, 2, 2, mask, 2, 2, GDT_Byte, 0, 0, nullptr),
            CE_None);
        EXPECT_EQ((std::array<int, 4>{mask[0], mask[1], mask[2], mask[3]}),
                  (std::array<int, 4>{0, 255, 255, 0}));
    }
}

TEST(CopyCommand, BandsKeepTheirColoursAndAlpha) {
    const TemporaryFolder folder;
    const std::vector<Pixels> bands = {{1}, {2}, {3}, {4}};
    const std::string rgba = zelto::test::WriteRaster(
        folder.File("rgba.tif"), {.options = {"PHOTOMETRIC=RGB", "ALPHA=YES"}}, bands);
    const std::string plain = zelto::test::WriteRaster(
        folder.File("plain.tif"), {.options = {"PHOTOMETRIC=MINISBLACK", "ALPHA=NO"}}, bands);
    for (const std::string& in : {rgba, plain}) {
        const std::string out = in + ".copy.tif";
        ASSERT_EQ(RunZelto({"copy", in, out}).exitStatus, 0);
        const auto from = OpenImage(in);
        const auto to = OpenImage(out);
        for (int band = 1; band <= 4; ++band)
            EXPECT_EQ(to->GetRasterBand(band)->GetColorInterpretation(),
                      from->GetRasterBand(band)->GetColorInterpretation())
                << in << band;
    }
    ASSERT_EQ(RunZelto({"copy", rgba, folder.File("alpha.tif"), "--bands", "4,1"}).exitStatus, 0);
    EXPECT_EQ(OpenImage(folder.File("alpha.tif"))->GetRasterBand(1)->GetColorInterpretation(),
              GCI_AlphaBand);
}

TEST(CopyCommand, TheSampleSceneSurvivesUnchanged) {
    const TemporaryFolder folder;
    ASSERT_EQ(RunZelto({"copy", SampleScene(), folder.File("a.img")}).exitStatus, 0);
    for (int band = 1; band <= 6; ++band)
        EXPECT_EQ(ReadBand(folder.File("a.img"), band), ReadBand(SampleScene(), band)) << band;
}

TEST(CopyCommand, AnUnreadableImageLeavesNothingBehind) {
    ZELTO_REQUIRE_TEST_DATA();
    const TemporaryFolder folder;
    zelto::test::WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1}, {{1.0, 2.0}});
    const std::string broken = zelto::test::TestDataFile("raster/corrupt/trunc_half_data.tif");
    const auto run = RunZelto({"copy", broken, folder.File("a.tif"), "--overwrite"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + broken + ": "), 0U) << run.errors;
    EXPECT_EQ(folder.Names(), Names{"a.tif"});
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1), (Pixels{1.0, 2.0}));
}

TEST(CopyCommand, AnInterruptedCopyLeavesNothingBehind) {
    const TemporaryFolder folder;
    const TemporaryFolder origin;
    GDALAllRegister();
    {
        const char* const options[] = {"SPARSE_OK=TRUE", "BIGTIFF=YES", nullptr};
        const GDALDatasetUniquePtr large(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
            origin.File("large.tif").c_str(), 60000, 60000, 1, GDT_Byte,
            const_cast<char**>(options)));
        ASSERT_NE(large, nullptr);
    }
    const auto run = RunZelto({"copy", origin.File("large.tif"), folder.File("a.tif")}, "",
                              [&folder](pid_t program) {
                                  while (folder.Names().empty())
                                      std::this_thread::yield();
                                  kill(program, SIGINT);
                              });
    EXPECT_EQ(run.exitStatus, 130);
    EXPECT_EQ(run.errors, "zelto: interrupted\n");
    EXPECT_TRUE(folder.Names().empty());
}

TEST(CopyCommand, AFullDiskLeavesTheOldFile) {
    const TemporaryFolder folder;
    const zelto::test::SmallDisk disk(folder.Path() / "disk");
    if (!disk.IsMounted())
        GTEST_SKIP() << "this user may not mount a small file system";
    const std::string in = zelto::test::WriteRaster(
        folder.File("in.tif"), {.width = 2000, .height = 2000}, {Pixels(4000000, 5.0)});
    const std::string out = folder.File("disk/a.tif");
    zelto::test::WriteRaster(out, {.width = 2, .height = 1}, {{1.0, 2.0}});
    const auto run = RunZelto({"copy", in, out, "--overwrite"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: " + out + ": "), 0U) << run.errors;
    EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
    EXPECT_EQ(ReadBand(out, 1), (Pixels{1.0, 2.0}));
    const std::filesystem::directory_iterator files(folder.Path() / "disk");
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST(CopyCommand, WrongUsageEndsWithTwo) {
    const TemporaryFolder folder;
    const std::string in = WriteThreeBands(folder);
    const std::string out = folder.File("a.tif");
    const std::vector<std::vector<std::string>> lines = {
        {"copy", in},
        {"copy", in, out, "--bands", "0"},
        {"copy", in, out, "--bands", "4"},
        {"copy", in, out, "--window", "1,2,3"},
        {"copy", in, out, "--window", "1,2,0,5"},
        {"copy", in, out, "--window", "1,2,2.5,5"},
        {"copy", in, out, "--window", "99999999999,2,3,5"},
        {"copy", in, out, "--window", "nan,2,3,5"},
        {"copy", in, out, "--window", "1,2,3,4", "--box", "1,2,3,0"},
        {"copy", in, folder.File("a.unknown")},
    };
    for (const auto& line : lines)
        EXPECT_EQ(RunZelto(line).exitStatus, 2) << testing::PrintToString(line);
    EXPECT_EQ(folder.Names(), Names{"in.tif"});
}
