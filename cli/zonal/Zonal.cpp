#include "zelto/algorithm/ZonalStatistics.h"

#include "cli/Commands.h"
#include "cli/options/SharedOptions.h"
#include "cli/zonal/ZonalReport.h"
#include "cli/zonal/Zones.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/base/Printable.h"
#include "host/base/Progress.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/files/Region.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <memory>

namespace zelto::cli {

namespace {

struct ZonalOptions {
    std::string image;
    ZoneOptions zones;
    std::string bands;
    std::string weights = "center";
    std::string percentiles;
    std::string out;
    bool overwrite = false;
    bool json = false;
    bool csv = false;
};

std::vector<double> ParsePercentages(const std::string& text) {
    const std::vector<double> percentages =
        text.empty() ? std::vector<double>() : host::ParseNumbers("--percentiles", text);
    for (const double percent : percentages)
        if (!(percent >= 0 && percent <= 100))
            throw host::UsageError("--percentiles: percentages are 0 to 100");
    return percentages;
}

std::vector<double> SharesOf(std::vector<double> percentages) {
    for (double& percent : percentages)
        percent /= 100;
    return percentages;
}

void PrintZones(const ZonalReport& report, const ZonalOptions& options) {
    if (options.csv)
        PrintZoneCsv(report);
    else if (options.json)
        PrintZoneJson(report);
    else if (options.out.empty())
        PrintZoneTable(report);
    if (!options.out.empty() && !options.csv && !options.json)
        std::cout << host::Printable(options.out) << ": " << report.zones.List().size()
                  << (report.zones.List().size() == 1 ? " zone\n" : " zones\n");
    std::cout.flush();
}

/// What a reader of the numbers must know, on standard error.
void RemarkOnZones(const ZonalReport& report, const std::string& path) {
    int without = 0;
    for (int i = 0; i < report.statistics.GetZoneCount(); ++i) {
        const auto& bands = report.statistics.GetZone(i);
        without += std::all_of(bands.begin(), bands.end(),
                               [](const auto& band) { return band.count == 0; })
                       ? 1
                       : 0;
    }
    if (without > 0)
        host::Remark(path + ": " + std::to_string(without) + " of the zones " +
                     (without == 1 ? "has" : "have") + " no values");
}

void RunZonal(const ZonalOptions& options) {
    const std::vector<double> percentages = ParsePercentages(options.percentiles);
    host::RequireFreePath(options.out, options.overwrite, {options.image, options.zones.file});
    CRasterSource raster;
    host::OpenForRegion(raster, options.image, {options.zones.file, "", ""});
    const Zones zones(options.zones);
    CZonalStatistics statistics(&raster);
    if (!options.bands.empty())
        statistics.SetBands(host::ParseBands("--bands", options.bands, raster.GetBandCount()));
    const bool hasCoverage = options.weights == "coverage";
    statistics.SetWeights(hasCoverage ? CZonalStatistics::Weights::Coverage
                                      : CZonalStatistics::Weights::Center);
    statistics.SetQuantiles(SharesOf(percentages));
    zones.AddTo(statistics, raster);
    host::TerminalProgress progress;
    if (statistics.Compute(&progress) != GIS_SUCCESS)
        throw host::Failure(options.image, host::ReasonOfEnding("cannot be read"));
    const ZonalReport report = {zones, statistics, percentages, hasCoverage};
    if (!options.out.empty())
        WriteZones(report, options.out);
    PrintZones(report, options);
    RemarkOnZones(report, options.zones.file);
}

constexpr const char* ZONAL_FOOTER =
    "Every feature is a zone: its polygons together, without their holes. With --weights center a\n"
    "pixel belongs to a zone when its centre does (of centres on an edge the zone has those on "
    "its\n"
    "left and upper sides); with coverage every pixel weighs the fraction of it that the zone\n"
    "covers, found exactly. The count is that of the pixels with a value, the weight the sum of\n"
    "their weights. No-data values (within 1e-8), NaN and infinities are left out band by band.\n"
    "Features in another reference system are transformed, vertex by vertex. All zones are\n"
    "measured in one pass over the image.";

} // namespace

void AddZonal(CLI::App& program) {
    auto* zonal = program.add_subcommand("zonal", "statistics of an image under many polygons");
    auto options = std::make_shared<ZonalOptions>();
    zonal->add_option("IMAGE", options->image, "raster file")->required();
    zonal->add_option("ZONES", options->zones.file, "vector file of polygons")->required();
    zonal->add_option("--layer", options->zones.layer, "layer of ZONES; default: the first");
    zonal->add_option("--id-field", options->zones.idField,
                      "field that names a zone; default: the feature's number");
    zonal->add_option("--include-fields", options->zones.includeFields,
                      "fields of the zones to print as well, as name,area");
    zonal->add_option("--bands", options->bands, "bands, as 4,3,2; all when not given");
    zonal
        ->add_option("--weights", options->weights,
                     "what a pixel counts: center (1 when its centre is in) or coverage (the "
                     "fraction covered)")
        ->check(CLI::IsMember({"center", "coverage"}))
        ->capture_default_str();
    zonal->add_option("--percentiles", options->percentiles,
                      "values below which so many percent of the weight lie, as 10,50,90");
    zonal->add_option("--out", options->out,
                      "write a copy of the zones with the results as fields: .gpkg, .shp, "
                      ".geojson …");
    AddOverwriteOption(*zonal, options->overwrite);
    auto* json = zonal->add_flag("--json", options->json, "print JSON");
    zonal->add_flag("--csv", options->csv, "print comma-separated values")->excludes(json);
    zonal->footer(ZONAL_FOOTER);
    zonal->callback([options] { RunZonal(*options); });
}

} // namespace zelto::cli
