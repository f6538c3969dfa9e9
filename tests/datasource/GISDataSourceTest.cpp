#include "zelto/datasource/GISDataSource.h"

#include "tests/datasource/PlainDataSource.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <vector>

using zelto::test::PlainDataSource;
using zelto::test::ReadFile;
using zelto::test::SlotOf;
using zelto::test::TemporaryFolder;

TEST(DataSource, StartsEmptyVisibleAndClosed) {
    const PlainDataSource source;
    EXPECT_EQ(source.GetAccess(), GIS_READONLY);
    EXPECT_EQ(source.GetFileName(), L"");
    EXPECT_EQ(source.GetFilePath(), L"");
    EXPECT_EQ(source.GetDescription(), L"");
    EXPECT_EQ(source.GetSpatialReferenceWKT(), "");
    EXPECT_EQ(source.GetCoordinateNameNew(), L"");
    EXPECT_EQ(source.GetLeft(), 0.0);
    EXPECT_EQ(source.GetTop(), 0.0);
    EXPECT_EQ(source.GetRight(), 0.0);
    EXPECT_EQ(source.GetBottom(), 0.0);
    EXPECT_EQ(source.GetDisplayType(), DISPLAY_DEFAULT);
    EXPECT_FALSE(source.IsChanged());
    EXPECT_FALSE(source.IsSelected());
    EXPECT_NE(source.Reference(), nullptr);
    PlainDataSource visible;
    EXPECT_TRUE(visible.IsVisible());
}

TEST(DataSource, KeepsWhatTheHostSets) {
    PlainDataSource source;
    source.SetFilePath(L"/影像/a.tif");
    source.SetVisible(false);
    source.SetChanged(true);
    source.SetSelected(true);
    source.SetDisplayType(DISPLAY_CLASSIFIED);
    EXPECT_EQ(source.GetFilePath(), L"/影像/a.tif");
    EXPECT_FALSE(source.IsVisible());
    EXPECT_TRUE(source.IsChanged());
    EXPECT_TRUE(source.IsSelected());
    EXPECT_EQ(source.GetDisplayType(), DISPLAY_CLASSIFIED);
}

TEST(DataSource, ReportsTheSidesOfItsExtent) {
    PlainDataSource source;
    source.SetExtent(CBoundingBox(1.0, 8.0, 5.0, 2.0));
    EXPECT_EQ(source.GetLeft(), 1.0);
    EXPECT_EQ(source.GetTop(), 8.0);
    EXPECT_EQ(source.GetRight(), 5.0);
    EXPECT_EQ(source.GetBottom(), 2.0);
    EXPECT_EQ(source.GetExtent().GetRight(), 5.0);
}

TEST(DataSource, OnlyThePlainLowerCaseExtensionShpIsVector) {
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L"/data/roads.shp"), DS_VECTOR);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L"/data/roads.SHP"), DS_RASTER);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L"/data/roads.shpx"), DS_RASTER);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L"/data/roads.sh"), DS_RASTER);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L"/data/image.tif"), DS_RASTER);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L"/data.shp/image"), DS_RASTER);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L"shp"), DS_RASTER);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(L""), DS_RASTER);
    EXPECT_EQ(CGISDataSource::GetDataSourceType(nullptr), DS_RASTER);
}

TEST(DataSource, SourcesWithTheSamePathAreEqualWhetherOpenOrNot) {
    PlainDataSource a;
    PlainDataSource b;
    EXPECT_TRUE(a == b);
    a.SetFilePath(L"/data/a.tif");
    EXPECT_FALSE(a == b);
    b.SetFilePath(L"/data/a.tif");
    b.m_opened = true;
    b.SetChanged(true);
    EXPECT_TRUE(a == b);
    b.SetFilePath(L"/data/A.tif");
    EXPECT_FALSE(a == b);
}

TEST(DataSource, AssignedToItselfStaysAsItIs) {
    PlainDataSource a("EPSG:4326");
    a.SetFilePath(L"/data/a.tif");
    const CGISDataSource& same = a;
    static_cast<CGISDataSource&>(a) = same;
    EXPECT_EQ(a.GetFilePath(), L"/data/a.tif");
    EXPECT_EQ(a.GetSpatialReferenceWKT(), "EPSG:4326");
}

TEST(DataSource, OfNoFurtherKindTakesNoDisplaySettings) {
    PlainDataSource a;
    PlainDataSource b;
    b.SetDisplayType(DISPLAY_CLASSIFIED);
    b.SetVisible(false);
    a.CopyDisplaySetting(&b);
    EXPECT_EQ(a.GetDisplayType(), DISPLAY_DEFAULT);
    EXPECT_TRUE(a.IsVisible());
}

