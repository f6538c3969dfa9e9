#include "cli/render/Stretch.h"

#include "zelto/display/StretchPreparation.h"
#include "zelto/raster/RasterSource.h"

#include "cli/options/Usage.h"
#include "host/base/Failure.h"
#include "host/base/Progress.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>

namespace zelto::cli {

namespace {

using Setting = CStretchPreparation::Setting;

/// An option with the setting of the engine that it is.
struct StretchOption {
    const char* name;
    Setting setting;
    std::function<bool(const StretchOptions&)> isGiven;
    std::function<void(StretchOptions&)> drop;
};

template <typename Value>
StretchOption Make(const char* name, Setting setting, Value StretchOptions::*member) {
    return {name, setting,
            [member](const StretchOptions& options) { return options.*member != Value(); },
            [member](StretchOptions& options) { options.*member = Value(); }};
}

const std::vector<StretchOption>& Options() {
    static const std::vector<StretchOption> options = {
        Make("--clip", Setting::Clip, &StretchOptions::clip),
        Make("--range", Setting::Ranges, &StretchOptions::ranges),
        Make("--gamma", Setting::Gamma, &StretchOptions::gamma),
        Make("--low", Setting::Bounds, &StretchOptions::low),
        Make("--high", Setting::Bounds, &StretchOptions::high),
        Make("--threshold", Setting::Threshold, &StretchOptions::threshold),
        Make("--wallis-model", Setting::WallisModel, &StretchOptions::wallisModel),
        Make("--stretch-from", Setting::Region, &StretchOptions::from),
        Make("--exact", Setting::Region, &StretchOptions::exact),
    };
    return options;
}

/// The names of the stretches, separated by commas.
/// @param setting that they take
std::string Names(std::optional<Setting> setting = std::nullopt) {
    std::string names;
    for (const std::string& name : CStretchPreparation::GetStretchNames())
        if (!setting || CStretchPreparation::Takes(name, *setting))
            names += (names.empty() ? "" : ", ") + name;
    return names;
}

std::vector<CStretchPreparation::Range> ParseRanges(const std::string& text) {
    const std::vector<double> numbers = host::ParseNumbers("--range", text);
    if (numbers.size() % 2 != 0)
        throw host::UsageError(
            "--range: give low,high, or such a pair for every band that is shown");
    std::vector<CStretchPreparation::Range> ranges;
    for (std::size_t i = 0; i < numbers.size(); i += 2)
        ranges.push_back({numbers[i], numbers[i + 1]});
    return ranges;
}

/// @param accepted what the setter answers
void Require(bool accepted, const char* option) {
    if (!accepted)
        throw host::UsageError(std::string(option) + ": " + CGISDataSource::GetLastErrorText());
}

/// Throws UsageError for values that cannot be.
void SetAll(CStretchPreparation& stretch, const StretchOptions& options) {
    if (!options.clip.empty()) {
        const std::vector<double> clip = host::ParseNumbers("--clip", options.clip, 2);
        Require(stretch.SetClip(clip[0], clip[1]), "--clip");
    }
    if (!options.ranges.empty())
        Require(stretch.SetRanges(ParseRanges(options.ranges)), "--range");
    if (!options.gamma.empty())
        Require(stretch.SetGamma(host::ParseNumbers("--gamma", options.gamma)), "--gamma");
    if (options.low || options.high)
        Require(stretch.SetBounds(options.low, options.high), "--low, --high");
    if (options.threshold)
        Require(stretch.SetThreshold(*options.threshold), "--threshold");
    if (options.wallisModel)
        Require(stretch.SetWallisModel(*options.wallisModel), "--wallis-model");
    stretch.SetExact(options.exact);
}

void SetPlace(CStretchPreparation& stretch, const StretchOptions& options,
              const StretchPlaces& places) {
    if (options.from == "view")
        stretch.SetView(places.view);
    else if (options.from == "aoi")
        stretch.SetArea(places.area);
}

void CheckValues(const StretchOptions& options, bool hasArea) {
    CStretchPreparation stretch(nullptr);
    SetAll(stretch, options);
    if (!options.from.empty() && options.from != "image" && options.from != "view" &&
        options.from != "aoi")
        throw host::UsageError("--stretch-from: '" + options.from +
                               "' is none of image, view, aoi");
    if (options.from == "aoi" && !hasArea)
        throw host::UsageError("--stretch-from aoi: needs --aoi");
    if (!options.ranges.empty() && (options.exact || !options.from.empty()))
        throw host::UsageError("--range says what is shown; --stretch-from and --exact find it");
}

} // namespace

void AddStretchOptions(CLI::App& command, StretchOptions& options) {
    command.add_option("--stretch", options.name, "one of " + Names())->capture_default_str();
    command.add_option("--clip", options.clip,
                       "low,high: percentages of the values that percent shows between (2,98)");
    command.add_option("--range", options.ranges,
                       "low,high in sample values, for all bands or one pair for each; of linear "
                       "and table");
    command.add_option("--stretch-from", options.from,
                       "what the stretch goes by: the whole image, the view or the aoi");
    command.add_flag("--exact", options.exact,
                     "let the stretch go by every value instead of a sample");
    command.add_option("--gamma", options.gamma,
                       "curve, above 1 brighter; one number or one for each band; of " +
                           Names(Setting::Gamma));
    command.add_option("--low", options.low,
                       "lower bound of zoom002 and zoom (display values) or of custom-equalize");
    command.add_option("--high", options.high, "upper bound of the same");
    command.add_option("--threshold", options.threshold,
                       "fraction that autolevels cuts at each end (0.01)");
    command
        .add_option("--wallis-model", options.wallisModel, "colour model of wallis: 0, 1 or 2 (1)")
        ->check(CLI::Range(0, 2));
}

void CheckStretch(const StretchOptions& options, bool hasArea) {
    const auto names = CStretchPreparation::GetStretchNames();
    if (std::find(names.begin(), names.end(), options.name) == names.end()) {
        const std::string alike = MostAlike(options.name, names);
        throw host::UsageError("--stretch: '" + options.name + "' is none of " + Names() +
                               (alike.empty() ? "" : "; did you mean " + alike + "?"));
    }
    for (const StretchOption& option : Options())
        if (option.isGiven(options) && !CStretchPreparation::Takes(options.name, option.setting))
            throw host::UsageError(std::string(option.name) + ": belongs to --stretch " +
                                   Names(option.setting) + ", not to " + options.name);
    CheckValues(options, hasArea);
}

void CheckStretchesOfSheet(const StretchOptions& options, bool hasArea) {
    CheckValues(options, hasArea);
}

StretchOptions StretchOfSheet(const StretchOptions& options, const std::string& name) {
    StretchOptions taken = options;
    taken.name = name;
    for (const StretchOption& option : Options())
        if (!CStretchPreparation::Takes(name, option.setting))
            option.drop(taken);
    return taken;
}

std::vector<std::string> StretchesOfSheet() {
    std::vector<std::string> names = CStretchPreparation::GetStretchNames();
    names.erase(std::remove(names.begin(), names.end(), "auto"), names.end());
    return names;
}

bool SuitsShownBands(CRasterSource& source, const std::string& name) {
    CStretchPreparation stretch(&source);
    return stretch.SetStretch(name) && stretch.SuitsShownBands();
}

bool ShowsBytesAsTheyAre(const StretchOptions& options) {
    return options.name == "none" || (options.name == "auto" && options.gamma.empty());
}

void ApplyStretch(CRasterSource& source, const StretchOptions& options, const StretchPlaces& places,
                  const std::string& path) {
    CStretchPreparation stretch(&source);
    stretch.SetStretch(options.name);
    SetAll(stretch, options);
    SetPlace(stretch, options, places);
    if (!stretch.SuitsShownBands())
        throw host::UsageError("--stretch wallis: it takes three bands, and one is shown");
    host::TerminalProgress progress;
    const GISError result = stretch.Apply(&progress);
    if (result == GIS_NOT_SUPPORTED)
        throw UnsuitedStretch(path, host::LastReason("it does not suit the values"));
    // Statistics that cannot be taken leave a reason, and another picture.
    if (result != GIS_SUCCESS || !CGISDataSource::GetLastErrorText().empty())
        throw host::Failure(path, host::LastReason("its pixels cannot be read"));
}

} // namespace zelto::cli
