#include "zelto/aoi/RasterAOI.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/raster/RasterSource.h"

#include "tests/aoi/Shapes.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>

namespace {

using namespace zelto::test;

/// A raster of 20 × 10 pixels of two ground units, its top-left corner at (100, 200), and an
/// area on it.
class RasterAOITest : public testing::Test {
  protected:
    RasterAOITest() {
        WriteRaster(m_folder.File("i.tif"),
                    {.width = 20, .height = 10, .geoTransform = NorthUp(100, 200, 2)},
                    {MakePixels(20, 10, [](int, int) { return 1; })});
        EXPECT_EQ(m_raster.Open(m_folder.WideFile("i.tif").c_str(), GIS_READONLY, true),
                  GIS_SUCCESS);
    }
    template <typename Shape = CDrawRectangle>
    void AddBox(double left, double top, double right, double bottom) {
        ASSERT_TRUE(m_aoi.AddDrawShape(new Shape(Drag<Shape>({left, top}, {right, bottom}))));
    }
    void AddPolygon(const std::vector<CPoint2D>& points) {
        ASSERT_TRUE(m_aoi.AddDrawShape(new CDrawPolygon(MakePolygon(points))));
    }
    /// Whether each pixel of the raster is in the area, as rows of '#' and '.'.
    std::vector<std::string> Draw(const CRasterAOI& area) {
        std::vector<std::string> rows;
        for (int row = 0; row < 10; ++row) {
            rows.emplace_back();
            for (int column = 0; column < 20; ++column)
                rows.back() += area.IsInAOI(column, row) ? '#' : '.';
        }
        return rows;
    }

