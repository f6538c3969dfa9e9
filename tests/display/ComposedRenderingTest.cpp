// The renderings of a composed raster against a plain statement of the rules.

#include "zelto/Zelto.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

using zelto::test::MakePixels;
using zelto::test::TemporaryFolder;
using zelto::test::WriteRaster;

namespace {

constexpr int COLORS = 3;

struct ThreeSources {
    TemporaryFolder folder;
    CRasterSource sources[COLORS];
    CComposedRaster composed;
};

/// Three overlapping rasters of different resolution, type and stretch.
void MakeScene(ThreeSources& scene, std::mt19937& random, bool rotated) {
    const GDALDataType types[] = {GDT_Byte, GDT_UInt16, GDT_Float32, GDT_Int16};
    const StretchType stretches[] = {StretchNone, StretchLinear, StretchStdDev};
    for (int k = 0; k < COLORS; ++k) {
        const int size = 20 + static_cast<int>(random() % 60);
        const double pixel = 100.0 / size;
        const double shift = static_cast<double>(random() % 100) / 10.0;
        const double turn = rotated ? 0.1 * pixel : 0.0;
        const std::string name = scene.folder.File(std::to_string(k) + ".tif");
        WriteRaster(name,
                    {.width = size,
                     .height = size,
                     .type = types[random() % 4],
                     .geoTransform = {{shift, pixel, turn, 100.0 - shift, turn, -pixel}},
                     .noData = 40.0},
                    {MakePixels(size, size, [&](int, int) { return random() % 250; })});
        CRasterSource& source = scene.sources[k];
        // For display, a rotated raster is shown as it is.
        source.SetForDisplay(true);
        ASSERT_EQ(source.Open(std::wstring(name.begin(), name.end()).c_str(), GIS_READONLY, true),
                  GIS_SUCCESS);
        source.SetStretchType(stretches[random() % 3]);
    }
    ASSERT_EQ(scene.composed.CreateRaster(&scene.sources[0], scene.sources[0].GetRasterBand(0),
                                          &scene.sources[1], scene.sources[1].GetRasterBand(0),
                                          &scene.sources[2], scene.sources[2].GetRasterBand(0)),
              GIS_SUCCESS);
}

int ClampTo(int value, int limit) {
    return std::min(std::max(value, 0), limit);
}

/// Reads the band's window as the rules say.
bool ReadPlainly(CRasterSource& source, CBoundingBox box, double dx, double dy) {
    const CRect covered = source.GroundToImage(&box);
    CRect rect;
    rect.left = ClampTo(covered.left - 1, source.GetWidth());
    rect.right = ClampTo(covered.right + 1, source.GetWidth());
    rect.top = ClampTo(covered.top - 1, source.GetHeight());
    rect.bottom = ClampTo(covered.bottom + 1, source.GetHeight());
    const CBoundingBox g = source.ImageToGround(&rect);
    return source.GetRasterBand(0)->GetData(
        rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
        static_cast<int>(std::fabs(g.GetRight() - g.GetLeft()) / dx),
        static_cast<int>(std::fabs(g.GetTop() - g.GetBottom()) / dy));
}

/// Calls use(pixel, column, row, shown, value) for the pixels of a colour.
template <typename Use>
bool ForEachPixel(CRasterSource& source, CBoundingBox box, int w, int h, Use use) {
    const double dx = std::fabs(box.GetRight() - box.GetLeft()) / w;
    const double dy = std::fabs(box.GetTop() - box.GetBottom()) / h;
    CRasterBand& band = *source.GetRasterBand(0);
    if (!ReadPlainly(source, box, dx, dy))
        return false;
    for (int r = 0; r < h; ++r) {
        for (int c = 0; c < w; ++c) {
            const double y = box.GetTop() - r * dy;
            const double x = c * dx + box.GetLeft();
            double column = 0.0;
            double row = 0.0;
            source.GroundToImage(x, y, column, row);
            double sample = 0.0;
            const bool shown = band.GetNearestValueAt(column, row, &sample);
            use(static_cast<std::size_t>(r) * w + c, column, row, shown,
                shown ? band.Convert2ShowValue(sample) : 0);
        }
    }
    band.ReleaseCache();
    return true;
}

bool RenderInterleavedPlainly(ThreeSources& scene, CBoundingBox box, int w, int h,
                              std::vector<unsigned char>& out) {
    std::fill(out.begin(), out.end(), 255);
    const auto alpha =
        static_cast<unsigned char>(~static_cast<int>(scene.composed.m_transparency * 255.0F));
    for (int k = 0; k < COLORS; ++k) {
        if (!ForEachPixel(scene.sources[k], box, w, h,
                          [&](std::size_t pixel, double, double, bool shown, unsigned char value) {
                              unsigned char* p = out.data() + pixel * 4;
                              if (p[3] == 0)
                                  return;
                              p[3] = shown ? alpha : 0;
                              if (shown)
                                  p[2 - k] = value;
                          }))
            return false;
    }
    return true;
}

CBoundingBox RandomBox(std::mt19937& random) {
    std::uniform_real_distribution<double> place(-40.0, 140.0);
    const double x = place(random);
    const double y = place(random);
    const double size = std::exp(std::uniform_real_distribution<double>(-1.0, 5.5)(random));
    return {x, y + size, x + size, y};
}

} // namespace

