#include "cli/HistogramPlot.h"

#include "zelto/baselib/CommonFun.h"

#include "host/base/Text.h"
#include "host/picture/Plot.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zelto::cli {

namespace {

/// Blue, green, red as bands commonly come first, then colours that keep apart.
host::PlotColor BandColor(std::size_t index) {
    constexpr std::array<host::PlotColor, 8> COLORS = {{{0.12, 0.35, 0.78},
                                                        {0.10, 0.56, 0.22},
                                                        {0.80, 0.16, 0.14},
                                                        {0.58, 0.22, 0.62},
                                                        {0.85, 0.50, 0.05},
                                                        {0.10, 0.58, 0.62},
                                                        {0.45, 0.45, 0.45},
                                                        {0.55, 0.40, 0.15}}};
    return COLORS[index % COLORS.size()];
}

std::vector<double> Heights(const host::BandHistogram& histogram, bool logarithmic) {
    std::vector<double> heights;
    for (const int count : histogram.counts)
        heights.push_back(logarithmic ? std::log10(1.0 + count) : count);
    return heights;
}

/// The part of the axis that the bands' counts occupy.
host::Plot::Range ValueRange(const std::vector<CountedBand>& bands) {
    host::Plot::Range range = {bands.front().histogram.low, bands.front().histogram.High()};
    for (const CountedBand& band : bands) {
        range.low = std::min(range.low, band.histogram.low);
        range.high = std::max(range.high, band.histogram.High());
    }
    return range;
}

host::Plot::Range CountRange(const std::vector<CountedBand>& bands, bool logarithmic) {
    double greatest = 1.0;
    for (const CountedBand& band : bands)
        for (const double height : Heights(band.histogram, logarithmic))
            greatest = std::max(greatest, height);
    return {0.0, greatest * 1.12};
}

} // namespace

void DrawHistograms(const HistogramPlot& what, const std::vector<CountedBand>& bands) {
    constexpr int WIDTH = 960;
    constexpr int HEIGHT = 540;
    constexpr host::PlotColor SHOWN = {0.95, 0.60, 0.05};
    constexpr host::PlotColor MARK = {0.72, 0.40, 0.0};
    host::Plot plot(WIDTH, HEIGHT, ValueRange(bands), CountRange(bands, what.logarithmic));
    const bool single = bands.size() == 1;
    std::string title = host::Narrow(CommonFun::GetFileNameWithExtension(host::Wide(what.image)));
    if (single) {
        const CountedBand& band = bands.front();
        title += ", band " + std::to_string(band.number);
        plot.Shade(band.shownFrom, band.shownTo, SHOWN);
    }
    plot.Title(title);
    plot.AxisLabels("value", what.logarithmic ? "log10 (1 + pixels)" : "pixels");
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const host::BandHistogram& histogram = bands[i].histogram;
        plot.Bars(histogram.low, histogram.width, Heights(histogram, what.logarithmic),
                  BandColor(single ? 0 : i), !single);
        if (!single)
            plot.Legend("band " + std::to_string(bands[i].number), BandColor(i));
    }
    plot.Axes();
    if (single) {
        plot.Mark(bands.front().shownFrom, "shown from " + host::TickLabel(bands.front().shownFrom),
                  MARK);
        plot.Mark(bands.front().shownTo, "to " + host::TickLabel(bands.front().shownTo), MARK);
    }
    plot.Write(what.path);
}

} // namespace zelto::cli
