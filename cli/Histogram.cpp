#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/support/BandHistogram.h"
#include "cli/support/Effect.h"
#include "cli/support/Failure.h"
#include "cli/support/Json.h"
#include "cli/support/Open.h"
#include "cli/support/Output.h"
#include "cli/support/Plot.h"
#include "cli/support/Progress.h"
#include "cli/support/Region.h"
#include "cli/support/Table.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
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
    RegionOptions region;
    std::string bands;
    std::string range;
    std::string png;
    int buckets = 0; ///< 0: as many as suit the output
    bool logarithmic = false;
    bool overwrite = false;
    bool json = false;
};

/// A band's histogram with what its display shows of it.
struct Counted {
    int number = 1; ///< of the band, from 1
    BandHistogram histogram;
    double shownFrom = 0.0; ///< bounds of the standard-deviation stretch
    double shownTo = 0.0;
};

std::optional<std::pair<double, double>> ParseRange(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    const std::vector<double> bounds = ParseNumbers("--range", text, 2);
    if (!(bounds[0] < bounds[1]))
        throw UsageError("--range: the first value must be less than the second");
    return std::pair(bounds[0], bounds[1]);
}

std::vector<Counted> Count(CRasterSource& source, const HistogramOptions& options, int buckets) {
    std::vector<int> bands(static_cast<std::size_t>(source.GetBandCount()));
    std::iota(bands.begin(), bands.end(), 0);
    if (!options.bands.empty())
        bands = ParseBands("--band", options.bands, source.GetBandCount());
    const auto range = ParseRange(options.range);
    const auto area = MakeRegion(options.region, source);
    TerminalProgress progress;
    CRegionStatistics region(&source);
    region.SetBands(bands);
    region.SetAOI(area.get());
    ForgetReasons();
    if (region.Compute(&progress) != GIS_SUCCESS)
        throw Failure(options.path, Interrupted() ? "interrupted" : LastReason("cannot be read"));
    std::vector<BandHistogram> histograms =
        CountValues(region, source, buckets, range, options.path, progress);
    if (std::any_of(histograms.begin(), histograms.end(),
                    [](const BandHistogram& histogram) { return histogram.counts.empty(); }))
        throw Failure(options.path, "no values in the region");
    std::vector<Counted> counted;
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const CRasterBand& band = *source.GetRasterBand(bands[i]);
        counted.push_back({bands[i] + 1, std::move(histograms[i]), band.GetStdDevLowerBound(),
                           band.GetStdDevUpperBound()});
    }
    return counted;
}

void PrintHistogramsAsJson(const HistogramOptions& options, const std::vector<Counted>& bands) {
    Json json = {{"path", options.path}, {"bands", Json::array()}};
    for (const Counted& band : bands)
        json["bands"].push_back(
            {{"band", band.number},
             {"low", JsonNumber(band.histogram.low)},
             {"high", JsonNumber(band.histogram.High())},
             {"bucketWidth", JsonNumber(band.histogram.width)},
             {"counted", band.histogram.Total()},
             {"displayRange", {JsonNumber(band.shownFrom), JsonNumber(band.shownTo)}},
             {"counts", band.histogram.counts}});
    PrintJson(json);
}

/// Marks as long as the count compared with the greatest one.
std::string Bar(int count, int greatest) {
    constexpr double LONGEST = 40.0;
    if (count <= 0)
        return "";
    return std::string(
        static_cast<std::size_t>(std::max(1.0, std::round(LONGEST * count / greatest))), '#');
}

void PrintAsTable(const std::vector<Counted>& bands) {
    for (const Counted& band : bands) {
        const BandHistogram& histogram = band.histogram;
        std::cout << (&band == &bands.front() ? "" : "\n") << "band " << band.number << ": "
                  << histogram.Total() << " values, shown from " << TickLabel(band.shownFrom)
                  << " to " << TickLabel(band.shownTo) << '\n';
        Table table({"from", "to", "count", ""});
        const int greatest = *std::max_element(histogram.counts.begin(), histogram.counts.end());
        for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
            const double from = histogram.low + histogram.width * static_cast<double>(i);
            table.AddRow({TickLabel(from), TickLabel(from + histogram.width),
                          std::to_string(histogram.counts[i]), Bar(histogram.counts[i], greatest)});
        }
        table.Print(2);
    }
}

