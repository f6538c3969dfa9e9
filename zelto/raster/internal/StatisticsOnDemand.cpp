#include "zelto/raster/internal/StatisticsOnDemand.h"

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/JointSampling.h"
#include "zelto/raster/internal/KnownStatistics.h"
#include "zelto/raster/internal/StatisticsBand.h"

#include <algorithm>

namespace zelto {

BandSummary ApproximateRange(GDALRasterBand& band) {
    double range[2] = {0.0, 0.0};
    if (CanHoldBlocks(band))
        StatisticsBand(band)->ComputeRasterMinMax(TRUE, range);
    return {.minimum = range[0], .maximum = range[1]};
}

BandSummary SampledOrTypeRange(GDALRasterBand& band, const double* noData) {
    BandSummary found;
    if (SampleBand(band, noData, nullptr, found))
        KeepStatistics(band, noData != nullptr ? std::optional(*noData) : std::nullopt, found);
    else
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

void StatisticsOnDemand::TakeAll() {
    for (std::size_t number = 0; number < m_members.size(); ++number)
        Of(number);
}

void StatisticsOnDemand::Take(Member& member) {
    if (member.kind == Kind::Range) {
        member.found = ApproximateRange(*member.band);
        return;
    }
    member.found = KnownStatistics(*member.band, member.noData);
    if (!member.found)
        TakeJointly(member);
    if (!member.found)
        member.found = SampledOrTypeRange(*member.band, member.noData ? &*member.noData : nullptr);
}

/// Whoever asks for one band mostly asks for the others next.
void StatisticsOnDemand::TakeJointly(const Member& wanted) {
    const std::vector<Member*> pass = MembersOfOnePass(wanted);
    std::vector<JointBand> bands;
    bands.reserve(pass.size());
    for (const Member* member : pass)
        bands.push_back({member->band, member->noData});
    const std::vector<BandSummary> found = SampleJointly(bands);
    for (std::size_t i = 0; i < found.size(); ++i) {
        pass[i]->found = found[i];
        KeepStatistics(*pass[i]->band, pass[i]->noData, found[i]);
    }
}

std::vector<StatisticsOnDemand::Member*>
StatisticsOnDemand::MembersOfOnePass(const Member& wanted) {
    if (!CanSampleJointly(*wanted.band))
        return {};
    const StatisticsGrid grid(wanted.band->GetXSize(), wanted.band->GetYSize());
    const std::size_t bytesOfBand =
        grid.Count() *
        static_cast<std::size_t>(GDALGetDataTypeSizeBytes(wanted.band->GetRasterDataType()));
    const auto most = static_cast<std::size_t>(JOINT_SAMPLING_BYTES) / bytesOfBand;
    std::vector<Member*> pass;
    for (Member& member : m_members) {
        if (member.kind != Kind::Sampled || member.found ||
            member.band->GetDataset() != wanted.band->GetDataset())
            continue;
        pass.push_back(&member);
        if (pass.size() < most)
            continue;
        if (std::find(pass.begin(), pass.end(), &wanted) != pass.end())
            return pass;
        pass.clear();
    }
    return pass;
}

} // namespace zelto
