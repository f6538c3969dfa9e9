#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"

#include "tests/aoi/Shapes.h"
#include "tests/display/RandomScene.h"
#include "tests/display/ReferenceRenderer.h"
#include "tests/display/ShownRaster.h"

#include <omp.h>

using namespace zelto::test;

namespace {

using Planes = std::vector<Bytes>;

/// A source and an area that covers all of it.
struct Covered {
    explicit Covered(CRasterSource& source) : area(&source, &shapes) {
        const CBoundingBox e = source.GetExtent();
        EXPECT_TRUE(shapes.AddDrawShape(new CDrawRectangle(Drag<CDrawRectangle>(
            {e.m_left - 9.0, e.m_top + 9.0}, {e.m_right + 9.0, e.m_bottom - 9.0}))));
    }
    CAOISource shapes;
    CRasterAOI area;
};

/// 1 for the output pixels whose centre lies in the area, asked one by one.
Bytes PlainMembership(const CRasterSource& source, const CRasterAOI& area, const CBoundingBox& box,
                      int w, int h) {
    Bytes inside;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            double column = 0.0;
            double row = 0.0;
            source.GroundToImage(box.m_left + (x + 0.5) * (box.GetWidth() / w),
                                 box.m_top - (y + 0.5) * (box.GetHeight() / h), column, row);
            inside.push_back(area.IsdfInAOI(column, row) ? 1 : 0);
        }
    }
    return inside;
}

} // namespace

TEST(PlaneRendering, PlaneKReceivesShownBandK) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 2}, {11, 12}, {21, 22}});
    source.Show({2, 0, 1});
    EXPECT_EQ(source.Planes(3), (Planes{{21, 22}, {1, 2}, {11, 12}}));
    EXPECT_EQ(source.Planes(2), (Planes{{21, 22}, {1, 2}}));
    EXPECT_EQ(source.Planes(4), (Planes{{21, 22}, {1, 2}, {11, 12}, {0, 0}}));
    source.Show({2, 1});
    EXPECT_EQ(source.Planes(3), (Planes{{21, 22}, {11, 12}, {0, 0}}));
}

TEST(PlaneRendering, BandsAreIndependentOfEachOther) {
    ShownRaster source({.width = 2, .height = 1, .noData = 0.0}, {{0, 2}, {11, 0}, {21, 22}});
    EXPECT_EQ(source.Planes(3), (Planes{{0, 2}, {11, 0}, {21, 22}}));
}

TEST(PlaneRendering, TheMaskedDrawingNeedsAnAreaAndPlaceForItsPixels) {
    ShownRaster source({.width = 2, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{7, 9}});
    Covered covered(source);
    CBoundingBox box = source.GetExtent();
    Bytes plane(2, 91), inside(2, 91);
    unsigned char* planes[] = {plane.data()};
    EXPECT_FALSE(source.GetMaskedShowData(&box, 2, 1, 1, planes, nullptr, inside.data()));
    EXPECT_FALSE(source.GetMaskedShowData(&box, 2, 1, 1, planes, &covered.area, nullptr));
    EXPECT_FALSE(source.GetMaskedShowData(nullptr, 2, 1, 1, planes, &covered.area, inside.data()));
    EXPECT_EQ(inside, Bytes(2, 91));
    EXPECT_TRUE(source.GetMaskedShowData(&box, 2, 1, 1, planes, &covered.area, inside.data()));
    EXPECT_EQ(inside, Bytes(2, 1));
    EXPECT_EQ(plane, (Bytes{7, 9}));
}

TEST(PlaneRendering, OneGreyBandGoesIntoEveryPlane) {
    ShownRaster source({.width = 2, .height = 1}, {{7, 9}});
    EXPECT_EQ(source.Planes(1), (Planes{{7, 9}}));
    EXPECT_EQ(source.Planes(5), Planes(5, Bytes{7, 9}));
}

