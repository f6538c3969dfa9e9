#include "zelto/aoi/AOIMask.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/raster/RasterSource.h"

#include "tests/aoi/Shapes.h"
#include "tests/support/RasterFile.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <ogr_geometry.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <utility>

namespace {

using zelto::test::Drag;
using zelto::test::MakePixels;
using zelto::test::MakePolygon;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::RecordingProgress;
using zelto::test::TemporaryFolder;

class AOIMask : public testing::Test {
  protected:
    // The library's drivers are up while a data source lives.
    AOIMask() { CGISDataSource::RegisterGDAL(); }
    ~AOIMask() override { CGISDataSource::DestroyGDAL(); }

    static std::unique_ptr<OGRGeometry> Parse(const std::string& wkt) {
        OGRGeometry* geometry = nullptr;
        EXPECT_EQ(OGRGeometryFactory::createFromWkt(wkt.c_str(), nullptr, &geometry), OGRERR_NONE);
        return std::unique_ptr<OGRGeometry>(geometry);
    }
    static std::unique_ptr<CAOIMask> Make(const std::string& wkt, CBoundingBox box, int width,
                                          int height) {
        return std::unique_ptr<CAOIMask>(CAOIMask::Create(Parse(wkt).get(), box, width, height, 0));
    }
    /// The mask as rows of '#' and '.', from the top.
    static std::vector<std::string> Draw(const CAOIMask& mask, int width, int height) {
        std::vector<std::string> rows;
        for (int r = 0; r < height; ++r) {
            rows.emplace_back();
            for (int c = 0; c < width; ++c)
                rows.back() += mask.IsPointIn(c, r) ? '#' : '.';
        }
        return rows;
    }
};

using Rows = std::vector<std::string>;

/// Eight pixels of one ground unit along each side.
const CBoundingBox EIGHT(0, 8, 8, 0);

TEST_F(AOIMask, NoGeometryNoMask) {
    EXPECT_EQ(CAOIMask::Create(nullptr, EIGHT, 8, 8, 0), nullptr);
}

TEST_F(AOIMask, AnAreaAroundTheGrownBoxFillsTheMask) {
    const auto mask = Make("POLYGON ((-1 -1,-1 9,9 9,9 -1,-1 -1))", EIGHT, 8, 8);
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(Draw(*mask, 8, 8), Rows(8, "########"));
    EXPECT_FALSE(mask->IsEmpty());
}

TEST_F(AOIMask, AnAreaApartFromTheGrownBoxLeavesTheMaskEmpty) {
    const auto mask = Make("POLYGON ((9.5 0,9.5 8,20 8,20 0,9.5 0))", EIGHT, 8, 8);
    ASSERT_NE(mask, nullptr);
    EXPECT_TRUE(mask->IsEmpty());
    EXPECT_EQ(Draw(*mask, 8, 8), Rows(8, "........"));
}

TEST_F(AOIMask, PixelCentresDecideAndOnePixelIsAddedAround) {
    // Centres in the square: columns and rows 3 and 4.
    const auto mask =
        Make("POLYGON ((3.25 3.25,3.25 4.75,4.75 4.75,4.75 3.25,3.25 3.25))", EIGHT, 8, 8);
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(Draw(*mask, 8, 8), (Rows{"........", "........", "..####..", "..####..", "..####..",
                                       "..####..", "........", "........"}));
}

TEST_F(AOIMask, TheOutermostPixelsAreNotGrown) {
    // Centres of columns 6 and 7 in rows 3 and 4; growth would reach nothing beyond, and along
    // the last column nothing is added above and below.
    const auto mask =
        Make("POLYGON ((6.25 3.25,6.25 4.75,20 4.75,20 3.25,6.25 3.25))", EIGHT, 8, 8);
    EXPECT_EQ(Draw(*mask, 8, 8), (Rows{"........", "........", ".....##.", ".....###", ".....###",
                                       ".....##.", "........", "........"}));
}

TEST_F(AOIMask, ASliverMissedInSomeRowsIsCaughtByTheGrowth) {
    // A slanted sliver a fifth of a pixel wide; it holds the centres of column 3 in the first
    // row and of column 2 in the last one, and of no pixel in between. Their neighbours are
    // marked; the two rows themselves, on the border, do not grow.
    const auto mask = Make("POLYGON ((2.4 0,2.6 0,3.6 8,3.4 8,2.4 0))", EIGHT, 8, 8);
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(Draw(*mask, 8, 8), (Rows{"...#....", "..###...", "........", "........", "........",
                                       "........", ".###....", "..#....."}));
}

TEST_F(AOIMask, OverlappingMembersOfACollectionGiveAMask) {
    const auto mask = Make("GEOMETRYCOLLECTION (POLYGON ((1 1,1 5,5 5,5 1,1 1)),"
                           "POLYGON ((3 3,3 7,7 7,7 3,3 3)))",
                           EIGHT, 8, 8);
    ASSERT_NE(mask, nullptr);
    EXPECT_TRUE(mask->IsPointIn(2, 5));
    EXPECT_TRUE(mask->IsPointIn(4, 4)) << "in both";
    EXPECT_TRUE(mask->IsPointIn(5, 2));
    EXPECT_FALSE(mask->IsPointIn(7, 7));
}

TEST_F(AOIMask, AdjacentMembersAroundTheBoxFillTheMask) {
    const auto mask = Make("GEOMETRYCOLLECTION (POLYGON ((-9 -9,-9 19,4 19,4 -9,-9 -9)),"
                           "POLYGON ((4 -9,4 19,19 19,19 -9,4 -9)))",
                           EIGHT, 8, 8);
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(Draw(*mask, 8, 8), Rows(8, "########"));
}

TEST_F(AOIMask, ATouchAlongTheGrownFrameIsNotInside) {
    // It shares an edge with the frame; the overlap is a line, which covers no pixel centre.
    const auto mask = Make("POLYGON ((9 -9,9 19,19 19,19 -9,9 -9))", EIGHT, 8, 8);
    ASSERT_NE(mask, nullptr);
    EXPECT_FALSE(mask->IsEmpty());
    EXPECT_EQ(Draw(*mask, 8, 8), Rows(8, "........"));
}

TEST_F(AOIMask, PointsOutsideTheGridAreOutside) {
    const auto mask = Make("POLYGON ((-9 -9,-9 19,19 19,19 -9,-9 -9))", EIGHT, 8, 8);
    EXPECT_FALSE(mask->IsPointIn(-1, 0));
    EXPECT_FALSE(mask->IsPointIn(0, -1));
    EXPECT_FALSE(mask->IsPointIn(8, 0));
    EXPECT_FALSE(mask->IsPointIn(0, 8));
    EXPECT_TRUE(mask->IsPointIn(7, 7));
}

TEST_F(AOIMask, GroundPointsFallOnPixelsTruncatedTowardZero) {
    const auto mask = Make("POLYGON ((-9 -9,-9 19,19 19,19 -9,-9 -9))", {100, 300, 180, 260}, 8, 8);
    ASSERT_EQ(mask->IsEmpty(), true);
    const auto full = Make("POLYGON ((0 0,0 999,999 999,999 0,0 0))", {100, 300, 180, 260}, 8, 8);
    ASSERT_NE(full, nullptr);
    EXPECT_TRUE(full->IsPoint2DIn(100, 300));
    EXPECT_TRUE(full->IsPoint2DIn(179.9, 260.1));
    EXPECT_FALSE(full->IsPoint2DIn(180, 270)) << "column 8";
    EXPECT_TRUE(full->IsPoint2DIn(95, 300)) << "half a pixel left of the box is column 0";
    EXPECT_FALSE(full->IsPoint2DIn(89, 300)) << "column −1";
    EXPECT_FALSE(full->IsPoint2DIn(std::nan(""), 300));
    EXPECT_FALSE(full->IsPoint2DIn(1e300, 300));
}

TEST_F(AOIMask, WithoutAnAreaTheBoxIsInside) {
    const CAOIMask mask(nullptr, EIGHT, 8, 8);
    EXPECT_FALSE(mask.IsEmpty());
    EXPECT_TRUE(mask.IsPointIn(0, 0));
    EXPECT_TRUE(mask.IsPointIn(7, 7));
    EXPECT_FALSE(mask.IsPointIn(8, 7));
    EXPECT_TRUE(mask.IsPoint2DIn(8, 0)) << "the edges are included";
    EXPECT_FALSE(mask.IsPoint2DIn(8.1, 0));
}

TEST_F(AOIMask, AnAreaWithoutShapesHoldsNothing) {
    CAOISource source;
    const CAOIMask mask(&source, EIGHT, 8, 8);
    EXPECT_TRUE(mask.IsEmpty());
    EXPECT_FALSE(mask.IsPointIn(4, 4));
    EXPECT_FALSE(mask.IsPoint2DIn(4, 4));
}

TEST_F(AOIMask, AnAreasShapesAreBurnt) {
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({1, 7}, {3, 5})));
    source.AddDrawShape(new CDrawEllipse(Drag<CDrawEllipse>({2, 6}, {7, 1})));
    const CAOIMask mask(&source, EIGHT, 8, 8);
    EXPECT_TRUE(mask.IsPointIn(1, 1));
    EXPECT_TRUE(mask.IsPointIn(4, 4));
    EXPECT_FALSE(mask.IsPointIn(7, 0));
}

