#include "zelto/raster/RasterBand.h"

#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>

using zelto::test::ExposedRasterSource;
using zelto::test::NorthUp;
using zelto::test::OpenDatasetCount;
using zelto::test::Pixels;
using zelto::test::TemporaryFolder;
using zelto::test::TestDataFile;
using zelto::test::Wide;
using zelto::test::WriteFile;
using zelto::test::WriteRaster;

namespace {

/// A container of two sub-data-sets, 3 × 2 pixels of the values 5 and 6.
std::wstring WriteContainer(const TemporaryFolder& folder) {
    CGISDataSource::RegisterGDAL();
    zelto::test::WriteContainer(folder.File("two.nc"), {.width = 3, .height = 2},
                                {Pixels(6, 5.0), Pixels(6, 6.0)});
    CGISDataSource::DestroyGDAL();
    return folder.WideFile("two.nc");
}

unsigned char FirstPixel(CRasterSource& source) {
    unsigned char value = 0;
    EXPECT_EQ(source.GetPixel(&value, 0, 0, PDT_Byte), GIS_SUCCESS);
    return value;
}

/// Records every opening by path: the path and whether warping is allowed.
class WatchedSource : public CRasterSource {
  public:
    using CRasterSource::Open;
    GISError Open(const wchar_t* path, GISDataAccess access, bool allowWarp) override {
        m_openings.emplace_back(path, allowWarp);
        return CRasterSource::Open(path, access, allowWarp);
    }
    std::vector<std::pair<std::wstring, bool>> m_openings;
};

/// A raster whose metadata lists `entries` as its sub-data-sets.
void WriteList(const TemporaryFolder& folder, const std::string& name,
               const std::vector<std::string>& entries) {
    std::string items;
    for (std::size_t i = 0; i < entries.size(); ++i)
        items += "<MDI key='SUBDATASET_" + std::to_string(i + 1) + "_NAME'>" +
                 folder.File(entries[i]) + "</MDI>";
    WriteFile(folder.Path() / name,
              "<VRTDataset rasterXSize='3' rasterYSize='2'><Metadata domain='SUBDATASETS'>" +
                  items + "</Metadata><VRTRasterBand dataType='Byte' band='1'/></VRTDataset>");
}

} // namespace

TEST(Container, PlainOpeningExposesTheFirstSubDatasetOnly) {
    const TemporaryFolder folder;
    const std::wstring path = WriteContainer(folder);
    CRasterSource source;
    ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_EQ(source.GetBandCount(), 1);
    EXPECT_EQ(source.GetSubRasterCount(), 0);
    EXPECT_EQ(source.GetWidth(), 3);
    EXPECT_EQ(FirstPixel(source), 5);
    EXPECT_EQ(source.GetFilePath(), L"NETCDF:\"" + path + L"\":Band1");
    EXPECT_EQ(OpenDatasetCount(), 1);
    ASSERT_EQ(source.OpenSimple(path.c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetRasterBand(0)->GetMean(), 0.0);
    EXPECT_EQ(FirstPixel(source), 5);
}

TEST(Container, OpeningAsADatasetHoldsEverySubDataset) {
    const TemporaryFolder folder;
    const std::wstring path = WriteContainer(folder);
    CRasterSource source;
    ASSERT_EQ(source.OpenAsDataset(path.c_str(), GIS_READONLY), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOpened());
    ASSERT_EQ(source.GetSubRasterCount(), 2);
    EXPECT_EQ(FirstPixel(*source.GetSubRaster(0)), 5);
    EXPECT_EQ(FirstPixel(*source.GetSubRaster(1)), 6);
    EXPECT_EQ(source.GetSubRaster(2), nullptr);
    EXPECT_EQ(source.GetBandCount(), 0);
    EXPECT_FALSE(source.IsDataset());
    source.Close();
    EXPECT_EQ(source.GetSubRasterCount(), 0);
    EXPECT_TRUE(source.IsDataset());
    EXPECT_EQ(OpenDatasetCount(), 0);
}

TEST(Container, WithoutBandsOfItsOwnItIsNotSupportedButStaysOpen) {
    const TemporaryFolder folder;
    const std::wstring path = WriteContainer(folder);
    CRasterSource source;
    ASSERT_EQ(source.OpenAsDataset(path.c_str(), GIS_READONLY), GIS_SUCCESS);
    EXPECT_EQ(source.Reopen(GIS_READONLY, false), GIS_NOT_SUPPORTED);
    EXPECT_TRUE(source.IsOpened());
    EXPECT_EQ(source.GetBandCount(), 0);
    EXPECT_EQ(source.GetRasterBand(0), nullptr);
    EXPECT_EQ(source.GetShowBandCount(), 0);
}

TEST(Container, AMultiPageImageOpensPageByPage) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 3, .height = 2}, {Pixels(6, 5.0)});
    WriteRaster(folder.File("a.tif"),
                {.width = 4, .height = 2, .options = {"APPEND_SUBDATASET=YES"}}, {Pixels(8, 6.0)});
    CRasterSource source;
    ASSERT_EQ(source.OpenAsDataset(folder.WideFile("a.tif").c_str(), GIS_READONLY), GIS_SUCCESS);
    ASSERT_EQ(source.GetSubRasterCount(), 2);
    EXPECT_EQ(source.GetSubRaster(1)->GetWidth(), 4);
    EXPECT_EQ(FirstPixel(*source.GetSubRaster(1)), 6);
    EXPECT_EQ(source.GetBandCount(), 1);
    ASSERT_EQ(source.Open(folder.WideFile("a.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.GetWidth(), 3);
    EXPECT_EQ(source.GetSubRasterCount(), 0);
    EXPECT_TRUE(source.IsDataset());
}

TEST(Container, APlainImageOpenedAsADatasetIsItself) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 3, .height = 2}, {Pixels(6, 5.0)});
    CRasterSource source;
    ASSERT_EQ(source.OpenAsDataset(folder.WideFile("a.tif").c_str(), GIS_READONLY), GIS_SUCCESS);
    EXPECT_EQ(source.GetSubRasterCount(), 0);
    EXPECT_EQ(source.GetBandCount(), 1);
    EXPECT_FALSE(source.IsDataset());
}

