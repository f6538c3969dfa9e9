#pragma once

#include "zelto/display/StretchType.h"

#include <optional>
#include <string>
#include <vector>

class CRasterSource;

namespace zelto::cli {

/// A stretch of the engine with what it needs.
struct StretchOptions {
    StretchType type = StretchStdDev;
    std::optional<double> low;
    std::optional<double> high;
    double threshold = 0.01; ///< of the auto levels
    int wallisModel = 1;
    double gamma = 1.5; ///< of the enhancement table
};

/// Names of the stretches on the command line, in the order of their types.
const std::vector<std::string>& StretchNames();

/// Throws UsageError for a name that is none.
StretchType ParseStretch(const std::string& name);

/// Whether a stretch can be drawn with the bands that the source shows. The Wallis models start
/// from statistics of the three colours of a picture, which one of a single band does not have.
bool SuitsShownBands(const CRasterSource& source, StretchType type);

/// Sets the stretch on all bands of the source, computing what it needs: histograms, display
/// statistics, tables. Throws Failure naming `path`, and UsageError where the stretch does not
/// suit the shown bands.
void ApplyStretch(CRasterSource& source, const StretchOptions& options, const std::string& path);

} // namespace zelto::cli
