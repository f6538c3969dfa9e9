#include "zelto/baselib/internal/Operation.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/FirstCounted.h"
#include "zelto/raster/internal/StatisticsBand.h"

#include <gdal_priv.h>

#include <algorithm>
#include <climits>
#include <new>
#include <vector>

namespace {

/// Above this many pixels GDAL may count a sample of them.
constexpr __int64 MAX_PIXELS_COUNTED_EXACTLY = 100LL * 1024 * 1024;

/// GDAL's histogram; its 64-bit counts are cut to what an int holds.
bool CountPixels(GDALRasterBand& band, double min, double max, int buckets, int* counts,
                 CDataProgress* progress) {
    const __int64 pixels = static_cast<__int64>(band.GetXSize()) * band.GetYSize();
    const bool approximate = pixels > MAX_PIXELS_COUNTED_EXACTLY;
    try {
        std::vector<GUIntBig> found(static_cast<std::size_t>(buckets));
        const zelto::StatisticsBand source(band);
        const bool counted = zelto::Reads(band, [&] {
            return source->GetHistogram(zelto::FirstCounted(min), max, buckets, found.data(), FALSE,
                                        approximate, GDALProgressFuncEx, progress);
        });
        if (!counted)
            return false;
        std::transform(found.begin(), found.end(), counts, [](GUIntBig count) {
            return static_cast<int>(std::min<GUIntBig>(count, INT_MAX));
        });
    } catch (const std::bad_alloc&) {
        zelto::SetLastError(zelto::FileOf(band) + ": not enough memory for the histogram");
        return false;
    }
    return true;
}

} // namespace

bool CRasterBand::GetHistogram(double min, double max, int buckets, int* counts,
                               bool includeOutOfRange, bool approxOK, CDataProgress* progress) {
    const zelto::OperationScope scope;
    if (m_band == nullptr || counts == nullptr)
        return false;
    if (m_histogram != nullptr && !m_histogramIsGiven &&
        m_histogram->GetHistogramData() != nullptr &&
        m_histogram->IsCoincidence(min, max, buckets, &includeOutOfRange, &approxOK)) {
        std::copy_n(m_histogram->GetHistogramData(), buckets, counts);
        return true;
    }
    if (progress != nullptr)
        progress->BeginProgress(L"计算直方图信息", 100);
    if (buckets < 1 || !zelto::HoldsBlocks(*m_band) ||
        !CountPixels(*m_band, min, max, buckets, counts, progress))
        return false;
    delete m_histogram;
    m_histogramIsGiven = false;
    m_histogram =
        new (std::nothrow) CRasterHistogram(min, max, buckets, counts, includeOutOfRange, approxOK);
    return true;
}
