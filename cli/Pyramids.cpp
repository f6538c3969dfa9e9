#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/ManyFiles.h"
#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/PyramidBuild.h"
#include "host/report/Json.h"
#include "host/report/Table.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace zelto::cli {

namespace {

struct PyramidsOptions {
    std::vector<std::string> paths;
    std::string resampling = "NEAREST";
    std::string bands;
    bool json = false;
    int jobs = 0;
};

/// The pyramid that a file has, as the first band tells.
struct Pyramid {
    std::string path;
    bool valid = false;
    std::vector<std::string> levels; ///< "150x120"
};

Pyramid Describe(const std::string& path) {
    CRasterSource source;
    host::OpenOrFail(source, path);
    Pyramid pyramid = {path, source.IsOverviewsValid(), {}};
    const CRasterBand& band = *source.GetRasterBand(0);
    for (int i = 0; i < band.GetOverviewCount(); ++i) {
        const CRasterBand& level = *band.GetOverview(i);
        pyramid.levels.push_back(std::to_string(level.GetWidth()) + "x" +
                                 std::to_string(level.GetHeight()));
    }
    return pyramid;
}

void PrintPyramids(const std::vector<Pyramid>& pyramids, bool asJson) {
    if (asJson) {
        host::Json json = host::Json::array();
        for (const Pyramid& pyramid : pyramids)
            json.push_back(
                {{"path", pyramid.path}, {"valid", pyramid.valid}, {"levels", pyramid.levels}});
        host::PrintJson(json);
        return;
    }
    host::Table table({"file", "pyramid", "levels"});
    for (const Pyramid& pyramid : pyramids) {
        std::string levels;
        for (const std::string& level : pyramid.levels)
            levels += (levels.empty() ? "" : " ") + level;
        table.AddRow({pyramid.path, pyramid.valid ? "as needed" : "missing", levels});
    }
    table.Print();
}

void BuildOne(const std::string& path, const PyramidsOptions& options, CDataProgress& progress) {
    std::vector<int> bands;
    if (!options.bands.empty())
        bands = host::ParseBands("--bands", options.bands, std::numeric_limits<int>::max());
    for (int& band : bands)
        ++band; // the engine numbers them from 1 here
    host::BuildPyramid(path, options.resampling, bands, progress);
}

/// Throws UsageError for a file that is there twice: both would be changed at once.
void RequireDifferent(const std::vector<std::string>& paths) {
    for (std::size_t i = 0; i < paths.size(); ++i)
        for (std::size_t k = 0; k < i; ++k) {
            std::error_code ignored;
            if (paths[i] == paths[k] || std::filesystem::equivalent(paths[i], paths[k], ignored))
                throw host::UsageError(paths[i] + " is the same file as " + paths[k]);
        }
}

/// Those that could be described, in order.
std::vector<Pyramid> Known(std::vector<std::optional<Pyramid>> pyramids) {
    std::vector<Pyramid> known;
    for (auto& pyramid : pyramids)
        if (pyramid)
            known.push_back(std::move(*pyramid));
    return known;
}

void Build(const PyramidsOptions& options) {
    RequireDifferent(options.paths);
    std::vector<std::optional<Pyramid>> pyramids(options.paths.size());
    const auto failures =
        ForEachFile(options.paths, options.jobs, [&](std::size_t file, CDataProgress& progress) {
            BuildOne(options.paths[file], options, progress);
            pyramids[file] = Describe(options.paths[file]);
        });
    if (failures.size() < options.paths.size())
        PrintPyramids(Known(std::move(pyramids)), options.json);
    TellFailures(failures);
}

void CheckPyramids(const PyramidsOptions& options) {
    std::vector<std::optional<Pyramid>> found(options.paths.size());
    auto failures = ForEachFile(options.paths, options.jobs,
                                [&](std::size_t file, CDataProgress& /*progress*/) {
                                    found[file] = Describe(options.paths[file]);
                                });
    const std::vector<Pyramid> pyramids = Known(std::move(found));
    if (failures.size() < options.paths.size())
        PrintPyramids(pyramids, options.json);
    for (const Pyramid& pyramid : pyramids)
        if (!pyramid.valid)
            failures.push_back(pyramid.path + ": it is large and has no pyramid");
    TellFailures(failures);
}

} // namespace

void AddPyramids(CLI::App& program) {
    auto* pyramids = program.add_subcommand("pyramids", "build and check overview pyramids");
    pyramids->require_subcommand(1);
    auto options = std::make_shared<PyramidsOptions>();

    auto* build = pyramids->add_subcommand("build", "build the pyramid of each file anew");
    build->add_option("FILE", options->paths)->required();
    build->add_option("--resampling", options->resampling, "how pixels of a level come about")
        ->check(CLI::IsMember({"NEAREST", "AVERAGE", "BILINEAR", "CUBIC", "CUBICSPLINE", "LANCZOS",
                               "MODE", "GAUSS", "RMS", "AVERAGE_MAGPHASE", "AVERAGE_BIT2GRAYSCALE"},
                              CLI::ignore_case))
        ->capture_default_str();
    build->add_option("--bands", options->bands, "bands to build for (all)");
    build->add_flag("--json", options->json, "print JSON");
    AddJobsOption(*build, options->jobs);
    build->callback([options] { Build(*options); });

    auto* check = pyramids->add_subcommand("check", "whether each file has the pyramid it needs");
    check->add_option("FILE", options->paths)->required();
    check->add_flag("--json", options->json, "print JSON");
    AddJobsOption(*check, options->jobs);
    check->callback([options] { CheckPyramids(*options); });
}

} // namespace zelto::cli
