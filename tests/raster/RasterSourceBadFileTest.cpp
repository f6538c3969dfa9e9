#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::OpenDatasetCount;
using zelto::test::ReadFile;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

void ExpectOpenFails(const std::wstring& path) {
    SCOPED_TRACE(zelto::test::Narrow(path));
    for (const GISDataAccess access : {GIS_READONLY, GIS_UPDATE}) {
        CRasterSource source;
        EXPECT_EQ(source.Open(path.c_str(), access, true), GIS_OPEN_FAILED);
        EXPECT_EQ(source.OpenSimple(path.c_str(), access, true), GIS_OPEN_FAILED);
        EXPECT_EQ(source.OpenAsDataset(path.c_str(), access), GIS_OPEN_FAILED);
        EXPECT_EQ(source.OpenAndWarped(path.c_str(), access, "EPSG:4326"), GIS_OPEN_FAILED);
        EXPECT_EQ(source.Open(CDatasetOpenInfo(path.c_str(), access)), GIS_OPEN_FAILED);
        EXPECT_FALSE(source.IsOpened());
        EXPECT_EQ(source.GetBandCount(), 0);
        EXPECT_EQ(OpenDatasetCount(), 0);
    }
}

} // namespace

TEST(OpenBadFile, WhatNoDriverOpensFails) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "empty.tif", "");
    WriteFile(folder.Path() / "text.tif", "this is no image");
    std::filesystem::create_directory(folder.Path() / "folder.tif");
    for (const char* name : {"missing.tif", "empty.tif", "text.tif", "folder.tif", "no/such.img"})
        ExpectOpenFails(folder.WideFile(name));
    ExpectOpenFails(L"");
}

TEST(OpenBadFile, AZippedElevationTileIsOpenedForReadingOnly) {
    const TemporaryFolder folder;
    const std::string path = folder.File("N10W110.hgt.zip");
    constexpr int SIDE = 1201;
    const std::string bytes(std::size_t{SIDE} * SIDE * 2, '\1');
    VSILFILE* const tile = VSIFOpenL(("/vsizip/" + path + "/N10W110.hgt").c_str(), "wb");
    ASSERT_NE(tile, nullptr);
    EXPECT_EQ(VSIFWriteL(bytes.data(), 1, bytes.size(), tile), bytes.size());
    VSIFCloseL(tile);
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("N10W110.hgt.zip").c_str(), GIS_UPDATE, false),
              GIS_SUCCESS);
    EXPECT_EQ(source.GetGDALDataset()->GetAccess(), GA_ReadOnly);
    double value = 0.0;
    EXPECT_EQ(source.GetRasterBand(0)->ReadBlock(7, 7, 1, 1, &value, 1, 1, PDT_Float64, 0, 0),
              GIS_SUCCESS);
    EXPECT_EQ(value, 257.0);
}

TEST(OpenBadFile, AGeoTiffWhoseListOfStripsHasNoTypeIsOpenedForReadingOnly) {
    const TemporaryFolder folder;
    const std::string path = WriteRaster(folder.File("a.tif"), {.width = 2, .height = 1}, {{1, 2}});
    std::string bytes = ReadFile(path);
    const std::string list("\x11\x01", 2); // the tag of the places of its strips
    const std::size_t at = bytes.find(list + '\x03') != std::string::npos
                               ? bytes.find(list + '\x03')
                               : bytes.find(list + '\x04');
    ASSERT_NE(at, std::string::npos);
    bytes[at + 2] = '\x7f';
    WriteFile(path, bytes);
    {
        CRasterSource source;
        EXPECT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, false), GIS_SUCCESS);
        double place[6] = {5, 1, 0, 5, 0, -1};
        source.SetGeoTransform(place, true); // goes beside the file
        EXPECT_EQ(source.GetGDALDataset()->GetAccess(), GA_ReadOnly);
    }
    EXPECT_EQ(ReadFile(path), bytes);
}

TEST(OpenBadFile, ANetcdfHeaderThatPromisesMoreThanItsFileHoldsIsRefused) {
    const TemporaryFolder folder;
    const std::string whole("CDF\1\0\0\0\0"           // no records
                            "\0\0\0\x0a\0\0\0\1"      // one dimension
                            "\0\0\0\1x\0\0\0\0\0\0\2" // "x" of length 2
                            "\0\0\0\0\0\0\0\0"        // no attributes
                            "\0\0\0\0\0\0\0\0",       // no variables
                            44);
    WriteFile(folder.Path() / "a.nc", whole);
    CRasterSource source;
    source.Open(folder.WideFile("a.nc").c_str(), GIS_READONLY, false);
    EXPECT_EQ(CGISDataSource::GetLastErrorText().find("promises"), std::string::npos);
    for (const std::size_t count : {12, 16, 32, 40}) { // of dimensions, of a name, of lists
        SCOPED_TRACE(count);
        std::string bytes = whole;
        bytes[count] = '\x40';
        WriteFile(folder.Path() / "a.nc", bytes);
        EXPECT_EQ(source.Open(folder.WideFile("a.nc").c_str(), GIS_READONLY, false),
                  GIS_OPEN_FAILED);
        EXPECT_EQ(CGISDataSource::GetLastErrorText(),
                  folder.File("a.nc") + ": its header promises more than it holds");
    }
}

