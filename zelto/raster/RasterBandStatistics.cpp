#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/SampleStatistics.h"
#include "zelto/raster/internal/StatisticsBand.h"

#include <gdal_priv.h>

#include <algorithm>
#include <memory>
#include <new>

namespace {

/// Writes through the pointers that are there.
void Report(double value, double* target) {
    if (target != nullptr)
        *target = value;
}

/// A side of the sample grid: the band's side over the factor, rounded, at least 1.
int GridSide(int side, double factor) {
    return std::max(static_cast<int>(side / factor + 0.5), 1);
}

} // namespace

bool CRasterBand::ComputeMinMax(double* min, double* max, bool useStored) {
    if (!m_storedMinMaxFixed && !useStored) {
        double range[2] = {0.0, 0.0};
        if (m_band == nullptr || !zelto::CanHoldBlocks(*m_band) ||
            m_band->ComputeRasterMinMax(FALSE, range) != CE_None)
            return false;
        StoreMinMax(range[0], range[1]);
    }
    Report(m_minimum, min);
    Report(m_maximum, max);
    return true;
}

bool CRasterBand::ComputeStatics(double* min, double* max, double* mean, double* stdDev,
                                 bool useStored, CDataProgress* progress) {
    double found[4] = {m_minimum, m_maximum, m_mean, m_standardDeviation};
    if (!useStored) {
        if (progress != nullptr)
            progress->BeginProgress(L"计算统计信息", 100);
        if (m_band == nullptr || !zelto::CanHoldBlocks(*m_band))
            return false;
        const zelto::StatisticsBand source(*m_band);
        if (source->ComputeStatistics(FALSE, &found[0], &found[1], &found[2], &found[3],
                                      GDALProgressFuncEx, progress) != CE_None)
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
    constexpr int MAX_SIDE = 2048;
    if (m_band == nullptr)
        return false;
    int columns = m_width;
    int rows = m_height;
    if (std::max(columns, rows) > MAX_SIDE) {
        const double factor = static_cast<double>(std::max(columns, rows)) / MAX_SIDE;
        columns = GridSide(columns, factor);
        rows = GridSide(rows, factor);
    }
    const std::size_t count = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    const std::unique_ptr<double[]> samples(new (std::nothrow) double[count]);
    if (!GetDataToBuffer(0, 0, m_width, m_height, columns, rows, samples.get()))
        return false;

    zelto::SampleStatistics statistics;
    const double* noData = m_hasNoData != 0 ? &m_noDataValue : nullptr;
    statistics.Add(samples.get(), count, noData, excluded);
    statistics.Report(min, max, mean, stdDev);
    return true;
}
