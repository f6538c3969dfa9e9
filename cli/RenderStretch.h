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

/// Sets the stretch on all bands of the source, computing what it needs: histograms, display
/// statistics, tables. Throws Failure naming `path`.
void ApplyStretch(CRasterSource& source, const StretchOptions& options, const std::string& path);

} // namespace zelto::cli
