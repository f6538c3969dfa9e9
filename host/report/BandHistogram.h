#pragma once

#include "zelto/datasource/DataProgress.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

class CRasterSource;
class CRegionStatistics;

namespace zelto::host {

/// How often values occur in a band: counts[i] of the values from low + i × width up to, not
/// including, the next such bound. No-data values are left out.
struct BandHistogram {
    double low = 0.0;
    double width = 1.0; ///< of one bucket
    std::vector<int> counts;

    double High() const { return low + width * static_cast<double>(counts.size()); }
    /// Values counted.
    long long Total() const;
};

/// Counts the values of the pixels of a region, of all its bands, with the pixels read once. Call
/// `region.Compute()` first.
/// @param source that the region lies in
/// @param buckets how many at most. Whole-numbered types get buckets that each hold the same
///        number of whole values, so that none looks fuller for holding one more
/// @param range least and greatest value to count; none: those that occur, and no buckets for a
///        band without values
/// Throws Failure naming `path`.
std::vector<BandHistogram> CountValues(CRegionStatistics& region, const CRasterSource& source,
                                       int buckets,
                                       const std::optional<std::pair<double, double>>& range,
                                       const std::string& path, CDataProgress& progress);

} // namespace zelto::host
