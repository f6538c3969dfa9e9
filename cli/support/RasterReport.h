#pragma once

#include "cli/support/Json.h"
#include "cli/support/RasterFacts.h"

namespace zelto::cli {

Json ToJson(const RasterFacts& facts);

/// Prints the facts for people on standard output.
/// @param reference with the reference system's WKT
void PrintReport(const RasterFacts& facts, bool reference);

} // namespace zelto::cli
