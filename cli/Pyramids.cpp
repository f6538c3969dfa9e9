#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Json.h"
#include "cli/support/Open.h"
#include "cli/support/Progress.h"
#include "cli/support/Table.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <optional>

namespace zelto::cli {

namespace {

struct Options {
    std::vector<std::string> paths;
    std::string resampling = "NEAREST";
    std::string bands;
    bool json = false;
};

/// The pyramid that a file has, as the first band tells.
struct Pyramid {
    std::string path;
    bool valid = false;
    std::vector<std::string> levels; ///< "150x120"
};

Pyramid Describe(const std::string& path) {
    CRasterSource source;
    OpenOrFail(source, path);
    Pyramid pyramid = {path, source.IsOverviewsValid(), {}};
    const CRasterBand& band = *source.GetRasterBand(0);
    for (int i = 0; i < band.GetOverviewCount(); ++i) {
        const CRasterBand& level = *band.GetOverview(i);
        pyramid.levels.push_back(std::to_string(level.GetWidth()) + "x" +
                                 std::to_string(level.GetHeight()));
    }
    return pyramid;
}

void Print(const std::vector<Pyramid>& pyramids, bool asJson) {
    if (asJson) {
        Json json = Json::array();
        for (const Pyramid& pyramid : pyramids)
            json.push_back(
                {{"path", pyramid.path}, {"valid", pyramid.valid}, {"levels", pyramid.levels}});
        PrintJson(json);
        return;
    }
    Table table({"file", "pyramid", "levels"});
    for (const Pyramid& pyramid : pyramids) {
        std::string levels;
        for (const std::string& level : pyramid.levels)
            levels += (levels.empty() ? "" : " ") + level;
        table.AddRow({pyramid.path, pyramid.valid ? "as needed" : "missing", levels});
    }
    table.Print();
}

void BuildOne(const std::string& path, const Options& options) {
    std::optional<ChangeInPlace> change; // until the file is closed
    CRasterSource source;
    OpenOrFail(source, path, GIS_UPDATE);
    change.emplace();
    std::vector<int> bands;
    if (!options.bands.empty())
        bands = ParseBands("--bands", options.bands, source.GetBandCount());
    for (int& band : bands)
        ++band; // the engine numbers them from 1 here
    TerminalProgress progress;
    progress.BeginProgress(Wide(path).c_str(), 100);
    const auto build = [&] {
        ForgetReasons();
        return source.BuildOverviews(options.resampling.c_str(), static_cast<int>(bands.size()),
                                     bands.data(), &progress) == GIS_SUCCESS;
    };
    if (build())
        return;
    // GDAL cannot read some GeoTIFFs any more once it has removed the levels inside; opened
    // again, it can.
    const bool again = !Interrupted() && source.GetRasterBand(0) != nullptr &&
                       source.Reopen(GIS_UPDATE, false) == GIS_SUCCESS &&
                       source.GetRasterBand(0)->GetOverviewCount() == 0;
    if (!again || !build())
        throw Failure(path,
                      Interrupted() ? "interrupted" : LastReason("its pyramid cannot be built"));
}

void Build(const Options& options) {
    std::vector<Pyramid> pyramids;
    for (const std::string& path : options.paths) {
        BuildOne(path, options);
        pyramids.push_back(Describe(path));
    }
    Print(pyramids, options.json);
}

void Check(const Options& options) {
    std::vector<Pyramid> pyramids;
    std::string missing;
    for (const std::string& path : options.paths) {
        pyramids.push_back(Describe(path));
        if (!pyramids.back().valid && missing.empty())
            missing = path;
    }
    Print(pyramids, options.json);
    std::cout.flush();
    if (!missing.empty())
        throw Failure(missing, "it is large and has no pyramid");
}

} // namespace

void AddPyramids(CLI::App& program) {
    auto* pyramids = program.add_subcommand("pyramids", "build and check overview pyramids");
    pyramids->require_subcommand(1);
    auto options = std::make_shared<Options>();

    auto* build = pyramids->add_subcommand("build", "build the pyramid of each file anew");
    build->add_option("FILE", options->paths)->required();
    build->add_option("--resampling", options->resampling,
                      "NEAREST (default), AVERAGE, GAUSS, CUBIC, MODE …");
    build->add_option("--bands", options->bands, "bands to build for (all)");
    build->add_flag("--json", options->json, "print JSON");
    build->callback([options] { Build(*options); });

    auto* check = pyramids->add_subcommand("check", "whether each file has the pyramid it needs");
    check->add_option("FILE", options->paths)->required();
    check->add_flag("--json", options->json, "print JSON");
    check->callback([options] { Check(*options); });
}

} // namespace zelto::cli
