#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/display/StretchPreparation.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/StretchPlan.h"
#include "zelto/geometry/Point2D.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <cmath>
#include <limits>

using zelto::BandPlan;
using zelto::BucketCounts;

namespace {

using Range = CStretchPreparation::Range;

constexpr Range BYTE_RANGE = {0.0, 255.0};
constexpr Range USUAL_CLIP = {2.0, 98.0};
constexpr double USUAL_GAMMA_OF_TABLE = 1.5;
constexpr double USUAL_THRESHOLD = 0.01;
constexpr int USUAL_WALLIS_MODEL = 1;

/// Values of all bands together that a sample of a region holds: 32 megabytes of doubles.
constexpr __int64 SAMPLE_VALUES = __int64{1} << 22;

bool IsByte(const CRasterBand& band) {
    return band.GetDataType() == PDT_Byte;
}

/// Whether the picture has its colours from a table that no stretch changes.
bool HasColorsOfItsOwn(const CRasterSource& source) {
    if (source.GetShowBandCount() != 1)
        return false;
    const zelto::SingleBandKind kind = zelto::KindOf(source, *source.GetShownBand(0));
    return kind == zelto::SingleBandKind::Palette || kind == zelto::SingleBandKind::Classes;
}

bool IsHistogramType(StretchType type) {
    return type == StretchHistEqualize || type == StretchAutoLevels ||
           type == StretchCustomHistEqualize;
}

/// A range that a stretch can divide by; one of a single value shows it dark.
Range Widened(double low, double high) {
    return {low, high > low ? high : std::nextafter(low + 1.0, std::numeric_limits<double>::max())};
}

/// Sets the table of a gamma curve, with the points it was made from.
/// @param range display values that the curve keeps to
bool SetCurve(CRasterBand& band, double gamma, int darkest, int brightest) {
    std::array<unsigned char, 256> table;
    std::vector<CPoint2D> curve;
    for (int i = 0; i < 256; ++i) {
        const double value = 255.0 * std::pow(i / 255.0, 1.0 / gamma);
        const int shown = std::clamp(static_cast<int>(std::lround(value)), darkest, brightest);
        table[static_cast<std::size_t>(i)] = static_cast<unsigned char>(shown);
        if (i % 51 == 0)
            curve.emplace_back(i, value);
    }
    return band.SetEnhancedData(table.data(), HistogramLineCurve, curve.data(),
                                static_cast<int>(curve.size()));
}

/// Where the bounds of the zoom stretches are not given, they change nothing, but that 8-bit
/// bands under StretchZoomLinear002, whose samples are taken as they are, have those of the
/// standard-deviation stretch.
void SetZoom(CRasterBand& band, StretchType type, std::optional<double> low,
             std::optional<double> high) {
    const bool raw = type == StretchZoomLinear002 && IsByte(band);
    // The band's own bounds are asked for only where they are needed: they take a sample.
    const double from = low ? *low : raw ? band.GetStdDevLowerBound() : 0.0;
    const double to = high ? *high : raw ? band.GetStdDevUpperBound() : 255.0;
    band.SetStretchData(type, 0.0, 0.0, from, to, 0.0, 0.0);
}

/// Whether a band's values lie too close together for a histogram.
bool LacksRange(const CRasterBand& band) {
    return !(band.GetMaximum() - band.GetMinimum() >= 1.0);
}

/// Counts the whole band where no region has been counted; the counts are answered from the
/// band's last ones where they are the same.
bool EqualizeBand(CRasterBand& band, const BandPlan& plan) {
    if (plan.histogram)
        return band.SetHistogram(plan.histogram->range.low, plan.histogram->range.high,
                                 static_cast<int>(plan.histogram->counts.size()),
                                 plan.histogram->counts.data());
    if (LacksRange(band))
        return zelto::FailWith(false, L"",
                               "the values of a band lie too close together for a histogram");
    const double range = band.GetMaximum() - band.GetMinimum();
    std::array<int, 256> counts{};
    const int buckets = range > 256.0 ? 256 : static_cast<int>(range);
    return band.GetHistogram(band.GetMinimum(), band.GetMaximum(), buckets, counts.data(), false,
                             true, nullptr) &&
           band.EnableHistogramEqualize();
}

/// Has the auto levels find their map anew. It shares its place with that of the equalisation,
/// and counts as found once it was, unless it was for another threshold.
void ForgetAutoLevels(CRasterBand& band, double threshold) {
    if (CRasterHistogram* histogram = band.GetHistogramObject())
        histogram->SetAutoLevelsMap(threshold + 0.25);
}

/// The bounds of a histogram where they are not given.
Range BoundsOfHistogram(const BandPlan& plan, std::optional<double> low,
                        std::optional<double> high) {
    const auto& found = plan.statistics;
    const auto maximum = [&] { return found ? found->maximum : plan.band->GetMaximum(); };
    const auto minimum = [&] { return found ? found->minimum : plan.band->GetMinimum(); };
    const double to = high ? *high : IsByte(*plan.band) ? BYTE_RANGE.high : maximum();
    return {low ? *low : to > 0.0 ? 0.0 : minimum(), to};
}

/// Equalises by the histogram between two bounds instead of the whole range. The engine finds a
/// value's bucket from the value itself, so the picture is even where the bounds begin at zero.
bool EqualizeBetween(CRasterBand& band, Range range, const BandPlan& plan,
                     CDataProgress* progress) {
    std::array<int, 256> counts{};
    if (plan.histogram)
        counts = plan.histogram->counts;
    else if (!band.GetHistogram(range.low, range.high, static_cast<int>(counts.size()),
                                counts.data(), false, true, progress))
        return false;
    return band.SetCustomHistogram(range.low, range.high, static_cast<int>(counts.size()),
                                   counts.data());
}

/// The Wallis models start from the statistics of the displayed values, which a first drawing of
/// the whole image gives.
bool ApplyWallis(CRasterSource& source, int model) {
    constexpr double SIDE = 512.0;
    const double factor = std::min(1.0, SIDE / std::max(source.GetWidth(), source.GetHeight()));
    const int w = std::max(1, static_cast<int>(source.GetWidth() * factor));
    const int h = std::max(1, static_cast<int>(source.GetHeight() * factor));
    std::vector<unsigned char> image(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 4);
    CBoundingBox box = source.GetExtent();
    const StretchType former = source.GetStretchType();
    source.SetStretchType(StretchLinear);
    source.ForgetShowStatistics();
    if (!source.GetShowDataWithoutCache(&box, w, h, image.data(), false)) {
        source.SetStretchType(former);
        return false;
    }
    source.SetStretchType(StretchWallis);
    return source.ReadWallisColorModel(model);
}

/// The sample values at the ends of the stretch that a band now has.
Range RangeOf(const CRasterSource& source, const CRasterBand& band) {
    const StretchType type = source.GetStretchType();
    if (HasColorsOfItsOwn(source))
        return {};
    if (IsByte(band) && (type == StretchNone || type == StretchZoomLinear002))
        return BYTE_RANGE;
    if (type == StretchStdDev)
        return {band.GetStdDevLowerBound(), band.GetStdDevUpperBound()};
    if (type == StretchCustomHistEqualize && band.GetCustomHistogramObject() != nullptr) {
        Range range;
        int buckets = 0;
        band.GetCustomHistogramObject()->GetHistogram(range.low, range.high, buckets, nullptr,
                                                      nullptr);
        return range;
    }
    return {band.GetMinimum(), band.GetMaximum()};
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
        allBytes = allBytes && IsByte(*band);
    }
    std::vector<Range> ranges = m_ranges;
    if (m_name == "auto") {
        const bool asIs = HasColorsOfItsOwn(*m_source);
        plan.name = asIs || (allBytes && m_gamma.empty()) ? "none"
                    : allBytes                            ? "linear"
                                                          : "percent";
        if (plan.name == "linear")
            ranges = {BYTE_RANGE};
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
        range = Widened(range.low, range.high);
        plan.bands[k].statistics = {range.low, range.high, found.mean, found.standardDeviation};
        plan.bands[k].count = found.count;
    }
    return !IsHistogramType(plan.type) || CountBuckets(plan, region, progress);
}