TEST_F(AOIMask, AGridWithoutPixelsAnswersGroundPointsFromTheGeometry) {
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({2, 6}, {5, 3})));
    for (const auto& [width, height] : {std::pair{0, 8}, {8, 0}, {0, 0}, {-3, 8}}) {
        const CAOIMask mask(&source, EIGHT, width, height);
        EXPECT_FALSE(mask.IsPointIn(0, 0));
        EXPECT_TRUE(mask.IsPoint2DIn(3, 4)) << width << " x " << height;
        EXPECT_FALSE(mask.IsPoint2DIn(1, 4));
        EXPECT_EQ(Make("POLYGON ((2 2,2 5,5 5,5 2,2 2))", EIGHT, width, height), nullptr);
    }
    const CAOIMask apart(&source, {10, 18, 18, 10}, 0, 0);
    EXPECT_TRUE(apart.IsEmpty());
    EXPECT_FALSE(apart.IsPoint2DIn(12, 12));
}

TEST_F(AOIMask, APolygonThatCrossesItselfMarksWhatItHoldsBesideTheOthers) {
    CAOISource source;
    source.AddDrawShape(new CDrawPolygon(MakePolygon({{1, 1}, {7, 7}, {7, 1}, {1, 7}})));
    source.AddDrawShape(new CDrawRectangle(Drag({10, 5}, {14, 3})));
    const CAOIMask mask(&source, {0, 8, 16, 0}, 16, 8);
    EXPECT_TRUE(mask.IsPointIn(1, 4)) << "left triangle";
    EXPECT_TRUE(mask.IsPointIn(6, 4)) << "right triangle";
    EXPECT_FALSE(mask.IsPointIn(4, 1)) << "above the crossing";
    EXPECT_TRUE(mask.IsPointIn(12, 4)) << "the rectangle";
}

