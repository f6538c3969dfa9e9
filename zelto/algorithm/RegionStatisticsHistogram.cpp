#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionScan.h"
#include "zelto/baselib/internal/NoThrow.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <utility>

namespace {

constexpr const wchar_t* HISTOGRAM_TITLE = L"计算直方图信息";

void CountInto(CRegionStatistics::Histogram& histogram, std::span<const double> values) {
    const auto count = static_cast<double>(histogram.counts.size());
    for (const double value : values) {
        const double bucket = std::floor((value - histogram.low) / histogram.width);
        if (bucket >= 0 && bucket < count)
            ++histogram.counts[static_cast<std::size_t>(bucket)];
    }
}

} // namespace

GISError CRegionStatistics::ComputeHistogram(int position, double low, double width,
                                             std::vector<__int64>& counts,
                                             CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        std::vector<Histogram> one(1);
        one[0].position = position;
        one[0].low = low;
        one[0].width = width;
        std::swap(one[0].counts, counts);
        const GISError result = ComputeHistograms(one, progress);
        std::swap(one[0].counts, counts);
        return result;
    });
}

GISError CRegionStatistics::ComputeHistograms(std::vector<Histogram>& histograms,
                                              CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const bool valid =
            std::all_of(histograms.begin(), histograms.end(), [&](const Histogram& histogram) {
                return histogram.position >= 0 && histogram.position < std::ssize(m_bands) &&
                       histogram.width > 0;
            });
        if (!valid) {
            zelto::RefuseMissing("band or width of buckets");
            return GIS_FAILED;
        }
        for (Histogram& histogram : histograms)
            std::fill(histogram.counts.begin(), histogram.counts.end(), 0);
        if (m_values.empty())
            return CountTogether(histograms, progress) ? GIS_SUCCESS : GIS_FAILED;
        for (Histogram& histogram : histograms)
            CountInto(histogram, m_values[static_cast<std::size_t>(histogram.position)]);
        return GIS_SUCCESS;
    });
}

bool CRegionStatistics::CountTogether(std::vector<Histogram>& histograms,
                                      CDataProgress* progress) const {
    std::vector<int> bands;
    bands.reserve(histograms.size());
    for (const Histogram& histogram : histograms)
        bands.push_back(m_bands[static_cast<std::size_t>(histogram.position)].index);
    const auto add = [&](std::size_t i, std::span<const double> values) {
        CountInto(histograms[i], values);
    };
    return MakeScan(bands).VisitValues(HISTOGRAM_TITLE, progress, add);
}
