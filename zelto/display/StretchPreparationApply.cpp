#include "zelto/baselib/internal/Operation.h"
#include "zelto/display/RasterHistogram.h"
#include "zelto/display/StretchPreparation.h"
#include "zelto/display/internal/StretchPlan.h"
#include "zelto/geometry/Point2D.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/FirstCounted.h"

#include <algorithm>
#include <cmath>

using zelto::BandPlan;

namespace {

using Range = CStretchPreparation::Range;

constexpr double USUAL_THRESHOLD = 0.01;
constexpr int USUAL_WALLIS_MODEL = 1;

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
    const bool raw = type == StretchZoomLinear002 && zelto::IsByteBand(band);
    // The band's own bounds are asked for only where they are needed: they take a sample.
    const double from = low ? *low : raw ? band.GetStdDevLowerBound() : 0.0;
    const double to = high ? *high : raw ? band.GetStdDevUpperBound() : 255.0;
    band.SetStretchData(type, 0.0, 0.0, from, to, 0.0, 0.0);
}

/// Whether a band's values lie too close together for a histogram.
bool LacksRange(const CRasterBand& band) {
    return !(band.GetMaximum() - band.GetMinimum() >= 1.0);
}

GISError RefuseHistogram() {
    return zelto::FailWith(GIS_NOT_SUPPORTED, L"",
                           "the values of a band lie too close together for a histogram");
}

GISError DoneIf(bool done) {
    return done ? GIS_SUCCESS : GIS_FAILED;
}

/// Counts the whole band where no region has been counted; the counts are answered from the
/// band's last ones where they are the same.
GISError EqualizeBand(CRasterBand& band, const BandPlan& plan) {
    if (plan.histogram)
        return DoneIf(band.SetHistogram(plan.histogram->range.low, plan.histogram->range.high,
                                        static_cast<int>(plan.histogram->counts.size()),
                                        plan.histogram->counts.data()));
    if (LacksRange(band))
        return RefuseHistogram();
    const double range = band.GetMaximum() - band.GetMinimum();
    std::array<int, 256> counts{};
    const int buckets = range > 256.0 ? 256 : static_cast<int>(range);
    return DoneIf(band.GetHistogram(band.GetMinimum(), band.GetMaximum(), buckets, counts.data(),
                                    false, true, nullptr) &&
                  band.EnableHistogramEqualize());
}

/// Has the auto levels find their map anew. It shares its place with that of the equalisation,
/// and counts as found once it was, unless it was for another threshold.
/// @param band with a histogram
void ForgetAutoLevels(CRasterBand& band, double threshold) {
    band.GetHistogramObject()->SetAutoLevelsMap(threshold + 0.25);
}

/// Equalises by the histogram between two bounds instead of the whole range. The engine finds a
/// value's bucket from the value itself, so the picture is even where the bounds begin at zero.
GISError EqualizeBetween(CRasterBand& band, Range range, const BandPlan& plan,
                         CDataProgress* progress) {
    std::array<int, 256> counts{};
    if (plan.histogram)
        counts = plan.histogram->counts;
    else if (!(zelto::FirstCounted(range.low) < range.high))
        return RefuseHistogram();
    else if (!band.GetHistogram(range.low, range.high, static_cast<int>(counts.size()),
                                counts.data(), false, true, progress))
        return GIS_FAILED;
    return DoneIf(band.SetCustomHistogram(range.low, range.high, static_cast<int>(counts.size()),
                                          counts.data()));
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
    if (zelto::HasColorsOfItsOwn(source))
        return {};
    if (zelto::IsByteBand(band) && (type == StretchNone || type == StretchZoomLinear002))
        return zelto::BYTE_RANGE;
    if (type == StretchStdDev)
        return {band.GetStdDevLowerBound(), band.GetStdDevUpperBound()};
    if (type == StretchCustomHistEqualize) {
        Range range;
        int buckets = 0;
        band.GetCustomHistogramObject()->GetHistogram(range.low, range.high, buckets, nullptr,
                                                      nullptr);
        return range;
    }
    return {band.GetMinimum(), band.GetMaximum()};
}

} // namespace