bool CStretchPreparation::CountBuckets(Plan& plan, CRegionStatistics& region,
                                       CDataProgress* progress) const {
    for (std::size_t k = 0; k < plan.bands.size(); ++k) {
        BandPlan& band = plan.bands[k];
        BucketCounts& buckets = band.histogram.emplace();
        const Range range = buckets.range = BoundsOfHistogram(band, m_low, m_high);
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

/// Sets what was found.
/// @return false for a histogram that cannot be counted, or a first drawing that fails
bool CStretchPreparation::Commit(const Plan& plan, CDataProgress* progress) const {
    for (int b = 0; b < m_source->GetBandCount(); ++b)
        m_source->GetRasterBand(b)->RestoreStatistics();
    const bool curved =
        plan.name == "table" || std::any_of(plan.bands.begin(), plan.bands.end(),
                                            [](const BandPlan& band) { return band.gamma != 1.0; });
    const StretchType type = curved ? StretchEnhanceTable : plan.type;
    for (const BandPlan& band : plan.bands)
        if (!SetBand(plan, band, curved, progress))
            return false;
    if (type == StretchWallis)
        return ApplyWallis(*m_source, m_wallisModel.value_or(USUAL_WALLIS_MODEL));
    if (type == StretchAutoLevels)
        m_source->SetAutoLevelThresold(m_threshold.value_or(USUAL_THRESHOLD));
    m_source->SetStretchType(type);
    return true;
}

bool CStretchPreparation::SetBand(const Plan& plan, const BandPlan& found, bool curved,
                                  CDataProgress* progress) const {
    CRasterBand& band = *found.band;
    auto statistics = found.statistics;
    if (curved && plan.type == StretchStdDev) {
        // The curve goes over the range of a band: that of the deviations takes its place.
        const auto own = statistics.value_or(zelto::BandSummary{
            band.GetMinimum(), band.GetMaximum(), band.GetMean(), band.GetStandardDeviation()});
        const double lower = std::max(own.mean - 2.0 * own.standardDeviation, own.minimum);
        const double upper = std::min(own.mean + 2.0 * own.standardDeviation, own.maximum);
        statistics = {lower, upper, own.mean, own.standardDeviation};
    }
    if (statistics && !band.ReplaceStatistics(statistics->minimum, statistics->maximum,
                                              statistics->mean, statistics->standardDeviation))
        return false;
    switch (curved ? StretchEnhanceTable : plan.type) {
    case StretchEnhanceTable:
        return plan.type == StretchStdDev ? SetCurve(band, found.gamma, 1, 254)
                                          : SetCurve(band, found.gamma, 0, 255);
    case StretchHistEqualize:
        return EqualizeBand(band, found);
    case StretchAutoLevels:
        if (!EqualizeBand(band, found))
            return false;
        ForgetAutoLevels(band, m_threshold.value_or(USUAL_THRESHOLD));
        return true;
    case StretchZoomLinear:
    case StretchZoomLinear002:
        SetZoom(band, plan.type, m_low, m_high);
        return true;
    case StretchCustomHistEqualize:
        return EqualizeBetween(band, BoundsOfHistogram(found, m_low, m_high), found, progress);
    default:
        return true;
    }
}

/// Whether what fails does so because of the values, and not of reading them.
bool CStretchPreparation::IsUnsuited(const Plan& plan) {
    return IsHistogramType(plan.type) &&
           std::any_of(plan.bands.begin(), plan.bands.end(), [](const BandPlan& band) {
               return !band.histogram && LacksRange(*band.band);
           });
}

GISError CStretchPreparation::Apply(CDataProgress* progress) {
    return zelto::Operation(GIS_FAILED, [&] {
        if (!IsUsable() || !CheckSettings())
            return GIS_FAILED;
        Plan plan = MakePlan();
        if (!(GoesByRegion(plan) && !Measure(plan, progress)) && Commit(plan, progress)) {
            m_applied = plan.name;
            m_sampled = plan.isSampled;
            m_bands.clear();
            for (const BandPlan& band : plan.bands)
                m_bands.push_back({band.index, RangeOf(*m_source, *band.band), band.count});
            return GIS_SUCCESS;
        }
        zelto::NameFileOfLastError(m_source->GetFilePath());
        return IsUnsuited(plan) ? GIS_NOT_SUPPORTED : GIS_FAILED;
    });
}