TEST(PlaneRendering, TheRampComesBlueFirstWithoutAnAreaAndRedFirstWithOne) {
    ShownRaster source({.width = 1, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{100}});
    CColorRamp ramp = DistinctRamp();
    source.SetColorRamp(&ramp);
    source.SetDisplayType(static_cast<DataDisplayType>(1));
    EXPECT_EQ(source.Planes(1), (Planes{{100}})) << "a single plane takes the display byte";
    EXPECT_EQ(source.Planes(3), (Planes{{50}, {155}, {100}}));
    EXPECT_EQ(source.Planes(2), (Planes{{50}, {155}})) << "only planes that exist are written";
    EXPECT_EQ(source.Planes(4), (Planes{{50}, {155}, {100}, {0}}));
    Covered covered(source);
    EXPECT_EQ(source.Planes(1, &covered.area), (Planes{{100}}));
    EXPECT_EQ(source.Planes(3, &covered.area), (Planes{{100}, {155}, {50}}));
}

TEST(PlaneRendering, ClassesSwapTheSameWayAndTransparentOnesAreBlack) {
    ShownRaster source({.width = 3, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{15, 25, 40}});
    CClassifyDisplayTable table = TwoClasses();
    source.SetClassifyDisplayTable(&table);
    source.SetDisplayType(DISPLAY_CLASSIFIED);
    source.m_transparency = 1.0F; // plays no part in planes
    EXPECT_EQ(source.Planes(3), (Planes{{3, 0, 0}, {2, 0, 0}, {1, 0, 0}}));
    EXPECT_EQ(source.Planes(1), (Planes{{3, 0, 0}}));
    Covered covered(source);
    EXPECT_EQ(source.Planes(3, &covered.area), (Planes{{1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
}

TEST(PlaneRendering, PalettesSwapTheSameWayAndDropTheAlpha) {
    const TemporaryFolder folder;
    const std::string path = folder.File("p.tif");
    WriteRaster(path, {.width = 2, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{0, 1}});
    {
        GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_UPDATE));
        GDALColorTable table;
        const GDALColorEntry first{10, 20, 30, 255}, second{11, 21, 31, 255};
        table.SetColorEntry(0, &first);
        table.SetColorEntry(1, &second);
        ASSERT_EQ(dataset->GetRasterBand(1)->SetColorTable(&table), CE_None);
    }
    CRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(folder.WideFile("p.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    CBoundingBox box = source.GetExtent();
    Planes planes(3, Bytes(2));
    unsigned char* pointers[] = {planes[0].data(), planes[1].data(), planes[2].data()};
    ASSERT_TRUE(source.GetShowData(&box, 2, 1, 3, pointers, nullptr, false));
    EXPECT_EQ(planes, (Planes{{30, 31}, {20, 21}, {10, 11}}));
    Covered covered(source);
    ASSERT_TRUE(source.GetShowData(&box, 2, 1, 3, pointers, &covered.area, false));
    EXPECT_EQ(planes, (Planes{{10, 11}, {20, 21}, {30, 31}}));
}

TEST(PlaneRendering, AdjustsWithoutBeingAsked) {
    const Pixels pixels{10, 90, 200};
    ShownRaster source({.width = 3, .height = 1}, {pixels, {40, 50, 60}, {70, 20, 30}});
    Planes expected = source.Planes(3);
    source.m_hue = 0.3F;
    source.m_contrast = 0.5F;
    unsigned char* pointers[] = {expected[0].data(), expected[1].data(), expected[2].data()};
    CRasterAlgorithm::AdjustHIS(pointers, 3, 1, 0.3F, 0.0F, 0.0F);
    CRasterAlgorithm::AdjustContrast(pointers, 3, 1, 0.5F, 3);
    EXPECT_EQ(source.Planes(3), expected);
}

TEST(PlaneRendering, TheContrastIsForAsManyPlanesAsBandsAreShown) {
    ShownRaster source({.width = 1, .height = 1}, {{100}});
    source.m_contrast = 1.0F;
    EXPECT_EQ(source.Planes(3), (Planes{{72}, {100}, {100}}));
}

TEST(PlaneRendering, HueNeedsThreePlanes) {
    ShownRaster source({.width = 1, .height = 1}, {{100}, {50}, {60}});
    source.m_hue = 0.3F;
    source.m_contrast = 1.0F;
    EXPECT_EQ(source.Planes(2), (Planes{{72}, {0}}));
}

TEST(PlaneRendering, SamplesPixelCentres) {
    // A box shifted by half a pixel: centres fall on the next column's start.
    ShownRaster source({.width = 4, .height = 1, .geoTransform = NorthUp(0, 1, 1)}, {{1, 2, 3, 4}});
    CBoundingBox box(0.6, 1, 2.6, 0);
    Bytes plane(2);
    unsigned char* planes[] = {plane.data()};
    ASSERT_TRUE(source.GetShowData(&box, 2, 1, 1, planes, nullptr, false));
    EXPECT_EQ(plane, (Bytes{2, 3})); // 1.1 and 2.1; the corners would be 0.6 and 1.6
    Bytes image(8);
    ASSERT_TRUE(source.GetShowData(&box, 2, 1, image.data(), false));
    EXPECT_EQ(image[0], 1);
    EXPECT_EQ(image[4], 2);
}

TEST(PlaneRendering, TheWindowLeavesOutTheLastColumnThatTheInterleavedOneCountsIn) {
    // One output pixel of one raster pixel around: columns 0 … 2 and rows 0 … 2. The plane
    // window ends before column 2, which the centre of the pixel never needs.
    ShownRaster source({.width = 3, .height = 3, .geoTransform = NorthUp(0, 3, 1)},
                       {{1, 2, 3, 4, 5, 6, 7, 8, 9}});
    CBoundingBox box(1, 2, 2, 1);
    Bytes plane(1);
    unsigned char* planes[] = {plane.data()};
    ASSERT_TRUE(source.GetShowData(&box, 1, 1, 1, planes, nullptr, false));
    EXPECT_EQ(plane[0], 5);
}

TEST(PlaneRendering, ABoxInsideOnePixelHasNoPlaneWindow) {
    ShownRaster source({.width = 3, .height = 3, .geoTransform = NorthUp(0, 3, 1)},
                       {{1, 2, 3, 4, 5, 6, 7, 8, 9}});
    CBoundingBox box(1.4, 1.6, 1.5, 1.5);
    Bytes plane(1, 91);
    unsigned char* planes[] = {plane.data()};
    EXPECT_FALSE(source.GetShowData(&box, 1, 1, 1, planes, nullptr, false));
    EXPECT_EQ(plane[0], 91);
}

TEST(PlaneRendering, ABoxOutsideAnswersFalseAndLeavesThePlanes) {
    ShownRaster source({.width = 2, .height = 2, .geoTransform = NorthUp(100, 200, 1)},
                       {{1, 2, 3, 4}});
    Bytes plane(9, 91);
    unsigned char* planes[] = {plane.data()};
    for (CBoundingBox box : {CBoundingBox(300, 200, 310, 190), CBoundingBox(0, 200, 10, 190),
                             CBoundingBox(100, 400, 102, 398), CBoundingBox(100, 20, 102, 18)}) {
        EXPECT_FALSE(source.GetShowData(&box, 3, 3, 1, planes, nullptr, false));
        EXPECT_FALSE(source.GetShowDataGray(&box, 3, 3, 1, planes, nullptr, false));
    }
    EXPECT_EQ(plane, Bytes(9, 91));
}

TEST(PlaneRendering, BadArgumentsAnswerFalse) {
    ShownRaster source({.width = 2, .height = 1}, {{5, 6}});
    CBoundingBox box = source.GetExtent();
    Bytes plane(2, 91);
    unsigned char* planes[] = {plane.data(), nullptr};
    EXPECT_FALSE(source.GetShowData(nullptr, 2, 1, 1, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowData(&box, 2, 1, 1, nullptr, nullptr, false));
    EXPECT_FALSE(source.GetShowData(&box, 2, 1, 0, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowData(&box, 2, 1, -3, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowData(&box, 2, 1, 2, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowData(&box, 0, 1, 1, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowData(&box, 2, -1, 1, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowDataGray(&box, 2, -1, 1, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowDataGray(&box, 2, 1, 2, planes, nullptr, false));
    EXPECT_FALSE(source.GetShowDataGray(nullptr, 2, 1, 1, planes, nullptr, false));
    EXPECT_EQ(plane, Bytes(2, 91));
    source.Show({7});
    EXPECT_FALSE(source.GetShowData(&box, 2, 1, 1, planes, nullptr, false));
    EXPECT_EQ(plane, Bytes(2, 0));
    EXPECT_FALSE(source.GetShowDataGray(&box, 2, 1, 1, planes, nullptr, false));
}

TEST(PlaneRendering, GreyShowsTheFirstShownBandInEveryPlaneWithoutAdjustments) {
    ShownRaster source({.width = 2, .height = 1}, {{1, 2}, {11, 12}, {100, 22}});
    source.Show({2, 0, 1});
    CColorRamp ramp = DistinctRamp();
    source.SetColorRamp(&ramp);
    source.SetDisplayType(static_cast<DataDisplayType>(1));
    source.m_contrast = 1.0F;
    CBoundingBox box = source.GetExtent();
    Planes planes(2, Bytes(2));
    unsigned char* pointers[] = {planes[0].data(), planes[1].data()};
    ASSERT_TRUE(source.GetShowDataGray(&box, 2, 1, 2, pointers, nullptr, false));
    EXPECT_EQ(planes, Planes(2, Bytes{100, 22}));
    source.Show({0});
    ASSERT_TRUE(source.GetShowDataGray(&box, 2, 1, 2, pointers, nullptr, false));
    EXPECT_EQ(planes, Planes(2, Bytes{1, 2}));
}

TEST(MaskedRendering, EqualsThePlainOneThatAsksForEveryPixel) {
    const int before = omp_get_max_threads();
    for (unsigned seed = 5000; seed < 5120; ++seed) {
        RandomScene scene(seed);
        CRasterSource& source = scene.Source();
        const CBoundingBox extent = source.GetExtent();
        const auto point = [&] {
            return CPoint2D(extent.m_left + scene.Real(-0.2, 1.2) * extent.GetWidth(),
                            extent.m_top - scene.Real(-0.2, 1.2) * extent.GetHeight());
        };
        CAOISource shapes;
        for (int n = scene.Between(0, 3); n > 0; --n) {
            if (scene.Chance(40))
                shapes.AddDrawShape(new CDrawRectangle(Drag<CDrawRectangle>(point(), point())));
            else if (scene.Chance(30))
                shapes.AddDrawShape(new CDrawEllipse(Drag<CDrawEllipse>(point(), point())));
            else
                shapes.AddDrawShape(
                    new CDrawPolygon(MakePolygon({point(), point(), point(), point(), point()})));
        }
        CRasterAOI area(&source, &shapes);
        CRasterAOI asked(&source, &shapes);
        asked.Initialize();
        for (int view = 0; view < 3; ++view) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ' ' << scene.Description());
            CBoundingBox box = scene.RandomBox();
            const int w = scene.RandomSize(200), h = scene.RandomSize(90);
            const int planeCount = scene.Between(1, 3);
            const ReferenceImage plain =
                RenderPlanesPlainly(source, box, w, h, planeCount, [&](double column, double row) {
                    return asked.IsdfInAOI(column, row);
                });
            Planes planes(planeCount, Bytes(static_cast<std::size_t>(w) * h, 91));
            std::vector<unsigned char*> pointers;
            for (Bytes& plane : planes)
                pointers.push_back(plane.data());
            omp_set_num_threads(1 + view);
            ASSERT_EQ(source.GetShowData(&box, w, h, planeCount, pointers.data(), &area, false),
                      plain.succeeded);
            if (plain.touched) {
                ASSERT_TRUE(planes == plain.planes);
            }
            const Bytes untouched(static_cast<std::size_t>(w) * h, 7);
            Bytes inside = untouched;
            ASSERT_EQ(source.GetMaskedShowData(&box, w, h, planeCount, pointers.data(), &area,
                                               inside.data()),
                      plain.succeeded);
            ASSERT_TRUE(!plain.touched || planes == plain.planes);
            ASSERT_TRUE(inside ==
                        (plain.succeeded ? PlainMembership(source, asked, box, w, h) : untouched));
        }
    }
    omp_set_num_threads(before);
}
