#include "host/report/BandHistogram.h"

#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace zelto::host {

namespace {

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

std::vector<BandHistogram> CountValues(CRegionStatistics& region, const CRasterSource& source,
                                       int buckets,
                                       const std::optional<std::pair<double, double>>& range,
                                       const std::string& path, CDataProgress& progress) {
    const std::vector<CRegionStatistics::Band>& bands = region.GetBands();
    std::vector<BandHistogram> histograms(bands.size());
    std::vector<CRegionStatistics::Histogram> counted;
    for (std::size_t i = 0; i < bands.size(); ++i) {
        if (bands[i].count == 0 && !range)
            continue;
        const auto [least, greatest] =
            range.value_or(std::pair(bands[i].minimum, bands[i].maximum));
        histograms[i] = MakeBuckets(source.GetRasterBand(bands[i].index)->GetDataType(), least,
                                    greatest, buckets);
        CRegionStatistics::Histogram& histogram = counted.emplace_back();
        histogram.position = static_cast<int>(i);
        histogram.low = histograms[i].low;
        histogram.width = histograms[i].width;
        histogram.counts.resize(histograms[i].counts.size());
    }
    ForgetReasons();
    if (region.ComputeHistograms(counted, &progress) != GIS_SUCCESS)
        throw Failure(path, ReasonOfEnding("cannot be read"));
    for (const CRegionStatistics::Histogram& found : counted)
        std::transform(
            found.counts.begin(), found.counts.end(),
            histograms[static_cast<std::size_t>(found.position)].counts.begin(), [](__int64 count) {
                return static_cast<int>(std::min<__int64>(count, std::numeric_limits<int>::max()));
            });
    return histograms;
}

} // namespace zelto::host
