#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

using zelto::test::ExposedRasterSource;
using zelto::test::NorthUp;
using zelto::test::OpenDatasetCount;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::ReadFile;
using zelto::test::RecordingLog;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

GISError Create(CRasterSource& source, const std::wstring& path, RasterDataFormat format, int bands,
                PixelDataType type = PDT_Byte) {
    std::array<double, 6> geoTransform = NorthUp(500000.0, 4000000.0, 30.0);
    return source.CreateRaster(format, path.c_str(), 5, 4, bands, type, geoTransform.data(),
                               "EPSG:32650", nullptr);
}

std::string StructureItem(const std::string& path, const char* key) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    const char* value = dataset->GetMetadataItem(key, "IMAGE_STRUCTURE");
    return value != nullptr ? value : "";
}

GDALColorInterp FirstColor(const std::string& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    return dataset->GetRasterBand(1)->GetColorInterpretation();
}

} // namespace

TEST(CreateRaster, TakesTheFormatFromThePathWhenNoneIsGiven) {
    const TemporaryFolder folder;
    CRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("图.tif"), RDF_Unknown, 2), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterDataFormat(), RDF_GTiff);
    EXPECT_STREQ(source.GetGDALDataset()->GetDriverName(), "GTiff");
    ASSERT_EQ(Create(source, folder.WideFile("图.img"), RDF_Unknown, 2), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterDataFormat(), RDF_HFA);
    EXPECT_STREQ(source.GetGDALDataset()->GetDriverName(), "HFA");
    // The argument decides what is made, the path what the source calls it.
    ASSERT_EQ(Create(source, folder.WideFile("图.img"), RDF_PCIDSK, 2), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterDataFormat(), RDF_HFA);
    EXPECT_STREQ(source.GetGDALDataset()->GetDriverName(), "PCIDSK");
}

TEST(CreateRaster, KeepsTheNewRasterOpenAndDescribed) {
    const TemporaryFolder folder;
    CRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("a.tif"), RDF_GTiff, 3, PDT_Int16), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOpened());
    EXPECT_EQ(source.GetFilePath(), folder.WideFile("a.tif"));
    EXPECT_EQ(source.GetFileName(), L"a.tif");
    EXPECT_EQ(source.GetDescription(), folder.WideFile("a.tif"));
    EXPECT_EQ(source.GetAccess(), GIS_UPDATE);
    EXPECT_EQ(source.GetWidth(), 5);
    EXPECT_EQ(source.GetHeight(), 4);
    EXPECT_EQ(source.GetBandCount(), 3);
    EXPECT_EQ(source.GetRasterDataType(), PDT_Int16);
    EXPECT_EQ(source.GetLeft(), 500000.0);
    EXPECT_EQ(source.GetBottom(), 4000000.0 - 4 * 30.0);
    EXPECT_EQ(source.GetCoordinateName(), L"WGS 84 / UTM zone 50N");
    source.Close();
    EXPECT_EQ(OpenDatasetCount(), 0);
}

TEST(CreateRaster, AnOpenSourceIsClosedFirst) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("old.tif"), {.width = 2, .height = 1}, {{1.0, 2.0}});
    CRasterSource source;
    ASSERT_EQ(source.Open(folder.WideFile("old.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    ASSERT_EQ(Create(source, folder.WideFile("a.tif"), RDF_GTiff, 1), GIS_SUCCESS);
    EXPECT_EQ(OpenDatasetCount(), 1);
    ASSERT_EQ(Create(source, folder.WideFile("a.img"), RDF_HFA, 1), GIS_SUCCESS);
    EXPECT_EQ(OpenDatasetCount(), 1);
}

TEST(CreateRaster, WithoutGeoreferencingNoneIsWritten) {
    const TemporaryFolder folder;
    ExposedRasterSource source;
    ASSERT_EQ(source.CreateRaster(RDF_GTiff, folder.WideFile("a.tif").c_str(), 5, 4, 1, PDT_Byte,
                                  nullptr, nullptr, nullptr),
              GIS_SUCCESS);
    EXPECT_EQ(source.GeoTransform(), (std::array<double, 6>{0.0, 1.0, 0.0, 4.0, 0.0, -1.0}));
    EXPECT_EQ(source.GetProjectionWKT(), "");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
    ASSERT_EQ(source.CreateRaster(RDF_HFA, folder.WideFile("a.img").c_str(), 5, 4, 1, PDT_Byte,
                                  nullptr, nullptr, nullptr),
              GIS_SUCCESS);
    EXPECT_EQ(source.GetProjectionWKT(), "");
}

TEST(CreateRaster, ReplacesAnOlderImageTogetherWithItsSideFiles) {
    const TemporaryFolder folder;
    CRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("a.img"), RDF_HFA, 1), GIS_SUCCESS);
    source.Close();
    WriteFile(folder.Path() / "a.img.aux.xml", "<PAMDataset/>");
    ASSERT_EQ(Create(source, folder.WideFile("a.img"), RDF_HFA, 2), GIS_SUCCESS);
    source.Close();
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "a.img.aux.xml"));
    ASSERT_EQ(source.Open(folder.WideFile("a.img").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetBandCount(), 2);
}

