#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/display/StretchPreparation.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/StretchPlan.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <cmath>
#include <limits>

using zelto::BandPlan;
using zelto::BucketCounts;

namespace zelto {

bool IsByteBand(const CRasterBand& band) {
    return band.GetDataType() == PDT_Byte;
}

bool HasColorsOfItsOwn(const CRasterSource& source) {
    if (source.GetShowBandCount() != 1)
        return false;
    const SingleBandKind kind = KindOf(source, *source.GetShownBand(0));
    return kind == SingleBandKind::Palette || kind == SingleBandKind::Classes;
}

bool IsHistogramType(StretchType type) {
    return type == StretchHistEqualize || type == StretchAutoLevels ||
           type == StretchCustomHistEqualize;
}

CStretchPreparation::Range BoundsOfHistogram(const BandPlan& plan, std::optional<double> low,
                                             std::optional<double> high) {
    const auto& found = plan.statistics;
    const auto maximum = [&] { return found ? found->maximum : plan.band->GetMaximum(); };
    const auto minimum = [&] { return found ? found->minimum : plan.band->GetMinimum(); };
    const double to = high ? *high : IsByteBand(*plan.band) ? BYTE_RANGE.high : maximum();
    return {low ? *low : to > 0.0 ? 0.0 : minimum(), to};
}

} // namespace zelto

namespace {

using Range = CStretchPreparation::Range;

constexpr Range USUAL_CLIP = {2.0, 98.0};
constexpr double USUAL_GAMMA_OF_TABLE = 1.5;

/// Values of all bands together that a sample of a region holds: 32 megabytes of doubles.
constexpr __int64 SAMPLE_VALUES = __int64{1} << 22;

/// A range that a stretch can divide by; one of a single value shows it dark.
Range DivisibleRange(double low, double high) {
    return {low, high > low ? high : std::nextafter(low + 1.0, std::numeric_limits<double>::max())};
}

} // namespace

/// The stretch by its own name and the bands it is for, with what was given for them.
CStretchPreparation::Plan CStretchPreparation::MakePlan() const {
    Plan plan;
    plan.name = m_name;
    bool allBytes = true;
    for (int k = 0; k < m_source->GetShowBandCount(); ++k) {
        CRasterBand* const band = m_source->GetShownBand(k);
        const auto place = static_cast<std::size_t>(k);
        plan.bands.push_back({m_source->GetShowBandArray()[place], band, {}, 0, {}, 1.0});
        if (!m_gamma.empty())
            plan.bands[place].gamma = m_gamma[m_gamma.size() == 1 ? 0 : place];
        else if (m_name == "table")
            plan.bands[place].gamma = USUAL_GAMMA_OF_TABLE;
        allBytes = allBytes && zelto::IsByteBand(*band);
    }
    std::vector<Range> ranges = m_ranges;
    if (m_name == "auto") {
        const bool asIs = zelto::HasColorsOfItsOwn(*m_source);
        plan.name = asIs || (allBytes && m_gamma.empty()) ? "none"
                    : allBytes                            ? "linear"
                                                          : "percent";
        if (plan.name == "linear")
            ranges = {zelto::BYTE_RANGE};
    }
    plan.type = zelto::TypeOfStretch(plan.name);
    plan.isPercent = plan.name == "percent";
    for (std::size_t k = 0; k < plan.bands.size() && !ranges.empty(); ++k) {
        const Range& range = ranges[ranges.size() == 1 ? 0 : k];
        // Two deviations around the mean of these are the range itself.
        plan.bands[k].statistics = {range.low, range.high, (range.low + range.high) / 2,
                                    (range.high - range.low) / 4};
    }
    return plan;
}

/// Whether values have to be read for the stretch, beside those that the bands have taken.
bool CStretchPreparation::GoesByRegion(const Plan& plan) const {
    if (plan.name == "none" || plan.bands.front().statistics)
        return false;
    return plan.isPercent || m_view || m_area != nullptr || m_exact;
}

/// Finds the ranges of a region, and counts its values where the stretch goes by a histogram.
bool CStretchPreparation::Measure(Plan& plan, CDataProgress* progress) const {
    CRegionStatistics region(m_source);
    std::vector<int> indices;
    for (const BandPlan& band : plan.bands)
        indices.push_back(band.index);
    region.SetBands(indices);
    if (m_view)
        region.SetBox(*m_view);
    else
        region.SetAOI(m_area);
    if (!m_exact)
        region.SetSampleSize(SAMPLE_VALUES);
    const Range clip = m_clip.value_or(USUAL_CLIP);
    if (region.Compute(progress) != GIS_SUCCESS ||
        (plan.isPercent && region.ComputePercentiles(clip.low, clip.high, progress) != GIS_SUCCESS))
        return false;
    plan.isSampled = region.IsSampled();
    for (std::size_t k = 0; k < plan.bands.size(); ++k) {
        const CRegionStatistics::Band& found = region.GetBands()[k];
        if (found.count == 0)
            return zelto::FailWith(false, m_source->GetFilePath(),
                                   "there are no values where the stretch is to be taken from");
        Range range = {found.minimum, found.maximum};
        if (plan.isPercent && found.lowPercentile < found.highPercentile)
            range = {found.lowPercentile, found.highPercentile};
        range = DivisibleRange(range.low, range.high);
        plan.bands[k].statistics = {range.low, range.high, found.mean, found.standardDeviation};
        plan.bands[k].count = found.count;
    }
    return !zelto::IsHistogramType(plan.type) || CountBuckets(plan, region, progress);
}

bool CStretchPreparation::CountBuckets(Plan& plan, CRegionStatistics& region,
                                       CDataProgress* progress) const {
    for (std::size_t k = 0; k < plan.bands.size(); ++k) {
        BandPlan& band = plan.bands[k];
        BucketCounts& buckets = band.histogram.emplace();
        const Range range = buckets.range = zelto::BoundsOfHistogram(band, m_low, m_high);
        if (!(range.low < range.high))
            return zelto::FailWith(false, m_source->GetFilePath(),
                                   "the low bound of the histogram is not less than its high one");
        // Background is zero in most images and would dwarf every other count.
        const double first = range.low == 0.0 ? std::numeric_limits<double>::min() : range.low;
        // A little wider, so that the last bucket holds its end.
        const auto count = static_cast<double>(buckets.counts.size());
        const double width = (range.high - first) / count * (1.0 + 1e-12);
        std::vector<__int64> counts(buckets.counts.size());
        if (region.ComputeHistogram(static_cast<int>(k), first, width, counts, progress) !=
            GIS_SUCCESS)
            return false;
        std::transform(counts.begin(), counts.end(), buckets.counts.begin(), [](__int64 each) {
            return static_cast<int>(std::min<__int64>(each, std::numeric_limits<int>::max()));
        });
    }
    return true;
}