TEST(ComposedRendering, InterleavedImagesFollowTheRulesByteForByte) {
    constexpr unsigned SEED = 20260;
    std::mt19937 random(SEED);
    for (int i = 0; i < 24; ++i) {
        SCOPED_TRACE("seed " + std::to_string(SEED) + ", scene " + std::to_string(i));
        ThreeSources scene;
        MakeScene(scene, random, i % 4 == 3);
        scene.composed.m_transparency = static_cast<float>(i % 3) / 4.0F;
        for (int view = 0; view < 6; ++view) {
            CBoundingBox box = RandomBox(random);
            const int w = 1 + static_cast<int>(random() % 200);
            const int h = 1 + static_cast<int>(random() % 150);
            std::vector<unsigned char> expected(static_cast<std::size_t>(w) * h * 4);
            const bool drawn = RenderInterleavedPlainly(scene, box, w, h, expected);
            std::vector<unsigned char> out(expected.size(), 3);
            omp_set_num_threads(1 + view % 4);
            ASSERT_EQ(scene.composed.GetShowData(&box, w, h, out.data(), false), drawn);
            if (drawn) {
                ASSERT_TRUE(out == expected);
            }
        }
    }
}

TEST(ComposedRendering, FullTransparencyKeepsTheColoursAfterTheFirstOut) {
    std::mt19937 random(10);
    ThreeSources scene;
    MakeScene(scene, random, false);
    // The first colour makes every pixel transparent, and transparent pixels are skipped.
    scene.composed.m_transparency = 1.0F;
    CBoundingBox box = scene.composed.GetExtent();
    std::vector<unsigned char> expected(25 * 25 * 4);
    ASSERT_TRUE(RenderInterleavedPlainly(scene, box, 25, 25, expected));
    std::vector<unsigned char> out(expected.size(), 3);
    ASSERT_TRUE(scene.composed.GetShowData(&box, 25, 25, out.data(), false));
    EXPECT_TRUE(out == expected);
    for (std::size_t pixel = 0; pixel < out.size(); pixel += 4) {
        EXPECT_EQ(out[pixel], 255) << "blue";
        EXPECT_EQ(out[pixel + 1], 255) << "green";
        EXPECT_EQ(out[pixel + 3], 0) << "alpha";
    }
}

TEST(ComposedRendering, PlanesFollowTheRulesByteForByteWithAndWithoutAnArea) {
    constexpr unsigned SEED = 515;
    std::mt19937 random(SEED);
    for (int i = 0; i < 24; ++i) {
        SCOPED_TRACE("seed " + std::to_string(SEED) + ", scene " + std::to_string(i));
        ThreeSources scene;
        MakeScene(scene, random, i % 4 == 3);
        CAOISource aoi;
        auto* ellipse = new CDrawEllipse;
        ellipse->AddVertex({20.0, 80.0});
        ellipse->AddVertex({70.0, 30.0});
        ASSERT_TRUE(aoi.AddDrawShape(ellipse));
        CRasterAOI area(&scene.composed, &aoi);
        ASSERT_TRUE(area.Initialize());
        CRasterAOI* mask = i % 2 == 0 ? &area : nullptr;
        CBoundingBox box = RandomBox(random);
        const int w = 1 + static_cast<int>(random() % 120);
        const int h = 1 + static_cast<int>(random() % 120);
        const std::size_t size = static_cast<std::size_t>(w) * h;
        std::vector<std::vector<unsigned char>> expected(COLORS,
                                                         std::vector<unsigned char>(size, 0));
        bool drawn = true;
        for (int k = 0; k < COLORS; ++k)
            drawn = drawn &&
                    ForEachPixel(scene.sources[k], box, w, h,
                                 [&](std::size_t pixel, double column, double row, bool shown,
                                     unsigned char value) {
                                     if (shown && (mask == nullptr || mask->IsdfInAOI(column, row)))
                                         expected[k][pixel] = value;
                                 });
        std::vector<std::vector<unsigned char>> planes(COLORS, std::vector<unsigned char>(size, 9));
        unsigned char* pointers[] = {planes[0].data(), planes[1].data(), planes[2].data()};
        ASSERT_EQ(scene.composed.GetShowData(&box, w, h, COLORS, pointers, mask, false), drawn);
        if (drawn) {
            ASSERT_TRUE(planes == expected);
        }
    }
}

