#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <cstdint>
#include <filesystem>

using zelto::test::MakePixels;
using zelto::test::ReadBand;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

/// Three bands of 3 × 2 pixels: 100·(band + 1) + 10·row + column.
void OpenImage(CRasterSource& source, const TemporaryFolder& folder, GDALDataType type) {
    std::vector<zelto::test::Pixels> bands;
    for (int band = 1; band <= 3; ++band)
        bands.push_back(MakePixels(
            3, 2, [=](int column, int row) { return 100.0 * band + 10.0 * row + column; }));
    WriteRaster(folder.File("a.tif"), {.width = 3, .height = 2, .type = type}, bands);
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
}

} // namespace

TEST(GetPixelOfAllBands, FillsConsecutiveSlotsOfTheRastersType) {
    const TemporaryFolder folder;
    CRasterSource source;
    OpenImage(source, folder, GDT_UInt16);
    std::uint16_t values[4] = {9, 9, 9, 9};
    EXPECT_EQ(source.GetPixel(values, 2, 1, PDT_Unknown), GIS_SUCCESS);
    EXPECT_EQ(values[0], 112);
    EXPECT_EQ(values[1], 212);
    EXPECT_EQ(values[2], 312);
    EXPECT_EQ(values[3], 9);
}

TEST(GetPixelOfAllBands, ConvertsToTheTypeAskedFor) {
    const TemporaryFolder folder;
    CRasterSource source;
    OpenImage(source, folder, GDT_UInt16);
    double doubles[3] = {};
    EXPECT_EQ(source.GetPixel(doubles, 0, 0, PDT_Float64), GIS_SUCCESS);
    EXPECT_EQ(doubles[2], 300.0);
    float floats[3] = {};
    EXPECT_EQ(source.GetPixel(floats, 1, 0, PDT_Float32), GIS_SUCCESS);
    EXPECT_EQ(floats[1], 201.0F);
    unsigned char bytes[4] = {9, 9, 9, 9};
    EXPECT_EQ(source.GetPixel(bytes, 1, 0, PDT_Byte), GIS_SUCCESS);
    EXPECT_EQ(bytes[0], 101);
    EXPECT_EQ(bytes[1], 201);
    EXPECT_EQ(bytes[2], 255) << "GDAL clamps";
    EXPECT_EQ(bytes[3], 9);
}

TEST(GetPixelOfAllBands, RefusesPositionsOutsideAndNullBuffers) {
    const TemporaryFolder folder;
    CRasterSource source;
    std::uint16_t values[3] = {9, 9, 9};
    EXPECT_EQ(source.GetPixel(values, 0, 0, PDT_UInt16), GIS_FAILED) << "nothing is open";
    OpenImage(source, folder, GDT_UInt16);
    for (const auto& [col, row] : {std::pair(-1, 0), {0, -1}, {3, 0}, {0, 2}})
        EXPECT_EQ(source.GetPixel(values, col, row, PDT_UInt16), GIS_FAILED);
    EXPECT_EQ(source.GetPixel(nullptr, 0, 0, PDT_UInt16), GIS_FAILED);
    EXPECT_EQ(values[0], 9);
}

TEST(GetPixelOfAllBands, ComplexSamplesStayWithinTheirSlots) {
    const TemporaryFolder folder;
    CRasterSource source;
    WriteRaster(folder.File("a.tif"), {.width = 1, .height = 1, .type = GDT_CFloat64},
                {{5.0}, {6.0}});
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    std::uint32_t values[3] = {9, 9, 9};
    EXPECT_EQ(source.GetPixel(values, 0, 0, PDT_Unknown), GIS_SUCCESS);
    EXPECT_EQ(values[2], 9U);
}

TEST(SetPixelOfAllBands, WritesConsecutiveSlotsOfTheRastersType) {
    const TemporaryFolder folder;
    {
        CRasterSource source;
        OpenImage(source, folder, GDT_Int16);
        std::int16_t values[3] = {-1, -2, -3};
        EXPECT_EQ(source.SetPixel(values, 1, 0), GIS_SUCCESS);
        std::int16_t read[3] = {};
        EXPECT_EQ(source.GetPixel(read, 1, 0, PDT_Unknown), GIS_SUCCESS);
        EXPECT_EQ(read[2], -3);
    }
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1),
              (zelto::test::Pixels{100, -1, 102, 110, 111, 112}));
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 2),
              (zelto::test::Pixels{200, -2, 202, 210, 211, 212}));
}

TEST(SetPixelOfAllBands, RefusesPositionsOutsideNullBuffersAndClosedSources) {
    const TemporaryFolder folder;
    CRasterSource source;
    double values[3] = {1.0, 2.0, 3.0};
    EXPECT_EQ(source.SetPixel(values, 0, 0), GIS_FAILED);
    OpenImage(source, folder, GDT_Float64);
    for (const auto& [col, row] : {std::pair(-1, 0), {0, -1}, {3, 0}, {0, 2}})
        EXPECT_EQ(source.SetPixel(values, col, row), GIS_FAILED);
    EXPECT_EQ(source.SetPixel(nullptr, 0, 0), GIS_FAILED);
    source.Close();
    EXPECT_EQ(source.SetPixel(values, 0, 0), GIS_FAILED);
}

TEST(SetPixelOfAllBands, ErrorsOfGdalAreIgnored) {
    const TemporaryFolder folder;
    CRasterSource source;
    OpenImage(source, folder, GDT_Byte);
    ASSERT_EQ(source.Reopen(GIS_READONLY, true), GIS_SUCCESS);
    unsigned char values[3] = {1, 2, 3};
    EXPECT_EQ(source.SetPixel(values, 0, 0), GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(ReadBand(folder.File("a.tif"), 1).front(), 100.0);
}

TEST(GetPixelOfAllBands, LeavesTheSlotOfABandThatCannotBeRead) {
    const TemporaryFolder folder;
    const std::string path = zelto::test::WriteRaster(
        folder.File("a.tif"), {.width = 64, .height = 64, .options = {"INTERLEAVE=BAND"}},
        {zelto::test::Pixels(64 * 64, 11.0), zelto::test::Pixels(64 * 64, 22.0)});
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 64);
    CRasterSource source;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    ASSERT_EQ(source.OpenSimple(folder.WideFile("a.tif").c_str(), GIS_READONLY, false),
              GIS_SUCCESS);
    std::array<unsigned char, 2> values = {1, 2};
    EXPECT_EQ(source.GetPixel(values.data(), 63, 63, PDT_Byte), GIS_SUCCESS);
    EXPECT_EQ(values, (std::array<unsigned char, 2>{11, 2}));
    EXPECT_EQ(CGISDataSource::GetLastErrorText().find(path + ": "), 0U);
}
