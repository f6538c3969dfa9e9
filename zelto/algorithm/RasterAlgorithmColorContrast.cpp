#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/ColorPlanes.h"
#include "zelto/baselib/internal/Truncate.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zelto {
namespace {

using ByteTable = std::array<unsigned char, 256>;

/// A contrast of exactly 0 gives back every value of 0 … 255 truncated.
double Contrasted(double v, float contrast) {
    const double result = v + (v - 128.0) * contrast;
    if (result < 0.0)
        return 0.0;
    return result > 255.0 ? 255.0 : result;
}

ByteTable MakeContrastTable(float contrast) {
    ByteTable table;
    for (int v = 0; v < 256; ++v)
        table[v] = TruncateToByte(Contrasted(v, contrast));
    return table;
}

/// Gain of a setting of −255 … 255 steps: linear below 1 step and from 255 on, growing without
/// bound toward 255 in between.
float Gain(std::int32_t steps) {
    if (steps <= -255)
        return -1.0F;
    const float fraction = static_cast<float>(steps) / 255.0F;
    if (steps < 1 || steps > 254)
        return fraction;
    return 1.0F / (1.0F - fraction) - 1.0F;
}

/// `v` moved by `distance` × `gain`, rounded, within 0 … 255. The product and the half are
/// single precision.
int Moved(int v, int distance, float gain) {
    const std::int64_t step = TruncateToInt64(static_cast<float>(distance) * gain + 0.5F);
    if (step > 255)
        return 255;
    return step < -255 ? 0 : std::clamp(v + static_cast<int>(step), 0, 255);
}

ByteTable MakeIntensityContrastTable(std::int32_t intensity, std::int32_t contrast) {
    const float intensityGain = Gain(intensity);
    const float contrastGain = Gain(contrast);
    ByteTable table;
    for (int i = 0; i < 256; ++i) {
        int v = i;
        // Raising the contrast comes after the intensity, lowering it before.
        if (contrast > 0)
            v = Moved(v, v, intensityGain);
        if (contrast < 255)
            v = Moved(v, v - 128, contrastGain);
        else
            v = v > 127 ? 255 : 0;
        if (contrast <= 0)
            v = Moved(v, v, intensityGain);
        table[i] = static_cast<unsigned char>(v);
    }
    return table;
}

/// Replaces the colour bytes of an interleaved image through a table, alpha untouched.
void ApplyTable(const ByteTable& table, unsigned char* interleaved, int w, int h) {
#pragma omp parallel for schedule(static)
    for (int row = 0; row < h; ++row) {
        unsigned char* pixel = interleaved + RowOffset(row, w) * 4;
#pragma GCC unroll 4
        for (int column = 0; column < w; ++column, pixel += 4) {
            pixel[0] = table[pixel[0]];
            pixel[1] = table[pixel[1]];
            pixel[2] = table[pixel[2]];
        }
    }
}

} // namespace
} // namespace zelto

using namespace zelto;

void CRasterAlgorithm::AdjustContrast(double* r, double* g, double* b, int w, int h,
                                      float contrast) {
    if (r == nullptr || g == nullptr || b == nullptr || w < 1 || h < 1)
        return;
#pragma omp parallel for schedule(static)
    for (int row = 0; row < h; ++row)
        for (double* values : {r, g, b}) {
            double* line = values + RowOffset(row, w);
            for (int column = 0; column < w; ++column)
                line[column] = TruncateToByte(Contrasted(line[column], contrast));
        }
}

void CRasterAlgorithm::AdjustContrast(unsigned char* interleaved, int w, int h, float contrast) {
    if (interleaved == nullptr || w < 1 || h < 1)
        return;
    ApplyTable(MakeContrastTable(contrast), interleaved, w, h);
}

void CRasterAlgorithm::AdjustContrast(unsigned char** planes, int w, int h, float contrast,
                                      int planeCount) {
    if (!HasPlanes(planes, planeCount) || w < 1 || h < 1)
        return;
    const ByteTable table = MakeContrastTable(contrast);
#pragma omp parallel for schedule(static)
    for (int plane = 0; plane < planeCount; ++plane)
        std::for_each_n(planes[plane], RowOffset(h, w),
                        [&table](unsigned char& value) { value = table[value]; });
}

void CRasterAlgorithm::AdjustIntensityAndContrast(unsigned char* interleaved, int w, int h,
                                                  float intensity, float contrast) {
    if (interleaved == nullptr || w < 1 || h < 1)
        return;
    // Unlike the shifts of the colour adjustment these products are double precision.
    const std::int32_t intensitySteps = TruncateToInt32(intensity * 255.0);
    const std::int32_t contrastSteps = TruncateToInt32(contrast * 255.0);
    if (intensitySteps == 0 && contrastSteps == 0)
        return;
    ApplyTable(MakeIntensityContrastTable(intensitySteps, contrastSteps), interleaved, w, h);
}
