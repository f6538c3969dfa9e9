#pragma once

#include "cli/support/Json.h"
#include "cli/support/RasterFacts.h"

namespace zelto::cli {

Json ToJson(const RasterFacts& facts);

struct ReportParts {
    bool statistics = false;
    bool reference = false; ///< the reference system's WKT
};

/// Prints the facts for people on standard output.
void PrintReport(const RasterFacts& facts, const ReportParts& parts);

} // namespace zelto::cli
