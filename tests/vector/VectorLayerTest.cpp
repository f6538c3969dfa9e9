#include "zelto/vector/VectorLayer.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/vector/VectorSource.h"

#include "tests/support/TemporaryFolder.h"
#include "tests/support/VectorFile.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace zelto::test;

class VectorLayerTest : public testing::Test {
  protected:
    /// Opens a new file with these geometries and returns its layer.
    CVectorLayer& Layer(const std::vector<std::string>& wkts,
                        VectorLayout layout = {.driver = "GPKG"}) {
        const std::string name = layout.driver == "GPKG" ? "a.gpkg" : "a.shp";
        WriteVector(m_folder.File(name), layout, wkts);
        EXPECT_EQ(m_source.Open(m_folder.WideFile(name).c_str(), GIS_UPDATE, true), GIS_SUCCESS);
        return *m_source.GetVectorLayer(0);
    }
    std::vector<std::string> Geometries(CVectorLayer& layer, CBoundingBox* box) {
        const std::unique_ptr<OGRGeometry> collection(layer.GetGeometries(box));
        std::vector<std::string> wkts;
        for (const OGRGeometry* member : *collection->toGeometryCollection())
            wkts.push_back(member->exportToWkt());
        return wkts;
    }

    TemporaryFolder m_folder;
    CVectorSource m_source;
};

TEST_F(VectorLayerTest, KnowsNameExtentAndReference) {
    CVectorLayer& layer = Layer({"POINT (1 2)", "POINT (5 9)"},
                                {.driver = "GPKG", .layer = "图层", .srs = "EPSG:32650"});
    EXPECT_EQ(layer.GetLayerName(), L"图层");
    EXPECT_EQ(layer.GetExtent().m_left, 1);
    EXPECT_EQ(layer.GetExtent().m_top, 9);
    EXPECT_EQ(layer.GetExtent().m_right, 5);
    EXPECT_EQ(layer.GetExtent().m_bottom, 2);
    EXPECT_EQ(layer.GetSpatialReferenceWKT().find("PROJCS"), 0U);
    EXPECT_NE(layer.GetOGRLayer(), nullptr);
}

TEST_F(VectorLayerTest, AnEmptyLayerWithoutReferenceHasNeither) {
    CVectorLayer& layer = Layer({}, {.type = wkbPolygon});
    EXPECT_EQ(layer.GetExtent().GetWidth(), 0);
    EXPECT_EQ(layer.GetExtent().m_top, 0);
    EXPECT_TRUE(layer.GetSpatialReferenceWKT().empty());
}

TEST_F(VectorLayerTest, WithoutAnOgrLayerEveryQuestionHasAnEmptyAnswer) {
    CVectorLayer layer(nullptr);
    std::vector<std::string> names;
    EXPECT_TRUE(layer.GetLayerFieldName(names));
    EXPECT_TRUE(names.empty());
    EXPECT_FALSE(layer.CreateField(L"a", VFT_Integer));
    EXPECT_TRUE(Geometries(layer, nullptr).empty());
    EXPECT_FALSE(layer.SaveSelectedGeometrys(m_folder.File("b.shp"), {}));
    EXPECT_TRUE(layer.GetLayerName().empty());
}

TEST_F(VectorLayerTest, MultiGeometriesComeMemberByMember) {
    CVectorLayer& layer = Layer({"MULTIPOINT (1 1,2 2)", "", "LINESTRING (0 0,5 5)",
                                 "GEOMETRYCOLLECTION (POINT (3 3),MULTIPOINT (4 4,5 5))",
                                 "POLYGON ((0 0,1 0,1 1,0 0))"});
    EXPECT_EQ(Geometries(layer, nullptr),
              (std::vector<std::string>{"POINT (1 1)", "POINT (2 2)", "LINESTRING (0 0,5 5)",
                                        "POINT (3 3)", "MULTIPOINT (4 4,5 5)",
                                        "POLYGON ((0 0,1 0,1 1,0 0))"}));
}

TEST_F(VectorLayerTest, HeightsDoNotChangeTheKind) {
    CVectorLayer& layer =
        Layer({"MULTIPOLYGON Z (((0 0 1,0 1 1,1 1 1,0 0 1)))", "POINT Z (1 2 3)"});
    EXPECT_EQ(Geometries(layer, nullptr).size(), 2U);
    CBoundingBox box(1, 2, 1, 2);
    EXPECT_EQ(Geometries(layer, &box).size(), 1U);
}

TEST_F(VectorLayerTest, CurvesAreNoneOfTheKindsThatAreGiven) {
    CVectorLayer& layer = Layer({"CIRCULARSTRING (0 0,1 1,2 0)", "POINT (1 2)",
                                 "CURVEPOLYGON (CIRCULARSTRING (0 0,1 1,2 0,1 -1,0 0))"});
    EXPECT_EQ(Geometries(layer, nullptr), std::vector<std::string>{"POINT (1 2)"});
}