TEST(Container, SubRastersTakeOverTheDisplayFlag) {
    const TemporaryFolder folder;
    const std::wstring path = WriteContainer(folder);
    CRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.OpenAsDataset(path.c_str(), GIS_READONLY), GIS_SUCCESS);
    ASSERT_EQ(source.GetSubRasterCount(), 2);
    EXPECT_EQ(source.GetSubRaster(0)->GetShowBandArray(), std::vector<int>{0});
}

TEST(Container, WhatCannotBeOpenedIsLeftOut) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 3, .height = 2}, {Pixels(6, 5.0)});
    WriteList(folder, "list.vrt", {"missing.tif", "a.tif", "a.tif"});
    CRasterSource source;
    ASSERT_EQ(source.OpenAsDataset(folder.WideFile("list.vrt").c_str(), GIS_READONLY), GIS_SUCCESS);
    EXPECT_EQ(source.GetSubRasterCount(), 2);
    EXPECT_EQ(source.Open(folder.WideFile("list.vrt").c_str(), GIS_READONLY, true),
              GIS_OPEN_FAILED);
    EXPECT_FALSE(source.IsOpened());
}

TEST(Container, TheFirstSubDatasetIsWarpedWhereAReferenceIsAsked) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"),
                {.width = 10,
                 .height = 10,
                 .geoTransform = NorthUp(500000.0, 4000000.0, 30.0),
                 .srs = "EPSG:32650"},
                {Pixels(100, 5.0)});
    WriteList(folder, "list.vrt", {"a.tif"});
    ExposedRasterSource source;
    ASSERT_EQ(source.OpenAndWarped(folder.WideFile("list.vrt").c_str(), GIS_READONLY, "EPSG:4326"),
              GIS_SUCCESS);
    EXPECT_EQ(source.GetFilePath(), folder.WideFile("a.tif"));
    EXPECT_TRUE(source.HasBase());
    EXPECT_TRUE(source.IsGeographic());
    ASSERT_EQ(source.OpenAndWarped(folder.WideFile("list.vrt").c_str(), GIS_READONLY, nullptr),
              GIS_SUCCESS);
    EXPECT_FALSE(source.HasBase());
    EXPECT_EQ(FirstPixel(source), 5);
}

TEST(Container, TheFirstSubDatasetIsOpenedThroughTheVirtualOperation) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("a.tif"), {.width = 3, .height = 2}, {Pixels(6, 5.0)});
    WriteList(folder, "list.vrt", {"a.tif"});
    WatchedSource source;
    ASSERT_EQ(source.Open(folder.WideFile("list.vrt").c_str(), GIS_READONLY, false), GIS_SUCCESS);
    ASSERT_EQ(source.m_openings.size(), 2U);
    EXPECT_EQ(source.m_openings[1].first, folder.WideFile("a.tif"));
    EXPECT_TRUE(source.m_openings[1].second) << "a sub-data-set may be warped in any case";
    ASSERT_EQ(source.Open(CDatasetOpenInfo(folder.WideFile("a.tif").c_str(), GIS_READONLY)),
              GIS_SUCCESS);
    ASSERT_EQ(source.m_openings.size(), 3U);
    EXPECT_TRUE(source.m_openings[2].second);
}

