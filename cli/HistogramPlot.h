#pragma once

#include "host/report/BandHistogram.h"

#include <string>
#include <vector>

namespace zelto::cli {

/// A band's histogram with what its display shows of it.
struct CountedBand {
    int number = 1; ///< of the band, from 1
    host::BandHistogram histogram;
    double shownFrom = 0.0; ///< bounds of the standard-deviation stretch
    double shownTo = 0.0;
};

struct HistogramPlot {
    std::string image; ///< path, for the title
    std::string path;  ///< of the plot
    bool logarithmic = false;
};

/// Draws the histograms of an image's bands into a file: that of one band as bars with the display
/// range marked, those of several as lines. Throws Failure.
void DrawHistograms(const HistogramPlot& what, const std::vector<CountedBand>& bands);

} // namespace zelto::cli
