#include "zelto/aoi/AOISource.h"

#include "tests/aoi/Shapes.h"

#include <gtest/gtest.h>
#include <ogr_geometry.h>

#include <cmath>
#include <limits>

namespace {

using zelto::test::Drag;

const OGRLinearRing& RingOf(const OGRGeometry* geometry) {
    return *geometry->toPolygon()->getExteriorRing();
}

/// The source's only shape as a ring.
std::vector<CPoint2D> Ring(CAOISource& source) {
    std::vector<CPoint2D> points;
    for (const OGRPoint& p : RingOf(source.GetOGRGeometries()))
        points.emplace_back(p.getX(), p.getY());
    return points;
}

/// An ellipse with its centre at the origin.
void AddEllipse(CAOISource& source, double a, double b) {
    source.AddDrawShape(new CDrawEllipse(Drag<CDrawEllipse>({-a, b}, {a, -b})));
}

TEST(AOISourceGeometry, WithoutShapesThereIsNone) {
    CAOISource source;
    EXPECT_EQ(source.GetOGRGeometries(), nullptr);
}

TEST(AOISourceGeometry, ARectangleIsFivePointsClockwise) {
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({10, 20}, {15, 16})));
    EXPECT_EQ(source.GetOGRGeometries()->exportToWkt(),
              "POLYGON ((10 20,15 20,15 16,10 16,10 20))");
}

TEST(AOISourceGeometry, APolygonIsClosedWithItsFirstVertex) {
    CAOISource source;
    source.AddDrawShape(new CDrawPolygon(zelto::test::MakePolygon({{0, 0}, {1, 0}, {1, 1}})));
    EXPECT_EQ(source.GetOGRGeometries()->exportToWkt(), "POLYGON ((0 0,1 0,1 1,0 0))");
}

TEST(AOISourceGeometry, SeveralShapesAreACollectionMadeOnce) {
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({0, 1}, {1, 0})));
    source.AddDrawShape(new CDrawRectangle(Drag({5, 6}, {6, 5})));
    OGRGeometry* geometry = source.GetOGRGeometries();
    EXPECT_EQ(wkbFlatten(geometry->getGeometryType()), wkbGeometryCollection);
    EXPECT_EQ(geometry->toGeometryCollection()->getNumGeometries(), 2);
    source.RemoveDrawShape(source.GetDrawShape(0));
    EXPECT_EQ(source.GetOGRGeometries(), geometry) << "later edits are not followed";
}

TEST(AOISourceGeometry, AShapeOfAnotherKindIsAnEmptyPolygon) {
    CAOISource source;
    auto* shape = new CDrawPolygon(zelto::test::UnitSquareTimes10());
    shape->m_shapeKind = ShapeKind(9);
    ASSERT_TRUE(source.AddDrawShape(shape));
    EXPECT_EQ(source.GetOGRGeometries()->exportToWkt(), "POLYGON EMPTY");
    CAOISource changed;
    auto* rectangle = new CDrawRectangle(Drag({10, 20}, {15, 16}));
    rectangle->m_shapeKind = ShapeKind(9);
    ASSERT_TRUE(changed.AddDrawShape(rectangle));
    EXPECT_EQ(changed.GetOGRGeometries()->exportToWkt(), "POLYGON EMPTY");
    CAOISource none;
    auto* empty = new CDrawPolygon;
    empty->m_complete = true;
    ASSERT_TRUE(none.AddDrawShape(empty));
    EXPECT_EQ(none.GetOGRGeometries()->exportToWkt(), "POLYGON EMPTY");
}

