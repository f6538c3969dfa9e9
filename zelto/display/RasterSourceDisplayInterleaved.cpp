#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/InterleavedView.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <array>
#include <cstddef>
#include <utility>

using namespace zelto;

bool CRasterSource::GetShowData(CBoundingBox* box, int w, int h, unsigned char* out, bool adjust) {
    return DrawOrTell(
        *this, [=, this] { return DrawInterleaved(box, w, h, out, adjust, FirstColor::Blue); });
}

bool CRasterSource::GetShowDataRedFirst(CBoundingBox* box, int w, int h, unsigned char* out,
                                        bool adjust) {
    const bool isAdjusted = adjust && (m_hue != 0.0F || m_intensity != 0.0F ||
                                       m_saturation != 0.0F || m_contrast != 0.0F);
    if (!isAdjusted && !IsComposedRaster())
        return DrawOrTell(
            *this, [=, this] { return DrawInterleaved(box, w, h, out, false, FirstColor::Red); });
    // Colours are adjusted, and compositions draw, with blue first.
    if (!GetShowData(box, w, h, out, adjust))
        return false;
    SwapRedAndBlue(out, PixelIndex(h, w));
    return true;
}

bool CRasterSource::GetShowDataWithoutCache(CBoundingBox* box, int w, int h, unsigned char* out,
                                            bool adjust) {
    return DrawOrTell(*this, [=, this] {
        return DrawInterleaved(box, w, h, out, adjust, FirstColor::Blue, true);
    });
}

bool CRasterSource::DrawInterleaved(const CBoundingBox* box, int w, int h, unsigned char* out,
                                    bool adjust, FirstColor first, bool keepsCaches) {
    if (box == nullptr || out == nullptr)
        return Refuse(noPlaceToDraw);
    InterleavedView view(*this, *box, w, h, out, first);
    if (view.Status() != ViewStatus::Selected)
        return Refuse(ReasonOf(view.Status()));
    std::array<ShowSums, mostShownBands> sums;
    bool isComplete = true;
    for (int k = 0; k < m_showBandCount && isComplete; ++k) {
        CRasterBand* band = GetShownBand(k);
        auto samples = view.Read(k, band, keepsCaches);
        isComplete = samples.has_value();
        if (!isComplete && k == 0)
            view.Clear();
        else if (isComplete && m_showBandCount == 1)
            view.DrawColors(*samples, *band);
        else if (isComplete)
            view.DrawChannel(std::move(*samples), *band, k,
                             m_showStatisticsKnown ? nullptr : &sums[static_cast<std::size_t>(k)]);
    }
    // Where a band could not be read, those before it stay in the image.
    view.DrawAwaited();
    for (int k = 0; k < m_showBandCount; ++k)
        sums[static_cast<std::size_t>(k)].Report(m_showMeans[k], m_showStandardDeviations[k]);
    if (!isComplete)
        return false;
    if (m_showBandCount < 1)
        view.Clear();
    // Computed once per source, on the first image that has something to count.
    if (m_showMeans[0] != 0.0)
        m_showStatisticsKnown = true;
    if (adjust)
        AdjustColors(out, w, h);
    return true;
}
