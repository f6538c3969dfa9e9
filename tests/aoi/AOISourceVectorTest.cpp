#include "zelto/aoi/AOISource.h"

#include "tests/aoi/Shapes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using namespace zelto::test;

constexpr const char* SQUARE = "POLYGON ((0 0,0 10,10 10,10 0,0 0))";

class AOISourceVector : public testing::Test {
  protected:
    GISError Open(const std::string& name) {
        return m_source.Open(m_folder.WideFile(name).c_str(), GIS_READONLY, false);
    }
    /// Opens a new file that holds these geometries.
    GISError OpenWith(const std::vector<std::string>& wkts, const std::string& srs = "") {
        WriteVector(m_folder.File("in.gpkg"), {.driver = "GPKG", .srs = srs}, wkts);
        return Open("in.gpkg");
    }
    std::vector<std::size_t> VertexCounts() {
        std::vector<std::size_t> counts;
        for (int i = 0; i < m_source.GetDrawShapeCount(); ++i)
            counts.push_back(m_source.GetDrawShape(i)->m_vertices.size());
        return counts;
    }
    GISError SaveAsShapefile(const std::string& name) {
        return m_source.SaveAs(m_folder.WideFile(name).c_str(), VDF_SHAPEFILE);
    }

    TemporaryFolder m_folder;
    CAOISource m_source;
};

using Counts = std::vector<std::size_t>;

TEST_F(AOISourceVector, AHoleBecomesAnAreaOfItsOwn) {
    WriteVector(m_folder.File("h.shp"), {.type = wkbPolygon, .srs = "EPSG:32650"},
                {"POLYGON ((0 0,0 10,10 10,10 0,0 0),(2 2,4 2,4 4,2 2))"});
    ASSERT_EQ(Open("h.shp"), GIS_SUCCESS);
    EXPECT_TRUE(m_source.IsShapeFile());
    EXPECT_TRUE(m_source.IsOpened());
    EXPECT_EQ(m_source.GetFileName(), L"h.shp");
    ASSERT_EQ(VertexCounts(), (Counts{5, 4})) << "each with its closing point";
    CDrawShape& outer = *m_source.GetDrawShape(0);
    EXPECT_EQ(outer.m_shapeKind, SHAPE_POLYGON);
    EXPECT_EQ(outer.m_vertices.front(), outer.m_vertices.back());
    EXPECT_EQ(outer.m_useMark, 4);
    EXPECT_TRUE(outer.m_complete);
    EXPECT_TRUE(m_source.IsProjected());
    EXPECT_EQ(m_source.TopoRelationWithPoint(3, 2.5), TOPO_CONTAIN) << "in the hole";
}

TEST_F(AOISourceVector, PolygonsOfMultiGeometriesAndCollectionsAreFound) {
    ASSERT_EQ(OpenWith({"MULTIPOLYGON (((0 0,0 1,1 1,0 0)),((5 5,5 6,6 6,6 5,5 5)))",
                        "GEOMETRYCOLLECTION (POINT (1 1),LINESTRING (0 0,1 1),"
                        "GEOMETRYCOLLECTION (POLYGON ((8 8,8 9,9 9,8 8)),POINT (9 9)))",
                        "", "POINT (3 3)", "LINESTRING (0 0,9 9,9 0)", "MULTIPOINT (1 1,2 2,3 3)"}),
              GIS_SUCCESS);
    EXPECT_EQ(VertexCounts(), (Counts{4, 5, 4}));
}

TEST_F(AOISourceVector, AFileWithoutPolygonsIsAnEmptyArea) {
    ASSERT_EQ(OpenWith({"POINT (3 3)"}), GIS_SUCCESS);
    EXPECT_EQ(m_source.GetDrawShapeCount(), 0);
    EXPECT_TRUE(m_source.IsShapeFile());
    EXPECT_EQ(Open("missing.gpkg"), GIS_FAILED);
}

TEST_F(AOISourceVector, TheFlagFollowsTheLastFileOpened) {
    ASSERT_EQ(OpenWith({SQUARE}), GIS_SUCCESS);
    EXPECT_TRUE(m_source.IsShapeFile());
    ASSERT_EQ(m_source.SaveAs(m_folder.WideFile("a.aif").c_str(), VDF_AOI), GIS_SUCCESS);
    ASSERT_EQ(Open("a.aif"), GIS_SUCCESS);
    EXPECT_FALSE(m_source.IsShapeFile());
    EXPECT_FALSE(m_source.IsOpened()) << "no data set is held for the engine's own file";
    EXPECT_EQ(m_source.GetDrawShapeCount(), 1);
}

TEST_F(AOISourceVector, CreateWalksAGeometry) {
    OGRGeometry* geometry = nullptr;
    OGRGeometryFactory::createFromWkt("MULTIPOLYGON (((0 0,0 1,1 1,0 0)))", nullptr, &geometry);
    const std::unique_ptr<OGRGeometry> owner(geometry);
    const std::unique_ptr<CAOISource> source(CAOISource::Create(geometry));
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(source->GetDrawShapeCount(), 1);
    const std::unique_ptr<CAOISource> empty(CAOISource::Create(nullptr));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->GetDrawShapeCount(), 0);
    OGRPoint point(1, 2);
    EXPECT_EQ(CAOISource::Create(&point), nullptr);
    OGRPolygon polygon;
    EXPECT_EQ(CAOISource::Create(&polygon), nullptr);
}

