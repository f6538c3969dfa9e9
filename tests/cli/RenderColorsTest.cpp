#include "tests/cli/OpenImage.h"
#include "tests/cli/RunZelto.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <gdal_utils.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <numeric>

using namespace zelto::test;

namespace {

constexpr GDALColorInterp RGBA[] = {GCI_RedBand, GCI_GreenBand, GCI_BlueBand, GCI_AlphaBand};

/// Two pixels: (10, 20, 30) opaque, (40, 50, 60) with an alpha of 128.
std::string WriteRgba(const std::string& path, GDALDataType type, double scale) {
    GDALAllRegister();
    const GDALDatasetUniquePtr memory(
        GetGDALDriverManager()->GetDriverByName("MEM")->Create("", 2, 1, 4, type, nullptr));
    const double samples[4][2] = {{10, 40}, {20, 50}, {30, 60}, {255, 128}};
    for (int band = 0; band < 4; ++band) {
        double row[2] = {samples[band][0] * scale, samples[band][1] * scale};
        GDALRasterBand* const target = memory->GetRasterBand(band + 1);
        target->SetColorInterpretation(RGBA[band]);
        EXPECT_EQ(target->RasterIO(GF_Write, 0, 0, 2, 1, row, 2, 1, GDT_Float64, 0, 0, nullptr),
                  CE_None);
    }
    const CPLConfigOptionSetter noSideFiles("GDAL_PAM_ENABLED", "NO", false);
    GDALDriver* const png = GetGDALDriverManager()->GetDriverByName("PNG");
    const GDALDatasetUniquePtr file(
        png->CreateCopy(path.c_str(), memory.get(), FALSE, nullptr, nullptr, nullptr));
    EXPECT_NE(file, nullptr);
    return path;
}

} // namespace

TEST(RenderColors, APictureWithAlphaKeepsItsColoursAndItsTransparency) {
    const TemporaryFolder folder;
    const std::string in = WriteRgba(folder.File("in.png"), GDT_Byte, 1.0);
    const std::string out = folder.File("out.png");
    ASSERT_EQ(RunZelto({"render", in, out, "--stretch", "none"}).exitStatus, 0);
    EXPECT_EQ(ReadBand(out, 1), (Pixels{10, 40}));
    EXPECT_EQ(ReadBand(out, 2), (Pixels{20, 50}));
    EXPECT_EQ(ReadBand(out, 3), (Pixels{30, 60}));
    EXPECT_EQ(ReadBand(out, 4), (Pixels{255, 128}));
}

TEST(RenderColors, AlphaOfSixteenBitsCountsTheSame) {
    const TemporaryFolder folder;
    const std::string in = WriteRgba(folder.File("in.png"), GDT_UInt16, 257.0);
    const std::string out = folder.File("out.png");
    ASSERT_EQ(RunZelto({"render", in, out, "--stretch", "none"}).exitStatus, 0);
    EXPECT_EQ(ReadBand(out, 4), (Pixels{255, 128}));
}

TEST(RenderColors, BandsThatTheFileDoesNotNameKeepTheEnginesOrder) {
    const TemporaryFolder folder;
    const std::string in =
        WriteRaster(folder.File("in.tif"),
                    {.width = 1, .height = 1, .options = {"PHOTOMETRIC=MINISBLACK", "ALPHA=NO"}},
                    {{10}, {20}, {30}, {40}});
    const std::string out = folder.File("out.png");
    ASSERT_EQ(RunZelto({"render", in, out, "--stretch", "none"}).exitStatus, 0);
    EXPECT_EQ(ReadBand(out, 1), Pixels{30});
    EXPECT_EQ(ReadBand(out, 3), Pixels{10});
}

