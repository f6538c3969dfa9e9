#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/raster/RasterBand.h"

#include "tests/display/RandomScene.h"
#include "tests/display/ReferenceRenderer.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <array>
#include <sstream>
#include <utility>
#include <vector>

using namespace zelto::test;

namespace {

constexpr unsigned sceneCount = 150;
constexpr int viewsPerScene = 6;

/// Restores the number of threads at the end of a test.
class Threads {
  public:
    ~Threads() { omp_set_num_threads(m_before); }
    static void Use(int view) { omp_set_num_threads(std::array{1, 2, 4}[view % 3]); }

  private:
    int m_before = omp_get_max_threads();
};

struct View {
    CBoundingBox box;
    int w, h;
};

View RandomView(RandomScene& scene) {
    const int largest = scene.Chance(3) ? 700 : 50;
    return {scene.RandomBox(), scene.RandomSize(largest), scene.RandomSize(largest * 5 / 7)};
}

std::string Describe(unsigned seed, const RandomScene& scene, const View& view) {
    std::ostringstream text;
    text.precision(17);
    text << "seed " << seed << ": " << scene.Description() << "; box " << view.box.m_left << ' '
         << view.box.m_top << ' ' << view.box.m_right << ' ' << view.box.m_bottom << " at "
         << view.w << " x " << view.h;
    return text.str();
}

void ExpectStatistics(const CRasterSource& source, const ReferenceImage& plain, bool knownBefore,
                      const std::array<double, 6>& before) {
    for (int k = 0; k < 3; ++k) {
        const bool computed = !knownBefore && plain.counted[k];
        EXPECT_EQ(source.GetShowMeans()[k], computed ? plain.means[k] : before[k]);
        EXPECT_EQ(source.GetShowStandardDeviations()[k],
                  computed ? plain.deviations[k] : before[3 + k]);
    }
}

std::array<double, 6> Statistics(const CRasterSource& source) {
    const double* m = source.GetShowMeans();
    const double* d = source.GetShowStandardDeviations();
    return {m[0], m[1], m[2], d[0], d[1], d[2]};
}

/// Whether the band holds samples of its top-left corner.
bool HasCache(const CRasterBand& band) {
    constexpr double untouched = -123.25;
    double value = untouched;
    band.GetNearestValueAt(0.0, 0.0, &value);
    return value != untouched;
}

} // namespace

TEST(InterleavedRendering, EqualsThePlainOneByteForByteOnRandomScenes) {
    const Threads threads;
    for (unsigned seed = 0; seed < sceneCount; ++seed) {
        RandomScene scene(seed);
        CRasterSource& source = scene.Source();
        for (int n = 0; n < viewsPerScene; ++n) {
            View view = RandomView(scene);
            SCOPED_TRACE(Describe(seed, scene, view));
            Threads::Use(n);
            const ReferenceImage plain = RenderInterleavedPlainly(source, view.box, view.w, view.h);
            const bool knownBefore = source.IsShowStatisticsKnown();
            const std::array<double, 6> before = Statistics(source);
            std::vector<unsigned char> image(static_cast<std::size_t>(view.w) * view.h * 4, 91);
            ASSERT_EQ(source.GetShowData(&view.box, view.w, view.h, image.data(), false),
                      plain.succeeded);
            if (!plain.touched)
                ASSERT_EQ(image, std::vector<unsigned char>(image.size(), 91));
            else
                ASSERT_TRUE(image == plain.pixels);
            ExpectStatistics(source, plain, knownBefore, before);
        }
    }
}

TEST(InterleavedRendering, WithRedFirstIsTheSamePictureOnRandomScenes) {
    for (unsigned seed = 3000; seed < 3000 + sceneCount; ++seed) {
        RandomScene scene(seed);
        CRasterSource& source = scene.Source();
        source.m_hue = scene.Chance(30) ? 0.2F : 0.0F;
        source.m_contrast = scene.Chance(30) ? 0.4F : 0.0F;
        const bool adjust = scene.Chance(70);
        View view = RandomView(scene);
        SCOPED_TRACE(Describe(seed, scene, view));
        std::vector<unsigned char> blueFirst(static_cast<std::size_t>(view.w) * view.h * 4, 91);
        std::vector<unsigned char> redFirst(blueFirst);
        const bool isDrawn =
            source.GetShowData(&view.box, view.w, view.h, blueFirst.data(), adjust);
        ASSERT_EQ(source.GetShowDataRedFirst(&view.box, view.w, view.h, redFirst.data(), adjust),
                  isDrawn);
        if (!isDrawn)
            continue;
        for (std::size_t pixel = 0; pixel < blueFirst.size(); pixel += 4)
            std::swap(blueFirst[pixel], blueFirst[pixel + 2]);
        ASSERT_TRUE(redFirst == blueFirst);
    }
}

