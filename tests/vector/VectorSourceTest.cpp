#include "zelto/vector/VectorSource.h"

#include "tests/support/NamedPipe.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"
#include "tests/support/VectorFile.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace zelto::test;

constexpr const char* SQUARE = "POLYGON ((0 0,10 0,10 10,0 10,0 0))";
constexpr const char* FAR_SQUARE = "POLYGON ((20 20,30 20,30 40,20 40,20 20))";

class VectorSourceTest : public testing::Test {
  protected:
    GISError Open(CVectorSource& source, const std::string& name,
                  GISDataAccess access = GIS_READONLY) {
        return source.Open(m_folder.WideFile(name).c_str(), access, false);
    }
    GISError Create(CVectorSource& source, VectorDataFormat format, const std::string& name,
                    const char* wkt = nullptr) {
        return source.CreateDataSource(format, m_folder.WideFile(name).c_str(), wkt);
    }

    TemporaryFolder m_folder;
};

void ExpectBox(const CBoundingBox& box, double left, double top, double right, double bottom) {
    EXPECT_EQ(box.m_left, left);
    EXPECT_EQ(box.m_top, top);
    EXPECT_EQ(box.m_right, right);
    EXPECT_EQ(box.m_bottom, bottom);
}

TEST_F(VectorSourceTest, StartsClosed) {
    CVectorSource source;
    EXPECT_EQ(source.CGISDataSource::GetDataSourceType(), DS_VECTOR);
    EXPECT_FALSE(source.IsOpened());
    EXPECT_EQ(source.GetLayerCount(), 0);
    EXPECT_EQ(source.GetVectorLayer(0), nullptr);
    EXPECT_EQ(source.GetOGRDataSource(), nullptr);
    EXPECT_EQ(source.CreateLayer(L"layer", "", VGT_Polygon), nullptr);
}

TEST_F(VectorSourceTest, TakesExtentAndReferenceFromItsLayer) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon, .srs = "EPSG:4326"},
                {SQUARE, FAR_SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.shp"), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOpened());
    EXPECT_EQ(source.GetLayerCount(), 1);
    EXPECT_EQ(source.GetFileName(), L"a.shp");
    EXPECT_EQ(source.GetFilePath(), m_folder.WideFile("a.shp"));
    ExpectBox(source.GetExtent(), 0, 40, 30, 0);
    const CVectorLayer* layer = source.GetVectorLayer(0);
    ASSERT_NE(layer, nullptr);
    ExpectBox(layer->GetExtent(), 0, 40, 30, 0);
    EXPECT_EQ(source.GetSpatialReferenceWKT(), layer->GetSpatialReferenceWKT());
    EXPECT_NE(source.GetSpatialReferenceWKT().find("WGS"), std::string::npos);
    EXPECT_TRUE(source.IsGeographic());
    EXPECT_EQ(source.GetVectorLayer(-1), nullptr);
    EXPECT_EQ(source.GetVectorLayer(1), nullptr);
    EXPECT_NE(source.GetOGRDataSource(), nullptr);
}

TEST_F(VectorSourceTest, TheExtentCoversAllLayersAndTheReferenceIsTheFirsts) {
    std::filesystem::create_directory(m_folder.File("dir"));
    WriteVector(m_folder.File("dir/a.shp"), {.type = wkbPolygon, .srs = "EPSG:32650"}, {SQUARE});
    WriteVector(m_folder.File("dir/b.shp"), {.type = wkbPolygon, .srs = "EPSG:4326"}, {FAR_SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "dir"), GIS_SUCCESS);
    ASSERT_EQ(source.GetLayerCount(), 2);
    ExpectBox(source.GetExtent(), 0, 40, 30, 0);
    EXPECT_EQ(source.GetSpatialReferenceWKT(), source.GetVectorLayer(0)->GetSpatialReferenceWKT());
    EXPECT_NE(source.GetVectorLayer(0)->GetSpatialReferenceWKT(),
              source.GetVectorLayer(1)->GetSpatialReferenceWKT());
}

