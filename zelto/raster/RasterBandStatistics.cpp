#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/SampleStatistics.h"
#include "zelto/raster/internal/StatisticsBand.h"
#include "zelto/raster/internal/VirtualBand.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

namespace {

/// Writes through the pointers that are there.
void Report(double value, double* target) {
    if (target != nullptr)
        *target = value;
}

/// The samples that stand for a whole band, at most 2048 along its longer side.
struct SampleGrid {
    int columns;
    int rows;

    SampleGrid(int width, int height) : columns(width), rows(height) {
        constexpr int MAX_SIDE = 2048;
        const int longer = std::max(width, height);
        if (longer <= MAX_SIDE)
            return;
        const double factor = static_cast<double>(longer) / MAX_SIDE;
        columns = Side(width, factor);
        rows = Side(height, factor);
    }

  private:
    /// Rounded, and at least 1.
    static int Side(int side, double factor) {
        return std::max(static_cast<int>(side / factor + 0.5), 1);
    }
};

/// Reads the grid in one go, as samples of `type`, and adds it up.
template <typename Sample>
bool AddSamples(GDALRasterBand& band, SampleGrid grid, GDALDataType type,
                zelto::SampleStatistics& statistics) {
    const std::size_t count =
        static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows);
    const std::unique_ptr<Sample[]> samples(new (std::nothrow) Sample[count]);
    if (!samples || band.RasterIO(GF_Read, 0, 0, band.GetXSize(), band.GetYSize(), samples.get(),
                                  grid.columns, grid.rows, type, 0, 0, nullptr) != CE_None)
        return false;
    statistics.Add(samples.get(), count);
    return true;
}

/// The types whose every value a double holds are read as they are, which moves less memory
/// than a grid of doubles and comes to the same; the others and virtual bands as doubles.
bool AddSamples(GDALRasterBand& band, SampleGrid grid, zelto::SampleStatistics& statistics) {
    const GDALDataType type = zelto::IsVirtual(&band) ? GDT_Float64 : band.GetRasterDataType();
    switch (type) {
    case GDT_Byte:
        return AddSamples<std::uint8_t>(band, grid, type, statistics);
    case GDT_UInt16:
        return AddSamples<std::uint16_t>(band, grid, type, statistics);
    case GDT_Int16:
        return AddSamples<std::int16_t>(band, grid, type, statistics);
    case GDT_UInt32:
        return AddSamples<std::uint32_t>(band, grid, type, statistics);
    case GDT_Int32:
        return AddSamples<std::int32_t>(band, grid, type, statistics);
    case GDT_Float32:
        return AddSamples<float>(band, grid, type, statistics);
    default:
        return AddSamples<double>(band, grid, GDT_Float64, statistics);
    }
}

} // namespace

bool CRasterBand::ComputeMinMax(double* min, double* max, bool useStored) {
    if (!m_storedMinMaxFixed && !useStored) {
        if (m_band == nullptr || !zelto::CanHoldBlocks(*m_band))
            return false;
        double range[2] = {0.0, 0.0};
        const zelto::StatisticsBand source(*m_band);
        if (source->ComputeRasterMinMax(FALSE, range) != CE_None)
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
    if (m_band == nullptr || !zelto::CanHoldBlocks(*m_band))
        return false;
    zelto::SampleStatistics statistics(m_hasNoData != 0 ? &m_noDataValue : nullptr, excluded);
    if (!AddSamples(*m_band, SampleGrid(m_width, m_height), statistics))
        return false;
    statistics.Report(min, max, mean, stdDev);
    return true;
}
