#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/internal/CompletePixels.h"
#include "zelto/algorithm/internal/PreciseCovariance.h"
#include "zelto/algorithm/internal/RegionScan.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterSource.h"

#include <span>
#include <vector>

namespace {

constexpr const wchar_t* COVARIANCE_TITLE = L"计算协方差";

} // namespace

GISError CRegionStatistics::ComputeCovariance(CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const zelto::RegionScan scan = MakeScan();
        zelto::CompletePixels pixels(scan.Bands());
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