TEST(AOISourceGeometry, AnEllipseRunsClockwiseFromTheTopAndRepeatsItsQuarterEnds) {
    CAOISource source;
    source.SetResolution(0);
    // a / 50 = 1: whole numbers, so that the last step of a quarter falls on its end.
    AddEllipse(source, 50, 10);
    const auto ring = Ring(source);
    // Per quarter t = 0 … 50 in steps of 1 and the end once more.
    ASSERT_EQ(ring.size(), 4U * 52);
    EXPECT_EQ(ring[0], CPoint2D(0, 10));
    EXPECT_EQ(ring[30], CPoint2D(30, 10.0 / 50 * 40)) << "50² − 30² = 40²";
    EXPECT_EQ(ring[50], CPoint2D(50, 0));
    EXPECT_EQ(ring[51], CPoint2D(50, 0));
    EXPECT_EQ(ring[52], CPoint2D(50, 0)) << "the second quarter starts at t = a";
    EXPECT_EQ(ring[52 + 20], CPoint2D(30, -8));
    EXPECT_EQ(ring[103], CPoint2D(0, -10));
    EXPECT_EQ(ring[104], CPoint2D(0, -10));
    EXPECT_EQ(ring[104 + 30], CPoint2D(-30, -8));
    EXPECT_EQ(ring[156], CPoint2D(-50, 0));
    EXPECT_EQ(ring[156 + 20], CPoint2D(-30, 8));
    EXPECT_EQ(ring.back(), ring.front());
}

TEST(AOISourceGeometry, AQuarterThatStepsMissEndsWithItsEnd) {
    CAOISource source;
    source.SetResolution(0.75);
    // 40 / 0.75 = 53.3 steps, more than 50: the resolution is the step.
    AddEllipse(source, 40, 40);
    const auto ring = Ring(source);
    // t = 0 … 53 × 0.75 = 39.75, then 40.
    ASSERT_EQ(ring.size(), 4U * 55);
    EXPECT_EQ(ring[53].x, 39.75);
    EXPECT_EQ(ring[54], CPoint2D(40, 0));
    EXPECT_EQ(ring[55 + 53].x, 40 - 53 * 0.75);
    EXPECT_EQ(ring[55 + 54], CPoint2D(0, -40));
}

TEST(AOISourceGeometry, TheStepIsTheResolutionOnlyAboveFiftySteps) {
    for (const auto& [resolution, points] :
         {std::pair{1.0, 52U}, {0.98, 4U * 53 / 4}, {-0.1, 52U}}) {
        CAOISource source;
        source.SetResolution(resolution);
        AddEllipse(source, 50, 20);
        // 50 / 1 is not above 50; 50 / 0.98 = 51.02 is: 0 … 51 × 0.98 and the end.
        EXPECT_EQ(Ring(source).size(), 4U * points) << resolution;
    }
}

TEST(AOISourceGeometry, TheDefaultResolutionIsAThousandth) {
    CAOISource source;
    // Exactly representable multiples are not needed: 1 / 0.001 gives 1000 steps or 999.
    AddEllipse(source, 1, 1);
    const auto size = Ring(source).size();
    EXPECT_GE(size, 4U * 1001);
    EXPECT_LE(size, 4U * 1002);
}

TEST(AOISourceGeometry, EveryPointLiesOnTheEllipse) {
    CAOISource source;
    source.SetResolution(0.01);
    AddEllipse(source, 3, 2);
    for (const CPoint2D& p : Ring(source))
        ASSERT_NEAR(p.x * p.x / 9 + p.y * p.y / 4, 1, 1e-12);
}

TEST(AOISourceGeometry, AnEllipseWithoutASizeIsEmpty) {
    const double nan = std::nan("");
    const double infinite = std::numeric_limits<double>::infinity();
    for (const auto& [a, b] :
         {std::pair{0.0, 5.0}, {5.0, 0.0}, {0.0, 0.0}, {nan, 1.0}, {1.0, nan}, {infinite, 1.0}}) {
        CAOISource source;
        AddEllipse(source, a, b);
        EXPECT_EQ(source.GetOGRGeometries()->exportToWkt(), "POLYGON EMPTY") << a << ", " << b;
    }
}

} // namespace