TEST(Container, ListsThatLeadBackToThemselvesEndAsAFailedOpen) {
    const TemporaryFolder folder;
    WriteList(folder, "self.vrt", {"self.vrt"});
    WriteList(folder, "a.vrt", {"b.vrt"});
    WriteList(folder, "b.vrt", {"a.vrt"});
    for (const char* name : {"self.vrt", "a.vrt"}) {
        const std::wstring path = folder.WideFile(name);
        CRasterSource source;
        EXPECT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_OPEN_FAILED);
        EXPECT_EQ(source.OpenSimple(path.c_str(), GIS_READONLY, true), GIS_OPEN_FAILED);
        EXPECT_EQ(source.OpenAndWarped(path.c_str(), GIS_READONLY, nullptr), GIS_OPEN_FAILED);
        EXPECT_EQ(source.OpenAsDataset(path.c_str(), GIS_READONLY), GIS_SUCCESS);
        source.Close();
        EXPECT_EQ(OpenDatasetCount(), 0);
    }
}

TEST(Container, ChainsOfListsEndAtSomeDepth) {
    const TemporaryFolder folder;
    WriteRaster(folder.File("0.tif"), {.width = 3, .height = 2}, {Pixels(6, 5.0)});
    WriteList(folder, "1.vrt", {"0.tif"});
    for (int i = 2; i <= 6; ++i)
        WriteList(folder, std::to_string(i) + ".vrt", {std::to_string(i - 1) + ".vrt"});
    CRasterSource source;
    EXPECT_EQ(source.Open(folder.WideFile("3.vrt").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(source.Open(folder.WideFile("6.vrt").c_str(), GIS_READONLY, true), GIS_OPEN_FAILED);
}

TEST(Container, RealContainersOpen) {
    ZELTO_REQUIRE_TEST_DATA();
    const struct {
        const char* path;
        int subRasters;
        int bandsOfFirst;
        int width;
    } files[] = {
        {"raster/src/two-subs.h5", 2, 1, 3},
        {"raster/src/reduced.nc", 4, 1, 180},
        {"raster/src/bcsd_obs_1999.nc", 2, 12, 81},
        {"raster/sci/l7_nc4.nc", 6, 1, 200},
    };
    for (const auto& file : files) {
        const std::wstring path = Wide(TestDataFile(file.path));
        CRasterSource source;
        ASSERT_EQ(source.Open(path.c_str(), GIS_READONLY, true), GIS_SUCCESS) << file.path;
        EXPECT_EQ(source.GetBandCount(), file.bandsOfFirst) << file.path;
        EXPECT_EQ(source.GetWidth(), file.width) << file.path;
        ASSERT_EQ(source.OpenAsDataset(path.c_str(), GIS_READONLY), GIS_SUCCESS) << file.path;
        ASSERT_EQ(source.GetSubRasterCount(), file.subRasters) << file.path;
        for (int i = 0; i < file.subRasters; ++i)
            EXPECT_EQ(source.GetSubRaster(i)->GetWidth(), file.width) << file.path;
    }
}

namespace {

/// A TIFF of so many pages of one pixel each, which GDAL shows as sub-data-sets.
std::string Pages(int count) {
    std::string bytes("II*\0\0\0\0\0", 8);
    const auto number = [](std::uint32_t value, int size) {
        std::string text;
        for (int i = 0; i < size; ++i)
            text += static_cast<char>(value >> (8 * i));
        return text;
    };
    std::size_t link = 4; // where the place of the next directory stands
    for (int page = 0; page < count; ++page) {
        const auto pixel = static_cast<std::uint32_t>(bytes.size());
        bytes += number(7, 2);
        bytes.replace(link, 4, number(static_cast<std::uint32_t>(bytes.size()), 4));
        // Width, height, bits, compression, photometric, offsets, samples, rows, byte counts.
        const std::pair<std::uint32_t, std::uint32_t> tags[] = {{256, 1}, {257, 1}, {258, 8},
                                                                {259, 1}, {262, 1}, {273, pixel},
                                                                {277, 1}, {278, 1}, {279, 1}};
        bytes += number(static_cast<std::uint32_t>(std::size(tags)), 2);
        constexpr std::uint32_t LONG = 4;
        for (const auto& [tag, value] : tags)
            bytes += number(tag, 2) + number(LONG, 2) + number(1, 4) + number(value, 4);
        link = bytes.size();
        bytes += number(0, 4);
    }
    return bytes;
}

} // namespace

TEST(Container, ThatHasThousandsOfSubDataSetsIsNotOpenedAsAWhole) {
    const TemporaryFolder folder;
    WriteFile(folder.File("few.tif"), Pages(20));
    WriteFile(folder.File("many.tif"), Pages(1001));
    CRasterSource source;
    EXPECT_EQ(source.OpenAsDataset(folder.WideFile("few.tif").c_str(), GIS_READONLY), GIS_SUCCESS);
    EXPECT_EQ(source.GetSubRasterCount(), 20);
    EXPECT_EQ(source.OpenAsDataset(folder.WideFile("many.tif").c_str(), GIS_READONLY),
              GIS_OPEN_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(),
              folder.File("many.tif") + ": has more than 1000 sub-data-sets");
    EXPECT_FALSE(source.IsOpened());
    // Its first one opens all the same.
    EXPECT_EQ(source.Open(folder.WideFile("many.tif").c_str(), GIS_READONLY, false), GIS_SUCCESS);
}