TEST_F(VectorLayerTest, ABoxKeepsWhatTouchesIt) {
    CVectorLayer& layer = Layer(
        {"LINESTRING (0 0,10 10)", "POINT (20 5)", "MULTIPOINT (20.5 5,15 15)", "POINT (25 25)"});
    CBoundingBox box(10, 15, 20, 5);
    EXPECT_EQ(Geometries(layer, &box), (std::vector<std::string>{"LINESTRING (0 0,10 10)",
                                                                 "POINT (20 5)", "POINT (15 15)"}));
    CBoundingBox corner(-5, 0, 0, -5);
    EXPECT_EQ(Geometries(layer, &corner), std::vector<std::string>{"LINESTRING (0 0,10 10)"});
    CBoundingBox beside(10.5, 4, 11, 0);
    EXPECT_TRUE(Geometries(layer, &beside).empty());
    // Left of everything, above and below in columns that hold something, right of everything.
    for (CBoundingBox apart : {CBoundingBox(-9, 30, -8, 0), CBoundingBox(0, 40, 30, 30),
                               CBoundingBox(0, -8, 30, -9), CBoundingBox(30, 30, 40, 0)})
        EXPECT_TRUE(Geometries(layer, &apart).empty()) << apart.m_left;
}

TEST_F(VectorLayerTest, AskingTwiceGivesTheSameTwice) {
    CVectorLayer& layer = Layer({"POINT (1 1)", "POINT (2 2)"});
    EXPECT_EQ(Geometries(layer, nullptr), Geometries(layer, nullptr));
}

TEST_F(VectorLayerTest, FieldsAreCreatedAndListedInOrder) {
    CVectorLayer& layer = Layer({"POINT (1 1)"}, {.type = wkbPoint, .fields = {{"n", OFTInteger}}});
    EXPECT_TRUE(layer.CreateField(L"real", VFT_Real));
    EXPECT_TRUE(layer.CreateField(L"text", VFT_String));
    EXPECT_FALSE(layer.CreateField(nullptr, VFT_String));
    std::vector<std::string> names = {"before"};
    EXPECT_TRUE(layer.GetLayerFieldName(names));
    EXPECT_EQ(names, (std::vector<std::string>{"before", "n", "real", "text"}));
}

TEST_F(VectorLayerTest, SelectedFeaturesAreWrittenInTheOrderGiven) {
    const std::vector<std::string> polygons = {"POLYGON ((0 0,0 1,1 1,0 0))",
                                               "POLYGON ((5 5,5 6,6 6,5 5))",
                                               "POLYGON ((8 8,8 9,9 9,8 8))"};
    CVectorLayer& layer =
        Layer(polygons, {.type = wkbPolygon, .fields = {{"n", OFTInteger}, {"text", OFTString}}});
    ASSERT_TRUE(layer.SaveSelectedGeometrys(m_folder.File("out.shp"), {2, 0}));
    EXPECT_EQ(ReadGeometries(m_folder.File("out.shp")),
              (std::vector<std::string>{polygons[2], polygons[0]}));
    GDALDatasetUniquePtr out(GDALDataset::Open(m_folder.File("out.shp").c_str(), GDAL_OF_VECTOR));
    const OGRFeatureUniquePtr first(out->GetLayer(0)->GetFeature(0));
    EXPECT_EQ(first->GetFieldAsInteger("n"), 2);
    EXPECT_STREQ(first->GetFieldAsString("text"), "2.1");
    EXPECT_EQ(out->GetLayer(0)->GetSpatialRef(), nullptr);
}

TEST_F(VectorLayerTest, SelectedFeaturesKeepTheValuesOfFieldsWithLongNames) {
    CVectorLayer& layer = Layer({"POLYGON ((0 0,0 1,1 1,0 0))", "POLYGON ((5 5,5 6,6 6,5 5))"},
                                {.driver = "GPKG",
                                 .type = wkbPolygon,
                                 .fields = {{"population_before", OFTString},
                                            {"population_after", OFTString},
                                            {"short", OFTInteger}}});
    // Features of this format are numbered from 1.
    ASSERT_TRUE(layer.SaveSelectedGeometrys(m_folder.File("out.shp"), {2}));
    GDALDatasetUniquePtr out(GDALDataset::Open(m_folder.File("out.shp").c_str(), GDAL_OF_VECTOR));
    ASSERT_NE(out, nullptr);
    const OGRFeatureUniquePtr feature(out->GetLayer(0)->GetFeature(0));
    ASSERT_EQ(feature->GetFieldCount(), 3);
    EXPECT_STREQ(feature->GetFieldAsString(0), "1.0");
    EXPECT_STREQ(feature->GetFieldAsString(1), "1.1");
    EXPECT_EQ(feature->GetFieldAsInteger(2), 1);
}

