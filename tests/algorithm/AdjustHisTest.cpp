#include "zelto/algorithm/RasterAlgorithm.h"

#include "tests/algorithm/PlainColor.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

using namespace zelto::test;

namespace {

struct Settings {
    float hue, intensity, saturation;
};

const std::vector<Settings> manySettings = {
    {0.0F, 0.0F, 0.0F},   {0.5F, 0.0F, 0.0F},    {-0.5F, 0.0F, 0.0F},     {0.0F, 0.3F, 0.0F},
    {0.0F, -0.3F, 0.0F},  {0.0F, 0.0F, 1.0F},    {0.0F, 0.0F, -1.0F},     {0.29F, 0.58F, 0.07F},
    {1.0F, -1.0F, 0.25F}, {3.7F, 12.0F, -40.0F}, {0.009F, 0.003F, 0.006F}};

std::vector<unsigned char> PlainInterleaved(std::vector<unsigned char> image, const Settings& s) {
    for (std::size_t p = 0; p < image.size(); p += 4) {
        const PlainRgb rgb =
            PlainHis(image[p + 2], image[p + 1], image[p], s.hue, s.intensity, s.saturation);
        image[p + 2] = PlainByte(rgb.r);
        image[p + 1] = PlainByte(rgb.g);
        image[p] = PlainByte(rgb.b);
    }
    return image;
}

std::array<unsigned char, 4> AdjustedPixel(std::array<unsigned char, 4> bgra, const Settings& s) {
    CRasterAlgorithm::AdjustHIS(bgra.data(), 1, 1, s.hue, s.intensity, s.saturation);
    return bgra;
}

} // namespace

TEST(AdjustHIS, InterleavedImageEqualsThePlainFormulaPixelByPixel) {
    for (unsigned seed = 1; seed <= 3; ++seed)
        for (const Settings& s : manySettings) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " hue " << s.hue);
            std::mt19937 random(seed);
            const std::vector<unsigned char> image = RandomBytes(random, 4 * 61 * 47);
            std::vector<unsigned char> adjusted = image;
            CRasterAlgorithm::AdjustHIS(adjusted.data(), 61, 47, s.hue, s.intensity, s.saturation);
            ASSERT_EQ(adjusted, PlainInterleaved(image, s));
        }
}

TEST(AdjustHIS, PlanesAreRedGreenBlueAndEqualTheInterleavedImage) {
    std::mt19937 random(5);
    const int w = 37, h = 29;
    for (const Settings& s : manySettings) {
        std::vector<unsigned char> image = RandomBytes(random, 4 * w * h);
        std::array<std::vector<unsigned char>, 3> planes;
        for (int plane = 0; plane < 3; ++plane)
            for (int p = 0; p < w * h; ++p)
                planes[plane].push_back(image[4 * p + 2 - plane]);
        unsigned char* pointers[3] = {planes[0].data(), planes[1].data(), planes[2].data()};
        CRasterAlgorithm::AdjustHIS(pointers, w, h, s.hue, s.intensity, s.saturation);
        CRasterAlgorithm::AdjustHIS(image.data(), w, h, s.hue, s.intensity, s.saturation);
        for (int plane = 0; plane < 3; ++plane)
            for (int p = 0; p < w * h; ++p)
                ASSERT_EQ(planes[plane][p], image[4 * p + 2 - plane]) << plane << ' ' << p;
    }
}

TEST(AdjustHIS, DoublesKeepTheLowEightBitsOfTheTruncatedValue) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> any(-50.0, 400.0);
    const int w = 23, h = 19;
    for (const Settings& s : manySettings) {
        std::vector<double> r(w * h), g(w * h), b(w * h);
        for (int p = 0; p < w * h; ++p) {
            r[p] = any(random);
            g[p] = any(random);
            b[p] = any(random);
        }
        const std::vector<double> r0 = r, g0 = g, b0 = b;
        CRasterAlgorithm::AdjustHIS(r.data(), g.data(), b.data(), w, h, s.hue, s.intensity,
                                    s.saturation);
        for (int p = 0; p < w * h; ++p) {
            const PlainRgb rgb = PlainHis(r0[p], g0[p], b0[p], s.hue, s.intensity, s.saturation);
            ASSERT_EQ(r[p], PlainByte(rgb.r));
            ASSERT_EQ(g[p], PlainByte(rgb.g));
            ASSERT_EQ(b[p], PlainByte(rgb.b));
        }
    }
}

TEST(AdjustHIS, AHueShiftLeavesGreyGrey) {
    for (int grey = 0; grey < 256; ++grey) {
        const auto v = static_cast<unsigned char>(grey);
        const auto pixel = AdjustedPixel({v, v, v, 9}, {0.4F, 0.0F, 0.0F});
        // The round trip through the root of three may fall just below the whole number.
        EXPECT_NEAR(pixel[0], grey, 1);
        EXPECT_EQ(pixel[0], pixel[1]);
        EXPECT_EQ(pixel[1], pixel[2]);
        EXPECT_EQ(pixel[3], 9);
    }
}

TEST(AdjustHIS, ZeroSettingsChangeAColourByTruncationAtMost) {
    std::mt19937 random(8);
    for (int n = 0; n < 500; ++n) {
        const std::vector<unsigned char> c = RandomBytes(random, 3);
        if (c[1] == c[2])
            continue;
        const auto pixel = AdjustedPixel({c[0], c[1], c[2], 0}, {0.0F, 0.0F, 0.0F});
        for (int channel = 0; channel < 3; ++channel) {
            EXPECT_LE(pixel[channel], c[channel]);
            EXPECT_GE(pixel[channel] + 1, c[channel]);
        }
    }
}

