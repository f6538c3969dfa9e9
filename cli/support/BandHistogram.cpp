#include "cli/support/BandHistogram.h"

#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/support/Failure.h"
#include "cli/support/Open.h"
#include "cli/support/Progress.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace zelto::cli {

namespace {

/// Least and greatest value. GDAL's statistics tell them; its search for them alone leaves out
/// the last pixels of some 16-bit blocks.
std::pair<double, double> OccurringRange(CRasterBand& band, const std::string& path,
                                         CDataProgress& progress) {
    std::pair<double, double> range;
    double mean = 0.0;
    double deviation = 0.0;
    ForgetReasons();
    if (!band.ComputeStatics(&range.first, &range.second, &mean, &deviation, false, &progress))
        throw Failure(path, Interrupted() ? "interrupted" : LastReason("no valid pixel to count"));
    return range;
}

/// Buckets around whole numbers: from half a unit below the least value on.
BandHistogram WholeBuckets(double least, double greatest, int buckets) {
    const double values = std::floor(greatest) - std::ceil(least) + 1.0;
    BandHistogram histogram;
    histogram.low = std::ceil(least) - 0.5;
    histogram.width = std::max(1.0, std::ceil(values / buckets));
    histogram.counts.resize(
        static_cast<std::size_t>(std::max(1.0, std::ceil(values / histogram.width))));
    return histogram;
}

/// Buckets of equal width; the greatest value falls into the last one.
BandHistogram EvenBuckets(double least, double greatest, int buckets) {
    BandHistogram histogram;
    histogram.low = least;
    histogram.width = greatest > least ? (greatest - least) * (1.0 + 1e-9) / buckets : 1.0;
    histogram.counts.resize(static_cast<std::size_t>(greatest > least ? buckets : 1));
    return histogram;
}

BandHistogram MakeBuckets(PixelDataType type, double least, double greatest, int buckets) {
    const bool isWhole = type >= PDT_Byte && type <= PDT_Int32;
    return isWhole ? WholeBuckets(least, greatest, buckets) : EvenBuckets(least, greatest, buckets);
}

} // namespace

long long BandHistogram::Total() const {
    return std::accumulate(counts.begin(), counts.end(), 0LL);
}

BandHistogram CountValues(CRasterBand& band, int buckets,
                          const std::optional<std::pair<double, double>>& range,
                          const std::string& path, CDataProgress& progress) {
    const auto [least, greatest] = range ? *range : OccurringRange(band, path, progress);
    if (!std::isfinite(least) || !std::isfinite(greatest))
        throw Failure(path, "its values have no finite range; choose one with --range");
    BandHistogram histogram = MakeBuckets(band.GetDataType(), least, greatest, buckets);
    ForgetReasons();
    // The band counts from a half where it is asked to count from exactly zero.
    const double low = histogram.low == 0.0 ? -histogram.width * 1e-9 : histogram.low;
    if (!band.GetHistogram(low, histogram.High(), static_cast<int>(histogram.counts.size()),
                           histogram.counts.data(), false, false, &progress))
        throw Failure(path, Interrupted() ? "interrupted" : LastReason("cannot be read"));
    return histogram;
}

std::vector<BandHistogram> CountValues(CRegionStatistics& region, const CRasterSource& source,
                                       int buckets,
                                       const std::optional<std::pair<double, double>>& range,
                                       const std::string& path, CDataProgress& progress) {
    std::vector<BandHistogram> histograms;
    std::vector<CRegionStatistics::Histogram> counted;
    for (const CRegionStatistics::Band& band : region.GetBands()) {
        if (band.count == 0 && !range)
            throw Failure(path, "no values in the region");
        const auto [least, greatest] = range.value_or(std::pair(band.minimum, band.maximum));
        histograms.push_back(
            MakeBuckets(source.GetRasterBand(band.index)->GetDataType(), least, greatest, buckets));
        counted.emplace_back();
        counted.back().position = static_cast<int>(counted.size()) - 1;
        counted.back().low = histograms.back().low;
        counted.back().width = histograms.back().width;
        counted.back().counts.resize(histograms.back().counts.size());
    }
    ForgetReasons();
    if (region.ComputeHistograms(counted, &progress) != GIS_SUCCESS)
        throw Failure(path, Interrupted() ? "interrupted" : LastReason("cannot be read"));
    for (std::size_t i = 0; i < histograms.size(); ++i)
        std::transform(counted[i].counts.begin(), counted[i].counts.end(),
                       histograms[i].counts.begin(), [](__int64 count) {
                           return static_cast<int>(
                               std::min<__int64>(count, std::numeric_limits<int>::max()));
                       });
    return histograms;
}

} // namespace zelto::cli
