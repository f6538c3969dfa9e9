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

const std::vector<float> manyContrasts = {0.0F, 1.0F, -1.0F, 0.3F, -0.3F, 0.07F, 25.0F, -9.0F};

unsigned char Contrasted(unsigned char value, float contrast) {
    unsigned char pixel[4] = {value, value, value, 77};
    CRasterAlgorithm::AdjustContrast(pixel, 1, 1, contrast);
    EXPECT_EQ(pixel[0], pixel[1]);
    EXPECT_EQ(pixel[0], pixel[2]);
    EXPECT_EQ(pixel[3], 77);
    return pixel[0];
}

unsigned char IntensityContrast(unsigned char value, float intensity, float contrast) {
    unsigned char pixel[4] = {value, value, value, 77};
    CRasterAlgorithm::AdjustIntensityAndContrast(pixel, 1, 1, intensity, contrast);
    EXPECT_EQ(pixel[0], pixel[1]);
    EXPECT_EQ(pixel[0], pixel[2]);
    EXPECT_EQ(pixel[3], 77);
    return pixel[0];
}

int Limited(int v) {
    return v < 0 ? 0 : v > 255 ? 255 : v;
}

/// The table of intensity and contrast, entry by entry.
int PlainIntensityContrast(int i, float intensity, float contrast) {
    const int bi = static_cast<int>(intensity * 255.0);
    const int ci = static_cast<int>(contrast * 255.0);
    if (bi == 0 && ci == 0)
        return i;
    float fb = bi > -255 ? static_cast<float>(bi / 255.0) : -1.0F;
    if (bi >= 1 && bi <= 254)
        fb = 1.0F / (1.0F - fb) - 1.0F;
    float fc = ci > -255 ? static_cast<float>(ci / 255.0) : -1.0F;
    if (ci >= 1 && ci <= 254)
        fc = 1.0F / (1.0F - fc) - 1.0F;
    int t = i;
    if (ci > 0)
        t = Limited(i + static_cast<int>(static_cast<float>(i) * fb + 0.5F));
    int u = 0;
    if (ci < 255)
        u = Limited(t + static_cast<int>(static_cast<float>(t - 128) * fc + 0.5F));
    else
        u = t > 127 ? 255 : 0;
    if (ci <= 0)
        u = Limited(u + static_cast<int>(static_cast<float>(u) * fb + 0.5F));
    return u;
}

} // namespace

TEST(AdjustContrast, ZeroLeavesEveryValueUnchanged) {
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(Contrasted(static_cast<unsigned char>(v), 0.0F), v);
}

TEST(AdjustContrast, OneDoublesTheDistanceFromTheMiddleAndLimits) {
    EXPECT_EQ(Contrasted(200, 1.0F), 255); // 200 + 72 = 272
    EXPECT_EQ(Contrasted(100, 1.0F), 72);  // 100 − 28
    EXPECT_EQ(Contrasted(128, 1.0F), 128);
    EXPECT_EQ(Contrasted(10, 1.0F), 0); // 10 − 118
}

TEST(AdjustContrast, MinusOneMakesEverythingTheMiddle) {
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(Contrasted(static_cast<unsigned char>(v), -1.0F), 128);
}

TEST(AdjustContrast, TruncatesTheResult) {
    EXPECT_EQ(Contrasted(131, 0.25F), 131); // 131.75
    EXPECT_EQ(Contrasted(125, 0.25F), 124); // 124.25
}

TEST(AdjustContrast, InterleavedImageEqualsThePlainFormulaAndKeepsAlpha) {
    std::mt19937 random(21);
    for (int w : {1, 2, 3, 4, 5, 63})
        for (float contrast : manyContrasts) {
            const std::vector<unsigned char> image = RandomBytes(random, 4U * w * 17);
            std::vector<unsigned char> adjusted = image;
            CRasterAlgorithm::AdjustContrast(adjusted.data(), w, 17, contrast);
            for (std::size_t p = 0; p < image.size(); ++p)
                ASSERT_EQ(adjusted[p], p % 4 == 3 ? image[p] : PlainContrast(image[p], contrast));
        }
}

