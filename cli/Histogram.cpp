#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/HistogramPlot.h"
#include "cli/options/Effect.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Failure.h"
#include "host/base/Progress.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/files/Region.h"
#include "host/picture/Plot.h"
#include "host/report/BandHistogram.h"
#include "host/report/Json.h"
#include "host/report/Table.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <numeric>
#include <utility>

namespace zelto::cli {

namespace {

constexpr int TABLE_BUCKETS = 32;
constexpr int FINE_BUCKETS = 256;
constexpr int MOST_BUCKETS = 65536;

struct HistogramOptions {
    std::string path;
    host::RegionOptions region;
    std::string bands;
    std::string range;
    std::string png;
    int buckets = 0; ///< 0: as many as suit the output
    bool logarithmic = false;
    bool overwrite = false;
    bool json = false;
};

std::optional<std::pair<double, double>> ParseRange(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    const std::vector<double> bounds = host::ParseNumbers("--range", text, 2);
    if (!(bounds[0] < bounds[1]))
        throw host::UsageError("--range: the first value must be less than the second");
    return std::pair(bounds[0], bounds[1]);
}

std::vector<CountedBand> Count(CRasterSource& source, const HistogramOptions& options,
                               int buckets) {
    std::vector<int> bands(static_cast<std::size_t>(source.GetBandCount()));
    std::iota(bands.begin(), bands.end(), 0);
    if (!options.bands.empty())
        bands = host::ParseBands("--band", options.bands, source.GetBandCount());
    const auto range = ParseRange(options.range);
    const auto area = host::MakeRegion(options.region, source);
    host::TerminalProgress progress;
    CRegionStatistics region(&source);
    region.SetBands(bands);
    region.SetAOI(area.get());
    host::ForgetReasons();
    if (region.Compute(&progress) != GIS_SUCCESS)
        throw host::Failure(options.path, host::ReasonOfEnding("cannot be read"));
    std::vector<host::BandHistogram> histograms =
        host::CountValues(region, source, buckets, range, options.path, progress);
    if (std::any_of(histograms.begin(), histograms.end(),
                    [](const host::BandHistogram& histogram) { return histogram.counts.empty(); }))
        throw host::Failure(options.path, "no values in the region");
    std::vector<CountedBand> counted;
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const CRasterBand& band = *source.GetRasterBand(bands[i]);
        counted.push_back({bands[i] + 1, std::move(histograms[i]), band.GetStdDevLowerBound(),
                           band.GetStdDevUpperBound()});
    }
    return counted;
}

void PrintHistogramsAsJson(const HistogramOptions& options, const std::vector<CountedBand>& bands) {
    host::Json json = {{"path", options.path}, {"bands", host::Json::array()}};
    for (const CountedBand& band : bands)
        json["bands"].push_back(
            {{"band", band.number},
             {"low", host::JsonNumber(band.histogram.low)},
             {"high", host::JsonNumber(band.histogram.High())},
             {"bucketWidth", host::JsonNumber(band.histogram.width)},
             {"counted", band.histogram.Total()},
             {"displayRange", {host::JsonNumber(band.shownFrom), host::JsonNumber(band.shownTo)}},
             {"counts", band.histogram.counts}});
    host::PrintJson(json);
}

/// Marks as long as the count compared with the greatest one.
std::string Bar(int count, int greatest) {
    constexpr double LONGEST = 40.0;
    if (count <= 0)
        return "";
    return std::string(
        static_cast<std::size_t>(std::max(1.0, std::round(LONGEST * count / greatest))), '#');
}

void PrintAsTable(const std::vector<CountedBand>& bands) {
    for (const CountedBand& band : bands) {
        const host::BandHistogram& histogram = band.histogram;
        std::cout << (&band == &bands.front() ? "" : "\n") << "band " << band.number << ": "
                  << histogram.Total() << " values, shown from " << host::TickLabel(band.shownFrom)
                  << " to " << host::TickLabel(band.shownTo) << '\n';
        host::Table table({"from", "to", "count", ""});
        const int greatest = *std::max_element(histogram.counts.begin(), histogram.counts.end());
        for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
            const double from = histogram.low + histogram.width * static_cast<double>(i);
            table.AddRow({host::TickLabel(from), host::TickLabel(from + histogram.width),
                          std::to_string(histogram.counts[i]), Bar(histogram.counts[i], greatest)});
        }
        table.Print(2);
    }
}

void CheckPlotName(const std::string& path) {
    std::string extension = host::Narrow(CommonFun::GetExtensionName(host::Wide(path)));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    if (extension != "png")
        throw host::UsageError("--png: '" + path + "' does not end in .png");
}

void RunHistograms(const HistogramOptions& options) {
    if (options.buckets < 0 || options.buckets > MOST_BUCKETS)
        throw host::UsageError("--buckets: 1 to " + std::to_string(MOST_BUCKETS));
    if (!options.png.empty()) {
        CheckPlotName(options.png);
        host::RequireFreePath(options.png, options.overwrite, {options.path, options.region.aoi});
    }
    CRasterSource source;
    source.SetForDisplay(true); // the display range is what a display would show
    host::OpenOrFail(source, options.path, GIS_READONLY, !options.region.IsWholeImage());
    const bool fine = options.json || !options.png.empty();
    const int buckets =
        options.buckets > 0 ? options.buckets : (fine ? FINE_BUCKETS : TABLE_BUCKETS);
    const std::vector<CountedBand> bands = Count(source, options, buckets);
    if (!options.png.empty())
        DrawHistograms({options.path, options.png, options.logarithmic}, bands);
    if (options.json)
        PrintHistogramsAsJson(options, bands);
    else
        PrintAsTable(bands);
}

} // namespace

void AddHistogram(CLI::App& program) {
    auto* histogram = program.add_subcommand("histogram", "how often the values of bands occur");
    auto options = std::make_shared<HistogramOptions>();
    histogram->add_option("FILE", options->path, "the raster")->required();
    AddRegionOptions(*histogram, options->region);
    histogram->add_option("--band,--bands", options->bands, "bands to count, as 4 or 3,2,1 (all)");
    histogram->add_option("--buckets", options->buckets,
                          "buckets at most (32 for the table, 256 for JSON and plots)");
    histogram->add_option("--range", options->range,
                          "low,high: count values between these only (all that occur)");
    histogram->add_option("--png", options->png, "draw a plot into this file");
    AddOverwriteOption(*histogram, options->overwrite);
    histogram->add_flag("--log", options->logarithmic, "logarithmic counts in the plot");
    histogram->add_flag("--json", options->json, "print JSON");
    histogram->footer(
        "Every pixel of the image, or of the region (those whose centre lies in it), is read;\n"
        "no-data values are left out. Buckets of whole-numbered types hold the same number of\n"
        "values each, the last one perhaps fewer that occur.\n"
        "The display range is what the standard-deviation stretch shows: two deviations on\n"
        "either side of the mean, within minimum and maximum. The plot of one band marks it;\n"
        "that of several bands draws each as a line.\n"
        "\n"
        "  zelto histogram scene.tif --band 4 --png histogram.png\n"
        "  zelto histogram dem.tif --range 0,3000 --buckets 30");
    histogram->callback([options, histogram] {
        RequireEffect(*histogram, "--log", !options->png.empty(), "--png");
        RequireEffect(*histogram, "--overwrite", !options->png.empty(), "--png");
        RunHistograms(*options);
    });
}

} // namespace zelto::cli