TEST(DataSource, AssignmentTakesOverPathAndWktOnly) {
    PlainDataSource a("EPSG:4326");
    a.SetFilePath(L"/data/a.tif");
    a.SetExtent(CBoundingBox(1.0, 4.0, 3.0, 2.0));
    a.SetVisible(false);
    a.SetChanged(true);
    a.SetSelected(true);
    a.SetDisplayType(DISPLAY_CLASSIFIED);

    PlainDataSource b;
    OGRSpatialReference* const handle = b.Reference();
    static_cast<CGISDataSource&>(b) = a;
    EXPECT_EQ(b.GetFilePath(), L"/data/a.tif");
    EXPECT_EQ(b.GetSpatialReferenceWKT(), "EPSG:4326");
    EXPECT_EQ(b.Reference(), handle);
    EXPECT_FALSE(b.IsGeographic());
    EXPECT_EQ(b.GetCoordinateNameNew(), L"");
    EXPECT_EQ(b.GetRight(), 0.0);
    EXPECT_TRUE(b.IsVisible());
    EXPECT_FALSE(b.IsChanged());
    EXPECT_FALSE(b.IsSelected());
    EXPECT_EQ(b.GetDisplayType(), DISPLAY_DEFAULT);
}

TEST(DataSource, AssignmentToItselfAndDisplaySettingsOfOthersChangeNothing) {
    PlainDataSource source("EPSG:4326");
    source.SetFilePath(L"/data/a.tif");
    CGISDataSource& base = source;
    base = *&base;
    PlainDataSource other;
    other.SetVisible(false);
    other.SetDisplayType(DISPLAY_CLASSIFIED);
    source.CopyDisplaySetting(&other);
    EXPECT_EQ(source.GetFilePath(), L"/data/a.tif");
    EXPECT_EQ(source.GetSpatialReferenceWKT(), "EPSG:4326");
    EXPECT_TRUE(source.IsVisible());
    EXPECT_EQ(source.GetDisplayType(), DISPLAY_DEFAULT);
}

TEST(DataSource, CopyTakesEveryMemberAndSharesTheReference) {
    // The copy does not count as a source but its end does; this keeps the count above zero.
    CGISDataSource::RegisterGDAL();
    PlainDataSource a("EPSG:4326");
    a.SetFilePath(L"/data/a.tif");
    a.SetSelected(true);
    {
        const PlainDataSource copy(a);
        EXPECT_EQ(copy.Reference(), a.Reference());
        EXPECT_EQ(copy.GetFilePath(), L"/data/a.tif");
        EXPECT_EQ(copy.GetCoordinateNameNew(), L"WGS 84 (WGS_1984/WGS 84)");
        EXPECT_TRUE(copy.IsSelected());
    }
    EXPECT_TRUE(a.IsGeographic());
}

TEST(DataSource, WktIsWrittenAsItIsOverAnOlderText) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.prj");
    zelto::test::WriteFile(path, "an older and longer text");
    CGISDataSource::WriteWkt(path.c_str(), "GEOGCS[\"x\"]");
    EXPECT_EQ(ReadFile(path), "GEOGCS[\"x\"]");
    CGISDataSource::WriteWkt(folder.File("missing/a.prj").c_str(), "x");
    CGISDataSource::WriteWkt(nullptr, "x");
    CGISDataSource::WriteWkt(path.c_str(), nullptr);
    EXPECT_EQ(ReadFile(path), "GEOGCS[\"x\"]");
}

TEST(DataSource, WorldFileStandsBesideTheImageWithTheExtensionTfw) {
    const TemporaryFolder folder;
    std::array<double, 6> geoTransform = {500000.0, 30.0, 0.0, 4000000.0, 0.0, -30.0};
    EXPECT_TRUE(CGISDataSource::WriteGeotransformToWorldFile(folder.File("a.img").c_str(),
                                                             geoTransform.data()));
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.tfw"});
    // A world file names the centre of the first pixel.
    EXPECT_EQ(ReadFile(folder.Path() / "a.tfw"),
              "30.0000000000\n0.0000000000\n0.0000000000\n-30.0000000000\n"
              "500015.0000000000\n3999985.0000000000\n");
    EXPECT_FALSE(CGISDataSource::WriteGeotransformToWorldFile(folder.File("missing/a.img").c_str(),
                                                              geoTransform.data()));
    EXPECT_FALSE(CGISDataSource::WriteGeotransformToWorldFile(nullptr, geoTransform.data()));
    EXPECT_FALSE(
        CGISDataSource::WriteGeotransformToWorldFile(folder.File("b.tif").c_str(), nullptr));
}

TEST(DataSource, FilesAreWrittenThroughAnObjectToo) {
    const TemporaryFolder folder;
    std::array<double, 6> geoTransform = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    PlainDataSource source;
    source.WriteWkt(folder.File("a.prj").c_str(), "x");
    EXPECT_TRUE(
        source.WriteGeotransformToWorldFile(folder.File("a.tif").c_str(), geoTransform.data()));
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.prj", "a.tfw"}));
}

