#include "zelto/raster/internal/StatisticsOnDemand.h"

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/StatisticsBand.h"

namespace zelto {

BandSummary ApproximateRange(GDALRasterBand& band) {
    double range[2] = {0.0, 0.0};
    if (CanHoldBlocks(band))
        StatisticsBand(band)->ComputeRasterMinMax(TRUE, range);
    return {.minimum = range[0], .maximum = range[1]};
}

BandSummary SampledOrTypeRange(GDALRasterBand& band, const double* noData) {
    BandSummary found;
    if (!SampleBand(band, noData, nullptr, found))
        CRasterAlgorithm::GetMaxMinVal(static_cast<PixelDataType>(band.GetRasterDataType()),
                                       found.maximum, found.minimum);
    return found;
}

std::size_t StatisticsOnDemand::Add(GDALRasterBand& band, Kind kind) {
    int hasNoData = FALSE;
    const double noData = band.GetNoDataValue(&hasNoData);
    m_members.push_back(
        {&band, kind, hasNoData != FALSE ? std::optional(noData) : std::nullopt, std::nullopt});
    return m_members.size() - 1;
}

BandSummary StatisticsOnDemand::Of(std::size_t number) {
    // One data set is read from one thread at a time, whichever of its bands is wanted.
    const std::lock_guard lock(m_reading);
    Member& member = m_members[number];
    if (!member.found)
        Take(member);
    return *member.found;
}

void StatisticsOnDemand::Take(Member& member) {
    member.found =
        member.kind == Kind::Range
            ? ApproximateRange(*member.band)
            : SampledOrTypeRange(*member.band, member.noData ? &*member.noData : nullptr);
}

} // namespace zelto
