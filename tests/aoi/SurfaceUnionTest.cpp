#include "zelto/aoi/internal/SurfaceUnion.h"

#include "zelto/aoi/DrawPolygon.h"
#include "zelto/baselib/internal/LastError.h"

#include <gtest/gtest.h>
#include <ogr_geometry.h>

#include <cmath>
#include <random>
#include <utility>

namespace {

std::unique_ptr<OGRGeometry> Parse(const std::string& wkt) {
    OGRGeometry* geometry = nullptr;
    EXPECT_EQ(OGRGeometryFactory::createFromWkt(wkt.c_str(), nullptr, &geometry), OGRERR_NONE);
    return std::unique_ptr<OGRGeometry>(geometry);
}

std::unique_ptr<OGRGeometry> Unite(const std::string& wkt) {
    return zelto::UniteSurfaces(*Parse(wkt));
}

double AreaOf(const OGRGeometry& geometry) {
    const auto type = wkbFlatten(geometry.getGeometryType());
    return type == wkbPolygon ? geometry.toPolygon()->get_Area()
                              : geometry.toGeometryCollection()->get_Area();
}

TEST(SurfaceUnion, LeavesOtherGeometriesAlone) {
    for (const std::string wkt : {"POINT (1 2)", "POLYGON ((0 0,0 1,1 1,0 0))",
                                  "GEOMETRYCOLLECTION (POLYGON ((0 0,0 1,1 1,0 0)),POINT (5 5))",
                                  "GEOMETRYCOLLECTION (POINT (5 5),POLYGON ((0 0,0 1,1 1,0 0)))",
                                  "GEOMETRYCOLLECTION EMPTY"})
        EXPECT_EQ(Unite(wkt)->exportToWkt(), wkt);
}

TEST(SurfaceUnion, UnitesNestedCollections) {
    const auto united = Unite("GEOMETRYCOLLECTION (POLYGON ((0 0,0 2,2 2,2 0,0 0)),"
                              "GEOMETRYCOLLECTION (MULTIPOLYGON (((1 1,1 3,3 3,3 1,1 1)))))");
    ASSERT_EQ(wkbFlatten(united->getGeometryType()), wkbPolygon);
    EXPECT_NEAR(AreaOf(*united), 4 + 4 - 1, 1e-12);
}

TEST(SurfaceUnion, ABowTieBecomesItsTwoTriangles) {
    const auto united = Unite("POLYGON ((0 0,2 2,2 0,0 2,0 0))");
    EXPECT_TRUE(united->IsValid());
    EXPECT_NEAR(AreaOf(*united), 2, 1e-12) << "a quarter of the square at each side";
}

TEST(SurfaceUnion, TheMiddleOfAStarIsOutside) {
    OGRLinearRing ring;
    for (int i = 0; i < 5; ++i) {
        const double angle = 4 * 3.141592653589793 * i / 5;
        ring.addPoint(10 * std::sin(angle), 10 * std::cos(angle));
    }
    ring.closeRings();
    OGRPolygon polygon;
    polygon.addRing(&ring);
    const auto star = zelto::UniteSurfaces(polygon);
    EXPECT_FALSE(OGRPoint(0, 0).Within(star.get()));
    EXPECT_TRUE(OGRPoint(0, 8).Within(star.get()));
}

TEST(SurfaceUnion, WhatEnclosesNoAreaIsLeftOut) {
    const auto united = Unite("GEOMETRYCOLLECTION (POLYGON ((0 0,5 5,9 9,0 0)),"
                              "POLYGON ((0 0,0 1,1 1,1 0,0 0),(5 5,5 6,6 6,6 5,5 5)),"
                              "POLYGON EMPTY,POLYGON ((3 0,3 2,3 0,3 0)))");
    EXPECT_NEAR(AreaOf(*united), 1 + 1, 1e-12);
    EXPECT_TRUE(Unite("POLYGON ((0 0,5 5,9 9,0 0))")->IsEmpty());
}

TEST(SurfaceUnion, AShapeWithoutAPlaceIsToldAndTheOthersStay) {
    const std::pair<double, double> places[] = {
        {std::nan(""), std::nan("")}, {INFINITY, 1.0}, {1.0, -INFINITY}};
    for (const auto& [x, y] : places) {
        OGRGeometryCollection collection;
        OGRLinearRing ring;
        ring.addPoint(0, 0);
        ring.addPoint(x, y);
        ring.addPoint(5, 25);
        ring.addPoint(0, 0);
        OGRPolygon undefined;
        undefined.addRing(&ring);
        ASSERT_EQ(collection.addGeometry(&undefined), OGRERR_NONE);
        ASSERT_EQ(
            collection.addGeometryDirectly(Parse("POLYGON ((0 0,0 1,1 1,1 0,0 0))").release()),
            OGRERR_NONE);
        zelto::ClearLastError();
        EXPECT_NEAR(AreaOf(*zelto::UniteSurfaces(collection)), 1, 1e-12);
        EXPECT_NE(zelto::LastError().find("not finite"), std::string::npos) << zelto::LastError();
    }
}

TEST(SurfaceUnion, HoldsThePointsThatTheHitTestsHold) {
    std::mt19937 engine(61);
    SCOPED_TRACE("seed 61");
    std::uniform_real_distribution<double> place(0, 100);
    for (int round = 0; round < 40; ++round) {
        OGRGeometryCollection collection;
        std::vector<CDrawPolygon> shapes(1 + round % 3);
        for (CDrawPolygon& shape : shapes) {
            auto polygon = std::make_unique<OGRPolygon>();
            OGRLinearRing ring;
            for (int i = 0; i < 4 + round % 9; ++i) {
                shape.AddVertex({place(engine), place(engine)});
                ring.addPoint(shape.m_vertices.back().x, shape.m_vertices.back().y);
            }
            ring.closeRings();
            polygon->addRing(&ring);
            ASSERT_EQ(collection.addGeometryDirectly(polygon.release()), OGRERR_NONE);
        }
        const auto united = zelto::UniteSurfaces(collection);
        for (int k = 0; k < 200; ++k) {
            CPoint2D p(place(engine), place(engine));
            bool inside = false;
            for (const CDrawPolygon& shape : shapes)
                inside |= shape.IsPointIn(&p);
            ASSERT_EQ(OGRPoint(p.x, p.y).Within(united.get()) != 0, inside)
                << "round " << round << ", " << p.x << ", " << p.y;
        }
    }
}

} // namespace