TEST_F(VectorSourceTest, WhatOgrCannotOpenFails) {
    CVectorSource source;
    EXPECT_EQ(Open(source, "missing.shp"), GIS_FAILED);
    EXPECT_EQ(source.GetFilePath(), m_folder.WideFile("missing.shp"));
    WriteFile(m_folder.File("text.shp"), "this is no shapefile");
    EXPECT_EQ(Open(source, "text.shp"), GIS_FAILED);
    EXPECT_FALSE(source.IsOpened());
    EXPECT_EQ(source.Open(nullptr, GIS_READONLY, false), GIS_FAILED);
    EXPECT_EQ(source.Open(SampleScene().empty() ? L"" : L"x.tif", GIS_READONLY, false), GIS_FAILED);
}

TEST_F(VectorSourceTest, TheReasonOfAFailureNamesTheFile) {
    const auto reason = [] { return CGISDataSource::GetLastErrorText(); };
    const EndsSoon endsSoon;
    CVectorSource source;
    MakePipe(m_folder.File("pipe.shp"));
    EXPECT_EQ(Open(source, "pipe.shp"), GIS_FAILED);
    EXPECT_EQ(reason(), m_folder.File("pipe.shp") + ": not a regular file");
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    std::filesystem::remove(m_folder.File("a.dbf"));
    MakePipe(m_folder.File("a.dbf"));
    EXPECT_EQ(Open(source, "a.shp"), GIS_FAILED);
    EXPECT_EQ(reason(), m_folder.File("a.dbf") + ": not a regular file");
    EXPECT_EQ(Open(source, "missing.shp"), GIS_FAILED);
    EXPECT_EQ(reason(), m_folder.File("missing.shp") + ": No such file or directory");
    // The driver answers that it has made the data source; its layer finds that there is none.
    EXPECT_EQ(Create(source, VDF_SHAPEFILE, "no/such/new.shp"), GIS_SUCCESS);
    EXPECT_EQ(source.CreateLayer(L"new", nullptr, VGT_Polygon), nullptr);
    EXPECT_EQ(reason().rfind(m_folder.File("no/such/new.shp") + ": ", 0), 0U) << reason();
}

TEST_F(VectorSourceTest, OpensForUpdateExactlyWhenAsked) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.shp"), GIS_SUCCESS);
    EXPECT_EQ(source.GetAccess(), GIS_READONLY);
    EXPECT_FALSE(source.GetVectorLayer(0)->CreateField(L"name", VFT_String));
    ASSERT_EQ(Open(source, "a.shp", GIS_UPDATE), GIS_SUCCESS);
    EXPECT_EQ(source.GetAccess(), GIS_UPDATE);
    EXPECT_TRUE(source.GetVectorLayer(0)->CreateField(L"name", VFT_String));
}

TEST_F(VectorSourceTest, OpensTheMainFileOfAnInfo) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    CVectorSource source;
    EXPECT_EQ(source.Open(CDatasetOpenInfo(m_folder.WideFile("a.shp").c_str(), GIS_UPDATE)),
              GIS_SUCCESS);
    EXPECT_EQ(source.GetAccess(), GIS_UPDATE);
    EXPECT_EQ(source.GetLayerCount(), 1);
}

TEST_F(VectorSourceTest, CloseKeepsTheLayerCountAndHandsOutNoLayer) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.shp"), GIS_SUCCESS);
    source.Close();
    EXPECT_FALSE(source.IsOpened());
    EXPECT_EQ(source.GetLayerCount(), 1);
    EXPECT_EQ(source.GetVectorLayer(0), nullptr);
    source.Close();
}