TEST_F(AOIMask, AShapeThatCannotBeRepairedIsToldAndTheOthersCount) {
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const double nan = std::nan("");
    CAOISource source;
    source.AddDrawShape(new CDrawPolygon(MakePolygon({{1, 1}, {nan, 7}, {7, 1}})));
    source.AddDrawShape(new CDrawRectangle(Drag({2, 6}, {5, 3})));
    CGISDataSource::ClearLastErrorText();
    const CAOIMask mask(&source, EIGHT, 8, 8);
    EXPECT_TRUE(mask.IsPointIn(3, 3));
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
}

TEST_F(AOIMask, AnAreaThatCannotBeCutIsOutsideAndTold) {
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    CAOISource source;
    source.AddDrawShape(new CDrawRectangle(Drag({2, 6}, {5, 3})));
    CGISDataSource::ClearLastErrorText();
    const CAOIMask mask(&source, {std::nan(""), 8, 8, 0}, 8, 8);
    EXPECT_FALSE(mask.IsPoint2DIn(3, 4));
    EXPECT_FALSE(mask.IsPointIn(3, 3));
    EXPECT_NE(CGISDataSource::GetLastErrorText(), "");
}

TEST_F(AOIMask, UndefinedBoxesDoNoHarm) {
    CPLPushErrorHandler(CPLQuietErrorHandler);
    const double nan = std::nan("");
    const double infinite = std::numeric_limits<double>::infinity();
    for (const CBoundingBox& box :
         {CBoundingBox(nan, 8, 8, 0), CBoundingBox(0, infinite, infinite, 0),
          CBoundingBox(0, 0, 0, 0), CBoundingBox(8, 0, 0, 8)}) {
        const auto mask = Make("POLYGON ((2 2,2 5,5 5,5 2,2 2))", box, 8, 8);
        if (mask != nullptr) {
            mask->IsPointIn(3, 3);
            mask->IsPoint2DIn(3, 3);
        }
    }
    CPLPopErrorHandler();
}