TEST(DataSource, VirtualOperationsStandInTheirSlots) {
    using OpenInfo = GISError (CGISDataSource::*)(CDatasetOpenInfo);
    using OpenPath = GISError (CGISDataSource::*)(const wchar_t*, GISDataAccess, bool);
    EXPECT_EQ(SlotOf(static_cast<OpenInfo>(&CGISDataSource::Open)), 2);
    EXPECT_EQ(SlotOf(static_cast<OpenPath>(&CGISDataSource::Open)), 3);
    EXPECT_EQ(SlotOf(&CGISDataSource::Close), 4);
    EXPECT_EQ(SlotOf(&CGISDataSource::SetVisible), 5);
    EXPECT_EQ(SlotOf(&CGISDataSource::IsVisible), 6);
    EXPECT_EQ(SlotOf(&CGISDataSource::CopyDisplaySetting), 7);
    EXPECT_EQ(SlotOf(&CGISDataSource::IsOpened), 8);
}

TEST(DataSource, EnumerationsHaveTheirFixedValues) {
    EXPECT_EQ(GIS_SUCCESS, 0);
    EXPECT_EQ(GIS_OPEN_FAILED, 2);
    EXPECT_EQ(GIS_NOT_SUPPORTED, 3);
    EXPECT_EQ(GIS_FAILED, 4);
    EXPECT_EQ(GIS_READONLY, 0);
    EXPECT_EQ(GIS_UPDATE, 1);
    EXPECT_EQ(DS_RASTER, 1);
    EXPECT_EQ(DS_VECTOR, 2);
    EXPECT_EQ(DS_AOI, 3);
    EXPECT_EQ(DISPLAY_DEFAULT, 0);
    EXPECT_EQ(DISPLAY_CLASSIFIED, 2);
    EXPECT_EQ(sizeof(GISError), 4U);
    EXPECT_EQ(sizeof(GISDataAccess), 4U);
    EXPECT_EQ(sizeof(GISDataSourceType), 4U);
    EXPECT_EQ(sizeof(DataDisplayType), 4U);
}

TEST(DataSource, PixelTypesAreNumberedAsGdals) {
    const PixelDataType types[] = {PDT_Unknown, PDT_Byte,  PDT_UInt16,  PDT_Int16,
                                   PDT_UInt32,  PDT_Int32, PDT_Float32, PDT_Float64};
    const GDALDataType gdals[] = {GDT_Unknown, GDT_Byte,  GDT_UInt16,  GDT_Int16,
                                  GDT_UInt32,  GDT_Int32, GDT_Float32, GDT_Float64};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(static_cast<int>(types[i]), i);
        EXPECT_EQ(static_cast<int>(gdals[i]), i);
    }
}

TEST(DataSource, FormatsAreNumberedInTheirOrder) {
    const RasterDataFormat formats[] = {RDF_Unknown,
                                        RDF_AAIGrid,
                                        RDF_ADRG,
                                        RDF_BLX,
                                        RDF_BMP,
                                        RDF_BT,
                                        RDF_DTED,
                                        RDF_ECW,
                                        RDF_EHDR,
                                        RDF_ELAS,
                                        RDF_ENVI,
                                        RDF_ERS,
                                        RDF_FIT,
                                        RDF_GIF,
                                        RDF_GSAG,
                                        RDF_GSBG,
                                        RDF_GSC,
                                        RDF_GTX,
                                        RDF_IDA,
                                        RDF_ILWIS,
                                        RDF_HFA,
                                        RDF_INGR,
                                        RDF_JPEG,
                                        RDF_JPEG2000,
                                        RDF_MEM,
                                        RDF_MFF,
                                        RDF_NITF,
                                        RDF_NTv2,
                                        RDF_PAux,
                                        RDF_PCIDSK,
                                        RDF_PCRaster,
                                        RDF_PNG,
                                        RDF_PNM,
                                        RDF_RMF,
                                        RDF_RMF2,
                                        RDF_SAGA,
                                        RDF_SGI,
                                        RDF_SRTMHGT,
                                        RDF_GTiff,
                                        RDF_GTiffVariant39,
                                        RDF_GTiffVariant40,
                                        RDF_TSX,
                                        RDF_USGSDEM,
                                        RDF_VRT,
                                        RDF_XPM,
                                        RDF_XYZ};
    ASSERT_EQ(std::size(formats), 46U);
    for (int i = 0; i < 46; ++i)
        EXPECT_EQ(static_cast<int>(formats[i]), i);
    EXPECT_EQ(RDF_HFA, 20);
    EXPECT_EQ(RDF_GTiff, 38);
}

TEST(DataSource, MembersStandInTheirOrder) {
    class Opened : public PlainDataSource {
      public:
        std::vector<const void*> Members() const {
            return {&m_access,      &m_fileName,         &m_filePath,    &m_visible,
                    &m_description, &m_dataSourceType,   &m_wkt,         &m_coordinateName,
                    &m_extent,      &m_spatialReference, &m_displayType, &m_forDisplay,
                    &m_changed,     &m_selected};
        }
        bool IsForDisplay() const { return m_forDisplay; }
    };
    Opened source;
    const std::vector<const void*> members = source.Members();
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end(), std::less<>()));
    EXPECT_FALSE(source.IsForDisplay());
    source.SetForDisplay(true);
    EXPECT_TRUE(source.IsForDisplay());
}
