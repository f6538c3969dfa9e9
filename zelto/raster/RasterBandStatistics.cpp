#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/BandSampling.h"
#include "zelto/raster/internal/StatisticsBand.h"
#include "zelto/raster/internal/StatisticsOnDemand.h"

#include <gdal_priv.h>

#include <memory>

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
        if (m_band == nullptr || !zelto::HoldsBlocks(*m_band))
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
        if (m_band == nullptr || !zelto::HoldsBlocks(*m_band))
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

bool CRasterBand::ReplaceStatistics(double minimum, double maximum, double mean,
                                    double standardDeviation) {
    return zelto::Operation(false, [&] {
        if (!m_own) {
            m_own = std::make_unique<zelto::OwnStatistics>();
            // What is not taken yet is not taken only to be put aside.
            if (!m_pending || m_pending->stored.load(std::memory_order_acquire))
                m_own->found = {m_minimum, m_maximum, m_mean, m_standardDeviation};
        }
        StoreSummary({minimum, maximum, mean, standardDeviation});
        if (m_pending)
            m_pending->stored.store(true, std::memory_order_release);
        return true;
    });
}

void CRasterBand::RestoreStatistics() {
    if (!m_own)
        return;
    if (m_own->found)
        StoreSummary(*m_own->found);
    else
        m_pending->stored.store(false, std::memory_order_release);
    m_own.reset();
}

void CRasterBand::FindOwnStatistics() const {
    TakeStatistics();
    if (m_own && !m_own->found)
        m_own->found = m_pending->source->Of(m_pending->number);
}