TEST(AdjustHIS, SettingsAreTruncatedToWholeSteps) {
    const std::array<unsigned char, 4> colour = {40, 90, 200, 255};
    // 0.0099 × 100, 0.0039 × 255 and 0.0066 × 150 all stay below one step.
    EXPECT_EQ(AdjustedPixel(colour, {0.0099F, 0.0039F, 0.0066F}),
              AdjustedPixel(colour, {0.0F, 0.0F, 0.0F}));
    EXPECT_EQ(AdjustedPixel(colour, {-0.0099F, -0.0039F, -0.0066F}),
              AdjustedPixel(colour, {0.0F, 0.0F, 0.0F}));
}

TEST(AdjustHIS, ProductsOfTheSettingsAreSinglePrecision) {
    // 0.29 as a float is 0.28999999165…: in single precision times 100 it rounds to 29 exactly,
    // in double precision it would be truncated to 28.
    ASSERT_EQ(0.29F * 100.0F, 29.0F);
    ASSERT_LT(static_cast<double>(0.29F) * 100.0, 29.0);
    const std::array<unsigned char, 4> colour = {10, 60, 220, 255};
    const PlainRgb twentyNine = PlainHis(220, 60, 10, 0.295F, 0.0F, 0.0F);
    const auto pixel = AdjustedPixel(colour, {0.29F, 0.0F, 0.0F});
    EXPECT_EQ(pixel[2], PlainByte(twentyNine.r));
    EXPECT_EQ(pixel[1], PlainByte(twentyNine.g));
    EXPECT_EQ(pixel[0], PlainByte(twentyNine.b));
}

TEST(AdjustHIS, IntensityIsRaisedByWholeStepsOverTheRootOfThree) {
    const auto pixel = AdjustedPixel({100, 100, 100, 7}, {0.0F, 0.2F, 0.0F});
    const int expected = static_cast<int>((300.0 / std::sqrt(3.0) + 51.0) / std::sqrt(3.0));
    EXPECT_EQ(pixel[0], expected);
    EXPECT_EQ(pixel[1], expected);
    EXPECT_EQ(pixel[2], expected);
}

TEST(AdjustHIS, AlphaIsNeverTouched) {
    std::mt19937 random(10);
    const std::vector<unsigned char> image = RandomBytes(random, 4 * 50 * 20);
    std::vector<unsigned char> adjusted = image;
    CRasterAlgorithm::AdjustHIS(adjusted.data(), 50, 20, 0.3F, 0.3F, 0.3F);
    for (std::size_t p = 3; p < image.size(); p += 4)
        ASSERT_EQ(adjusted[p], image[p]);
}

TEST(AdjustHIS, TheResultIsTheSameForEveryNumberOfThreads) {
    std::mt19937 random(11);
    const std::vector<unsigned char> image = RandomBytes(random, 4 * 53 * 31);
    const int before = omp_get_max_threads();
    std::vector<std::vector<unsigned char>> results;
    for (int threads : {1, 2, 3, 4}) {
        omp_set_num_threads(threads);
        results.push_back(image);
        CRasterAlgorithm::AdjustHIS(results.back().data(), 53, 31, 0.2F, -0.1F, 0.4F);
    }
    omp_set_num_threads(before);
    for (const auto& result : results)
        EXPECT_EQ(result, results.front());
}

TEST(AdjustHIS, NothingHappensWithoutBuffersOrPixels) {
    unsigned char pixel[4] = {1, 2, 3, 4};
    unsigned char plane[1] = {5};
    unsigned char* planes[3] = {plane, plane, plane};
    double value = 6.0;
    CRasterAlgorithm::AdjustHIS(static_cast<unsigned char*>(nullptr), 1, 1, 1.0F, 1.0F, 1.0F);
    CRasterAlgorithm::AdjustHIS(static_cast<unsigned char**>(nullptr), 1, 1, 1.0F, 1.0F, 1.0F);
    for (const auto& [w, h] : {std::pair{0, 1}, std::pair{1, -1}}) {
        CRasterAlgorithm::AdjustHIS(pixel, w, h, 1.0F, 1.0F, 1.0F);
        CRasterAlgorithm::AdjustHIS(planes, w, h, 1.0F, 1.0F, 1.0F);
        CRasterAlgorithm::AdjustHIS(&value, &value, &value, w, h, 1.0F, 1.0F, 1.0F);
    }
    for (int missing = 0; missing < 3; ++missing) {
        unsigned char* some[3] = {plane, plane, plane};
        some[missing] = nullptr;
        CRasterAlgorithm::AdjustHIS(some, 1, 1, 1.0F, 1.0F, 1.0F);
        double* values[3] = {&value, &value, &value};
        values[missing] = nullptr;
        CRasterAlgorithm::AdjustHIS(values[0], values[1], values[2], 1, 1, 1.0F, 1.0F, 1.0F);
    }
    EXPECT_EQ(pixel[0], 1);
    EXPECT_EQ(plane[0], 5);
    EXPECT_EQ(value, 6.0);
}

TEST(AdjustHIS, SettingsThatAreNoNumberDoNotBreakAnything) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(AdjustedPixel({1, 2, 3, 4}, {nan, nan, nan})[3], 4);
    EXPECT_EQ(AdjustedPixel({1, 2, 3, 4}, {infinity, infinity, -infinity})[3], 4);
    double r = std::numeric_limits<double>::infinity(), g = 0.0, b = 1e300;
    CRasterAlgorithm::AdjustHIS(&r, &g, &b, 1, 1, 0.1F, 0.1F, 0.1F);
    EXPECT_GE(r, 0.0);
    EXPECT_LE(r, 255.0);
}
