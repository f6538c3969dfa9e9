#include "zelto/raster/internal/JointSampling.h"

#include "zelto/raster/internal/PickedSamples.h"
#include "zelto/raster/internal/SampleStatistics.h"

#include <cstdint>
#include <new>

namespace zelto {

namespace {

template <typename Sample>
std::vector<BandSummary> SampleAs(const std::vector<JointBand>& bands) {
    const int width = bands.front().band->GetXSize();
    const int height = bands.front().band->GetYSize();
    const StatisticsGrid grid(width, height);
    std::vector<std::vector<Sample>> samples(bands.size(), std::vector<Sample>(grid.Count()));
    std::vector<GDALRasterBand*> stored;
    std::vector<void*> targets;
    for (std::size_t b = 0; b < bands.size(); ++b) {
        stored.push_back(bands[b].band);
        targets.push_back(samples[b].data());
    }
    if (!ReadPicked(stored, {{0, 0, width, height}, grid.columns, grid.rows}, targets))
        return {};
    std::vector<BandSummary> summaries(bands.size());
    for (std::size_t b = 0; b < bands.size(); ++b) {
        const auto& noData = bands[b].noData;
        SampleStatistics statistics(noData ? &*noData : nullptr, nullptr);
        statistics.Add(samples[b].data(), samples[b].size());
        BandSummary& found = summaries[b];
        statistics.Report(found.minimum, found.maximum, found.mean, found.standardDeviation);
    }
    return summaries;
}

std::vector<BandSummary> SampleInOwnType(const std::vector<JointBand>& bands) {
    switch (bands.front().band->GetRasterDataType()) {
    case GDT_Byte:
        return SampleAs<std::uint8_t>(bands);
    case GDT_UInt16:
        return SampleAs<std::uint16_t>(bands);
    case GDT_Int16:
        return SampleAs<std::int16_t>(bands);
    case GDT_UInt32:
        return SampleAs<std::uint32_t>(bands);
    case GDT_Int32:
        return SampleAs<std::int32_t>(bands);
    case GDT_Float32:
        return SampleAs<float>(bands);
    case GDT_Float64:
        return SampleAs<double>(bands);
    default:
        return {};
    }
}

} // namespace

bool CanSampleJointly(GDALRasterBand& band) {
    return CanBePicked(band) && HasBandsTogether(band);
}

std::vector<BandSummary> SampleJointly(const std::vector<JointBand>& bands) {
    try {
        return bands.empty() ? std::vector<BandSummary>{} : SampleInOwnType(bands);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace zelto
