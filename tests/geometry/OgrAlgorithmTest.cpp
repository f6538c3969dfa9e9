#include "zelto/geometry/OgrAlgorithm.h"

#include "zelto/datasource/GISDataSource.h"

#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

constexpr double LARGEST = std::numeric_limits<double>::max();

OGRGeometryUniquePtr Geometry(const char* wkt) {
    OGRGeometry* geometry = nullptr;
    OGRGeometryFactory::createFromWkt(wkt, nullptr, &geometry);
    EXPECT_NE(geometry, nullptr) << wkt;
    return OGRGeometryUniquePtr(geometry);
}

double Distance(const char* wkt, double x, double y) {
    return COgrAlgorithm::DistanceWithPoint(Geometry(wkt).get(), x, y);
}

bool OnSurface(const char* wkt, double x, double y) {
    OGRPoint point(x, y);
    return COgrAlgorithm::IsPointOnSurface(Geometry(wkt).get(), &point);
}

constexpr const char* HOLED = "POLYGON ((0 0,10 0,10 10,0 10,0 0),(4 4,6 4,6 6,4 6,4 4))";
constexpr const char* HOLED_MULTI =
    "MULTIPOLYGON (((0 0,10 0,10 10,0 10,0 0),(4 4,6 4,6 6,4 6,4 4)),((20 0,30 0,30 9,20 0)))";

} // namespace

TEST(OgrAlgorithm, HoldsNothingButItsVirtualDestructor) {
    static_assert(std::has_virtual_destructor_v<COgrAlgorithm>);
    static_assert(sizeof(COgrAlgorithm) == sizeof(void*));
    const COgrAlgorithm algorithm;
    COgrAlgorithm copy(algorithm);
    copy = algorithm;
}

TEST(DistancePointLine, OfADegenerateSegmentIsTheDistanceToItsStart) {
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({3, 4}, {0, 0}, {0, 0}), 5);
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({3, 4}, {0, 0}, {1e-7, -1e-7}), 5);
}

TEST(DistancePointLine, ASegmentAsLongAsTheToleranceIsNotDegenerate) {
    // The end counts: at exactly the tolerance it is (3 − eps, 4) away, less than 5.
    EXPECT_LT(COgrAlgorithm::DistancePointLine({3, 4}, {0, 0}, {GEOMETRY_EPSILON, 0}), 5);
    EXPECT_EQ(
        COgrAlgorithm::DistancePointLine({3, 4}, {0, 0}, {std::nextafter(GEOMETRY_EPSILON, 0), 0}),
        5);
}

TEST(DistancePointLine, IsThePerpendicularWithinTheSegment) {
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({5, 5}, {0, 0}, {10, 0}), 5);
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({5, -5}, {0, 0}, {10, 0}), 5);
    // (4, −3) is 5 from the line through (3, 4), perpendicular to it at the middle (3, 4).
    EXPECT_DOUBLE_EQ(COgrAlgorithm::DistancePointLine({7, 1}, {0, 0}, {6, 8}), 5);
}

TEST(DistancePointLine, BeyondAnEndIsTheDistanceToIt) {
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({-3, 4}, {0, 0}, {10, 0}), 5);
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({13, -4}, {0, 0}, {10, 0}), 5);
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({0, 7}, {0, 0}, {10, 0}), 7);
    EXPECT_EQ(COgrAlgorithm::DistancePointLine({10, 7}, {0, 0}, {10, 0}), 7);
}

TEST(DistanceWithPoint, OfNullIsZero) {
    EXPECT_EQ(COgrAlgorithm::DistanceWithPoint(nullptr, 1, 1), 0);
}

TEST(DistanceWithPoint, OfALineStringIsTheLeastOfItsSegments) {
    EXPECT_EQ(Distance("LINESTRING (0 0,10 0,10 10)", 8, 6), 2);
    EXPECT_EQ(Distance("LINESTRING (0 0,10 0,10 10)", 13, 14), 5);
}

TEST(DistanceWithPoint, IgnoresHeights) {
    EXPECT_EQ(Distance("LINESTRING Z (0 0 100,10 0 200)", 5, 3), 3);
    EXPECT_EQ(Distance("MULTILINESTRING Z ((0 0 100,10 0 200))", 5, 3), 3);
}

TEST(DistanceWithPoint, OfAMultiLineStringIsTheLeastOfItsMembers) {
    EXPECT_EQ(Distance("MULTILINESTRING ((0 0,10 0),(0 20,10 20))", 5, 16), 4);
    EXPECT_EQ(Distance("MULTILINESTRING EMPTY", 5, 16), LARGEST);
}

TEST(DistanceWithPoint, OfEverythingElseIsTheLargestNumber) {
    OGRLineString onePoint;
    onePoint.addPoint(1, 1);
    EXPECT_EQ(COgrAlgorithm::DistanceWithPoint(&onePoint, 1, 1), LARGEST);
    EXPECT_EQ(Distance("LINESTRING EMPTY", 0, 0), LARGEST);
    EXPECT_EQ(Distance("POINT (1 1)", 1, 1), LARGEST);
    EXPECT_EQ(Distance(HOLED, 1, 1), LARGEST);
    EXPECT_EQ(Distance("GEOMETRYCOLLECTION (LINESTRING (0 0,1 1))", 1, 1), LARGEST);
}

TEST(IsPointOnSurface, OfAPolygonRespectsHoles) {
    EXPECT_TRUE(OnSurface(HOLED, 2, 2));
    EXPECT_FALSE(OnSurface(HOLED, 5, 5));
    EXPECT_FALSE(OnSurface(HOLED, 12, 5));
    EXPECT_TRUE(OnSurface("POLYGON Z ((0 0 1,10 0 1,10 10 1,0 10 1,0 0 1))", 2, 2));
}

