#include "zelto/aoi/AOISource.h"

#include "zelto/aoi/DrawLine.h"

#include "tests/aoi/Shapes.h"
#include "tests/aoi/VirtualSlot.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <filesystem>
#include <type_traits>

namespace {

using zelto::test::Drag;

/// A new complete rectangle over left, top, right, bottom, owned by whoever takes it.
CDrawRectangle* NewRectangle(double left, double top, double right, double bottom) {
    return new CDrawRectangle(Drag({left, top}, {right, bottom}));
}

void ExpectExtent(const CAOISource& source, double left, double top, double right, double bottom) {
    const CBoundingBox box = source.GetExtent();
    EXPECT_EQ(box.m_left, left);
    EXPECT_EQ(box.m_top, top);
    EXPECT_EQ(box.m_right, right);
    EXPECT_EQ(box.m_bottom, bottom);
}

TEST(AOISource, StartsEmpty) {
    CAOISource source;
    EXPECT_EQ(source.GetFileName(), L"AOI000001");
    EXPECT_EQ(source.CGISDataSource::GetDataSourceType(), DS_AOI);
    EXPECT_EQ(source.GetDrawShapeCount(), 0);
    EXPECT_EQ(source.GetOGRGeometries(), nullptr);
    EXPECT_FALSE(source.IsShapeFile());
    EXPECT_FALSE(source.IsOpened());
    EXPECT_TRUE(source.IsVisible());
}

TEST(AOISource, HasOneOwnerOfItsShapes) {
    EXPECT_FALSE(std::is_copy_constructible_v<CAOISource>);
    EXPECT_FALSE(std::is_copy_assignable_v<CAOISource>);
}

TEST(AOISource, SaveAsFollowsTheBasesOperations) {
    using SaveAs = GISError (CAOISource::*)(const wchar_t*, VectorDataFormat);
    using IsOpened = bool (CAOISource::*)();
    EXPECT_EQ(zelto::test::SlotOf(static_cast<IsOpened>(&CAOISource::IsOpened)), 7);
    EXPECT_EQ(zelto::test::SlotOf(static_cast<SaveAs>(&CAOISource::SaveAs)), 8);
}

TEST(AOISource, TakesCompleteClosedShapesOnly) {
    CAOISource source;
    CDrawLine line;
    line.AddVertex({0, 0});
    line.AddVertex({1, 1});
    EXPECT_FALSE(source.AddDrawShape(&line));
    CDrawPolygon open;
    open.AddVertex({0, 0});
    EXPECT_FALSE(source.AddDrawShape(&open));
    EXPECT_FALSE(source.AddDrawShape(nullptr));
    EXPECT_TRUE(source.AddDrawShape(NewRectangle(0, 1, 1, 0)));
    EXPECT_TRUE(source.AddDrawShape(new CDrawEllipse(Drag<CDrawEllipse>({0, 1}, {1, 0}))));
    EXPECT_TRUE(source.AddDrawShape(new CDrawPolygon(zelto::test::UnitSquareTimes10())));
    EXPECT_EQ(source.GetDrawShapeCount(), 3);
    EXPECT_EQ(source.GetDrawShape(-1), nullptr);
    EXPECT_EQ(source.GetDrawShape(3), nullptr);
    EXPECT_EQ(source.GetDrawShape(2)->m_shapeKind, SHAPE_POLYGON);
}

TEST(AOISource, TheExtentStartsFromTheFirstShape) {
    CAOISource source;
    source.AddDrawShape(NewRectangle(10, 20, 15, 16));
    ExpectExtent(source, 10, 20, 15, 16);
    source.AddDrawShape(NewRectangle(12, 30, 13, 18));
    ExpectExtent(source, 10, 30, 15, 16);
}

TEST(AOISource, RemovingShapesRebuildsTheExtentWhileAnyRemain) {
    CAOISource source;
    source.AddDrawShape(NewRectangle(0, 10, 10, 0));
    source.AddDrawShape(NewRectangle(20, 30, 30, 20));
    EXPECT_FALSE(source.RemoveDrawShape(nullptr));
    CDrawRectangle other;
    EXPECT_FALSE(source.RemoveDrawShape(&other));
    EXPECT_TRUE(source.RemoveDrawShape(source.GetDrawShape(0)));
    ExpectExtent(source, 20, 30, 30, 20);
    EXPECT_TRUE(source.RemoveDrawShape(source.GetDrawShape(0)));
    EXPECT_EQ(source.GetDrawShapeCount(), 0);
    ExpectExtent(source, 20, 30, 30, 20);
}

TEST(AOISource, RemovesAllSelectedShapesAndKeepsTheOrderOfTheOthers) {
    CAOISource source;
    for (int i = 0; i < 4; ++i)
        source.AddDrawShape(NewRectangle(i * 10, 1, i * 10 + 5, 0));
    source.GetDrawShape(0)->m_selected = true;
    source.GetDrawShape(2)->m_selected = true;
    const CDrawShape* second = source.GetDrawShape(1);
    source.RemoveAllSelectedDrawShapes();
    ASSERT_EQ(source.GetDrawShapeCount(), 2);
    EXPECT_EQ(source.GetDrawShape(0), second);
    ExpectExtent(source, 10, 1, 35, 0);
    source.RemoveAllSelectedDrawShapes();
    EXPECT_EQ(source.GetDrawShapeCount(), 2);
}

TEST(AOISource, CloseDeletesTheShapesAndKeepsTheExtent) {
    CAOISource source;
    source.AddDrawShape(NewRectangle(0, 10, 10, 0));
    EXPECT_NE(source.GetOGRGeometries(), nullptr);
    source.Close();
    EXPECT_EQ(source.GetDrawShapeCount(), 0);
    EXPECT_EQ(source.GetOGRGeometries(), nullptr);
    ExpectExtent(source, 0, 10, 10, 0);
}

TEST(AOISource, RecomputeExtentAsksEveryShapeFirst) {
    CAOISource source;
    source.RecomputeExtent();
    ExpectExtent(source, 0, 0, 0, 0);
    // Dragged towards the upper left: the extent is inverted until it is recomputed.
    source.AddDrawShape(NewRectangle(10, 0, 0, 10));
    ExpectExtent(source, 0, 10, 0, 10);
    source.RecomputeExtent();
    ExpectExtent(source, 0, 10, 10, 0);
}

TEST(AOISource, VisibilityGoesToEveryShape) {
    CAOISource source;
    source.AddDrawShape(NewRectangle(0, 1, 1, 0));
    source.SetVisible(false);
    EXPECT_FALSE(source.IsVisible());
    EXPECT_FALSE(source.GetDrawShape(0)->m_visible);
    source.SetVisible(true);
    EXPECT_TRUE(source.GetDrawShape(0)->m_visible);
}

TEST(AOISource, PointRelationAsksShapesWithinTheExtentOnly) {
    CAOISource source;
    source.AddDrawShape(NewRectangle(0, 10, 10, 0));
    source.AddDrawShape(NewRectangle(20, 10, 30, 0));
    EXPECT_EQ(source.TopoRelationWithPoint(5, 5), TOPO_CONTAIN);
    EXPECT_EQ(source.TopoRelationWithPoint(25, 0), TOPO_CONTAIN);
    EXPECT_EQ(source.TopoRelationWithPoint(15, 5), TOPO_DISJOINT);
    source.GetDrawShape(0)->m_selectedPointIndex = 6;
    EXPECT_EQ(source.TopoRelationWithPoint(-1, 5), TOPO_DISJOINT);
    EXPECT_EQ(source.GetDrawShape(0)->m_selectedPointIndex, 6) << "no shape was asked";
    // A shape enlarged by the host: its own extent holds the point, the source's does not.
    source.GetDrawShape(0)->m_extent.SetBoundingBox(0, 100, 10, 0);
    EXPECT_EQ(source.TopoRelationWithPoint(5, 50), TOPO_DISJOINT);
    source.RemoveDrawShape(source.GetDrawShape(1));
    EXPECT_EQ(source.TopoRelationWithPoint(5, 50), TOPO_CONTAIN);
}

TEST(AOISource, BoxRelationIsTheStrongest) {
    CAOISource source;
    CBoundingBox box(2, 8, 8, 2);
    EXPECT_EQ(source.GetTopoRelationWithBoundingbox(&box), TOPO_DISJOINT);
    source.AddDrawShape(NewRectangle(5, 20, 20, 5));
    EXPECT_EQ(source.GetTopoRelationWithBoundingbox(&box), TOPO_INTERSECT);
    auto* coinciding = new CDrawPolygon(zelto::test::MakePolygon({{2, 8}, {8, 8}, {8, 2}, {2, 2}}));
    source.AddDrawShape(coinciding);
    EXPECT_EQ(source.GetTopoRelationWithBoundingbox(&box), TOPO_TOUCH);
    source.AddDrawShape(NewRectangle(0, 10, 10, 0));
    EXPECT_EQ(source.GetTopoRelationWithBoundingbox(&box), TOPO_CONTAIN);
    CBoundingBox far(50, 60, 60, 50);
    EXPECT_EQ(source.GetTopoRelationWithBoundingbox(&far), TOPO_DISJOINT);
    EXPECT_EQ(source.GetTopoRelationWithBoundingbox(nullptr), TOPO_DISJOINT);
}

TEST(AOISource, SpatialReferenceTextIsStoredAndLoaded) {
    CAOISource source;
    source.SetSpatialReferenceWKT("EPSG:4326");
    EXPECT_EQ(source.GetSpatialReferenceWKT(), "EPSG:4326");
    EXPECT_TRUE(source.IsGeographic());
    source.SetSpatialReferenceWKT(nullptr);
    EXPECT_EQ(source.GetSpatialReferenceWKT(), "EPSG:4326");
    source.SetSpatialReferenceWKT("");
    EXPECT_FALSE(source.IsGeographic());
}

TEST(AOISource, WhoseHostHasTakenTheReferenceHandleKeepsTheText) {
    struct Bare : CAOISource {
        Bare() {
            m_spatialReference->Release();
            m_spatialReference = nullptr;
        }
    } source;
    source.SetSpatialReferenceWKT("EPSG:4326");
    EXPECT_EQ(source.GetSpatialReferenceWKT(), "EPSG:4326");
    EXPECT_FALSE(source.IsGeographic());
}

TEST(AOISource, ATemporaryFileGoesWithItsSourceUnlessItIsSaved) {
    const zelto::test::TemporaryFolder folder;
    zelto::test::WriteFile(folder.File("scratch.aif"), "x");
    {
        CAOISource source;
        source.SetTempFilePath(nullptr);
        source.SetTempFilePath(folder.WideFile("scratch.aif").c_str());
        EXPECT_EQ(source.GetFileName(), L"scratch");
        EXPECT_EQ(source.GetFilePath(), folder.WideFile("scratch.aif"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder.File("scratch.aif")));
    {
        CAOISource source;
        source.SetTempFilePath(folder.WideFile("kept.aif").c_str());
        EXPECT_EQ(source.SaveAs(folder.WideFile("kept.aif").c_str(), VDF_AOI), GIS_SUCCESS);
    }
    EXPECT_TRUE(std::filesystem::exists(folder.File("kept.aif")));
    {
        CAOISource source;
        source.SetTempFilePath(folder.WideFile("kept.aif").c_str());
        source.SaveAs(folder.WideFile("other.shp").c_str(), VDF_SHAPEFILE);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.File("kept.aif"))) << "a shapefile does not count";
    {
        CAOISource source;
        source.SetTempFilePath(L"");
    }
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"other.dbf", "other.shp", "other.shx"}))
        << "a source without a file removes none";
}