TEST(ComposedRendering, AdjustmentsAreAppliedWhateverTheFlagSays) {
    std::mt19937 random(7);
    ThreeSources scene;
    MakeScene(scene, random, false);
    CBoundingBox box = scene.composed.GetExtent();
    std::vector<unsigned char> plain(30 * 30 * 4);
    ASSERT_TRUE(scene.composed.GetShowData(&box, 30, 30, plain.data(), true));
    scene.composed.m_contrast = 0.5F;
    std::vector<unsigned char> adjusted(plain.size());
    ASSERT_TRUE(scene.composed.GetShowData(&box, 30, 30, adjusted.data(), false));
    CRasterAlgorithm::AdjustContrast(plain.data(), 30, 30, 0.5F);
    EXPECT_TRUE(adjusted == plain);
}

TEST(ComposedRendering, FewerPlanesThanColoursReceiveTheFirstOnes) {
    std::mt19937 random(8);
    ThreeSources scene;
    MakeScene(scene, random, false);
    CBoundingBox box = scene.composed.GetExtent();
    std::vector<unsigned char> planes[3];
    for (auto& plane : planes)
        plane.resize(20 * 20);
    unsigned char* all[] = {planes[0].data(), planes[1].data(), planes[2].data()};
    ASSERT_TRUE(scene.composed.GetShowData(&box, 20, 20, 3, all, nullptr, false));
    std::vector<unsigned char> alone(20 * 20, 5);
    unsigned char* one[] = {alone.data()};
    ASSERT_TRUE(scene.composed.GetShowData(&box, 20, 20, 1, one, nullptr, false));
    EXPECT_TRUE(alone == planes[0]);
}

TEST(ComposedRendering, BadArgumentsAreRefused) {
    std::mt19937 random(9);
    ThreeSources scene;
    MakeScene(scene, random, false);
    CBoundingBox box = scene.composed.GetExtent();
    std::vector<unsigned char> out(10 * 10 * 4);
    unsigned char* planes[] = {out.data(), nullptr, out.data()};
    EXPECT_FALSE(scene.composed.GetShowData(nullptr, 10, 10, out.data(), true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 10, 10, nullptr, true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 0, 10, out.data(), true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 10, -1, out.data(), true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 10, 10, 3, planes, nullptr, true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 10, 10, 3, nullptr, nullptr, true));
    unsigned char* one[] = {out.data()};
    EXPECT_FALSE(scene.composed.GetShowData(nullptr, 10, 10, 1, one, nullptr, true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 0, 10, 1, one, nullptr, true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 10, 0, 1, one, nullptr, true));
    EXPECT_FALSE(scene.composed.GetShowData(&box, 10, 10, 0, one, nullptr, true));
    CBoundingBox flat(20.0, std::nextafter(50.0, 51.0), 40.0, 50.0); // its rows are too many
    EXPECT_FALSE(scene.composed.GetShowData(&flat, 10, 10, out.data(), true));
    CBoundingBox upsideDown(box.m_left, box.m_bottom, box.m_right, box.m_top);
    EXPECT_FALSE(scene.composed.GetShowData(&upsideDown, 10, 10, out.data(), true));
    CBoundingBox nowhere(NAN, 1.0, 2.0, 0.0);
    EXPECT_FALSE(scene.composed.GetShowData(&nowhere, 10, 10, out.data(), true));
    CBoundingBox point(50.0, 50.0, 50.0, 50.0);
    EXPECT_FALSE(scene.composed.GetShowData(&point, 10, 10, out.data(), true));
    CComposedRaster empty;
    EXPECT_FALSE(empty.GetShowData(&box, 10, 10, out.data(), true));
    EXPECT_FALSE(empty.GetShowData(&box, 10, 10, 1, one, nullptr, true));
}

TEST(ComposedRendering, WithRedFirstIsTheSamePicture) {
    std::mt19937 random(20);
    ThreeSources scene;
    ASSERT_NO_FATAL_FAILURE(MakeScene(scene, random, false));
    CBoundingBox box = scene.composed.GetExtent();
    std::vector<unsigned char> blueFirst(40 * 30 * 4);
    std::vector<unsigned char> redFirst(blueFirst);
    ASSERT_TRUE(scene.composed.GetShowData(&box, 40, 30, blueFirst.data(), true));
    ASSERT_TRUE(scene.composed.GetShowDataRedFirst(&box, 40, 30, redFirst.data(), true));
    EXPECT_NE(redFirst, blueFirst);
    for (std::size_t pixel = 0; pixel < blueFirst.size(); pixel += 4)
        std::swap(blueFirst[pixel], blueFirst[pixel + 2]);
    EXPECT_EQ(redFirst, blueFirst);
    EXPECT_FALSE(scene.composed.GetShowDataRedFirst(nullptr, 40, 30, redFirst.data(), true));
}
