#include "cli/Commands.h"
#include "cli/ManyFiles.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/base/Text.h"
#include "host/files/AoiFile.h"
#include "host/files/Open.h"
#include "host/files/Region.h"
#include "host/report/StatisticsReport.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <optional>

namespace zelto::cli {

namespace {

struct StatsOptions {
    std::vector<std::string> files;
    host::RegionOptions region;
    std::string bands;
    std::string percentiles;
    bool approx = false;
    bool covariance = false;
    bool each = false;
    bool json = false;
    bool csv = false;
    int jobs = 0;
};

/// The two percentiles asked for.
struct PercentileRange {
    double low = 0.0;
    double high = 0.0;
};

PercentileRange ParsePercentiles(const std::string& text) {
    const std::vector<double> numbers = host::ParseNumbers("--percentiles", text, 2);
    if (!(0 <= numbers[0] && numbers[0] <= numbers[1] && numbers[1] <= 100))
        throw host::UsageError("--percentiles: expected 0 ≤ low ≤ high ≤ 100");
    return {numbers[0], numbers[1]};
}

host::RegionReport MeasureRegion(CRegionStatistics& statistics, const std::string& file,
                                 const StatsOptions& options, CDataProgress& progress) {
    const auto require = [&](GISError error) {
        if (error != GIS_SUCCESS)
            throw host::Failure(file, host::ReasonOfEnding("cannot be read"));
    };
    host::RegionReport report;
    if (options.files.size() > 1)
        report.path = file;
    require(options.covariance ? statistics.ComputeWithCovariance(&progress)
                               : statistics.Compute(&progress));
    if (!options.percentiles.empty()) {
        const PercentileRange range = ParsePercentiles(options.percentiles);
        require(statistics.ComputePercentiles(range.low, range.high, &progress));
        report.hasPercentiles = true;
    }
    if (options.covariance) {
        report.covariance = statistics.GetCovariance();
        report.covarianceCount = statistics.GetCovarianceCount();
    }
    report.bands = statistics.GetBands();
    report.sampled = statistics.IsSampled();
    return report;
}

/// The region of a file, or each of its shapes.
std::vector<host::RegionReport> MeasureFile(const std::string& file, const StatsOptions& options,
                                            CDataProgress& progress) {
    CRasterSource raster;
    host::OpenForRegion(raster, file, options.region);
    const auto region = host::MakeRegion(options.region, raster);
    CRegionStatistics statistics(&raster);
    if (!options.bands.empty())
        statistics.SetBands(host::ParseBands("--bands", options.bands, raster.GetBandCount()));
    statistics.SetApprox(options.approx);
    if (!options.each) {
        statistics.SetAOI(region.get());
        return {MeasureRegion(statistics, file, options, progress)};
    }
    std::vector<host::RegionReport> reports;
    for (int i = 0; i < region->GetDrawShapeCount(); ++i) {
        CDrawShape* const shape = region->GetDrawShape(i);
        statistics.SetShape(shape);
        reports.push_back(MeasureRegion(statistics, file, options, progress));
        reports.back().shape = std::to_string(i + 1) + " " + host::KindName(*shape);
    }
    return reports;
}

host::Json JsonOf(const std::vector<host::RegionReport>& reports, const StatsOptions& options) {
    if (!options.each)
        return host::ToJson(reports.front());
    host::Json shapes = host::Json::array();
    host::Json json = host::Json::object();
    for (const host::RegionReport& report : reports) {
        if (!report.path.empty())
            json["path"] = report.path;
        shapes.push_back(host::ToJson(report));
        shapes.back().erase("path");
    }
    json["shapes"] = shapes;
    return json;
}

/// @param files the reports of every file that could be measured
void PrintReports(const std::vector<std::vector<host::RegionReport>>& files,
                  const StatsOptions& options) {
    if (options.json) {
        host::Json all = host::Json::array();
        for (const auto& reports : files)
            all.push_back(JsonOf(reports, options));
        host::PrintJson(options.files.size() == 1 ? all.front() : all);
        return;
    }
    std::vector<host::RegionReport> all;
    for (const auto& reports : files)
        all.insert(all.end(), reports.begin(), reports.end());
    if (options.csv)
        host::PrintCsv(all);
    else
        host::PrintTables(all);
}

/// What a reader of the numbers must know, on standard error.
void RemarkOnRegions(const std::string& file, const std::vector<host::RegionReport>& reports) {
    bool sampled = false;
    for (const host::RegionReport& report : reports) {
        sampled = sampled || report.sampled;
        if (report.Count() == 0)
            host::Remark(file + ": no values in " +
                         (report.shape.empty() ? "the region" : "shape " + report.shape));
    }
    if (sampled)
        host::Remark(file + ": a sample was taken; the counts are those of the sample");
}

void CheckStatsOptions(const StatsOptions& options) {
    if (options.each && options.region.aoi.empty())
        throw host::UsageError("--each: needs --aoi");
    if (!options.percentiles.empty())
        ParsePercentiles(options.percentiles);
    if (options.covariance && options.csv && options.files.size() > 1)
        throw host::UsageError("--covariance: as --csv it is for a single file");
}

void RunStats(const StatsOptions& options) {
    CheckStatsOptions(options);
    std::vector<std::optional<std::vector<host::RegionReport>>> reports(options.files.size());
    const auto failures =
        ForEachFile(options.files, options.jobs, [&](std::size_t file, CDataProgress& progress) {
            reports[file] = MeasureFile(options.files[file], options, progress);
        });
    std::vector<std::vector<host::RegionReport>> measured;
    for (const auto& each : reports)
        if (each)
            measured.push_back(*each);
    if (failures.size() < options.files.size())
        PrintReports(measured, options);
    std::cout.flush();
    for (std::size_t i = 0; i < reports.size(); ++i)
        if (reports[i])
            RemarkOnRegions(options.files[i], *reports[i]);
    TellFailures(failures);
}

constexpr const char* STATS_FOOTER =
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
    auto options = std::make_shared<StatsOptions>();
    stats->add_option("FILE", options->files, "raster files")->required();
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
    AddJobsOption(*stats, options->jobs);
    stats->footer(STATS_FOOTER);
    stats->callback([options] { RunStats(*options); });
}

} // namespace zelto::cli