TEST(AOISource, AFileThatIsOpenedIsNoTemporaryOne) {
    const zelto::test::TemporaryFolder folder;
    const std::wstring users = folder.WideFile("users.aif");
    const std::wstring temporary = folder.WideFile("temporary.aif");
    CAOISource empty;
    ASSERT_EQ(empty.SaveAs(users.c_str(), VDF_AOI), GIS_SUCCESS);
    ASSERT_EQ(empty.SaveAs(temporary.c_str(), VDF_AOI), GIS_SUCCESS);
    zelto::test::WriteFile(folder.File("broken.aif"), "x");
    zelto::test::WriteFile(folder.File("broken.shp"), "x");
    {
        CAOISource source;
        source.SetTempFilePath(temporary.c_str());
        EXPECT_EQ(source.Open(users.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    }
    EXPECT_TRUE(std::filesystem::exists(folder.File("users.aif")));
    for (const char* name : {"broken.aif", "broken.shp"}) {
        CAOISource source;
        source.SetTempFilePath(temporary.c_str());
        EXPECT_NE(source.Open(folder.WideFile(name).c_str(), GIS_READONLY, false), GIS_SUCCESS);
    }
    EXPECT_TRUE(std::filesystem::exists(folder.File("broken.aif")));
    EXPECT_TRUE(std::filesystem::exists(folder.File("broken.shp")));
    {
        CAOISource source;
        source.SetTempFilePath(temporary.c_str());
        EXPECT_EQ(source.Open(temporary.c_str(), GIS_READONLY, false), GIS_SUCCESS);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.File("temporary.aif"))) << "it is the same file";
}

TEST(AOISource, WhatCannotBeOpenedOrSavedIsToldWithItsName) {
    const zelto::test::TemporaryFolder folder;
    const auto isTold = [](const std::string& name) {
        const std::string text = CGISDataSource::GetLastErrorText();
        CGISDataSource::ClearLastErrorText();
        return text.find(name) != std::string::npos;
    };
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({0, 1}, {1, 0})));
    EXPECT_NE(source.SaveAs(folder.WideFile("no/a.aif").c_str(), VDF_AOI), GIS_SUCCESS);
    EXPECT_TRUE(isTold("no/a.aif"));
    EXPECT_NE(source.SaveAs(folder.WideFile("no/a.shp").c_str(), VDF_SHAPEFILE), GIS_SUCCESS);
    EXPECT_TRUE(isTold("no/a.shp"));
    EXPECT_NE(source.Open(folder.WideFile("none.aif").c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_TRUE(isTold("none.aif"));
    zelto::test::WriteFile(folder.File("broken.aif"), "x");
    EXPECT_NE(source.Open(folder.WideFile("broken.aif").c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_TRUE(isTold("broken.aif"));
}

TEST(AOISource, IsTransformedToNoReferenceAndTakesNoDisplay) {
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({0, 1}, {1, 0})));
    EXPECT_EQ(source.TransformTo(nullptr), GIS_OPEN_FAILED);
    CAOISource other;
    other.SetVisible(false);
    source.CopyDisplaySetting(&other);
    EXPECT_TRUE(source.IsVisible());
    EXPECT_EQ(source.GetDrawShapeCount(), 1);
}

} // namespace