TEST(IsPointOnSurface, OfAMultiPolygonIgnoresHoles) {
    EXPECT_TRUE(OnSurface(HOLED_MULTI, 5, 5));
    EXPECT_TRUE(OnSurface(HOLED_MULTI, 28, 2));
    EXPECT_FALSE(OnSurface(HOLED_MULTI, 15, 5));
    EXPECT_FALSE(OnSurface("MULTIPOLYGON EMPTY", 0, 0));
    EXPECT_FALSE(OnSurface("MULTIPOLYGON (EMPTY)", 0, 0));
}

TEST(IsPointOnSurface, OfACollectionAsksEachMember) {
    EXPECT_TRUE(OnSurface("GEOMETRYCOLLECTION (POINT (50 50),POLYGON ((0 0,4 0,4 4,0 0)))", 3, 1));
    EXPECT_TRUE(
        OnSurface("GEOMETRYCOLLECTION (GEOMETRYCOLLECTION (POLYGON ((0 0,4 0,4 4,0 0))))", 3, 1));
    EXPECT_FALSE(OnSurface("GEOMETRYCOLLECTION (POLYGON ((0 0,4 0,4 4,0 0)))", 1, 3));
    EXPECT_FALSE(OnSurface("GEOMETRYCOLLECTION EMPTY", 1, 3));
}

TEST(IsPointOnSurface, HeightsChangeNoKindOfGeometry) {
    EXPECT_TRUE(OnSurface("MULTIPOLYGON Z (((0 0 1,4 0 1,4 4 1,0 0 1)))", 3, 1));
    EXPECT_TRUE(OnSurface(
        "GEOMETRYCOLLECTION Z (POINT Z (9 9 9),POLYGON Z ((0 0 1,4 0 1,4 4 1,0 0 1)))", 3, 1));
}

TEST(IsPointOnSurface, OfEverythingElseIsFalse) {
    OGRPoint point(1, 1);
    EXPECT_FALSE(COgrAlgorithm::IsPointOnSurface(nullptr, &point));
    EXPECT_FALSE(COgrAlgorithm::IsPointOnSurface(Geometry(HOLED).get(), nullptr));
    EXPECT_FALSE(OnSurface("POINT (1 1)", 1, 1));
    EXPECT_FALSE(OnSurface("LINESTRING (0 0,2 2)", 1, 1));
}

TEST(SaveGeometry, WritesAPolygonShapefileWithItsField) {
    const zelto::test::TemporaryFolder folder;
    const OGRGeometryUniquePtr geometry = Geometry("POLYGON ((0 0,0 4,4 4,0 0))");
    const std::string path = folder.File("dump.shp");
    EXPECT_EQ(COgrAlgorithm::SaveGeometry(path.c_str(), geometry.get()), 1);
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    ASSERT_NE(dataset, nullptr);
    OGRLayer* layer = dataset->GetLayer(0);
    EXPECT_EQ(layer->GetGeomType(), wkbPolygon);
    EXPECT_EQ(layer->GetSpatialRef(), nullptr);
    EXPECT_EQ(layer->GetFeatureCount(), 1);
    const OGRFeatureUniquePtr feature(layer->GetNextFeature());
    ASSERT_EQ(feature->GetFieldCount(), 1);
    EXPECT_STREQ(feature->GetFieldDefnRef(0)->GetNameRef(), "152");
    EXPECT_STREQ(feature->GetFieldAsString(0), "152.tif");
    EXPECT_TRUE(feature->GetGeometryRef()->Equals(geometry.get()));
}

TEST(SaveGeometry, AnswersOneWhateverHappens) {
    const zelto::test::TemporaryFolder folder;
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const OGRGeometryUniquePtr geometry = Geometry("POLYGON ((0 0,0 4,4 4,0 0))");
    EXPECT_EQ(COgrAlgorithm::SaveGeometry(nullptr, geometry.get()), 1);
    EXPECT_EQ(COgrAlgorithm::SaveGeometry(folder.File("no/dump.shp").c_str(), geometry.get()), 1);
    EXPECT_EQ(COgrAlgorithm::SaveGeometry(folder.File("null.shp").c_str(), nullptr), 1);
    // A file where a folder would have to be, and a geometry that is no polygon.
    zelto::test::WriteFile(folder.File("plain"), "text");
    const OGRGeometryUniquePtr point = Geometry("POINT (1 2)");
    for (const auto& [name, dumped] :
         {std::pair{"plain/dump", geometry.get()}, std::pair{"point.shp", point.get()}}) {
        CGISDataSource::ClearLastErrorText();
        EXPECT_EQ(COgrAlgorithm::SaveGeometry(folder.File(name).c_str(), dumped), 1);
        EXPECT_EQ(CGISDataSource::GetLastErrorText().find(folder.File(name) + ": "), 0U)
            << CGISDataSource::GetLastErrorText();
    }
    CPLPopErrorHandler();
}

TEST(IsPointOnSurface, AnEmptyPolygonAmongSeveralHoldsNothing) {
    EXPECT_TRUE(OnSurface("MULTIPOLYGON (EMPTY,((0 0,4 0,4 4,0 4,0 0)))", 1, 1));
    EXPECT_FALSE(OnSurface("MULTIPOLYGON (EMPTY,((0 0,4 0,4 4,0 4,0 0)))", 5, 1));
}