TEST(CreateRaster, AnEnviHeaderNamesTheDataFileBesideIt) {
    const TemporaryFolder folder;
    CRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("a.hdr"), RDF_ENVI, 1), GIS_SUCCESS);
    EXPECT_EQ(source.GetFilePath(), folder.WideFile("a"));
    EXPECT_EQ(source.GetFileName(), L"a.hdr");
    source.Close();
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a", "a.hdr"}));
}

TEST(CreateRaster, FormatsWithoutADriverFail) {
    const TemporaryFolder folder;
    const RecordingLog log;
    for (const int format : {-1, 7, 23, 39, 46, 1000}) {
        CRasterSource source;
        EXPECT_EQ(
            Create(source, folder.WideFile("a.xyz"), static_cast<RasterDataFormat>(format), 1),
            GIS_FAILED)
            << format;
        EXPECT_FALSE(source.IsOpened());
    }
    CRasterSource source;
    EXPECT_EQ(Create(source, folder.WideFile("a.jp2"), RDF_Unknown, 1), GIS_FAILED);
    EXPECT_EQ(Create(source, folder.WideFile("a.unknown"), RDF_Unknown, 1), GIS_FAILED);
    EXPECT_EQ(source.CreateRaster(RDF_GTiff, nullptr, 5, 4, 1, PDT_Byte, nullptr, nullptr, nullptr),
              GIS_FAILED);
    EXPECT_EQ(
        source.CreateGTiffRaster(RDF_GTiff, nullptr, 5, 4, 1, PDT_Byte, nullptr, nullptr, nullptr),
        GIS_FAILED);
    EXPECT_TRUE(folder.Names().empty());
    EXPECT_TRUE(log.m_records.empty());
}

TEST(CreateRaster, ImpossibleLayoutsFail) {
    const TemporaryFolder folder;
    const struct {
        int width, height, bands, type;
    } layouts[] = {{0, 4, 1, 1}, {5, 0, 1, 1},  {-5, 4, 1, 1}, {5, 4, -1, 1},
                   {5, 4, 1, 0}, {5, 4, 1, -1}, {5, 4, 1, 99}};
    for (const auto& layout : layouts)
        for (const RasterDataFormat format : {RDF_GTiff, RDF_HFA}) {
            CRasterSource source;
            EXPECT_EQ(source.CreateRaster(format, folder.WideFile("a").c_str(), layout.width,
                                          layout.height, layout.bands,
                                          static_cast<PixelDataType>(layout.type), nullptr, nullptr,
                                          nullptr),
                      GIS_FAILED);
            EXPECT_FALSE(source.IsOpened());
        }
}

TEST(CreateRaster, TheGeneralPathPassesNoOptionsOn) {
    const TemporaryFolder folder;
    CPLStringList options;
    options.SetNameValue("COMPRESSED", "YES");
    CRasterSource source;
    ASSERT_EQ(source.CreateRaster(RDF_HFA, folder.WideFile("a.img").c_str(), 5, 4, 1, PDT_Byte,
                                  nullptr, nullptr, options.List()),
              GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(StructureItem(folder.File("a.img"), "COMPRESSION"), "");
}

TEST(CreateGTiff, IsBandInterleavedWithAWorldFile) {
    const TemporaryFolder folder;
    for (const int bands : {1, 2, 3, 5}) {
        CRasterSource source;
        ASSERT_EQ(Create(source, folder.WideFile("a.tif"), RDF_GTiff, bands), GIS_SUCCESS);
        source.Close();
        EXPECT_EQ(StructureItem(folder.File("a.tif"), "INTERLEAVE"), "BAND");
        EXPECT_EQ(FirstColor(folder.File("a.tif")), bands < 3 ? GCI_GrayIndex : GCI_RedBand);
        EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.tfw", "a.tif"}));
    }
    EXPECT_EQ(ReadFile(folder.Path() / "a.tfw"),
              "30.0000000000\n0.0000000000\n0.0000000000\n-30.0000000000\n"
              "500015.0000000000\n3999985.0000000000\n");
}

TEST(CreateGTiff, TheWorldFileOfAnOlderImageDoesNotPlaceTheNewOne) {
    const TemporaryFolder folder;
    CRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("a.tif"), RDF_GTiff, 1), GIS_SUCCESS);
    source.Close();
    ASSERT_EQ(source.CreateRaster(RDF_GTiff, folder.WideFile("a.tif").c_str(), 5, 4, 1, PDT_Byte,
                                  nullptr, nullptr, nullptr),
              GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetLeft(), 0.0);
}

