#pragma once

#include "zelto/algorithm/RegionStatistics.h"

#include "host/report/Json.h"

#include <string>
#include <vector>

namespace zelto::host {

/// The statistics of one region, ready to be printed.
struct RegionReport {
    std::string path;  ///< of the file where files are told apart, else empty
    std::string shape; ///< "1 polygon" where shapes are told apart, else empty
    bool sampled = false;
    bool hasPercentiles = false;
    std::vector<CRegionStatistics::Band> bands;
    std::vector<double> covariance; ///< bands × bands, or empty
    __int64 covarianceCount = 0;    ///< pixels with a value in every band

    /// Of the band with the most values.
    __int64 Count() const;
    /// Correlation of two bands by their position in `bands`; NaN where one does not vary.
    double Correlation(std::size_t a, std::size_t b) const;
};

/// Prints tables for people on standard output, numbers with ten digits.
void PrintTables(const std::vector<RegionReport>& reports);
/// Prints one line per band, with the covariances of a band in columns of their own.
void PrintCsv(const std::vector<RegionReport>& reports);
/// {count, bands […], covariance […], correlation […]}
Json ToJson(const RegionReport& report);

} // namespace zelto::host