TEST_F(AOIMask, AgreesWithPixelCentresAndTheirNeighboursOnRandomPolygons) {
    SCOPED_TRACE("seed 41");
    std::mt19937 engine(41);
    std::uniform_real_distribution<double> c(-3, 43);
    for (int round = 0; round < 60; ++round) {
        // Two polygons of three to eight vertices, which as a rule cross themselves.
        std::vector<CDrawPolygon> polygons(2);
        CAOISource source;
        for (CDrawPolygon& polygon : polygons) {
            for (int i = 0; i < 3 + round % 6; ++i)
                polygon.AddVertex({c(engine), c(engine)});
            polygon.m_complete = true;
            ASSERT_TRUE(source.AddDrawShape(new CDrawPolygon(polygon)));
        }
        const CAOIMask mask(&source, {0, 40, 40, 0}, 40, 40);
        const auto burnt = [&](int column, int row) {
            CPoint2D centre(column + 0.5, 40 - (row + 0.5));
            return column >= 0 && row >= 0 && column < 40 && row < 40 &&
                   (polygons[0].IsPointIn(&centre) || polygons[1].IsPointIn(&centre));
        };
        for (int row = 0; row < 40; ++row)
            for (int column = 0; column < 40; ++column) {
                bool expected = burnt(column, row);
                if (row > 0 && row < 39 && column > 0 && column < 39)
                    for (int k = 0; k < 9; ++k)
                        expected |= burnt(column + k % 3 - 1, row + k / 3 - 1);
                ASSERT_EQ(mask.IsPointIn(column, row), expected)
                    << "column " << column << ", row " << row << ", round " << round;
            }
    }
}

/// A raster of one byte band over a box, open for writing.
class Target {
  public:
    /// @param options creation options, null-terminated; may be null
    Target(const CBoundingBox& box, int width, int height, PixelDataType type = PDT_Byte,
           const char* const* options = nullptr) {
        double geoTransform[6] = {box.m_left, box.GetWidth() / width,   0.0, box.m_top,
                                  0.0,        -box.GetHeight() / height};
        EXPECT_EQ(m_raster.CreateRaster(RDF_GTiff, m_folder.WideFile("mask.tif").c_str(), width,
                                        height, 1, type, geoTransform, nullptr,
                                        const_cast<char**>(options)),
                  GIS_SUCCESS);
    }
    CRasterSource& Raster() { return m_raster; }
    Pixels Close() {
        m_raster.Close();
        return ReadBand(m_folder.File("mask.tif"), 1);
    }

  private:
    TemporaryFolder m_folder;
    CRasterSource m_raster;
};

TEST_F(AOIMask, WrittenIntoARasterItAnswersAsWhenAsked) {
    SCOPED_TRACE("seed 43");
    std::mt19937 engine(43);
    std::uniform_real_distribution<double> c(-30, 70);
    for (int round = 0; round < 40; ++round) {
        const CBoundingBox box(c(engine), 40, 80, c(engine) - 41);
        const int width = 1 + static_cast<int>(engine() % 60);
        const int height = 1 + static_cast<int>(engine() % 60);
        CAOISource source;
        for (int shapes = static_cast<int>(engine() % 3); shapes > 0; --shapes)
            source.AddDrawShape(new CDrawPolygon(MakePolygon(
                {{c(engine), c(engine)}, {c(engine), c(engine)}, {c(engine), c(engine)}})));
        if (round % 10 == 0)
            source.AddDrawShape(
                new CDrawPolygon(MakePolygon({{-99, -99}, {-99, 99}, {99, 99}, {99, -99}})));
        Target target(box, width, height);
        const CAOIMask mask(&source, target.Raster().GetExtent(), width, height);
        __int64 inside = -1;
        ASSERT_EQ(CAOIMask::WriteRaster(&source, &target.Raster(), inside, nullptr), GIS_SUCCESS);
        const Pixels expected = MakePixels(
            width, height, [&](int x, int y) { return mask.IsPointIn(x, y) ? 1.0 : 0.0; });
        EXPECT_EQ(inside, std::count(expected.begin(), expected.end(), 1.0));
        ASSERT_EQ(target.Close(), expected) << "round " << round;
    }
}

TEST_F(AOIMask, RowsThatAreBlocksOfTheRasterAreWrittenAsOthers) {
    // Rows of 9,000 bytes are strips of their own, rows of 90 share one.
    for (const int width : {9000, 90}) {
        const CBoundingBox box(0, 7, width, 0);
        Target target(box, width, 7);
        CAOISource source;
        source.AddDrawShape(new CDrawPolygon(
            MakePolygon({{10, 1.2}, {20, 5.8}, {width - 5.0, 3.1}, {width / 2.0, 1.7}})));
        const CAOIMask mask(&source, box, width, 7);
        __int64 inside = 0;
        ASSERT_EQ(CAOIMask::WriteRaster(&source, &target.Raster(), inside, nullptr), GIS_SUCCESS);
        EXPECT_GT(inside, 0);
        ASSERT_EQ(target.Close(), MakePixels(width, 7, [&](int x, int y) {
                      return mask.IsPointIn(x, y) ? 1.0 : 0.0;
                  }));
    }
}

