#pragma once

#include "host/report/Json.h"
#include "host/report/RasterFacts.h"
#include "host/report/Table.h"

namespace zelto::host {

/// The facts as an object, for programs.
Json ToJson(const RasterFacts& facts);

// The facts in the words of the report for people, one table for each part of it.

/// Without a heading: name and text of each fact, those that the file has.
TableContent SummaryTable(const RasterFacts& facts);
TableContent BandTable(const RasterFacts& facts);
TableContent ControlPointTable(const RasterFacts& facts);
TableContent SubdatasetTable(const RasterFacts& facts);

/// Prints the facts for people on standard output.
/// @param reference with the reference system's WKT
void PrintReport(const RasterFacts& facts, bool reference);

} // namespace zelto::host
