#include "tests/cli/RunOnTerminal.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <gtest/gtest.h>

using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RunOnTerminal;
using zelto::test::RunZelto;
using zelto::test::SampleScene;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

/// Four pixels of three bands at 100, 200: red, green, blue and white.
std::string FourColors(const TemporaryFolder& folder) {
    return WriteRaster(
        folder.File("colors.tif"),
        {.width = 2, .height = 2, .geoTransform = NorthUp(100.0, 200.0, 10.0), .srs = "EPSG:32650"},
        {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}});
}

} // namespace

TEST(RenderCommand, DrawsTheBandsRightWayUpInTheirColours) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.png");
    const auto run = RunZelto({"render", FourColors(folder), out, "--stretch", "none"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(run.output, out + ": 2 x 2 pixels\n");
    EXPECT_EQ(ReadBand(out, 1), (Pixels{255, 0, 0, 255}));
    EXPECT_EQ(ReadBand(out, 2), (Pixels{0, 255, 0, 255}));
    EXPECT_EQ(ReadBand(out, 3), (Pixels{0, 0, 255, 255}));
}

TEST(RenderCommand, BandsMayBeExchanged) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.tif");
    ASSERT_EQ(RunZelto({"render", "--bands", "3,2,1", "--stretch", "none", FourColors(folder), out})
                  .exitStatus,
              0);
    EXPECT_EQ(ReadBand(out, 1), (Pixels{0, 0, 255, 255}));
    EXPECT_EQ(ReadBand(out, 3), (Pixels{255, 0, 0, 255}));
}

TEST(RenderCommand, AGeoTiffLiesWhereTheBoxDoes) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.tif");
    ASSERT_EQ(RunZelto({"render", "--box", "110,200,120,190", "--size", "5x", "--stretch", "none",
                        FourColors(folder), out})
                  .exitStatus,
              0);
    GDALAllRegister();
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(out.c_str()));
    ASSERT_NE(dataset, nullptr);
    EXPECT_EQ(dataset->GetRasterXSize(), 5);
    EXPECT_EQ(dataset->GetRasterYSize(), 5) << "the box is square";
    double geoTransform[6];
    ASSERT_EQ(dataset->GetGeoTransform(geoTransform), CE_None);
    EXPECT_DOUBLE_EQ(geoTransform[0], 110.0);
    EXPECT_DOUBLE_EQ(geoTransform[1], 2.0);
    EXPECT_DOUBLE_EQ(geoTransform[3], 200.0);
    EXPECT_DOUBLE_EQ(geoTransform[5], -2.0);
    EXPECT_STREQ(dataset->GetSpatialRef()->GetAuthorityCode(nullptr), "32650");
    EXPECT_EQ(ReadBand(out, 2), Pixels(25, 255.0)) << "the green pixel";
    EXPECT_EQ(ReadBand(out, 1), Pixels(25, 0.0));
}

TEST(RenderCommand, CenterAndScaleMakeTheBox) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.tif");
    ASSERT_EQ(RunZelto({"render", "--center", "110,190", "--scale", "4", "--size", "6x3",
                        FourColors(folder), out})
                  .exitStatus,
              0);
    GDALAllRegister();
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(out.c_str()));
    double geoTransform[6];
    ASSERT_EQ(dataset->GetGeoTransform(geoTransform), CE_None);
    EXPECT_DOUBLE_EQ(geoTransform[0], 110.0 - 12.0);
    EXPECT_DOUBLE_EQ(geoTransform[3], 190.0 + 6.0);
    EXPECT_EQ(dataset->GetRasterCount(), 4) << "what the image does not cover is transparent";
}

TEST(RenderCommand, EveryStretchDrawsTheSampleScene) {
    const TemporaryFolder folder;
    for (const char* stretch : {"none", "table", "linear", "stddev", "equalize", "autolevels",
                                "zoom002", "wallis", "zoom", "custom-equalize"}) {
        const std::string out = folder.File(std::string(stretch) + ".png");
        const auto run =
            RunZelto({"render", SampleScene(), out, "--stretch", stretch, "--size", "64x"});
        EXPECT_EQ(run.exitStatus, 0) << stretch << run.errors;
        EXPECT_EQ(ReadBand(out, 1).size(), 64U * 65U) << stretch;
    }
}