TEST(RenderColors, WhatAMaskLeavesOutIsTransparentAlsoInACompositionAndInAnArea) {
    const TemporaryFolder folder;
    RasterSpec spec = {.width = 2, .height = 2, .geoTransform = NorthUp(0, 2, 1)};
    const std::string in = WriteRaster(folder.File("in.tif"), spec, {{1, 2, 3, 4}});
    AddMask(in, {255, 0, 0, 255}, 2, 2);
    const Pixels expected = {255, 0, 0, 255};
    const std::string plain = folder.File("plain.png");
    ASSERT_EQ(RunZelto({"render", in, plain}).exitStatus, 0);
    EXPECT_EQ(ReadBand(plain, 4), expected);
    const std::string composed = folder.File("composed.png");
    ASSERT_EQ(RunZelto({"compose", in + ":1", in + ":1", in + ":1", composed}).exitStatus, 0);
    EXPECT_EQ(ReadBand(composed, 4), expected);
    ASSERT_EQ(RunZelto({"aoi", "new", folder.File("a.aif"), "--rect", "0,2,2,0"}).exitStatus, 0);
    const std::string masked = folder.File("masked.png");
    ASSERT_EQ(RunZelto({"render", in, masked, "--aoi", folder.File("a.aif")}).exitStatus, 0);
    EXPECT_EQ(ReadBand(masked, 4), expected);
}

TEST(RenderColors, AnAreaBesideThePictureIsToldOf) {
    const TemporaryFolder folder;
    RasterSpec spec = {.width = 4, .height = 4, .geoTransform = NorthUp(0, 4, 1)};
    const std::string in = WriteRaster(folder.File("in.tif"), spec, {Pixels(16, 9.0)});
    const std::string area = folder.File("a.aif");
    ASSERT_EQ(RunZelto({"aoi", "new", area, "--rect", "100,104,104,100"}).exitStatus, 0);
    const auto run = RunZelto({"render", in, folder.File("out.png"), "--aoi", area});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.errors, "zelto: " + area + ": no part of it lies in the picture\n");
    const auto cropped =
        RunZelto({"render", in, folder.File("b.png"), "--aoi", area, "--crop-to-aoi"});
    EXPECT_EQ(cropped.exitStatus, 1);
    EXPECT_EQ(cropped.errors, "zelto: " + area + ": it lies beside the image\n");
}

TEST(RenderColors, CroppingTakesTheWholePixelsAroundTheArea) {
    const TemporaryFolder folder;
    RasterSpec spec = {.width = 8, .height = 8, .geoTransform = NorthUp(100, 200, 10)};
    const std::string in = WriteRaster(folder.File("in.tif"), spec, {Pixels(64, 9.0)});
    const std::string area = folder.File("a.aif");
    ASSERT_EQ(RunZelto({"aoi", "new", area, "--ellipse", "115,190,145,159"}).exitStatus, 0);
    const std::string out = folder.File("out.tif");
    const auto run = RunZelto({"render", in, out, "--aoi", area, "--crop-to-aoi"});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    const auto image = OpenImage(out);
    EXPECT_EQ(image->GetRasterXSize(), 4); // 110 to 150
    EXPECT_EQ(image->GetRasterYSize(), 4); // 190 to 150
    EXPECT_EQ(image->GetRasterCount(), 4) << "what is beside the ellipse is transparent";
    double terms[6];
    ASSERT_EQ(image->GetGeoTransform(terms), CE_None);
    EXPECT_EQ(terms[0], 110.0);
    EXPECT_EQ(terms[3], 190.0);
    EXPECT_EQ(terms[1], 10.0);
    EXPECT_EQ(RunZelto({"render", in, out, "--crop-to-aoi", "--overwrite"}).exitStatus, 2);
}