TEST(PlaneRendering, EqualsThePlainOneByteForByteOnRandomScenes) {
    const Threads threads;
    for (unsigned seed = 1000; seed < 1000 + sceneCount; ++seed) {
        RandomScene scene(seed);
        CRasterSource& source = scene.Source();
        for (int n = 0; n < viewsPerScene; ++n) {
            View view = RandomView(scene);
            SCOPED_TRACE(Describe(seed, scene, view));
            Threads::Use(n);
            const int planeCount = scene.Between(1, 4);
            const ReferenceImage plain =
                RenderPlanesPlainly(source, view.box, view.w, view.h, planeCount, nullptr);
            const std::size_t size = static_cast<std::size_t>(view.w) * view.h;
            std::vector<std::vector<unsigned char>> planes(planeCount,
                                                           std::vector<unsigned char>(size, 91));
            std::vector<unsigned char*> pointers;
            for (auto& plane : planes)
                pointers.push_back(plane.data());
            ASSERT_EQ(source.GetShowData(&view.box, view.w, view.h, planeCount, pointers.data(),
                                         nullptr, false),
                      plain.succeeded);
            if (!plain.touched)
                ASSERT_EQ(planes.front(), std::vector<unsigned char>(size, 91));
            else
                ASSERT_TRUE(planes == plain.planes);
        }
    }
}

TEST(InterleavedRendering, AdjustsTheFinishedImageWhenAsked) {
    for (unsigned seed = 2000; seed < 2040; ++seed) {
        RandomScene scene(seed);
        CRasterSource& source = scene.Source();
        source.m_hue = scene.Chance(50) ? 0.2F : 0.0F;
        source.m_saturation = scene.Chance(50) ? -0.1F : 0.0F;
        source.m_intensity = scene.Chance(50) ? 0.15F : 0.0F;
        source.m_contrast = scene.Chance(50) ? 0.4F : 0.0F;
        View view = RandomView(scene);
        SCOPED_TRACE(Describe(seed, scene, view));
        ReferenceImage plain = RenderInterleavedPlainly(source, view.box, view.w, view.h);
        if (!plain.succeeded)
            continue;
        if (source.m_hue != 0.0F || source.m_intensity != 0.0F || source.m_saturation != 0.0F)
            CRasterAlgorithm::AdjustHIS(plain.pixels.data(), view.w, view.h, source.m_hue,
                                        source.m_intensity, source.m_saturation);
        if (source.m_contrast != 0.0F)
            CRasterAlgorithm::AdjustContrast(plain.pixels.data(), view.w, view.h,
                                             source.m_contrast);
        std::vector<unsigned char> image(plain.pixels.size());
        ASSERT_TRUE(source.GetShowData(&view.box, view.w, view.h, image.data(), true));
        ASSERT_TRUE(image == plain.pixels);
    }
}

TEST(InterleavedRendering, WithoutCacheIsTheSameAndLeavesTheCachesAlone) {
    for (unsigned seed = 3000; seed < 3030; ++seed) {
        RandomScene scene(seed);
        CRasterSource& source = scene.Source();
        View view = RandomView(scene);
        SCOPED_TRACE(Describe(seed, scene, view));
        const ReferenceImage plain = RenderInterleavedPlainly(source, view.box, view.w, view.h);
        if (!plain.succeeded)
            continue;
        for (int i = 0; i < source.GetBandCount(); ++i)
            ASSERT_TRUE(source.GetRasterBand(i)->GetData(0, 0, 1, 1, 1, 1));
        std::vector<unsigned char> image(plain.pixels.size());
        ASSERT_TRUE(source.GetShowDataWithoutCache(&view.box, view.w, view.h, image.data(), false));
        ASSERT_TRUE(image == plain.pixels);
        for (int i = 0; i < source.GetBandCount(); ++i)
            EXPECT_TRUE(HasCache(*source.GetRasterBand(i)));
    }
}