TEST_F(AOIMask, TilesAndWiderValuesAreWrittenAsOthers) {
    const char* const tiles[] = {"TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16", nullptr};
    const char* const rows[] = {"BLOCKYSIZE=1", nullptr};
    const std::pair<PixelDataType, const char* const*> layouts[] = {
        {PDT_Byte, tiles}, {PDT_UInt16, rows}, {PDT_UInt16, tiles}};
    const CBoundingBox box(0, 20, 40, 0);
    CAOISource source;
    source.AddDrawShape(new CDrawPolygon(MakePolygon({{3, 2}, {20, 19}, {37, 3}})));
    const CAOIMask mask(&source, box, 40, 20);
    for (const auto& [type, options] : layouts) {
        Target target(box, 40, 20, type, options);
        __int64 inside = 0;
        ASSERT_EQ(CAOIMask::WriteRaster(&source, &target.Raster(), inside, nullptr), GIS_SUCCESS);
        const Pixels expected =
            MakePixels(40, 20, [&](int x, int y) { return mask.IsPointIn(x, y) ? 1.0 : 0.0; });
        EXPECT_EQ(inside, std::count(expected.begin(), expected.end(), 1.0));
        EXPECT_EQ(target.Close(), expected) << type;
    }
}

TEST_F(AOIMask, OfAnAreaThatRemembersTheGeometryOfRemovedShapesIsThatGeometrys) {
    CAOISource source;
    source.AddDrawShape(new CDrawPolygon(MakePolygon({{-9, -9}, {-9, 20}, {20, 20}, {20, -9}})));
    ASSERT_NE(source.GetOGRGeometries(), nullptr);
    ASSERT_TRUE(source.RemoveDrawShape(source.GetDrawShape(0)));
    const CAOIMask mask(&source, EIGHT, 8, 8);
    EXPECT_EQ(Draw(mask, 8, 8), Rows(8, "########"));
}

TEST_F(AOIMask, WithoutAnAreaEveryPixelOfARasterIsInside) {
    Target target(EIGHT, 8, 8);
    __int64 inside = 0;
    RecordingProgress progress;
    EXPECT_EQ(CAOIMask::WriteRaster(nullptr, &target.Raster(), inside, &progress), GIS_SUCCESS);
    EXPECT_EQ(inside, 64);
    EXPECT_EQ(progress.m_stages.at(0).second, 8);
    EXPECT_EQ(progress.m_steps.back().first, 8);
    EXPECT_EQ(target.Close(), Pixels(64, 1.0));
}

TEST_F(AOIMask, WritingIntoARasterFailsWhereItMust) {
    CAOISource source;
    source.AddDrawShape(new CDrawPolygon(MakePolygon({{1, 1}, {1, 7}, {7, 7}})));
    Target target(EIGHT, 8, 8);
    __int64 inside = 0;
    RecordingProgress impatient(0);
    EXPECT_EQ(CAOIMask::WriteRaster(&source, &target.Raster(), inside, &impatient), GIS_FAILED);
    EXPECT_EQ(CAOIMask::WriteRaster(&source, nullptr, inside, nullptr), GIS_FAILED);
    CRasterSource closed;
    EXPECT_EQ(CAOIMask::WriteRaster(&source, &closed, inside, nullptr), GIS_FAILED);
    const TemporaryFolder folder;
    zelto::test::WriteContainer(folder.File("two.nc"), {.width = 2, .height = 1}, {{1, 2}, {3, 4}});
    CRasterSource bandless;
    ASSERT_EQ(bandless.OpenAsDataset(folder.WideFile("two.nc").c_str(), GIS_READONLY), GIS_SUCCESS);
    ASSERT_EQ(bandless.Reopen(GIS_READONLY, false), GIS_NOT_SUPPORTED);
    ASSERT_TRUE(bandless.IsOpened());
    EXPECT_EQ(bandless.GetBandCount(), 0);
    EXPECT_EQ(CAOIMask::WriteRaster(&source, &bandless, inside, nullptr), GIS_FAILED);
    EXPECT_EQ(CGISDataSource::GetLastErrorText(), "there is no raster to write the mask into");
}

} // namespace