TEST_F(AOISourceVector, RingsOfTwoPointsAreDropped) {
    OGRLinearRing ring;
    ring.addPoint(0, 0);
    ring.addPoint(1, 1);
    OGRPolygon polygon;
    polygon.addRing(&ring);
    EXPECT_EQ(CAOISource::Create(&polygon), nullptr);
    ring.addPoint(1, 0);
    polygon.addRing(&ring);
    const std::unique_ptr<CAOISource> source(CAOISource::Create(&polygon));
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(source->GetDrawShape(0)->m_vertices.size(), 3U) << "unclosed rings stay unclosed";
}

TEST_F(AOISourceVector, AShapefileHoldsOnePolygonPerShape) {
    m_source.AddDrawShape(new CDrawRectangle(Drag({0, 10}, {20, 0})));
    m_source.AddDrawShape(new CDrawPolygon(MakePolygon({{50, 50}, {50, 60}, {60, 60}})));
    m_source.SetSpatialReferenceWKT("EPSG:4326");
    ASSERT_EQ(SaveAsShapefile("out.shp"), GIS_SUCCESS);
    EXPECT_EQ(ReadGeometries(m_folder.File("out.shp")),
              (std::vector<std::string>{"POLYGON ((0 10,20 10,20 0,0 0,0 10))",
                                        "POLYGON ((50 50,50 60,60 60,50 50))"}));
    EXPECT_FALSE(std::filesystem::exists(m_folder.File("out.prj"))) << "no reference is written";
}

TEST_F(AOISourceVector, AnExistingShapefileIsReplacedWithAllItsFiles) {
    WriteVector(m_folder.File("out.shp"), {.type = wkbPoint, .srs = "EPSG:4326"}, {"POINT (1 1)"});
    std::ofstream(m_folder.File("out.txt")) << "a neighbour";
    m_source.AddDrawShape(new CDrawRectangle(Drag({0, 10}, {20, 0})));
    ASSERT_EQ(SaveAsShapefile("out.shp"), GIS_SUCCESS);
    EXPECT_EQ(ReadGeometries(m_folder.File("out.shp")).size(), 1U);
    EXPECT_EQ(m_folder.Names(),
              (std::vector<std::string>{"out.dbf", "out.shp", "out.shx", "out.txt"}));
}

TEST_F(AOISourceVector, APathWithoutExtensionIsAFolderOfLayers) {
    m_source.AddDrawShape(new CDrawRectangle(Drag({0, 10}, {20, 0})));
    ASSERT_EQ(SaveAsShapefile("folder"), GIS_SUCCESS);
    EXPECT_TRUE(std::filesystem::exists(m_folder.File("folder/MultiPolygon AOI.shp")));
}

TEST_F(AOISourceVector, CreatingADataSourceClosesAnOpenOneOnly) {
    const auto create = [&] {
        return m_source.CreateDataSource(VDF_SHAPEFILE, m_folder.WideFile("n.shp").c_str(),
                                         nullptr);
    };
    m_source.AddDrawShape(new CDrawRectangle(Drag({0, 10}, {20, 0})));
    ASSERT_EQ(create(), GIS_SUCCESS);
    EXPECT_EQ(m_source.GetDrawShapeCount(), 1) << "nothing was open";
    ASSERT_EQ(create(), GIS_SUCCESS);
    EXPECT_EQ(m_source.GetDrawShapeCount(), 0);
}