TEST(RenderCommand, TheContactSheetHoldsTenPicturesInThreeRows) {
    const TemporaryFolder folder;
    const std::string out = folder.File("sheet.png");
    const auto run = RunZelto({"render", "--contact-sheet", "--size", "50x40", SampleScene(), out});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    // Margins of 12 around cells of 50 × (40 + 26 for the label).
    EXPECT_EQ(ReadBand(out, 1).size(), std::size_t{4 * 62 + 12} * (3 * 78 + 12));
}

TEST(RenderCommand, WallisIsRefusedForASingleBandAndLeftOutOfItsContactSheet) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.png");
    const auto run =
        RunZelto({"render", SampleScene(), out, "--bands", "1", "--stretch", "wallis"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.errors, "zelto: --stretch wallis: it takes three bands, and one is shown\n");
    EXPECT_TRUE(folder.Names().empty());

    const auto sheet = RunZelto(
        {"render", SampleScene(), out, "--bands", "1", "--contact-sheet", "--size", "50x40"});
    EXPECT_EQ(sheet.exitStatus, 0) << sheet.errors;
    // Nine pictures: the last row holds one, and the end of its label; the rest stays white.
    const Pixels pixels = ReadBand(out, 1);
    const std::size_t width = 4 * 62 + 12;
    ASSERT_EQ(pixels.size(), width * (3 * 78 + 12));
    for (std::size_t row = 2 * 78 + 12; row < 3 * 78 + 12; ++row)
        for (std::size_t column = 2 * 62 + 12; column < width; ++column)
            ASSERT_EQ(pixels[row * width + column], 255.0) << column << ", " << row;
}

TEST(RenderCommand, AReferenceThatIsNoneIsTheReason) {
    const TemporaryFolder folder;
    const auto run =
        RunZelto({"render", SampleScene(), folder.File("out.png"), "--srs", "nowhere"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + SampleScene() +
                              ": 'nowhere', which it is to be shown in, is no reference system\n");
}

TEST(RenderCommand, AContactSheetTooLargeToDrawIsRefused) {
    const TemporaryFolder folder;
    const std::string out = folder.File("sheet.png");
    const auto run =
        RunZelto({"render", "--contact-sheet", "--size", "9000x1", SampleScene(), out});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_NE(run.errors.find("36060 x 129"), std::string::npos) << run.errors;
    EXPECT_TRUE(folder.Names().empty());
}

TEST(RenderCommand, AnAreaLeavesTheRestTransparentOrBlack) {
    const TemporaryFolder folder;
    const std::string image = WriteRaster(
        folder.File("grey.tif"),
        {.width = 10, .height = 10, .geoTransform = NorthUp(0.0, 10.0, 1.0)}, {Pixels(100, 200.0)});
    WriteFile(folder.File("area.geojson"),
              R"({"type":"Polygon","coordinates":[[[2,2],[2,8],[8,8],[8,2],[2,2]]]})");
    const std::string area = folder.File("area.geojson");
    const std::string out = folder.File("out.png");
    ASSERT_EQ(RunZelto({"render", "--stretch", "none", "--aoi", area, image, out}).exitStatus, 0);
    Pixels alpha = ReadBand(out, 4);
    EXPECT_EQ(alpha[0], 0.0);
    EXPECT_EQ(alpha[55], 255.0);
    EXPECT_EQ(ReadBand(out, 1)[55], 200.0);
    ASSERT_EQ(RunZelto({"render", "--stretch", "none", "--aoi", area, "--outside", "black", image,
                        out, "--overwrite"})
                  .exitStatus,
              0);
    EXPECT_EQ(ReadBand(out, 1)[0], 0.0);
    EXPECT_EQ(ReadBand(out, 1)[55], 200.0);
}

TEST(RenderCommand, AdjustmentsOfAnAreaKeepGreyGreyAndTheOutsideBlack) {
    const TemporaryFolder folder;
    const std::string image = WriteRaster(
        folder.File("grey.tif"),
        {.width = 10, .height = 10, .geoTransform = NorthUp(0.0, 10.0, 1.0)}, {Pixels(100, 100.0)});
    WriteFile(folder.File("area.geojson"),
              R"({"type":"Polygon","coordinates":[[[2,2],[2,8],[8,8],[8,2],[2,2]]]})");
    const std::string area = folder.File("area.geojson");
    const std::string out = folder.File("out.png");
    ASSERT_EQ(RunZelto({"render", "--stretch", "none", "--aoi", area, "--outside", "black",
                        "--contrast", "1", image, out})
                  .exitStatus,
              0);
    for (int band = 1; band <= 3; ++band) {
        EXPECT_EQ(ReadBand(out, band)[55], 72.0) << band; // 100 − 28
        EXPECT_EQ(ReadBand(out, band)[0], 0.0) << band;
    }
    ASSERT_EQ(RunZelto({"render", "--stretch", "none", "--aoi", area, "--outside", "black",
                        "--contrast=-0.5", "--intensity", "0.2", image, out, "--overwrite"})
                  .exitStatus,
              0);
    for (int band = 1; band <= 3; ++band) {
        EXPECT_NEAR(ReadBand(out, band)[55], 128.5, 1.5) << band; // 129, halfway to the middle
        EXPECT_EQ(ReadBand(out, band)[0], 0.0) << band;
    }
}

TEST(RenderCommand, AJpegLaysMissingPixelsOnWhite) {
    const TemporaryFolder folder;
    const std::string image = WriteRaster(
        folder.File("empty.tif"), {.width = 16, .height = 16, .noData = 7.0}, {Pixels(256, 7.0)});
    const std::string out = folder.File("out.jpg");
    ASSERT_EQ(RunZelto({"render", image, out}).exitStatus, 0);
    EXPECT_EQ(ReadBand(out, 1)[0], 255.0);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"empty.tif", "out.jpg"}));
}