TEST_F(VectorLayerTest, FieldsThatAShapefileCannotHoldAreLeftOut) {
    WriteFile(m_folder.File("a.geojson"),
              R"({"type":"FeatureCollection","features":[{"type":"Feature",)"
              R"("properties":{"tags":["x","y"],"n":5},"geometry":{"type":"Polygon",)"
              R"("coordinates":[[[0,0],[0,1],[1,1],[0,0]]]}}]})");
    CVectorSource source;
    ASSERT_EQ(source.Open(m_folder.WideFile("a.geojson").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    ASSERT_TRUE(source.GetVectorLayer(0)->SaveSelectedGeometrys(m_folder.File("out.shp"), {0}));
    GDALDatasetUniquePtr out(GDALDataset::Open(m_folder.File("out.shp").c_str(), GDAL_OF_VECTOR));
    ASSERT_NE(out, nullptr);
    const OGRFeatureUniquePtr feature(out->GetLayer(0)->GetFeature(0));
    ASSERT_EQ(feature->GetFieldCount(), 1);
    EXPECT_EQ(feature->GetFieldAsInteger("n"), 5);
}

TEST_F(VectorLayerTest, AMissingFeatureOrPlaceFailsAndLeavesTheOldFile) {
    const std::string polygon = "POLYGON ((0 0,0 1,1 1,0 0))";
    CVectorLayer& layer = Layer({polygon}, {.type = wkbPolygon});
    ASSERT_TRUE(layer.SaveSelectedGeometrys(m_folder.File("out.shp"), {0}));
    EXPECT_FALSE(layer.SaveSelectedGeometrys(m_folder.File("out.shp"), {0, 9}));
    EXPECT_NE(CGISDataSource::GetLastErrorText().find("out.shp: the layer has no feature 9"),
              std::string::npos)
        << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(ReadGeometries(m_folder.File("out.shp")), std::vector<std::string>{polygon});
    EXPECT_FALSE(layer.SaveSelectedGeometrys(m_folder.File("missing/out.shp"), {0}));
    EXPECT_FALSE(layer.SaveSelectedGeometrys("", {0}));
}

TEST_F(VectorLayerTest, WithoutTheShapefileDriverNothingIsSavedAndTheReasonTold) {
    CVectorLayer& layer = Layer({"POLYGON ((0 0,0 1,1 1,0 0))"});
    // Else the driver is registered anew.
    const CPLConfigOptionSetter skipped("OGR_SKIP", "ESRI Shapefile", false);
    const WithoutShapefileDriver without;
    CGISDataSource::ClearLastErrorText();
    EXPECT_FALSE(layer.SaveSelectedGeometrys(m_folder.File("out.shp"), {1}));
    EXPECT_EQ(CGISDataSource::GetLastErrorText().find(m_folder.File("out.shp") + ": "), 0U)
        << CGISDataSource::GetLastErrorText();
    EXPECT_EQ(m_folder.Names(), std::vector<std::string>{"a.gpkg"});
}

TEST_F(VectorLayerTest, CopiesShareTheOgrLayerAndOwnTheRest) {
    CVectorLayer& layer = Layer({"POINT (1 1)"}, {.driver = "GPKG", .srs = "EPSG:4326"});
    CClassifyDisplayTable table;
    table.SetMinMaxValue(3, 4);
    layer.SetClassifyDisplayTable(&table);
    layer.SetClassifyFieldNum(2);
    layer.m_style.m_text1 = L"one";
    layer.m_label.m_fontName = L"Song";
    auto copy = std::make_unique<CVectorLayer>(layer);
    CVectorLayer assigned(nullptr);
    assigned = *copy;
    assigned = *&assigned;
    EXPECT_NE(copy->GetClassifyDisplayTable(), layer.GetClassifyDisplayTable());
    copy.reset();
    EXPECT_EQ(assigned.GetOGRLayer(), layer.GetOGRLayer());
    EXPECT_EQ(assigned.GetLayerName(), layer.GetLayerName());
    EXPECT_EQ(assigned.GetSpatialReferenceWKT(), layer.GetSpatialReferenceWKT());
    EXPECT_EQ(assigned.GetClassifyFieldNum(), 2);
    EXPECT_EQ(assigned.GetClassifyDisplayTable()->GetMaxValue(), 4);
    EXPECT_EQ(assigned.m_style.m_text1, L"one");
    EXPECT_EQ(assigned.m_label.m_fontName, L"Song");
    EXPECT_EQ(assigned.GetExtent().m_left, 1);
}

} // namespace