TEST_F(AOISourceVector, AFolderThatIsMissingFails) {
    EXPECT_EQ(SaveAsShapefile("missing/out.shp"), GIS_FAILED);
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(AOISourceVector, WithoutTheShapefileDriverShapefilesAreNotSupported) {
    m_source.AddDrawShape(new CDrawRectangle(Drag({0, 10}, {20, 0})));
    const WithoutShapefileDriver without;
    EXPECT_EQ(SaveAsShapefile("out.shp"), GIS_NOT_SUPPORTED);
    EXPECT_TRUE(m_folder.Names().empty());
}

TEST_F(AOISourceVector, AVectorFileMaySaveOverItself) {
    WriteVector(m_folder.File("a.shp"), {.type = wkbPolygon}, {SQUARE});
    ASSERT_EQ(Open("a.shp"), GIS_SUCCESS);
    ASSERT_EQ(SaveAsShapefile("a.shp"), GIS_SUCCESS);
    m_source.Close();
    EXPECT_EQ(ReadGeometries(m_folder.File("a.shp")).size(), 1U);
}

TEST_F(AOISourceVector, WarpingTransformsEveryShape) {
    // Zone 50's central meridian is 117° E: x = 500,000 m there, along the equator y = 0.
    ASSERT_EQ(OpenWith({"POLYGON ((117 0,117 1,118 1,117 0))"}, "EPSG:4326"), GIS_SUCCESS);
    m_source.AddDrawShape(new CDrawRectangle(Drag({117, 1}, {118, 0})));
    ASSERT_EQ(m_source.SaveAs(m_folder.WideFile("a.aif").c_str(), VDF_AOI), GIS_SUCCESS);
    CAOISource warped;
    ASSERT_EQ(warped.OpenAndWarped(m_folder.WideFile("a.aif").c_str(), GIS_READONLY, "EPSG:32650"),
              GIS_SUCCESS);
    ASSERT_EQ(warped.GetDrawShapeCount(), 2);
    const auto& polygon = *warped.GetDrawShape(0);
    EXPECT_NEAR(polygon.m_vertices[0].x, 500000, 1e-3);
    EXPECT_NEAR(polygon.m_vertices[0].y, 0, 1e-3);
    // 0.9996 of the meridian's 110,574.39 m from 0° to 1°.
    EXPECT_NEAR(polygon.m_vertices[1].y, 110530.16, 0.05);
    EXPECT_TRUE(polygon.m_complete);
    EXPECT_EQ(polygon.m_vertices.size(), 4U);
    const auto& rectangle = dynamic_cast<CDrawRectangle&>(*warped.GetDrawShape(1));
    EXPECT_EQ(rectangle.m_vertices.size(), 2U);
    EXPECT_NEAR(rectangle.m_topLeft.x, 500000, 1e-3);
    EXPECT_NEAR(rectangle.m_topLeft.y, 110530.16, 0.05);
    EXPECT_NEAR(rectangle.m_topLeft.y - rectangle.m_height, 0, 1e-3);
    EXPECT_NEAR(warped.GetExtent().m_left, 500000, 1e-3);
    EXPECT_TRUE(warped.IsProjected()) << "the reference is the target's";
}

TEST_F(AOISourceVector, WarpingDrawsEllipsesAnewFromTwoCorners) {
    // Along the central meridian and the equator, as above.
    m_source.AddDrawShape(new CDrawEllipse(Drag<CDrawEllipse>({117, 1}, {118, 0})));
    m_source.SetSpatialReferenceWKT("EPSG:4326");
    ASSERT_EQ(m_source.SaveAs(m_folder.WideFile("e.aif").c_str(), VDF_AOI), GIS_SUCCESS);
    CAOISource warped;
    ASSERT_EQ(warped.OpenAndWarped(m_folder.WideFile("e.aif").c_str(), GIS_READONLY, "EPSG:32650"),
              GIS_SUCCESS);
    ASSERT_EQ(warped.GetDrawShapeCount(), 1);
    const auto& ellipse = dynamic_cast<CDrawEllipse&>(*warped.GetDrawShape(0));
    ASSERT_EQ(ellipse.m_vertices.size(), 2U);
    EXPECT_TRUE(ellipse.m_complete);
    EXPECT_NEAR(ellipse.m_topLeft.x, 500000, 1e-3);
    EXPECT_NEAR(ellipse.m_topLeft.y, 110530.16, 0.05);
    EXPECT_EQ(ellipse.m_width, ellipse.m_vertices[1].x - ellipse.m_vertices[0].x);
    EXPECT_NEAR(ellipse.m_extent.m_bottom, 0, 1e-3);
    EXPECT_EQ(warped.GetExtent().m_right, ellipse.m_extent.m_right);
}

TEST_F(AOISourceVector, WarpingToTheSameReferenceOrToNoneChangesNothing) {
    ASSERT_EQ(OpenWith({"POLYGON ((117 0,117 1,118 1,117 0))"}, "EPSG:4326"), GIS_SUCCESS);
    for (const char* target : {"EPSG:4326", "+proj=longlat +datum=WGS84", (const char*)nullptr}) {
        CAOISource same;
        ASSERT_EQ(same.OpenAndWarped(m_folder.WideFile("in.gpkg").c_str(), GIS_READONLY, target),
                  GIS_SUCCESS);
        EXPECT_EQ(same.GetDrawShape(0)->m_vertices[1], CPoint2D(117, 1));
        EXPECT_TRUE(same.IsGeographic());
    }
}

TEST_F(AOISourceVector, WarpingWithoutATransformationFails) {
    ASSERT_EQ(OpenWith({SQUARE}, "EPSG:4326"), GIS_SUCCESS);
    CAOISource source;
    const std::wstring path = m_folder.WideFile("in.gpkg");
    EXPECT_EQ(source.OpenAndWarped(path.c_str(), GIS_READONLY, "no reference"), GIS_OPEN_FAILED);
    EXPECT_EQ(source.GetDrawShapeCount(), 1);
    EXPECT_EQ(source.OpenAndWarped(m_folder.WideFile("no.gpkg").c_str(), GIS_READONLY, "EPSG:4326"),
              GIS_FAILED);
    WriteVector(m_folder.File("plain.shp"), {.type = wkbPolygon}, {SQUARE});
    EXPECT_EQ(
        source.OpenAndWarped(m_folder.WideFile("plain.shp").c_str(), GIS_READONLY, "EPSG:4326"),
        GIS_OPEN_FAILED);
}

} // namespace