TEST(RenderCommand, AHigherPngLevelMakesASmallerFileOfTheSamePixels) {
    const TemporaryFolder folder;
    const std::string quick = folder.File("quick.png");
    const std::string usual = folder.File("usual.png");
    const std::string small = folder.File("small.png");
    const std::string scene = SampleScene();
    ASSERT_EQ(RunZelto({"render", "--png-level", "1", scene, quick}).exitStatus, 0);
    ASSERT_EQ(RunZelto({"render", scene, usual}).exitStatus, 0);
    ASSERT_EQ(RunZelto({"render", "--png-level", "9", scene, small}).exitStatus, 0);
    EXPECT_GT(ReadFile(quick).size(), ReadFile(usual).size());
    EXPECT_GT(ReadFile(usual).size(), ReadFile(small).size());
    for (int band = 1; band <= 3; ++band) {
        EXPECT_EQ(ReadBand(quick, band), ReadBand(usual, band));
        EXPECT_EQ(ReadBand(quick, band), ReadBand(small, band));
    }
    for (const char* level : {"0", "10", "x"})
        EXPECT_EQ(RunZelto({"render", "--png-level", level, scene, quick}).exitStatus, 2) << level;
    const auto tiff = RunZelto({"render", "--png-level", "5", scene, folder.File("out.tif")});
    EXPECT_EQ(tiff.exitStatus, 2);
    EXPECT_NE(tiff.errors.find("--png-level"), std::string::npos) << tiff.errors;
}

TEST(RenderCommand, ATerminalIsToldHowToSpareReadingALargeImageWhole) {
    const TemporaryFolder folder;
    const auto make = [&](const char* name, int width, std::vector<int> overviews) {
        GDALAllRegister();
        CPLStringList options;
        for (const char* option : {"TILED=YES", "SPARSE_OK=TRUE"})
            options.AddString(option);
        const std::string path = folder.File(name);
        const GDALDatasetUniquePtr image(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
            path.c_str(), width, 4096, 1, GDT_Byte, options.List()));
        if (!overviews.empty()) {
            EXPECT_EQ(
                image->BuildOverviews("NEAREST", 1, overviews.data(), 0, nullptr, nullptr, nullptr),
                CE_None);
        }
        return path;
    };
    const std::string out = folder.File("out.png");
    const std::string large = make("large.tif", 4097, {});
    const std::string hint = "zelto pyramids build " + large;
    const auto told = RunOnTerminal({"render", "--size", "64x", large, out});
    EXPECT_NE(told.find(hint), std::string::npos) << told;
    EXPECT_EQ(told.find(hint), told.rfind(hint)) << told;
    EXPECT_EQ(RunZelto({"render", "--size", "64x", large, out, "--overwrite"}).errors, "")
        << "no terminal";
    for (const std::string& quiet : {make("small.tif", 4096, {}), make("built.tif", 4097, {8})})
        EXPECT_EQ(
            RunOnTerminal({"render", "--size", "64x", quiet, out, "--overwrite"}).find("pyramid"),
            std::string::npos);
    const auto part = RunOnTerminal(
        {"render", "--stretch", "none", "--box", "0,4096,64,4032", large, out, "--overwrite"});
    EXPECT_EQ(part, out + ": 1024 x 1024 pixels\r\n");
    const auto composed = RunOnTerminal(
        {"compose", "--size", "64x", large + ":1", large + ":1", large + ":1", out, "--overwrite"});
    EXPECT_EQ(composed.find(hint), composed.rfind(hint)) << composed;
    EXPECT_NE(composed.find(hint), std::string::npos) << composed;
}