    TemporaryFolder m_folder;
    CRasterSource m_raster;
    CAOISource m_aoi;
};

void ExpectRect(const CRect& rect, int left, int top, int right, int bottom) {
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

TEST_F(RasterAOITest, WithoutARasterOrAnAreaNothingIsInside) {
    for (CRasterAOI area : {CRasterAOI(nullptr, &m_aoi), CRasterAOI(&m_raster, nullptr),
                            CRasterAOI(nullptr, nullptr)}) {
        EXPECT_FALSE(area.Initialize());
        EXPECT_FALSE(area.IsInitialized());
        EXPECT_FALSE(area.IsInAOI(0, 0));
        EXPECT_FALSE(area.IsdfInAOI(0.5, 0.5));
        CBoundingBox box(0, 0, 10, -10);
        EXPECT_EQ(area.TopoRelationWithBoundingBox(&box), TOPO_DISJOINT);
        EXPECT_EQ(area.ReadCacheAoiBuffer(0, 0, 10, 10), TOPO_DISJOINT);
        EXPECT_TRUE(area.ConvertToRasterMap(L"unused", nullptr));
        area.GetExtent();
    }
    EXPECT_EQ(CRasterAOI(&m_raster, &m_aoi).GetAOISource(), &m_aoi);
}

TEST_F(RasterAOITest, AnAreaThatIsNotInitialisedHoldsNothing) {
    AddBox(110, 196, 120, 190);
    CRasterAOI area(&m_raster, &m_aoi);
    EXPECT_FALSE(area.IsInAOI(6, 3));
    EXPECT_FALSE(area.IsdfInAOI(6, 3));
    EXPECT_TRUE(area.ConvertToRasterMap(nullptr, nullptr));
    EXPECT_TRUE(area.IsInAOI(6, 3));
}

TEST_F(RasterAOITest, ThePixelRectangleStartsEmptyAndCoversTheShapes) {
    CRasterAOI empty(&m_raster, &m_aoi);
    ExpectRect(empty.GetRect(), 20, 10, 0, 0);
    AddBox(110, 196, 120, 190);
    CRasterAOI area(&m_raster, &m_aoi);
    ExpectRect(area.GetRect(), 5, 2, 10, 5);
    EXPECT_TRUE(area.IsInitialized());
    const CBoundingBox extent = area.GetExtent();
    EXPECT_EQ(extent.m_left, 110);
    EXPECT_EQ(extent.m_top, 196);
    EXPECT_EQ(extent.m_right, 120);
    EXPECT_EQ(extent.m_bottom, 190);
}

TEST_F(RasterAOITest, ARectangleHoldsItsEdgesIncludingRightAndBottom) {
    AddBox(110, 196, 120, 190);
    CRasterAOI area(&m_raster, &m_aoi);
    ASSERT_TRUE(area.Initialize());
    const std::string none(20, '.');
    const std::string some = ".....######.........";
    EXPECT_EQ(Draw(area), (std::vector<std::string>{none, none, some, some, some, some, none, none,
                                                    none, none}));
    EXPECT_TRUE(area.IsInAOI(10, 5)) << "the bounds are inclusive, the shape decides";
    EXPECT_FALSE(area.IsInAOI(11, 5));
    EXPECT_TRUE(area.IsdfInAOI(10.0, 5.0));
    EXPECT_FALSE(area.IsdfInAOI(10.01, 5.0));
    EXPECT_TRUE(area.IsdfInAOI(5.5, 4.99));
    EXPECT_FALSE(area.IsdfInAOI(std::nan(""), 3));
}

TEST_F(RasterAOITest, AShapeWithinOnePixelIsThatPixel) {
    AddBox(110.5, 195.5, 111, 195);
    CRasterAOI area(&m_raster, &m_aoi);
    ExpectRect(area.GetRect(), 5, 2, 6, 3);
    EXPECT_TRUE(area.IsInAOI(5, 2));
}

TEST_F(RasterAOITest, PolygonVerticesAreTruncatedToPixels) {
    // (111.9, 195.9) is pixel (5.95, 2.05), and so on.
    AddPolygon({{111.9, 195.9}, {130.1, 195.9}, {130.1, 184.1}, {111.9, 184.1}});
    CRasterAOI area(&m_raster, &m_aoi);
    ExpectRect(area.GetRect(), 5, 2, 15, 7);
    // Left and bottom edges are inside; in pixel space the bottom is the larger row.
    EXPECT_TRUE(area.IsInAOI(5, 7));
    EXPECT_TRUE(area.IsInAOI(14, 3));
    EXPECT_FALSE(area.IsInAOI(15, 5)) << "the right edge is asked and is outside";
    EXPECT_FALSE(area.IsInAOI(8, 2)) << "so is the top edge";
}

TEST_F(RasterAOITest, PositionsBeforeTheFirstColumnAreTruncatedTowardZero) {
    AddPolygon({{98.5, 201.5}, {110, 201.5}, {110, 190}, {98.5, 190}});
    CRasterAOI area(&m_raster, &m_aoi);
    // Column −0.75 and row −0.75 become 0.
    ExpectRect(area.GetRect(), 0, 0, 5, 5);
}

TEST_F(RasterAOITest, ShapesApartFromTheRasterAreLeftOut) {
    AddBox(0, 50, 50, 0);
    AddPolygon({{141, 200}, {150, 200}, {150, 190}});
    AddBox<CDrawEllipse>(110, 196, 120, 190);
    CRasterAOI area(&m_raster, &m_aoi);
    ExpectRect(area.GetRect(), 5, 2, 10, 5);
    EXPECT_FALSE(area.IsInAOI(5, 2)) << "a corner outside the ellipse";
    EXPECT_TRUE(area.IsInAOI(7, 3));
}

TEST_F(RasterAOITest, TouchingTheRastersEdgeIsEnough) {
    AddBox(140, 200, 150, 190);
    CRasterAOI area(&m_raster, &m_aoi);
    ExpectRect(area.GetRect(), 20, 0, 25, 5);
}

TEST_F(RasterAOITest, BoxRelationsComeFromTheFirstShapeThatHasOne) {
    AddBox(100, 200, 110, 190);
    AddBox(104, 196, 120, 180);
    CRasterAOI area(&m_raster, &m_aoi);
    ASSERT_TRUE(area.Initialize());
    // Pixel space: columns 0 … 5 and rows 0 … 5, columns 2 … 10 and rows 2 … 10.
    CBoundingBox both(1, -1, 6, -6);
    EXPECT_EQ(area.TopoRelationWithBoundingBox(&both), TOPO_INTERSECT);
    CBoundingBox inFirst(1, -1, 2, -2);
    EXPECT_EQ(area.TopoRelationWithBoundingBox(&inFirst), TOPO_CONTAIN);
    CBoundingBox inSecond(6, -6, 8, -8);
    EXPECT_EQ(area.TopoRelationWithBoundingBox(&inSecond), TOPO_CONTAIN);
    CBoundingBox inBoth(3, -3, 4, -4);
    EXPECT_EQ(area.TopoRelationWithBoundingBox(&inBoth), TOPO_CONTAIN);
    CBoundingBox apart(12, -1, 14, -2);
    EXPECT_EQ(area.TopoRelationWithBoundingBox(&apart), TOPO_DISJOINT);
    EXPECT_EQ(area.TopoRelationWithBoundingBox(nullptr), TOPO_DISJOINT);
}

TEST_F(RasterAOITest, BlocksOfPixelsAreRelatedToTheArea) {
    AddBox(110, 196, 130, 184);
    CRasterAOI area(&m_raster, &m_aoi);
    ASSERT_TRUE(area.Initialize());
    // Columns 5 … 15, rows 2 … 8.
    EXPECT_EQ(area.ReadCacheAoiBuffer(6, 3, 4, 4), TOPO_CONTAIN);
    EXPECT_EQ(area.ReadCacheAoiBuffer(5, 2, 10, 6), TOPO_CONTAIN);
    EXPECT_EQ(area.ReadCacheAoiBuffer(4, 3, 4, 4), TOPO_INTERSECT);
    EXPECT_EQ(area.ReadCacheAoiBuffer(0, 0, 5, 2), TOPO_DISJOINT) << "touching is no overlap";
    EXPECT_EQ(area.ReadCacheAoiBuffer(6, 3, 0, 4), TOPO_DISJOINT);
    EXPECT_EQ(area.ReadCacheAoiBuffer(6, 3, -2, 4), TOPO_DISJOINT);
    EXPECT_EQ(area.ReadCacheAoiBuffer(INT_MAX, 3, INT_MAX, 4), TOPO_DISJOINT);
    EXPECT_EQ(area.ReadCacheAoiBuffer(6, 3, INT_MAX, 4), TOPO_INTERSECT);
}

TEST_F(RasterAOITest, InitialisingAgainAnswersTheSame) {
    AddBox(110, 196, 120, 190);
    CRasterAOI area(&m_raster, &m_aoi);
    ASSERT_TRUE(area.Initialize());
    const auto before = Draw(area);
    ASSERT_TRUE(area.Initialize());
    EXPECT_EQ(Draw(area), before);
}

TEST_F(RasterAOITest, CopiesAnswerOnTheirOwn) {
    AddBox(110, 196, 120, 190);
    AddPolygon({{100, 200}, {106, 200}, {106, 194}});
    auto area = std::make_unique<CRasterAOI>(&m_raster, &m_aoi);
    ASSERT_TRUE(area->Initialize());
    const auto expected = Draw(*area);
    const CRasterAOI copy(*area);
    CRasterAOI assigned(nullptr, nullptr);
    assigned = *area;
    assigned = *&assigned;
    area.reset();
    EXPECT_EQ(Draw(copy), expected);
    EXPECT_EQ(Draw(assigned), expected);
    EXPECT_TRUE(assigned.IsInitialized());
    ExpectRect(assigned.GetRect(), 0, 0, 10, 5);
}

TEST_F(RasterAOITest, UndefinedShapesDoNoHarm) {
    const double nan = std::nan("");
    AddPolygon({{nan, 196}, {120, nan}, {120, 190}, {1e300, 190}});
    AddBox(nan, 196, 120, 190);
    m_aoi.GetDrawShape(0)->m_extent.SetBoundingBox(100, 200, 140, 180);
    CRasterAOI area(&m_raster, &m_aoi);
    ASSERT_TRUE(area.Initialize());
    area.IsInAOI(6, 3);
    area.GetExtent();
    EXPECT_EQ(area.GetRect().left, INT_MIN);
}

TEST_F(RasterAOITest, AShapeOfAnotherKindHoldsNothing) {
    AddBox(110, 196, 120, 190);
    m_aoi.GetDrawShape(0)->m_shapeKind = ShapeKind(9);
    CRasterAOI area(&m_raster, &m_aoi);
    EXPECT_TRUE(area.Initialize());
    EXPECT_FALSE(area.IsInAOI(6, 3));
}

} // namespace
