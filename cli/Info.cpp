#include "cli/Commands.h"
#include "cli/ManyFiles.h"
#include "cli/PyramidHint.h"
#include "host/report/RasterReport.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace zelto::cli {

namespace {

struct InfoOptions {
    std::vector<std::string> files;
    bool json = false;
    host::ValueFacts values;
    bool reference = false;
    int jobs = 0;
};

/// Every file that can be described is, in the order given.
std::vector<host::RasterFacts> DescribeAll(const InfoOptions& options,
                                           std::vector<std::string>& failures) {
    std::vector<std::optional<host::RasterFacts>> found(options.files.size());
    failures =
        ForEachFile(options.files, options.jobs, [&](std::size_t file, CDataProgress& progress) {
            found[file] = host::DescribeRaster(options.files[file], options.values, progress);
        });
    std::vector<host::RasterFacts> described;
    for (auto& facts : found)
        if (facts)
            described.push_back(std::move(*facts));
    return described;
}

void PrintAll(const std::vector<host::RasterFacts>& described, const InfoOptions& options) {
    if (!options.json) {
        for (std::size_t i = 0; i < described.size(); ++i) {
            std::cout << (i > 0 ? "\n" : "");
            host::PrintReport(described[i], options.reference);
        }
        return;
    }
    if (options.files.size() == 1) {
        if (!described.empty())
            host::PrintJson(host::ToJson(described.front()));
        return;
    }
    host::Json all = host::Json::array();
    for (const host::RasterFacts& facts : described)
        all.push_back(host::ToJson(facts));
    host::PrintJson(all);
}

void RunInfo(const InfoOptions& options) {
    std::vector<std::string> failures;
    const std::vector<host::RasterFacts> described = DescribeAll(options, failures);
    PrintAll(described, options);
    for (const host::RasterFacts& facts : described)
        if (options.values.sampled && !options.values.exact)
            HintAtPyramid(facts);
    TellFailures(failures);
}

} // namespace

void AddInfo(CLI::App& program) {
    auto* info = program.add_subcommand("info", "what raster files hold");
    auto options = std::make_shared<InfoOptions>();
    info->add_option("FILE", options->files, "raster files, or names of sub-data-sets")->required();
    info->add_flag("--json", options->json,
                   "print JSON: one object, or an array for several files");
    info->add_flag("--stats", options->values.exact, "statistics of every pixel");
    info->add_flag(
        "--sample", options->values.sampled,
        "what a display takes from its sample: its range and, without --stats, statistics");
    info->add_flag("--srs", options->reference, "the reference system as WKT");
    AddJobsOption(*info, options->jobs);
    info->footer(
        "No pixel is read unless --stats or --sample is given. Minimum, maximum, mean and\n"
        "(population) standard deviation leave out no-data values. With --stats every pixel is\n"
        "read; with --sample at most 2048 along the longer side, as a display does.\n"
        "The sample tells what is shown: display minimum and maximum bound the min-max stretches;\n"
        "the display range is what the standard-deviation stretch shows, two deviations on either\n"
        "side of the mean within minimum and maximum.\n"
        "Sizes and geotransforms are those of the file, also where a display would turn a\n"
        "rotated image north-up.");
    info->callback([options] { RunInfo(*options); });
}

} // namespace zelto::cli