TEST_F(VectorSourceTest, CreatedLayersAreSeenAfterReopening) {
    CVectorSource source;
    ASSERT_EQ(Create(source, VDF_SHAPEFILE, "new.shp", "EPSG:4326"), GIS_SUCCESS);
    EXPECT_TRUE(source.IsOpened());
    EXPECT_EQ(source.GetFileName(), L"new.shp");
    EXPECT_EQ(source.GetSpatialReferenceWKT(), "EPSG:4326");
    EXPECT_FALSE(source.IsGeographic()) << "the reference itself is not updated";
    CVectorLayer* layer = source.CreateLayer(L"any", "EPSG:4326", VGT_Polygon);
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->GetLayerName(), L"new");
    EXPECT_NE(layer->GetSpatialReferenceWKT().find("GEOGCS"), std::string::npos);
    EXPECT_TRUE(layer->CreateField(L"name", VFT_String));
    EXPECT_EQ(source.GetLayerCount(), 0);
    EXPECT_EQ(source.GetVectorLayer(0), nullptr);
    EXPECT_EQ(source.CreateLayer(nullptr, "", VGT_Polygon), nullptr);
    source.Close();
    ASSERT_EQ(Open(source, "new.shp"), GIS_SUCCESS);
    EXPECT_EQ(source.GetLayerCount(), 1);
    std::vector<std::string> names;
    EXPECT_TRUE(source.GetVectorLayer(0)->GetLayerFieldName(names));
    EXPECT_EQ(names, std::vector<std::string>{"name"});
}

TEST_F(VectorSourceTest, CreatingReplacesWhatIsThere) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon, .srs = "EPSG:4326"}, {SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.shp"), GIS_SUCCESS);
    ASSERT_EQ(Create(source, VDF_SHAPEFILE, "a.shp"), GIS_SUCCESS);
    ASSERT_NE(source.CreateLayer(L"a", nullptr, VGT_Point), nullptr);
    source.Close();
    EXPECT_TRUE(ReadGeometries(m_folder.File("a.shp")).empty());
    EXPECT_FALSE(std::filesystem::exists(m_folder.File("a.prj")));
}

TEST_F(VectorSourceTest, WithoutADriverThatCreatesNothingIsSupported) {
    CVectorSource source;
    EXPECT_EQ(Create(source, VDF_AOI, "a.aif"), GIS_NOT_SUPPORTED);
    EXPECT_EQ(Create(source, VectorDataFormat(0), "a.shp"), GIS_NOT_SUPPORTED);
    EXPECT_EQ(source.CreateDataSource(VDF_SHAPEFILE, nullptr, nullptr), GIS_FAILED);
}

TEST_F(VectorSourceTest, ADriverThatOnlyReadsIsNotSupportedAndTheSourceStaysOpen) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    WriteFile(m_folder.File("a.ovf"), "<OGRVRTDataSource><OGRVRTLayer name=\"a\"><SrcDataSource>" +
                                          m_folder.File("a.shp") +
                                          "</SrcDataSource></OGRVRTLayer></OGRVRTDataSource>");
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.ovf"), GIS_SUCCESS);
    EXPECT_EQ(Create(source, VDF_AOI, "b.ovf"), GIS_NOT_SUPPORTED);
    EXPECT_TRUE(source.IsOpened());
    EXPECT_NE(source.GetVectorLayer(0), nullptr);
    EXPECT_EQ(source.GetFileName(), L"a.ovf");
}