TEST(OpenBadFile, ANullPathFails) {
    CRasterSource source;
    EXPECT_EQ(source.Open(nullptr, GIS_READONLY, true), GIS_OPEN_FAILED);
    EXPECT_EQ(source.OpenSimple(nullptr, GIS_READONLY, true), GIS_OPEN_FAILED);
    EXPECT_EQ(source.OpenAsDataset(nullptr, GIS_READONLY), GIS_OPEN_FAILED);
    EXPECT_EQ(source.OpenAndWarped(nullptr, GIS_READONLY, nullptr), GIS_OPEN_FAILED);
    EXPECT_EQ(source.GetFilePath(), L"");
}

TEST(OpenBadFile, TruncatedFilesFailOrOpenButNeverCrash) {
    const TemporaryFolder folder;
    for (const char* driver : {"GTiff", "HFA", "PCIDSK", "BMP", "NITF"}) {
        WriteRaster(folder.File("whole"), {.width = 8, .height = 8, .driver = driver},
                    {zelto::test::Pixels(64, 7.0)});
        const std::string bytes = ReadFile(folder.Path() / "whole");
        for (std::size_t length = 0; length < bytes.size(); length += 1 + bytes.size() / 40) {
            WriteFile(folder.Path() / "part", bytes.substr(0, length));
            CRasterSource source;
            const GISError result =
                source.Open(folder.WideFile("part").c_str(), GIS_READONLY, true);
            EXPECT_EQ(result == GIS_OPEN_FAILED, !source.IsOpened()) << driver << " " << length;
        }
    }
}

TEST(OpenBadFile, OnlyPathNameAndFormatChangeWhenNothingOpens) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"),
                {.width = 2,
                 .height = 1,
                 .geoTransform = zelto::test::NorthUp(10.0, 20.0, 1.0),
                 .srs = "EPSG:4326"},
                {{1.0, 2.0}});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_UPDATE, true), GIS_SUCCESS);
    EXPECT_EQ(source.Open(folder.WideFile("missing.img").c_str(), GIS_READONLY, true),
              GIS_OPEN_FAILED);
    EXPECT_FALSE(source.IsOpened());
    EXPECT_EQ(source.GetFilePath(), folder.WideFile("missing.img"));
    EXPECT_EQ(source.GetFileName(), L"missing.img");
    EXPECT_EQ(source.GetRasterDataFormat(), RDF_HFA);
    EXPECT_EQ(source.GetDescription(), folder.WideFile("a.tif"));
    EXPECT_EQ(source.GetAccess(), GIS_UPDATE);
    EXPECT_EQ(source.GetLeft(), 10.0);
    EXPECT_EQ(source.GetWidth(), 2);
    EXPECT_TRUE(source.IsGeographic());
    EXPECT_EQ(source.GetRasterBand(0), nullptr);
}

TEST(OpenBadFile, AZippedElevationTileThatItsArchiveDoesNotGiveFails) {
    ZELTO_REQUIRE_TEST_DATA();
    const TemporaryFolder folder;
    std::string archive = ReadFile(zelto::test::TestDataFile("raster/src/N10W110.hgt.zip"));
    WriteFile(folder.File("N10W110.hgt.zip"), archive);
    CRasterSource source;
    EXPECT_EQ(source.OpenSimple(folder.WideFile("N10W110.hgt.zip").c_str(), GIS_READONLY, false),
              GIS_SUCCESS);
    source.Close();
    archive.replace(0, 4, "what"); // no file begins where the archive's list says
    WriteFile(folder.File("N10W110.hgt.zip"), archive);
    CRasterSource damaged;
    EXPECT_EQ(damaged.OpenSimple(folder.WideFile("N10W110.hgt.zip").c_str(), GIS_READONLY, false),
              GIS_OPEN_FAILED);
    unsigned char value = 0;
    EXPECT_NE(damaged.GetPixel(&value, 0, 0, PDT_Byte), GIS_SUCCESS);
}
