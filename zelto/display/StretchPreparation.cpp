#include "zelto/display/StretchPreparation.h"

#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/display/internal/StretchPlan.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Setting = CStretchPreparation::Setting;

constexpr unsigned Bit(Setting setting) {
    return 1U << static_cast<unsigned>(setting);
}

/// A stretch by its name: the engine's type, and what it can be told.
struct NamedStretch {
    const char* name;
    StretchType type;
    unsigned settings; ///< one bit for each
};

constexpr unsigned takesRegion = Bit(Setting::Region);
constexpr unsigned takesGamma = takesRegion | Bit(Setting::Gamma);
constexpr unsigned takesRanges = takesGamma | Bit(Setting::Ranges);
constexpr unsigned takesClip = takesGamma | Bit(Setting::Clip);
constexpr unsigned takesBounds = takesRegion | Bit(Setting::Bounds);

/// The engine's own in the order of their types, then those made of them.
constexpr std::array<NamedStretch, 12> stretches = {{
    {"none", StretchNone, 0},
    {"table", StretchEnhanceTable, takesRanges},
    {"linear", StretchLinear, takesRanges},
    {"stddev", StretchStdDev, takesGamma},
    {"equalize", StretchHistEqualize, takesRegion},
    {"autolevels", StretchAutoLevels, takesRegion | Bit(Setting::Threshold)},
    {"zoom002", StretchZoomLinear002, takesBounds},
    {"wallis", StretchWallis, Bit(Setting::WallisModel)},
    {"zoom", StretchZoomLinear, takesBounds},
    {"custom-equalize", StretchCustomHistEqualize, takesBounds},
    {"percent", StretchLinear, takesClip},
    {"auto", StretchLinear, takesClip},
}};

const NamedStretch* Find(const std::string& name) {
    const auto found = std::find_if(stretches.begin(), stretches.end(),
                                    [&](const NamedStretch& each) { return name == each.name; });
    return found != stretches.end() ? &*found : nullptr;
}

bool RefuseValue(const char* reason) {
    return zelto::FailWith(false, L"", reason);
}

bool IsRange(double low, double high) {
    return std::isfinite(low) && std::isfinite(high) && low < high;
}

} // namespace

StretchType zelto::TypeOfStretch(const std::string& name) {
    return Find(name)->type;
}

CStretchPreparation::CStretchPreparation(CRasterSource* source) : m_source(source) {}

std::vector<std::string> CStretchPreparation::GetStretchNames() {
    std::vector<std::string> names;
    names.reserve(stretches.size());
    for (const NamedStretch& stretch : stretches)
        names.emplace_back(stretch.name);
    return names;
}

std::string CStretchPreparation::GetStretchName(StretchType type) {
    const auto found = std::find_if(stretches.begin(), stretches.end(),
                                    [&](const NamedStretch& each) { return type == each.type; });
    return found != stretches.end() ? found->name : "linear";
}

bool CStretchPreparation::Takes(const std::string& name, Setting setting) {
    const NamedStretch* stretch = Find(name);
    return stretch != nullptr && (stretch->settings & Bit(setting)) != 0;
}

bool CStretchPreparation::SetStretch(const std::string& name) {
    if (Find(name) == nullptr)
        return zelto::FailWith(false, L"", "'" + name + "' is the name of no stretch");
    m_name = name;
    return true;
}

bool CStretchPreparation::SetClip(double low, double high) {
    if (!(low >= 0 && low < high && high <= 100))
        return RefuseValue("percentages are 0 to 100, the low one first");
    m_clip = Range{low, high};
    return true;
}

bool CStretchPreparation::SetRanges(const std::vector<Range>& ranges) {
    if (!std::all_of(ranges.begin(), ranges.end(),
                     [](const Range& range) { return IsRange(range.low, range.high); }))
        return RefuseValue("the low end of a range is less than its high one");
    m_ranges = ranges;
    return true;
}

bool CStretchPreparation::SetGamma(const std::vector<double>& gamma) {
    if (!std::all_of(gamma.begin(), gamma.end(),
                     [](double each) { return std::isfinite(each) && each > 0; }))
        return RefuseValue("gamma is a number above 0");
    m_gamma = gamma;
    return true;
}

bool CStretchPreparation::SetBounds(std::optional<double> low, std::optional<double> high) {
    if ((low && !std::isfinite(*low)) || (high && !std::isfinite(*high)) ||
        (low && high && *low >= *high))
        return RefuseValue("the low bound is less than the high one");
    m_low = low;
    m_high = high;
    return true;
}

bool CStretchPreparation::SetThreshold(double threshold) {
    if (!(threshold >= 0 && threshold < 0.5))
        return RefuseValue("the threshold is a fraction below a half");
    m_threshold = threshold;
    return true;
}

bool CStretchPreparation::SetWallisModel(int model) {
    if (model < 0 || model > 2)
        return RefuseValue("the Wallis model is 0, 1 or 2");
    m_wallisModel = model;
    return true;
}

void CStretchPreparation::SetImage() {
    m_view.reset();
    m_area = nullptr;
}

void CStretchPreparation::SetView(const CBoundingBox& box) {
    SetImage();
    m_view = box;
}

void CStretchPreparation::SetArea(CAOISource* area) {
    SetImage();
    m_area = area;
}

bool CStretchPreparation::SuitsShownBands() const {
    return m_name != "wallis" || (m_source != nullptr && m_source->GetShowBandCount() == 3);
}

/// Whether the stretch has use for everything that was set.
bool CStretchPreparation::CheckSettings() const {
    struct Given {
        bool given;
        Setting setting;
        const char* name;
    };
    const bool hasRegion = m_view || m_area != nullptr || m_exact;
    const Given settings[] = {
        {m_clip.has_value(), Setting::Clip, "percentages"},
        {!m_ranges.empty(), Setting::Ranges, "ranges"},
        {!m_gamma.empty(), Setting::Gamma, "gamma"},
        {hasRegion, Setting::Region, "region"},
        {m_low || m_high, Setting::Bounds, "bounds"},
        {m_threshold.has_value(), Setting::Threshold, "threshold"},
        {m_wallisModel.has_value(), Setting::WallisModel, "Wallis model"},
    };
    const std::wstring file = m_source->GetFilePath();
    for (const Given& each : settings)
        if (each.given && !Takes(m_name, each.setting))
            return zelto::FailWith(false, file,
                                   "the stretch '" + m_name + "' takes no " + each.name);
    if (!m_ranges.empty() && hasRegion)
        return zelto::FailWith(false, file, "ranges and a region contradict each other");
    const auto shown = static_cast<std::size_t>(m_source->GetShowBandCount());
    const auto fits = [&](std::size_t count) { return count <= 1 || count == shown; };
    if (!fits(m_ranges.size()) || !fits(m_gamma.size()))
        return zelto::FailWith(false, file,
                               "there is neither one range and gamma for all the "
                               "bands that are shown nor one for each");
    if (!SuitsShownBands())
        return zelto::FailWith(false, file, "the stretch 'wallis' takes three bands");
    return true;
}

/// Whether there are bands to show, all of them bands that the source has.
bool CStretchPreparation::IsUsable() const {
    if (!zelto::IsUsable(m_source))
        return false;
    if (m_source->GetShowBandCount() < 1)
        return zelto::Refuse(*m_source, "it shows no band");
    for (int k = 0; k < m_source->GetShowBandCount(); ++k)
        if (m_source->GetShownBand(k) == nullptr)
            return zelto::Refuse(*m_source, "it shows a band that it does not have");
    return true;
}
