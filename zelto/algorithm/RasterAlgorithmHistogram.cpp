#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Moments.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/SampleReader.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/Truncate.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>

namespace {

using zelto::PixelWindow;
using zelto::SampleGrid;

constexpr int BINS_OF_ALL_BANDS = 256;
constexpr double STRETCH_LOW = 0.0;
constexpr double STRETCH_HIGH = 255.0;

/// The samples under a box, one band at a time in the same memory.
class BoxSamples {
  public:
    static std::optional<BoxSamples> Of(CRasterSource& source, const CBoundingBox& box) {
        const auto window = zelto::WindowUnder(source, box);
        if (!window)
            return Nothing(source, zelto::NO_OVERLAP);
        BoxSamples result;
        result.m_window = *window;
        result.m_grid = zelto::HistogramGrid(window->width, window->height, source.GetBandCount());
        if (!result.m_grid.IsHeld())
            return Nothing(source, zelto::TOO_MANY_PIXELS);
        if (result.m_grid.samples < 2)
            return Nothing(source, zelto::NO_PIXELS);
        result.m_samples = zelto::AllocateSamples<double>(result.m_grid.samples);
        if (!result.m_samples)
            return Nothing(source, zelto::NO_MEMORY);
        return result;
    }

    bool Read(CRasterBand& band) {
        const bool read = zelto::ReadSamples(band.GetGDALBand(), m_window, m_grid.width,
                                             m_grid.height, m_samples.get());
        band.FlushCache();
        return read;
    }

    std::span<const double> Samples() const {
        return {m_samples.get(), static_cast<std::size_t>(m_grid.samples)};
    }

  private:
    static std::optional<BoxSamples> Nothing(const CRasterSource& source, const char* reason) {
        zelto::Refuse(source, reason);
        return std::nullopt;
    }

    PixelWindow m_window;
    SampleGrid m_grid;
    std::unique_ptr<double[]> m_samples;
};

zelto::SeededMoments MomentsInRange(std::span<const double> samples, const CRasterBand& band,
                                    double low, double high) {
    const auto noData = zelto::NoDataRule::Of(band);
    zelto::SeededMoments moments;
    for (const double sample : samples)
        if (sample != 0.0 && !noData.Holds(sample) && low <= sample && sample <= high)
            moments.Add(sample);
    return moments;
}

/// Counts all samples, those left out of the statistics included. The two end bins stay empty:
/// they would hold the background and the saturated pixels, which hosts do not plot.
void CountBins(std::span<const double> samples, double minimum, double maximum,
               std::span<int> histogram) {
    constexpr int FIRST = 1;
    const int last = static_cast<int>(std::min<std::size_t>(254, histogram.size() - 1));
    for (const double sample : samples) {
        const double position = (sample - minimum) / (maximum - minimum) * 255 + 0.5;
        const int bin = zelto::TruncateToInt32(position);
        if (bin >= FIRST && bin <= last)
            ++histogram[static_cast<std::size_t>(bin)];
    }
}

/// Where one band's results go; null ones are not written.
struct HistogramOutputs {
    double* minimum;
    double* maximum;
    double* mean;
    double* stretchLow;
    double* stretchHigh;
};

void WriteTo(double* output, double value) {
    if (output != nullptr)
        *output = value;
}

/// @return the count; 0, with outputs untouched, when the band cannot be read
__int64 ComputeBandHistogram(BoxSamples& samples, CRasterBand& band, double low, double high,
                             std::span<int> histogram, const HistogramOutputs& outputs) {
    std::fill(histogram.begin(), histogram.end(), 0);
    if (!samples.Read(band))
        return 0;
    const zelto::SeededMoments moments = MomentsInRange(samples.Samples(), band, low, high);
    WriteTo(outputs.minimum, moments.minimum);
    WriteTo(outputs.maximum, moments.maximum);
    WriteTo(outputs.mean, moments.Mean());
    WriteTo(outputs.stretchLow, STRETCH_LOW);
    WriteTo(outputs.stretchHigh, STRETCH_HIGH);
    if (!histogram.empty())
        CountBins(samples.Samples(), moments.minimum, moments.maximum, histogram);
    return moments.count;
}

double* ElementOf(double* array, int index) {
    return array != nullptr ? array + index : nullptr;
}

} // namespace

bool CRasterAlgorithm::ComputeBandHistogramFromBox(
    CRasterSource* source, int band, CBoundingBox* box, int* histogram, int binCount, double& min,
    double& max, double& mean, double& stretchLow, double& stretchHigh, double& lowClip,
    double& highClip, __int64& count, bool /*unused*/, CDataProgress* /*progress*/) {
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        if (box == nullptr || histogram == nullptr)
            return zelto::RefuseMissing("box or histogram");
        auto samples = BoxSamples::Of(*source, *box);
        if (!samples)
            return false;
        count = 0;
        CRasterBand* const rasterBand = source->GetRasterBand(band);
        if (rasterBand == nullptr)
            return true;
        count = ComputeBandHistogram(*samples, *rasterBand, lowClip, highClip,
                                     {histogram, static_cast<std::size_t>(std::max(binCount, 0))},
                                     {&min, &max, &mean, &stretchLow, &stretchHigh});
        return true;
    });
}

bool CRasterAlgorithm::ComputeHistogramFromBox(CRasterSource* source, CBoundingBox* box,
                                               int** histograms, double* min, double* max,
                                               double* mean, double* stretchLow,
                                               double* stretchHigh, double* lowClip,
                                               double* highClip, __int64& count, bool /*unused*/,
                                               CDataProgress* /*progress*/) {
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        if (box == nullptr || histograms == nullptr)
            return zelto::RefuseMissing("box or list of histograms");
        auto samples = BoxSamples::Of(*source, *box);
        if (!samples)
            return false;
        constexpr double INFINITE = std::numeric_limits<double>::infinity();
        count = 0;
        for (int b = 0; b < source->GetBandCount(); ++b) {
            const std::span<int> histogram(
                histograms[b], histograms[b] != nullptr ? std::size_t{BINS_OF_ALL_BANDS} : 0);
            count = ComputeBandHistogram(*samples, *source->GetRasterBand(b),
                                         lowClip != nullptr ? lowClip[b] : -INFINITE,
                                         highClip != nullptr ? highClip[b] : INFINITE, histogram,
                                         {ElementOf(min, b), ElementOf(max, b), ElementOf(mean, b),
                                          ElementOf(stretchLow, b), ElementOf(stretchHigh, b)});
        }
        return true;
    });
}