TEST(RenderCommand, WrongUsageIsToldApartFromFailedWork) {
    const TemporaryFolder folder;
    const std::string image = FourColors(folder);
    const std::string out = folder.File("out.png");
    EXPECT_EQ(RunZelto({"render", image, folder.File("out.xyz")}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", image, out, "--bands", "1,2"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", image, out, "--bands", "1,2,4"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", image, out, "--stretch", "loud"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", image, out, "--size", "0x3"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", image, out, "--box", "3,2,1"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", image, out, "--box", "120,200,110,190"}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"render", image, out, "--ramp", "loud"}).exitStatus, 2);
    const auto missed = RunZelto({"render", image, out, "--box", "900,200,920,190"});
    EXPECT_EQ(missed.exitStatus, 1);
    EXPECT_EQ(missed.errors,
              "zelto: " + image + ": the box misses the image, or the picture has no pixels\n");
    EXPECT_EQ(RunZelto({"render", folder.File("none.tif"), out}).exitStatus, 1);
    EXPECT_EQ(RunZelto({"render", image, "/nowhere/out.png"}).exitStatus, 1);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"colors.tif"})) << "nothing is left behind";
}

TEST(ComposeCommand, TakesEachColourFromItsOwnFile) {
    const TemporaryFolder folder;
    const auto make = [&](const std::string& name, int size, double pixel, double value) {
        return WriteRaster(folder.File(name),
                           {.width = size, .height = size, .geoTransform = NorthUp(0, 8, pixel)},
                           {Pixels(static_cast<std::size_t>(size) * size, 1.0),
                            Pixels(static_cast<std::size_t>(size) * size, value)});
    };
    const std::string out = folder.File("out.tif");
    const auto run =
        RunZelto({"compose", make("r.tif", 4, 2.0, 10) + ":2", make("g.tif", 8, 1.0, 20) + ":2",
                  make("b.tif", 2, 4.0, 30) + ":2", out, "--stretch", "none"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    EXPECT_EQ(ReadBand(out, 1), Pixels(16, 10.0)) << "at the red resolution";
    EXPECT_EQ(ReadBand(out, 2), Pixels(16, 20.0));
    EXPECT_EQ(ReadBand(out, 3), Pixels(16, 30.0));
}

TEST(ComposeCommand, SourcesThatDoNotMeetAndUnknownBandsAreRefused) {
    const TemporaryFolder folder;
    const std::string here = FourColors(folder);
    const std::string far = WriteRaster(
        folder.File("far.tif"), {.width = 2, .height = 2, .geoTransform = NorthUp(9000, 200, 1)},
        {Pixels(4, 1.0)});
    const std::string out = folder.File("out.png");
    const auto apart = RunZelto({"compose", here + ":1", here + ":2", far + ":1", out});
    EXPECT_EQ(apart.exitStatus, 1);
    EXPECT_NE(apart.errors.find("no ground in common"), std::string::npos);
    EXPECT_EQ(RunZelto({"compose", here + ":1", here + ":2", here + ":4", out}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"compose", here, here + ":2", here + ":3", out}).exitStatus, 2);
    EXPECT_EQ(RunZelto({"compose", here + ":1", here + ":2", out}).exitStatus, 2);
}

TEST(RenderCommand, AnImageWhosePlaceHasNoAreaIsAFailureOfTheImage) {
    const zelto::test::TemporaryFolder folder;
    zelto::test::RasterSpec spec = {.width = 2, .height = 2};
    spec.geoTransform = std::array<double, 6>{5.0, 0.0, 0.0, 5.0, 0.0, 0.0};
    zelto::test::WriteRaster(folder.File("a.tif"), spec, {zelto::test::Pixels(4, 1.0)});
    const auto run = zelto::test::RunZelto({"render", folder.File("a.tif"), folder.File("a.png")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors, "zelto: " + folder.File("a.tif") + ": its place has no area\n");
}