TEST(CreateGTiff, TheCallersOptionsWin) {
    const TemporaryFolder folder;
    CPLStringList options;
    options.SetNameValue("interleave", "PIXEL");
    options.SetNameValue("PHOTOMETRIC", "MINISBLACK");
    options.SetNameValue("TFW", "NO");
    options.SetNameValue("COMPRESS", "LZW");
    std::array<double, 6> geoTransform = NorthUp(0.0, 0.0, 1.0);
    CRasterSource source;
    ASSERT_EQ(source.CreateGTiffRaster(RDF_GTiff, folder.WideFile("a.tif").c_str(), 5, 4, 3,
                                       PDT_Byte, geoTransform.data(), nullptr, options.List()),
              GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(options.Count(), 4);
    EXPECT_EQ(StructureItem(folder.File("a.tif"), "INTERLEAVE"), "PIXEL");
    EXPECT_EQ(StructureItem(folder.File("a.tif"), "COMPRESSION"), "LZW");
    EXPECT_EQ(FirstColor(folder.File("a.tif")), GCI_GrayIndex);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tif"});
}

TEST(CreateGTiff, WhatTheCallersOptionsLeaveOutIsAdded) {
    const TemporaryFolder folder;
    CPLStringList options;
    options.SetNameValue("COMPRESS", "LZW");
    std::array<double, 6> geoTransform = NorthUp(0.0, 0.0, 1.0);
    CRasterSource source;
    ASSERT_EQ(source.CreateRaster(RDF_Unknown, folder.WideFile("a.tif").c_str(), 5, 4, 3, PDT_Byte,
                                  geoTransform.data(), nullptr, options.List()),
              GIS_SUCCESS);
    source.Close();
    EXPECT_EQ(StructureItem(folder.File("a.tif"), "INTERLEAVE"), "BAND");
    EXPECT_EQ(StructureItem(folder.File("a.tif"), "COMPRESSION"), "LZW");
    EXPECT_EQ(FirstColor(folder.File("a.tif")), GCI_RedBand);
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.tfw", "a.tif"}));
}

TEST(CreateGTiff, VariantsOfTheFamilyDifferInTheirDriver) {
    const TemporaryFolder folder;
    CRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("a.tif"), RDF_GTiffVariant40, 1), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterDataFormat(), RDF_GTiffVariant40);
    EXPECT_EQ(Create(source, folder.WideFile("b.tif"), RDF_GTiffVariant39, 1), GIS_FAILED);
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "b.tif"));
}

TEST(CreateRasterCopy, TakesTheLayoutOfTheSource) {
    const TemporaryFolder folder;
    CRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("a.tif"), RDF_GTiff, 3, PDT_UInt16), GIS_SUCCESS);
    ExposedRasterSource copy;
    ASSERT_EQ(copy.CreateRasterCopy(RDF_Unknown, folder.WideFile("b.img").c_str(), &source, 0,
                                    PDT_Unknown),
              GIS_SUCCESS);
    EXPECT_EQ(copy.GetWidth(), 5);
    EXPECT_EQ(copy.GetHeight(), 4);
    EXPECT_EQ(copy.GetBandCount(), 3);
    EXPECT_EQ(copy.GetRasterDataType(), PDT_UInt16);
    EXPECT_EQ(copy.GeoTransform(), NorthUp(500000.0, 4000000.0, 30.0));
    EXPECT_TRUE(copy.IsSameSpatialReference(&source));
    ASSERT_EQ(
        copy.CreateRasterCopy(RDF_GTiff, folder.WideFile("c.tif").c_str(), &source, 1, PDT_Float32),
        GIS_SUCCESS);
    EXPECT_EQ(copy.GetBandCount(), 1);
    EXPECT_EQ(copy.GetRasterDataType(), PDT_Float32);
    EXPECT_EQ(
        copy.CreateRasterCopy(RDF_GTiff, folder.WideFile("d.tif").c_str(), nullptr, 1, PDT_Byte),
        GIS_FAILED);
}

TEST(CreateRasterCopy, MayTakeItselfForTheSource) {
    const TemporaryFolder folder;
    ExposedRasterSource source;
    ASSERT_EQ(Create(source, folder.WideFile("a.tif"), RDF_GTiff, 2), GIS_SUCCESS);
    ASSERT_EQ(
        source.CreateRasterCopy(RDF_HFA, folder.WideFile("b.img").c_str(), &source, 0, PDT_Unknown),
        GIS_SUCCESS);
    EXPECT_EQ(source.GetBandCount(), 2);
    EXPECT_EQ(source.GeoTransform(), NorthUp(500000.0, 4000000.0, 30.0));
    EXPECT_EQ(source.GetCoordinateName(), L"WGS 84 / UTM zone 50N");
}