TEST_F(VectorSourceTest, ADriverOfRastersOnlyIsNotSupported) {
    struct OwnKind : CVectorSource {
        OwnKind() { m_driver = GetGDALDriverManager()->GetDriverByName("GTiff"); }
    };
    OwnKind source;
    ASSERT_TRUE(CPLFetchBool(GetGDALDriverManager()->GetDriverByName("GTiff")->GetMetadata(),
                             GDAL_DCAP_CREATE, false));
    EXPECT_EQ(Create(source, VDF_AOI, "a.tif"), GIS_NOT_SUPPORTED);
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(VectorSourceTest, WithoutTheShapefileDriverShapefilesAreNotSupported) {
    CVectorSource source;
    const WithoutShapefileDriver without;
    EXPECT_EQ(Create(source, VDF_SHAPEFILE, "a.shp"), GIS_NOT_SUPPORTED);
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(VectorSourceTest, AnotherFormatKeepsTheDriverOfTheLastOpen) {
    WriteVector(m_folder.File("a.geojson"), {.driver = "GeoJSON"}, {SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.geojson"), GIS_SUCCESS);
    ASSERT_EQ(Create(source, VDF_AOI, "b.geojson"), GIS_SUCCESS);
    EXPECT_STREQ(source.GetOGRDataSource()->GetDriver()->GetDescription(), "GeoJSON");
    EXPECT_NE(source.CreateLayer(L"b", nullptr, VGT_Polygon), nullptr);
}

TEST_F(VectorSourceTest, WhatCannotBeCreatedFails) {
    WriteFile(m_folder.File("file"), "x");
    CVectorSource source;
    EXPECT_EQ(Create(source, VDF_SHAPEFILE, "file/below/a"), GIS_FAILED);
    EXPECT_FALSE(source.IsOpened());
}

TEST_F(VectorSourceTest, AssignmentTakesPathAndReferenceTextOnly) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon, .srs = "EPSG:4326"}, {SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.shp"), GIS_SUCCESS);
    CVectorSource other;
    other = source;
    EXPECT_EQ(other.GetFilePath(), source.GetFilePath());
    EXPECT_EQ(other.GetSpatialReferenceWKT(), source.GetSpatialReferenceWKT());
    EXPECT_TRUE(other.GetFileName().empty());
    EXPECT_FALSE(other.IsOpened());
    EXPECT_TRUE(source.IsOpened());
}

TEST_F(VectorSourceTest, AssignmentToItselfChangesNothing) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.shp"), GIS_SUCCESS);
    source = *&source;
    EXPECT_EQ(source.GetFilePath(), m_folder.WideFile("a.shp"));
    EXPECT_NE(source.GetVectorLayer(0), nullptr);
}

TEST_F(VectorSourceTest, WithoutLayersHasNeitherExtentNorReference) {
    WriteFile(m_folder.File("none.vrt"), "<OGRVRTDataSource></OGRVRTDataSource>");
    CVectorSource source;
    ASSERT_EQ(Open(source, "none.vrt"), GIS_SUCCESS) << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(source.GetLayerCount(), 0);
    EXPECT_EQ(source.GetVectorLayer(0), nullptr);
    ExpectBox(source.GetExtent(), 0, 0, 0, 0);
    EXPECT_TRUE(source.GetSpatialReferenceWKT().empty());
}

TEST_F(VectorSourceTest, HasNoDisplaySettingToCopy) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    CVectorSource source;
    ASSERT_EQ(Open(source, "a.shp"), GIS_SUCCESS);
    CVectorSource other;
    other.SetVisible(false);
    source.CopyDisplaySetting(&other);
    source.CopyDisplaySetting(nullptr);
    EXPECT_TRUE(source.IsVisible());
    EXPECT_NE(source.GetVectorLayer(0), nullptr);
}

TEST_F(VectorSourceTest, EveryRealFileOpensOrFailsCleanly) {
    ZELTO_REQUIRE_TEST_DATA();
    int opened = 0;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(TestDataFile("vector"))) {
        CVectorSource source;
        if (source.Open(Wide(entry.path().string()).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            continue;
        ++opened;
        for (int i = 0; i < source.GetLayerCount(); ++i) {
            const std::unique_ptr<OGRGeometry> all(
                source.GetVectorLayer(i)->GetGeometries(nullptr));
            CBoundingBox extent = source.GetVectorLayer(i)->GetExtent();
            const std::unique_ptr<OGRGeometry> within(
                source.GetVectorLayer(i)->GetGeometries(&extent));
            EXPECT_LE(within->toGeometryCollection()->getNumGeometries(),
                      all->toGeometryCollection()->getNumGeometries());
        }
    }
    EXPECT_GT(opened, 60);
}

} // namespace
