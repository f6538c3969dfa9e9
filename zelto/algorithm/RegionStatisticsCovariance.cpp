#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/internal/PreciseCovariance.h"
#include "zelto/algorithm/internal/PreciseMoments.h"
#include "zelto/algorithm/internal/RegionScan.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterSource.h"

#include <span>
#include <vector>

namespace {

constexpr const wchar_t* COVARIANCE_TITLE = L"计算协方差";

/// Values of the pixels that count in all bands, moved together.
class CompletePixels {
  public:
    explicit CompletePixels(const std::vector<CRasterBand*>& bands) : m_values(bands.size()) {
        for (const CRasterBand* band : bands)
            m_filters.emplace_back(*band);
    }

    /// Keeps the complete pixels of the spans until the next call.
    void Select(std::span<const double*> samples, std::size_t width,
                const zelto::RegionSpans& spans) {
        for (auto& values : m_values)
            values.clear();
        spans.Visit(width, [&](std::size_t begin, std::size_t count) {
            for (std::size_t p = begin; p < begin + count; ++p)
                if (IsComplete(samples, p))
                    for (std::size_t b = 0; b < samples.size(); ++b)
                        m_values[b].push_back(samples[b][p]);
        });
    }
    std::size_t Count() const { return m_values.empty() ? 0 : m_values.front().size(); }
    const std::vector<double>& Of(std::size_t band) const { return m_values[band]; }

  private:
    bool IsComplete(std::span<const double*> samples, std::size_t position) const {
        for (std::size_t b = 0; b < samples.size(); ++b)
            if (!m_filters[b].Holds(samples[b][position]))
                return false;
        return true;
    }

    std::vector<zelto::ValueFilter> m_filters;
    std::vector<std::vector<double>> m_values;
};

} // namespace

GISError CRegionStatistics::ComputeCovariance(CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const zelto::RegionScan scan = MakeScan();
        CompletePixels pixels(scan.Bands());
        zelto::PreciseCovariance covariance(scan.Bands());
        std::vector<const double*> values(scan.Bands().size());
        const auto add = [&](std::span<const double*> samples, const zelto::RegionSpans& spans) {
            pixels.Select(samples, scan.Width(), spans);
            for (std::size_t b = 0; b < values.size(); ++b)
                values[b] = pixels.Of(b).data();
            covariance.Add(values, pixels.Count());
        };
        if (!scan.Visit(COVARIANCE_TITLE, progress, add))
            return GIS_FAILED;
        m_covariance = covariance.Matrix();
        m_covarianceCount = covariance.Count();
        return GIS_SUCCESS;
    });
}
