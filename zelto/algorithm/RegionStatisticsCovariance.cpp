#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/internal/RegionCovariance.h"
#include "zelto/algorithm/internal/RegionScan.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/NoThrow.h"

namespace {

constexpr const wchar_t* COVARIANCE_TITLE = L"计算协方差";

} // namespace

GISError CRegionStatistics::ComputeCovariance(CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const zelto::RegionScan scan = MakeScan();
        zelto::RegionCovariance covariance(scan.Bands(), scan.Width());
        const auto add = [&](std::span<const double*> samples, const zelto::RegionSpans& spans) {
            covariance.Add(samples, spans);
        };
        if (!scan.Visit(COVARIANCE_TITLE, progress, add))
            return GIS_FAILED;
        TakeCovariance(covariance);
        return GIS_SUCCESS;
    });
}

GISError CRegionStatistics::ComputeWithCovariance(CDataProgress* progress) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const zelto::RegionScan scan = MakeScan();
        zelto::RegionCovariance covariance(scan.Bands(), scan.Width());
        if (!ComputeMoments(scan, &covariance, progress))
            return GIS_FAILED;
        TakeCovariance(covariance);
        return GIS_SUCCESS;
    });
}

void CRegionStatistics::TakeCovariance(const zelto::RegionCovariance& covariance) {
    m_covariance = covariance.Matrix();
    m_covarianceCount = covariance.Count();
}