/// Blue, green, red as bands commonly come first, then colours that keep apart.
PlotColor BandColor(std::size_t index) {
    constexpr std::array<PlotColor, 8> COLORS = {{{0.12, 0.35, 0.78},
                                                  {0.10, 0.56, 0.22},
                                                  {0.80, 0.16, 0.14},
                                                  {0.58, 0.22, 0.62},
                                                  {0.85, 0.50, 0.05},
                                                  {0.10, 0.58, 0.62},
                                                  {0.45, 0.45, 0.45},
                                                  {0.55, 0.40, 0.15}}};
    return COLORS[index % COLORS.size()];
}

std::vector<double> Heights(const BandHistogram& histogram, bool logarithmic) {
    std::vector<double> heights;
    for (const int count : histogram.counts)
        heights.push_back(logarithmic ? std::log10(1.0 + count) : count);
    return heights;
}

/// The part of the axis that the bands' counts occupy.
Plot::Range ValueRange(const std::vector<Counted>& bands) {
    Plot::Range range = {bands.front().histogram.low, bands.front().histogram.High()};
    for (const Counted& band : bands) {
        range.low = std::min(range.low, band.histogram.low);
        range.high = std::max(range.high, band.histogram.High());
    }
    return range;
}

Plot::Range CountRange(const std::vector<Counted>& bands, bool logarithmic) {
    double greatest = 1.0;
    for (const Counted& band : bands)
        for (const double height : Heights(band.histogram, logarithmic))
            greatest = std::max(greatest, height);
    return {0.0, greatest * 1.12};
}

void DrawPlot(const HistogramOptions& options, const std::vector<Counted>& bands) {
    constexpr int WIDTH = 960;
    constexpr int HEIGHT = 540;
    constexpr PlotColor SHOWN = {0.95, 0.60, 0.05};
    constexpr PlotColor MARK = {0.72, 0.40, 0.0};
    Plot plot(WIDTH, HEIGHT, ValueRange(bands), CountRange(bands, options.logarithmic));
    const bool single = bands.size() == 1;
    std::string title = Narrow(CommonFun::GetFileNameWithExtension(Wide(options.path)));
    if (single) {
        const Counted& band = bands.front();
        title += ", band " + std::to_string(band.number);
        plot.Shade(band.shownFrom, band.shownTo, SHOWN);
    }
    plot.Title(title);
    plot.AxisLabels("value", options.logarithmic ? "log10 (1 + pixels)" : "pixels");
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const BandHistogram& histogram = bands[i].histogram;
        plot.Bars(histogram.low, histogram.width, Heights(histogram, options.logarithmic),
                  BandColor(single ? 0 : i), !single);
        if (!single)
            plot.Legend("band " + std::to_string(bands[i].number), BandColor(i));
    }
    plot.Axes();
    if (single) {
        plot.Mark(bands.front().shownFrom, "shown from " + TickLabel(bands.front().shownFrom),
                  MARK);
        plot.Mark(bands.front().shownTo, "to " + TickLabel(bands.front().shownTo), MARK);
    }
    plot.Write(options.png);
}

void CheckPlotName(const std::string& path) {
    std::string extension = Narrow(CommonFun::GetExtensionName(Wide(path)));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    if (extension != "png")
        throw UsageError("--png: '" + path + "' does not end in .png");
}

void RunHistograms(const HistogramOptions& options) {
    if (options.buckets < 0 || options.buckets > MOST_BUCKETS)
        throw UsageError("--buckets: 1 to " + std::to_string(MOST_BUCKETS));
    if (!options.png.empty()) {
        CheckPlotName(options.png);
        RequireFreePath(options.png, options.overwrite, {options.path, options.region.aoi});
    }
    CRasterSource source;
    source.SetForDisplay(true); // the display range is what a display would show
    OpenOrFail(source, options.path, GIS_READONLY, !options.region.IsWholeImage());
    const bool fine = options.json || !options.png.empty();
    const int buckets =
        options.buckets > 0 ? options.buckets : (fine ? FINE_BUCKETS : TABLE_BUCKETS);
    const std::vector<Counted> bands = Count(source, options, buckets);
    if (!options.png.empty())
        DrawPlot(options, bands);
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
