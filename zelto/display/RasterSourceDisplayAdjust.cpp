#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <cstddef>

using namespace zelto;

void CRasterSource::AdjustColors(unsigned char* interleaved, int w, int h) const {
    if (m_hue != 0.0F || m_intensity != 0.0F || m_saturation != 0.0F)
        CRasterAlgorithm::AdjustHIS(interleaved, w, h, m_hue, m_intensity, m_saturation);
    if (m_contrast != 0.0F)
        CRasterAlgorithm::AdjustContrast(interleaved, w, h, m_contrast);
}

void CRasterSource::AdjustColors(unsigned char** planes, int planeCount, int w, int h) const {
    if (planeCount >= 3 && (m_hue != 0.0F || m_intensity != 0.0F || m_saturation != 0.0F))
        CRasterAlgorithm::AdjustHIS(planes, w, h, m_hue, m_intensity, m_saturation);
    if (m_contrast != 0.0F)
        CRasterAlgorithm::AdjustContrast(planes, w, h, m_contrast,
                                         std::min(planeCount, m_showBandCount));
}

void CRasterSource::ApplyShowDataHISC(int w, int h, unsigned char* interleaved) {
    if (m_transparency != 0.0F)
        ApplyTransparenVal(interleaved, w, h);
    AdjustColors(interleaved, w, h);
}

void CRasterSource::ApplyShowDataHISC(double* red, double* green, double* blue, int w, int h) {
    if (m_hue != 0.0F || m_intensity != 0.0F || m_saturation != 0.0F)
        CRasterAlgorithm::AdjustHIS(red, green, blue, w, h, m_hue, m_intensity, m_saturation);
    if (m_contrast != 0.0F)
        CRasterAlgorithm::AdjustContrast(red, green, blue, w, h, m_contrast);
}

bool CRasterSource::TakesTransparencyAfterDrawing() const {
    return m_showBandCount > 1 ||
           (m_showBandCount == 1 && m_displayType == displayRamp && m_colorRamp != nullptr);
}

void CRasterSource::ApplyTransparenVal(unsigned char* interleaved, int w, int h) {
    if (interleaved == nullptr || w < 1 || h < 1 || !TakesTransparencyAfterDrawing())
        return;
    const unsigned char alpha = AlphaOfTransparency(m_transparency);
#pragma omp parallel for schedule(static)
    for (int row = 0; row < h; ++row) {
        unsigned char* pixel = interleaved + PixelIndex(row, w) * 4;
        for (int column = 0; column < w; ++column, pixel += 4)
            pixel[3] = pixel[3] != 0 ? alpha : pixel[3];
    }
}

void CRasterSource::ApplyTransparenVal(double* alpha, int w, int h) {
    if (alpha == nullptr || w < 1 || h < 1 || !TakesTransparencyAfterDrawing())
        return;
    const double opacity = AlphaOfTransparency(m_transparency);
#pragma omp parallel for schedule(static)
    for (int row = 0; row < h; ++row) {
        double* line = alpha + PixelIndex(row, w);
        for (int column = 0; column < w; ++column)
            line[column] = line[column] != 0.0 ? opacity : line[column];
    }
}

void CRasterSource::ComputeShowDataStatics(const unsigned char* interleaved, int w, int h) {
    if (interleaved == nullptr || w < 1 || h < 1)
        return;
    for (int k = 0; k < std::min(m_showBandCount, mostShownBands); ++k) {
        const int channel = static_cast<int>(ShownChannel(k));
        ShowSums sums;
#pragma omp parallel for schedule(static)
        for (int row = 0; row < h; ++row) {
            const unsigned char* pixel = interleaved + PixelIndex(row, w) * 4;
            std::uint64_t count = 0;
            std::uint64_t sum = 0;
            std::uint64_t squares = 0;
            for (int column = 0; column < w; ++column, pixel += 4) {
                const std::uint64_t value = pixel[3] != 0 ? pixel[channel] : 0;
                count += pixel[3] != 0 ? 1 : 0;
                sum += value;
                squares += value * value;
            }
            sums.Add(count, sum, squares);
        }
        sums.Report(m_showMeans[k], m_showStandardDeviations[k]);
    }
    if (m_showMeans[0] != 0.0)
        m_showStatisticsKnown = true;
}
