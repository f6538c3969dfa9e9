#pragma once

#include "zelto/algorithm/ZonalStatistics.h"

#include <string>
#include <vector>

namespace zelto::cli {

class Zones;

/// What stands in the rows of zones.
struct ZonalReport {
    const Zones& zones;
    const CZonalStatistics& statistics;
    std::vector<double> percentages; ///< of the quantiles
    bool hasCoverage = false;        ///< whether the weights differ from the counts
};

/// A table for people, numbers with ten digits.
void PrintZoneTable(const ZonalReport& report);
/// One line per zone and band; texts with commas, quotes or line ends in quotes.
void PrintZoneCsv(const ZonalReport& report);
/// {weights, zones: [{id, fields, bands: […]}]}
void PrintZoneJson(const ZonalReport& report);

/// Writes a copy of the zones with the results in new fields. Throws Failure and, for a path
/// that no format can have, UsageError.
void WriteZones(const ZonalReport& report, const std::string& path);

} // namespace zelto::cli