TEST(AdjustContrast, ChangesAsManyPlanesAsItIsTold) {
    std::mt19937 random(22);
    std::array<std::vector<unsigned char>, 3> planes, before;
    unsigned char* pointers[3];
    for (int k = 0; k < 3; ++k) {
        planes[k] = before[k] = RandomBytes(random, 31 * 7);
        pointers[k] = planes[k].data();
    }
    CRasterAlgorithm::AdjustContrast(pointers, 31, 7, 0.6F, 2);
    for (int k = 0; k < 2; ++k)
        for (std::size_t p = 0; p < planes[k].size(); ++p)
            ASSERT_EQ(planes[k][p], PlainContrast(before[k][p], 0.6F));
    EXPECT_EQ(planes[2], before[2]);
}

TEST(AdjustContrast, DoublesKeepTheLowEightBitsOfTheTruncatedValue) {
    std::mt19937 random(23);
    std::uniform_real_distribution<double> any(-300.0, 600.0);
    std::vector<double> values[3];
    for (auto& plane : values)
        for (int p = 0; p < 13 * 11; ++p)
            plane.push_back(any(random));
    const std::vector<double> before[3] = {values[0], values[1], values[2]};
    CRasterAlgorithm::AdjustContrast(values[0].data(), values[1].data(), values[2].data(), 13, 11,
                                     0.37F);
    for (int k = 0; k < 3; ++k)
        for (int p = 0; p < 13 * 11; ++p)
            ASSERT_EQ(values[k][p], PlainContrast(before[k][p], 0.37F));
}

TEST(AdjustContrast, TheResultIsTheSameForEveryNumberOfThreads) {
    std::mt19937 random(24);
    const std::vector<unsigned char> image = RandomBytes(random, 4 * 41 * 23);
    const int before = omp_get_max_threads();
    std::vector<std::vector<unsigned char>> results;
    for (int threads : {1, 2, 3, 4}) {
        omp_set_num_threads(threads);
        results.push_back(image);
        CRasterAlgorithm::AdjustContrast(results.back().data(), 41, 23, 0.5F);
        CRasterAlgorithm::AdjustIntensityAndContrast(results.back().data(), 41, 23, 0.1F, 0.2F);
    }
    omp_set_num_threads(before);
    for (const auto& result : results)
        EXPECT_EQ(result, results.front());
}

TEST(AdjustContrast, NothingHappensWithoutBuffersOrPixels) {
    unsigned char pixel[4] = {1, 2, 3, 4};
    unsigned char* planes[2] = {pixel, nullptr};
    double value = 6.0;
    CRasterAlgorithm::AdjustContrast(static_cast<unsigned char*>(nullptr), 1, 1, 1.0F);
    CRasterAlgorithm::AdjustContrast(static_cast<unsigned char**>(nullptr), 1, 1, 1.0F, 1);
    CRasterAlgorithm::AdjustContrast(planes, 1, 1, 1.0F, 2);
    CRasterAlgorithm::AdjustContrast(planes, 1, 1, 1.0F, 0);
    CRasterAlgorithm::AdjustContrast(planes, 1, 1, 1.0F, -3);
    CRasterAlgorithm::AdjustIntensityAndContrast(nullptr, 1, 1, 1.0F, 1.0F);
    for (const auto& [w, h] : {std::pair{-1, 1}, std::pair{1, 0}}) {
        CRasterAlgorithm::AdjustContrast(pixel, w, h, 1.0F);
        CRasterAlgorithm::AdjustContrast(planes, w, h, 1.0F, 1);
        CRasterAlgorithm::AdjustContrast(&value, &value, &value, w, h, 1.0F);
        CRasterAlgorithm::AdjustIntensityAndContrast(pixel, w, h, 1.0F, 1.0F);
    }
    for (int missing = 0; missing < 3; ++missing) {
        double* values[3] = {&value, &value, &value};
        values[missing] = nullptr;
        CRasterAlgorithm::AdjustContrast(values[0], values[1], values[2], 1, 1, 1.0F);
    }
    EXPECT_EQ(pixel[0], 1);
    EXPECT_EQ(value, 6.0);
}

