#include "cli/AoiFile.h"
#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/Message.h"
#include "cli/support/Open.h"
#include "cli/support/Progress.h"
#include "cli/support/Region.h"
#include "cli/support/StatisticsReport.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace zelto::cli {

namespace {

struct Options {
    std::string file;
    RegionOptions region;
    std::string bands;
    std::string percentiles;
    bool approx = false;
    bool covariance = false;
    bool each = false;
    bool json = false;
    bool csv = false;
};

/// The two percentiles asked for.
struct PercentileRange {
    double low = 0.0;
    double high = 0.0;
};

PercentileRange ParsePercentiles(const std::string& text) {
    const std::vector<double> numbers = ParseNumbers("--percentiles", text, 2);
    if (!(0 <= numbers[0] && numbers[0] <= numbers[1] && numbers[1] <= 100))
        throw UsageError("--percentiles: expected 0 ≤ low ≤ high ≤ 100");
    return {numbers[0], numbers[1]};
}

void Require(GISError error, const Options& options) {
    if (error != GIS_SUCCESS)
        throw Failure(options.file, Interrupted() ? "interrupted" : LastReason("cannot be read"));
}

RegionReport Measure(CRegionStatistics& statistics, const Options& options,
                     CDataProgress& progress) {
    RegionReport report;
    Require(statistics.Compute(&progress), options);
    if (!options.percentiles.empty()) {
        const PercentileRange range = ParsePercentiles(options.percentiles);
        Require(statistics.ComputePercentiles(range.low, range.high, &progress), options);
        report.hasPercentiles = true;
    }
    if (options.covariance) {
        Require(statistics.ComputeCovariance(&progress), options);
        report.covariance = statistics.GetCovariance();
        report.covarianceCount = statistics.GetCovarianceCount();
    }
    report.bands = statistics.GetBands();
    report.sampled = statistics.IsSampled();
    return report;
}

std::vector<RegionReport> MeasureAll(CRasterSource& raster, CAOISource* region,
                                     const Options& options) {
    TerminalProgress progress;
    CRegionStatistics statistics(&raster);
    if (!options.bands.empty())
        statistics.SetBands(ParseBands("--bands", options.bands, raster.GetBandCount()));
    statistics.SetApprox(options.approx);
    if (!options.each) {
        statistics.SetAOI(region);
        return {Measure(statistics, options, progress)};
    }
    std::vector<RegionReport> reports;
    for (int i = 0; i < region->GetDrawShapeCount(); ++i) {
        CDrawShape* const shape = region->GetDrawShape(i);
        statistics.SetShape(shape);
        reports.push_back(Measure(statistics, options, progress));
        reports.back().shape = std::to_string(i + 1) + " " + KindName(*shape);
    }
    return reports;
}

void Print(const std::vector<RegionReport>& reports, const Options& options) {
    if (options.csv) {
        PrintCsv(reports);
    } else if (!options.json) {
        PrintTables(reports);
    } else if (!options.each) {
        PrintJson(ToJson(reports.front()));
    } else {
        Json shapes = Json::array();
        for (const RegionReport& report : reports)
            shapes.push_back(ToJson(report));
        PrintJson({{"shapes", shapes}});
    }
}

/// What a reader of the numbers must know, on standard error.
void PrintRemarks(const std::vector<RegionReport>& reports, const Options& options) {
    bool sampled = false;
    for (const RegionReport& report : reports) {
        sampled = sampled || report.sampled;
        if (report.Count() == 0)
            Tell(options.file + ": no values in " +
                 (report.shape.empty() ? "the region" : "shape " + report.shape));
    }
    if (sampled)
        Tell(options.file + ": a sample was taken; the counts are those of the sample");
}

void Run(const Options& options) {
    if (options.each && options.region.aoi.empty())
        throw UsageError("--each: needs --aoi");
    if (!options.percentiles.empty())
        ParsePercentiles(options.percentiles);
    CRasterSource raster;
    OpenForRegion(raster, options.file, options.region);
    const auto region = MakeRegion(options.region, raster);
    const auto reports = MeasureAll(raster, region.get(), options);
    Print(reports, options);
    std::cout.flush();
    PrintRemarks(reports, options);
}

constexpr const char* FOOTER =
    "A pixel belongs to a region when its centre lies in one of its shapes, and counts once\n"
    "however many hold it; what lies off the image is left out. No-data values (within 1e-8),\n"
    "NaN and infinities are left out band by band, zeros count. The standard deviation and the\n"
    "covariance are those of the population; covariances take the pixels that have a value in\n"
    "every band. Shapes in another reference system are transformed. Of polygons with holes\n"
    "every ring is an area of its own, so that the holes count.\n"
    "Percentiles are interpolated between the sorted values.\n"
    "The operations of the library itself differ; the user guide says how.";

} // namespace

void AddStats(CLI::App& program) {
    auto* stats = program.add_subcommand("stats", "count, range, mean and deviation of a region");
    auto options = std::make_shared<Options>();
    stats->add_option("FILE", options->file, "raster file")->required();
    AddRegionOptions(*stats, options->region);
    stats->add_option("--bands", options->bands, "bands, as 4,3,2; all when not given");
    stats->add_flag("--approx", options->approx,
                    "sample regions of more than 16,777,216 values instead of reading them whole");
    stats->add_flag("--covariance", options->covariance, "covariance and correlation matrices");
    stats->add_option("--percentiles", options->percentiles,
                      "values below which so many percent lie, as 2,98");
    stats->add_flag("--each", options->each, "every shape of the area by itself");
    auto* json = stats->add_flag("--json", options->json, "print JSON");
    stats->add_flag("--csv", options->csv, "print comma-separated values")->excludes(json);
    stats->footer(FOOTER);
    stats->callback([options] { Run(*options); });
}

} // namespace zelto::cli
