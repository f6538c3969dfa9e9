#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Moments.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionRows.h"
#include "zelto/algorithm/internal/SampleReader.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <algorithm>
#include <optional>

namespace {

using zelto::NoDataRule;
using zelto::PixelWindow;
using zelto::SampleGrid;
using zelto::SeededMoments;

/// The caller's arrays of one double per band; null ones are not written.
struct StatisticsArrays {
    double* minimum;
    double* maximum;
    double* mean;
    double* deviation;

    void Write(std::size_t band, const SeededMoments& moments) const {
        const bool any = moments.count > 0;
        const auto write = [&](double* array, double value) {
            if (array != nullptr)
                array[band] = any ? value : 0.0;
        };
        write(minimum, moments.minimum);
        write(maximum, moments.maximum);
        write(mean, any ? moments.Mean() : 0.0);
        write(deviation, any ? moments.StandardDeviation() : 0.0);
    }
};

/// Reads the bands one after the other as floats, adds those samples that `accept(band, position,
/// sample)` lets through and that are not no-data, and writes each band's statistics. A band
/// without accepted samples is the last one.
/// @return false without memory
template <typename Accept>
bool ComputeSeeded(CRasterSource& source, const PixelWindow& window, const SampleGrid& grid,
                   const StatisticsArrays& arrays, __int64& count, Accept accept) {
    const auto samples = zelto::AllocateSamples<float>(grid.samples);
    if (!samples)
        return zelto::Refuse(source, zelto::NO_MEMORY);
    count = 0;
    for (int b = 0; b < source.GetBandCount(); ++b) {
        CRasterBand& band = *source.GetRasterBand(b);
        const NoDataRule noData = NoDataRule::Of(band);
        SeededMoments moments;
        const bool read =
            zelto::ReadSamples(band.GetGDALBand(), window, grid.width, grid.height, samples.get());
        band.FlushCache();
        const auto sampleCount = static_cast<std::size_t>(read ? grid.samples : 0);
        for (std::size_t position = 0; position < sampleCount; ++position) {
            const double sample = samples[position];
            if (!noData.Holds(sample) && accept(b, position, sample))
                moments.Add(sample);
        }
        count = moments.count;
        arrays.Write(static_cast<std::size_t>(b), moments);
        if (count == 0)
            break;
    }
    return true;
}

/// What is known of a sample's place.
enum Membership : unsigned char { OUTSIDE, INSIDE, INSIDE_WITH_DATA };

void FillMask(zelto::RegionRows& region, const SampleGrid& grid, unsigned char* mask) {
    zelto::RegionSpans spans;
    std::fill_n(mask, grid.samples, OUTSIDE);
    for (int row = 0; row < grid.height; ++row) {
        spans.Find(region, row, 1);
        spans.Visit(0, [&](std::size_t begin, std::size_t length) {
            std::fill_n(mask + begin, length, INSIDE);
        });
        mask += grid.width;
    }
}

/// Accepts the samples of the region. The first band marks what it accepts and the later bands
/// follow its marks, so that what is no-data there is out for all.
class RegionFilter {
  public:
    explicit RegionFilter(unsigned char* mask) : m_mask(mask) {}

    bool operator()(int band, std::size_t position, double /*sample*/) const {
        if (band == 0 && m_mask[position] == INSIDE)
            m_mask[position] = INSIDE_WITH_DATA;
        return m_mask[position] == INSIDE_WITH_DATA;
    }

  private:
    unsigned char* m_mask;
};

} // namespace

bool CRasterAlgorithm::ComputeStaticsFromAOI2(CRasterSource* source, CAOISource* aoi,
                                              __int64& count, double* min, double* max,
                                              double* mean, double* stddev, bool skipZero,
                                              CDataProgress* /*progress*/) {
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        if (aoi == nullptr)
            return zelto::RefuseMissing("area");
        const auto window = zelto::WindowUnder(*source, aoi->GetExtent());
        if (!window)
            return zelto::Refuse(*source, zelto::NO_OVERLAP);
        const SampleGrid grid =
            zelto::SharedBudgetGrid(window->width, window->height, source->GetBandCount());
        if (grid.samples < 2)
            return zelto::Refuse(*source, zelto::NO_PIXELS);
        const StatisticsArrays arrays = {min, max, mean, stddev};
        // Skipping zeros takes the place of the region test.
        if (skipZero)
            return ComputeSeeded(*source, *window, grid, arrays, count,
                                 [](int, std::size_t, double sample) { return sample != 0.0; });
        const auto mask = zelto::AllocateSamples<unsigned char>(grid.samples);
        if (!mask)
            return zelto::Refuse(*source, zelto::NO_MEMORY);
        FillMask(*zelto::RowsOf(*aoi, *source, *window, grid), grid, mask.get());
        return ComputeSeeded(*source, *window, grid, arrays, count, RegionFilter(mask.get()));
    });
}

bool CRasterAlgorithm::ComputeStaticsFromBox2(CRasterSource* source, CBoundingBox* box,
                                              __int64& count, double* min, double* max,
                                              double* mean, double* stddev, double* lowClip,
                                              double* highClip, bool /*unused*/,
                                              CDataProgress* /*progress*/) {
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        if (box == nullptr)
            return zelto::RefuseMissing("box");
        const auto window = zelto::WindowUnder(*source, *box);
        if (!window)
            return zelto::Refuse(*source, zelto::NO_OVERLAP);
        const SampleGrid grid =
            zelto::SharedBudgetGrid(window->width, window->height, source->GetBandCount());
        if (grid.samples < 2)
            return zelto::Refuse(*source, zelto::NO_PIXELS);
        const auto isInRange = [&](int band, std::size_t, double sample) {
            return sample != 0.0 && !(lowClip != nullptr && sample < lowClip[band]) &&
                   !(highClip != nullptr && sample > highClip[band]);
        };
        return ComputeSeeded(*source, *window, grid, {min, max, mean, stddev}, count, isInRange);
    });
}

bool CRasterAlgorithm::ComputeBandApproxStatics(GDALRasterBand* band, __int64& count, double& min,
                                                double& max, double& mean, double& stddev,
                                                double* lowClip, double* highClip, bool /*unused*/,
                                                CDataProgress* /*progress*/) {
    return zelto::NoThrow(false, [&] {
        if (band == nullptr)
            return zelto::RefuseMissing("band");
        const PixelWindow window = {0, 0, band->GetXSize(), band->GetYSize()};
        const SampleGrid grid = zelto::OverviewGrid(window.width, window.height);
        if (grid.samples < 2)
            return zelto::RefuseMissing("band of two samples or more");
        const auto samples = zelto::AllocateSamples<float>(grid.samples);
        if (!samples)
            return zelto::RefuseMissing("memory");
        SeededMoments moments;
        count = 0;
        min = moments.minimum;
        max = moments.maximum;
        // Compared with whether or not the band defines one.
        const NoDataRule noData = {true, band->GetNoDataValue()};
        const bool read = zelto::ReadSamples(band, window, grid.width, grid.height, samples.get());
        band->FlushCache();
        if (!read)
            return false;
        for (std::int64_t i = 0; i < grid.samples; ++i) {
            const double sample = samples[i];
            const bool isLeftOut = noData.Holds(sample) || sample == 0.0 ||
                                   (lowClip != nullptr && sample < *lowClip) ||
                                   (highClip != nullptr && sample > *highClip);
            if (!isLeftOut)
                moments.Add(sample);
        }
        count = moments.count;
        const StatisticsArrays outputs = {&min, &max, &mean, &stddev};
        outputs.Write(0, moments);
        return count > 0;
    });
}