TEST(AdjustContrast, AContrastThatIsNoNumberDoesNotBreakAnything) {
    Contrasted(100, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(Contrasted(200, std::numeric_limits<float>::infinity()), 255);
    EXPECT_EQ(Contrasted(100, std::numeric_limits<float>::infinity()), 0);
}

TEST(AdjustIntensityAndContrast, ReturnsAtOnceWhenBothStepsAreZero) {
    for (int v = 0; v < 256; ++v) {
        EXPECT_EQ(IntensityContrast(static_cast<unsigned char>(v), 0.0F, 0.0F), v);
        EXPECT_EQ(IntensityContrast(static_cast<unsigned char>(v), 0.0039F, -0.0039F), v);
    }
}

TEST(AdjustIntensityAndContrast, FullContrastIsAThreshold) {
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(IntensityContrast(static_cast<unsigned char>(v), 0.0F, 1.0F), v > 127 ? 255 : 0);
}

TEST(AdjustIntensityAndContrast, FullDarknessLeavesOneWhereTheRoundingHalfDoes) {
    // v + trunc(−v + 0.5): the half that rounds upward keeps one step of every value but 0.
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(IntensityContrast(static_cast<unsigned char>(v), -1.0F, 0.0F), v == 0 ? 0 : 1);
}

TEST(AdjustIntensityAndContrast, PositiveIntensityGrowsLikeAQuotient) {
    // 51 steps: 1 / (1 − 0.2) − 1 = 0.25, so 100 becomes 100 + trunc(25.5).
    EXPECT_EQ(IntensityContrast(100, 0.2F, 0.0F), 125);
    EXPECT_EQ(IntensityContrast(230, 0.2F, 0.0F), 255);
}

TEST(AdjustIntensityAndContrast, IntensityComesBeforeAPositiveContrastAndAfterANegativeOne) {
    // Contrast of 51 steps: gain 0.25. 100 → 125 → 125 + trunc(−0.25) = 125.
    EXPECT_EQ(IntensityContrast(100, 0.2F, 0.2F), 125);
    // Contrast of −51 steps: gain −0.2. 100 → 100 + trunc(6.1) = 106 → 106 + trunc(27) = 133.
    EXPECT_EQ(IntensityContrast(100, 0.2F, -0.2F), 133);
}

TEST(AdjustIntensityAndContrast, EqualsThePlainTableForManySettings) {
    for (int bi = -300; bi <= 300; bi += 13)
        for (int ci = -300; ci <= 300; ci += 13) {
            const float intensity = static_cast<float>(bi) / 254.5F;
            const float contrast = static_cast<float>(ci) / 254.5F;
            std::vector<unsigned char> ramp;
            for (int v = 0; v < 256; ++v)
                ramp.insert(ramp.end(), 4, static_cast<unsigned char>(v));
            CRasterAlgorithm::AdjustIntensityAndContrast(ramp.data(), 16, 16, intensity, contrast);
            for (int v = 0; v < 256; ++v)
                ASSERT_EQ(ramp[4 * v], PlainIntensityContrast(v, intensity, contrast))
                    << v << ' ' << intensity << ' ' << contrast;
        }
}

TEST(AdjustIntensityAndContrast, SettingsAreTruncatedFromDoublePrecisionProducts) {
    // The float just below n / 255 gives n in single precision but less in double.
    int steps = 1;
    const auto below = [](int n) { return std::nextafter(static_cast<float>(n) / 255.0F, 0.0F); };
    while (steps < 254 && below(steps) * 255.0F != static_cast<float>(steps))
        ++steps;
    ASSERT_LT(static_cast<double>(below(steps)) * 255.0, steps);
    const float oneStepLess = (static_cast<float>(steps) - 0.5F) / 255.0F;
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(IntensityContrast(static_cast<unsigned char>(v), below(steps), 0.0F),
                  IntensityContrast(static_cast<unsigned char>(v), oneStepLess, 0.0F));
}

TEST(AdjustIntensityAndContrast, ExtremeSettingsStayWithinTheByteRange) {
    EXPECT_EQ(IntensityContrast(100, 1e9F, 0.0F), 1); // beyond the integer range: darkest
    EXPECT_EQ(IntensityContrast(200, 8000000.0F, 0.0F), 255);
    IntensityContrast(9, std::numeric_limits<float>::quiet_NaN(), 0.5F);
    IntensityContrast(9, 0.5F, -std::numeric_limits<float>::infinity());
}