/// Sets what was found.
/// @return GIS_FAILED for a histogram that cannot be counted, or a first drawing that fails;
///         GIS_NOT_SUPPORTED for values that there is no histogram of
GISError CStretchPreparation::Commit(const Plan& plan, CDataProgress* progress) const {
    for (int b = 0; b < m_source->GetBandCount(); ++b)
        m_source->GetRasterBand(b)->RestoreStatistics();
    const bool curved =
        plan.name == "table" || std::any_of(plan.bands.begin(), plan.bands.end(),
                                            [](const BandPlan& band) { return band.gamma != 1.0; });
    const StretchType type = curved ? StretchEnhanceTable : plan.type;
    for (const BandPlan& band : plan.bands)
        if (const GISError error = SetBand(plan, band, curved, progress); error != GIS_SUCCESS)
            return error;
    if (type == StretchWallis)
        return DoneIf(ApplyWallis(*m_source, m_wallisModel.value_or(USUAL_WALLIS_MODEL)));
    if (type == StretchAutoLevels)
        m_source->SetAutoLevelThresold(m_threshold.value_or(USUAL_THRESHOLD));
    m_source->SetStretchType(type);
    return GIS_SUCCESS;
}

GISError CStretchPreparation::SetBand(const Plan& plan, const BandPlan& found, bool curved,
                                      CDataProgress* progress) const {
    CRasterBand& band = *found.band;
    auto statistics = found.statistics;
    if (curved && plan.type == StretchStdDev) {
        // The curve goes over the range of a band: that of the deviations takes its place.
        const zelto::BandSummary ofBand = {band.GetMinimum(), band.GetMaximum(), band.GetMean(),
                                           band.GetStandardDeviation()};
        const zelto::BandSummary own = statistics.value_or(ofBand);
        const double lower = std::max(own.mean - 2.0 * own.standardDeviation, own.minimum);
        const double upper = std::min(own.mean + 2.0 * own.standardDeviation, own.maximum);
        statistics = {lower, upper, own.mean, own.standardDeviation};
    }
    if (statistics && !band.ReplaceStatistics(statistics->minimum, statistics->maximum,
                                              statistics->mean, statistics->standardDeviation))
        return GIS_FAILED;
    switch (curved ? StretchEnhanceTable : plan.type) {
    case StretchEnhanceTable:
        return DoneIf(plan.type == StretchStdDev ? SetCurve(band, found.gamma, 1, 254)
                                                 : SetCurve(band, found.gamma, 0, 255));
    case StretchHistEqualize:
        return EqualizeBand(band, found);
    case StretchAutoLevels:
        if (const GISError error = EqualizeBand(band, found); error != GIS_SUCCESS)
            return error;
        ForgetAutoLevels(band, m_threshold.value_or(USUAL_THRESHOLD));
        return GIS_SUCCESS;
    case StretchZoomLinear:
    case StretchZoomLinear002:
        SetZoom(band, plan.type, m_low, m_high);
        return GIS_SUCCESS;
    case StretchCustomHistEqualize:
        return EqualizeBetween(band, zelto::BoundsOfHistogram(found, m_low, m_high), found,
                               progress);
    default:
        return GIS_SUCCESS;
    }
}

GISError CStretchPreparation::Apply(CDataProgress* progress) {
    return zelto::Operation(GIS_FAILED, [&] {
        if (!IsUsable() || !CheckSettings())
            return GIS_FAILED;
        Plan plan = MakePlan();
        const bool isMeasured = !GoesByRegion(plan) || Measure(plan, progress);
        const GISError error = isMeasured ? Commit(plan, progress) : GIS_FAILED;
        if (error != GIS_SUCCESS) {
            zelto::NameFileOfLastError(m_source->GetFilePath());
            return error;
        }
        m_applied = plan.name;
        m_sampled = plan.isSampled;
        m_bands.clear();
        for (const BandPlan& band : plan.bands)
            m_bands.push_back({band.index, RangeOf(*m_source, *band.band), band.count});
        return GIS_SUCCESS;
    });
}
