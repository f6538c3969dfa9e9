#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/BandSampling.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/StatisticsBand.h"

#include <gdal_priv.h>

namespace {

/// Writes through the pointers that are there.
void Report(double value, double* target) {
    if (target != nullptr)
        *target = value;
}

} // namespace

bool CRasterBand::ComputeMinMax(double* min, double* max, bool useStored) {
    const zelto::OperationScope scope;
    if (!m_storedMinMaxFixed && !useStored) {
        if (m_band == nullptr || !zelto::CanHoldBlocks(*m_band))
            return false;
        double range[2] = {0.0, 0.0};
        const zelto::StatisticsBand source(*m_band);
        if (!zelto::Reads(*m_band, [&] { return source->ComputeRasterMinMax(FALSE, range); }))
            return false;
        StoreMinMax(range[0], range[1]);
    }
    Report(GetMinimum(), min);
    Report(GetMaximum(), max);
    return true;
}

bool CRasterBand::ComputeStatics(double* min, double* max, double* mean, double* stdDev,
                                 bool useStored, CDataProgress* progress) {
    const zelto::OperationScope scope;
    double found[4] = {};
    if (useStored) {
        found[0] = GetMinimum();
        found[1] = GetMaximum();
        found[2] = GetMean();
        found[3] = GetStandardDeviation();
    } else {
        if (progress != nullptr)
            progress->BeginProgress(L"计算统计信息", 100);
        if (m_band == nullptr || !zelto::CanHoldBlocks(*m_band))
            return false;
        const zelto::StatisticsBand source(*m_band);
        const bool computed = zelto::Reads(*m_band, [&] {
            return source->ComputeStatistics(FALSE, &found[0], &found[1], &found[2], &found[3],
                                             GDALProgressFuncEx, progress);
        });
        if (!computed)
            return false;
    }
    Report(found[0], min);
    Report(found[1], max);
    Report(found[2], mean);
    Report(found[3], stdDev);
    return true;
}

bool CRasterBand::ComputeStaticsFromCustom(double& min, double& max, double& mean, double& stdDev,
                                           double* excluded) {
    if (m_band == nullptr)
        return false;
    zelto::BandSummary found{min, max, mean, stdDev};
    if (!zelto::SampleBand(*m_band, m_hasNoData != 0 ? &m_noDataValue : nullptr, excluded, found))
        return false;
    min = found.minimum;
    max = found.maximum;
    mean = found.mean;
    stdDev = found.standardDeviation;
    return true;
}
