#include "zelto/aoi/AOIMask.h"
#include "zelto/aoi/AOISource.h"

#include "tests/aoi/AoiFileBytes.h"
#include "tests/aoi/Shapes.h"
#include "tests/support/LimitedMemory.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>
#include <ogr_geometry.h>

#include <cmath>
#include <filesystem>

namespace {

using namespace zelto::test;

constexpr int MOST_TOGETHER = 2000000;

/// Ellipses at the default step of a thousandth, whose rings have a limited number of points.
class AOISourceEllipses : public testing::Test {
  protected:
    AOISourceEllipses() { CGISDataSource::RegisterGDAL(); }
    ~AOISourceEllipses() override { CGISDataSource::DestroyGDAL(); }

    static void Add(CAOISource& source, double x, double a, double b) {
        source.AddDrawShape(new CDrawEllipse(Drag<CDrawEllipse>({x - a, b}, {x + a, -b})));
    }
    static std::vector<int> PointsOfRings(CAOISource& source) {
        std::vector<int> points;
        const OGRGeometry* geometry = source.GetOGRGeometries();
        if (wkbFlatten(geometry->getGeometryType()) == wkbPolygon)
            return {geometry->toPolygon()->getExteriorRing()->getNumPoints()};
        for (const OGRGeometry* member : *geometry->toGeometryCollection())
            points.push_back(member->toPolygon()->getExteriorRing()->getNumPoints());
        return points;
    }
    static std::int64_t Sum(const std::vector<int>& points) {
        std::int64_t sum = 0;
        for (const int count : points)
            sum += count;
        return sum;
    }
};

TEST_F(AOISourceEllipses, ARingOfAlmostAMillionPointsIsExact) {
    CAOISource source;
    source.SetResolution(1);
    // 0 … 249,997 and the end, four times over.
    Add(source, 0, 249997.5, 100);
    const OGRGeometry* geometry = source.GetOGRGeometries();
    const OGRLinearRing& ring = *geometry->toPolygon()->getExteriorRing();
    ASSERT_EQ(ring.getNumPoints(), 4 * (249998 + 1));
    for (const int k : {0, 1, 1000, 249997}) {
        EXPECT_EQ(ring.getX(k), double(k));
        EXPECT_NEAR(ring.getY(k), 100 / 249997.5 * std::sqrt(249997.5 * 249997.5 - double(k) * k),
                    1e-9);
    }
    EXPECT_EQ(ring.getX(249998), 249997.5);
}

TEST_F(AOISourceEllipses, ALongerRingTakesTheStepThatGivesAMillionPoints) {
    for (const double a : {260.0, 1e4, 1e9, 1e300}) {
        CAOISource source;
        Add(source, 0, a, 10);
        const int points = PointsOfRings(source)[0];
        EXPECT_LE(points, 1000000) << a;
        EXPECT_GE(points, 1000000 - 4) << a;
    }
}

TEST_F(AOISourceEllipses, OnlyTheLargestGiveWayWhereTheyAreTooManyTogether) {
    CAOISource source;
    source.SetResolution(1);
    Add(source, 0, 1000.5, 10);
    for (int i = 0; i < 12; ++i)
        Add(source, 1000, 200000, 10);
    Add(source, 0, 10, 10);
    const std::vector<int> points = PointsOfRings(source);
    EXPECT_EQ(points.front(), 4 * (1001 + 1));
    EXPECT_EQ(points.back(), 4 * (51 + 1)) << "a fiftieth of its semi-axis";
    for (std::size_t i = 2; i + 1 < points.size(); ++i)
        EXPECT_EQ(points[i], points[1]) << "one limit for all";
    EXPECT_LE(Sum(points), MOST_TOGETHER);
    EXPECT_GE(Sum(points), MOST_TOGETHER - 200);
}

TEST_F(AOISourceEllipses, TheirOrderDoesNotMatter) {
    CAOISource forwards;
    CAOISource backwards;
    for (int i = 0; i < 9; ++i) {
        Add(forwards, 0, 100.0 * (i + 1), 10);
        Add(backwards, 0, 100.0 * (9 - i), 10);
    }
    std::vector<int> points = PointsOfRings(backwards);
    std::reverse(points.begin(), points.end());
    EXPECT_EQ(PointsOfRings(forwards), points);
}

TEST_F(AOISourceEllipses, VeryManyKeepEightStepsAQuarter) {
    CAOISource source;
    for (int i = 0; i < 60000; ++i)
        Add(source, 3.0 * i, 1, 1);
    const std::vector<int> points = PointsOfRings(source);
    for (const int count : points)
        ASSERT_EQ(count, 4 * (9 + 1));
}

TEST_F(AOISourceEllipses, TwoHundredInAFileOfEightKilobytesTakeLittleMemory) {
    if (!CanLimitMemory())
        GTEST_SKIP() << "the memory of this build cannot be limited";
    TemporaryFolder folder;
    std::string bytes = AoiHeaderBytes(200);
    for (int i = 0; i < 200; ++i)
        bytes += RectangleBytes('\5', 500000 + 700.0 * i, 4000000 + 300.0 * i, 3000, 2000);
    ASSERT_LT(bytes.size(), 8500U);
    WriteFile(folder.File("a.aif"), bytes);
    CAOISource source;
    ASSERT_EQ(source.Open(folder.WideFile("a.aif").c_str(), GIS_READONLY, false), GIS_SUCCESS);
    const auto hasGeometry = [&] { return source.GetOGRGeometries() != nullptr; };
    EXPECT_EQ(RunWithMemory(std::size_t{50} << 20, hasGeometry), Ending::ANSWERED_TRUE);
    const auto hasMask = [&] {
        CBoundingBox box = source.GetExtent();
        const CAOIMask mask(&source, box, 100, 100);
        // In the first ellipse and in no other.
        return mask.IsPoint2DIn(500300, 3999000) && !mask.IsPoint2DIn(500100, 4050000);
    };
    EXPECT_EQ(RunWithMemory(std::size_t{1} << 30, hasMask), Ending::ANSWERED_TRUE);
}

TEST_F(AOISourceEllipses, ShortMemoryIsToldAndNothingIsInside) {
    if (!CanLimitMemory())
        GTEST_SKIP() << "the memory of this build cannot be limited";
    CAOISource source;
    for (int i = 0; i < 3; ++i)
        Add(source, 500.0 * i, 1000, 1000);
    for (const std::size_t megabytes : {1, 8, 20, 30, 40, 60, 90, 150, 250}) {
        const auto isToldOrTrue = [&] {
            CGISDataSource::ClearLastErrorText();
            const CAOIMask mask(&source, {-500, 500, 500, -500}, 50, 50);
            return mask.IsPointIn(25, 25) || !CGISDataSource::GetLastErrorText().empty();
        };
        EXPECT_EQ(RunWithMemory(megabytes << 20, isToldOrTrue), Ending::ANSWERED_TRUE) << megabytes;
    }
}

TEST_F(AOISourceEllipses, AShapefileHasTheSameRings) {
    TemporaryFolder folder;
    CAOISource source;
    for (int i = 0; i < 30; ++i)
        Add(source, 3000.0 * i, 1000, 10);
    ASSERT_EQ(source.SaveAs(folder.WideFile("a.shp").c_str(), VDF_SHAPEFILE), GIS_SUCCESS);
    EXPECT_LT(std::filesystem::file_size(folder.File("a.shp")), 16U * MOST_TOGETHER + 10000);
}

/// A shape of a host's own that goes by the kind of an ellipse without being one.
class NamedEllipse : public CDrawPolygon {
  public:
    explicit NamedEllipse(ShapeKind kind) {
        AddVertex({0, 0});
        AddVertex({0, 1});
        AddVertex({1, 1});
        m_shapeKind = kind;
        m_complete = true;
    }
};

TEST_F(AOISourceEllipses, AHostsShapeUnderTheirKindHasNoRing) {
    CAOISource source;
    source.AddDrawShape(new NamedEllipse(SHAPE_ELLIPSE));
    source.AddDrawShape(new NamedEllipse(SHAPE_RECTANGLE));
    EXPECT_EQ(source.GetOGRGeometries()->exportToWkt(),
              "GEOMETRYCOLLECTION (POLYGON EMPTY,POLYGON EMPTY)");
}

TEST_F(AOISourceEllipses, AHostsShapeUnderTheirKindIsTransformedByItsVertices) {
    CAOISource source;
    auto* shape = new NamedEllipse(SHAPE_RECTANGLE);
    shape->m_vertices = {{117, 0}, {117, 1}, {118, 1}};
    ASSERT_TRUE(source.AddDrawShape(shape));
    source.SetSpatialReferenceWKT("EPSG:4326");
    ASSERT_EQ(source.TransformTo("EPSG:32650"), GIS_SUCCESS);
    ASSERT_EQ(shape->m_vertices.size(), 3U);
    // On the central meridian of the zone and the equator.
    EXPECT_NEAR(shape->m_vertices[0].x, 500000, 1e-3);
    EXPECT_NEAR(shape->m_vertices[0].y, 0, 1e-3);
    EXPECT_NEAR(shape->m_vertices[1].y, 110530.16, 0.05);
}

TEST(DrawShapeCopy, OfAHostsShapeUnderAnothersKindIsNull) {
    NamedEllipse shape(SHAPE_ELLIPSE);
    EXPECT_EQ(CDrawShape::CreateCopy(&shape), nullptr);
}

} // namespace