TEST(RenderColors, AnotherSystemIsSampledOnceByThePicturesPixels) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.tif");
    // A corner of the scene, a little above its own resolution and a little below it.
    for (const int size : {200, 120}) {
        const std::string side = std::to_string(size);
        ASSERT_EQ(RunZelto({"render", SampleScene(), out, "--srs", "EPSG:4326", "--stretch", "none",
                            "--bands", "1", "--box", "-34.90,-7.97,-34.86,-8.01", "--size",
                            side + "x" + side, "--overwrite"})
                      .exitStatus,
                  0);
        const auto scene = OpenImage(SampleScene());
        const std::string wanted = folder.File("wanted" + side + ".tif");
        std::vector<std::string> words = {"-t_srs", "EPSG:4326", "-te", "-34.90", "-8.01", "-34.86",
                                          "-7.97",  "-ts",       side,  side,     "-r",    "near",
                                          "-ovr",   "NONE",      "-et", "0"};
        std::vector<char*> list;
        for (std::string& word : words)
            list.push_back(word.data());
        list.push_back(nullptr);
        GDALWarpAppOptions* const options = GDALWarpAppOptionsNew(list.data(), nullptr);
        GDALDatasetH source = GDALDataset::ToHandle(scene.get());
        GDALClose(GDALWarp(wanted.c_str(), nullptr, 1, &source, options, nullptr));
        GDALWarpAppOptionsFree(options);
        const Pixels expected = ReadBand(wanted, 1);
        const Pixels found = ReadBand(out, 1);
        ASSERT_EQ(found.size(), expected.size());
        // Positions may differ by an eighth of a pixel, which another one is nearest to then.
        int same = 0;
        for (std::size_t i = 0; i < found.size(); ++i)
            same += found[i] == expected[i] ? 1 : 0;
        EXPECT_GT(same, 0.9 * double(found.size())) << side;
    }
}

TEST(RenderColors, WhatAReprojectedImageDoesNotFillIsTransparent) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.tif");
    ASSERT_EQ(
        RunZelto({"render", SampleScene(), out, "--srs", "EPSG:4326", "--size", "200x"}).exitStatus,
        0);
    EXPECT_EQ(OpenImage(out)->GetRasterCount(), 4);
    const Pixels alpha = ReadBand(out, 4);
    EXPECT_GT(std::count(alpha.begin(), alpha.end(), 255.0), 0.9 * double(alpha.size()));
    EXPECT_GT(std::count(alpha.begin(), alpha.end(), 0.0), 0);
}

TEST(RenderColors, TheEdgeOfAReprojectedImageIsThatOfTheLevelItIsDrawnFrom) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.tif");
    // The scene has a pyramid, and no pixel that is 0 in all of these bands.
    for (const char* size : {"100x", "140x", "200x", "300x"}) {
        ASSERT_EQ(RunZelto({"render", SampleScene(), out, "--srs", "EPSG:4326", "--stretch", "none",
                            "--bands", "4,3,2", "--size", size, "--overwrite"})
                      .exitStatus,
                  0);
        const Pixels bands[] = {ReadBand(out, 1), ReadBand(out, 2), ReadBand(out, 3),
                                ReadBand(out, 4)};
        int black = 0;
        for (std::size_t i = 0; i < bands[0].size(); ++i)
            black += bands[0][i] + bands[1][i] + bands[2][i] == 0.0 && bands[3][i] == 255.0 ? 1 : 0;
        EXPECT_LE(black, 4) << size << ": not more than the corners of the levels differ by";
    }
}

TEST(RenderOptions, WithoutEffectAreRefusedWithWhatTheyBelongTo) {
    const TemporaryFolder folder;
    const std::string in = WriteRaster(folder.File("in.tif"), {}, {{1}, {2}, {3}});
    const std::string out = folder.File("out.png");
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"--low", "1"}, "--low: belongs to --stretch "},
        {{"--stretch", "linear", "--threshold", "0.1"}, "--threshold: belongs to --stretch auto"},
        {{"--stretch", "none", "--gamma", "2"}, "--gamma: belongs to --stretch table"},
        {{"--wallis-model", "1"}, "--wallis-model: belongs to --stretch wallis"},
        {{"--outside", "black"}, "--outside: belongs to --aoi"},
        {{"--ramp", "heat", "--bands", "1,2,3"}, "--ramp: it colours a single band"},
        {{"--hue", "5"}, "--hue: -1 to 1"},
        {{"--contrast", "nan"}, "--contrast: -1 to 1"},
    };
    for (const auto& [words, message] : cases) {
        std::vector<std::string> line = {"render", in, out};
        line.insert(line.end(), words.begin(), words.end());
        const auto run = RunZelto(line);
        EXPECT_EQ(run.exitStatus, 2) << words.front();
        EXPECT_EQ(run.errors.find("zelto: " + message), 0U) << run.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_EQ(RunZelto({"histogram", in, "--log"}).errors, "zelto: --log: belongs to --png\n");
}
