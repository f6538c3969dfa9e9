#include "zelto/raster/internal/BandSampling.h"

#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/PickedSamples.h"
#include "zelto/raster/internal/SampleStatistics.h"
#include "zelto/raster/internal/VirtualBand.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

namespace zelto {

namespace {

/// Picks the samples from blocks that are decoded on several threads, where that is possible.
bool PicksSamples(GDALRasterBand& band, StatisticsGrid grid, GDALDataType type, void* samples) {
    const PixelBox whole = {0, 0, band.GetXSize(), band.GetYSize()};
    return type == band.GetRasterDataType() && CanBePicked(band) &&
           IsWorthPicking({&band}, whole) &&
           ReadPicked({&band}, {whole, grid.columns, grid.rows}, {samples});
}

/// Reads the grid in one go, as samples of `type`, and adds it up.
template <typename Sample>
bool AddSamples(GDALRasterBand& band, StatisticsGrid grid, GDALDataType type,
                SampleStatistics& statistics) {
    const std::size_t count = grid.Count();
    const std::unique_ptr<Sample[]> samples(new (std::nothrow) Sample[count]);
    const auto read = [&] {
        return band.RasterIO(GF_Read, 0, 0, band.GetXSize(), band.GetYSize(), samples.get(),
                             grid.columns, grid.rows, type, 0, 0, nullptr);
    };
    if (!samples) {
        // Whoever does with the type's range instead must be able to tell.
        SetLastError(FileOf(band) + ": not enough memory for its statistics");
        return false;
    }
    if (!PicksSamples(band, grid, type, samples.get()) && !Reads(band, read))
        return false;
    statistics.Add(samples.get(), count);
    return true;
}

/// The types whose every value a double holds are read as they are, which moves less memory
/// than a grid of doubles and comes to the same; the others and virtual bands as doubles.
bool AddSamples(GDALRasterBand& band, StatisticsGrid grid, SampleStatistics& statistics) {
    const GDALDataType type = IsVirtual(&band) ? GDT_Float64 : band.GetRasterDataType();
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

/// Rounded, and at least 1.
int ReducedSide(int side, double factor) {
    return std::max(static_cast<int>(side / factor + 0.5), 1);
}

} // namespace

StatisticsGrid::StatisticsGrid(int width, int height) : columns(width), rows(height) {
    constexpr int MAX_SIDE = 2048;
    const int longer = std::max(width, height);
    if (longer <= MAX_SIDE)
        return;
    const double factor = static_cast<double>(longer) / MAX_SIDE;
    columns = ReducedSide(width, factor);
    rows = ReducedSide(height, factor);
}

bool SampleBand(GDALRasterBand& band, const double* noData, const double* excluded,
                BandSummary& found) {
    if (!HoldsBlocks(band))
        return false;
    SampleStatistics statistics(noData, excluded);
    if (!AddSamples(band, StatisticsGrid(band.GetXSize(), band.GetYSize()), statistics))
        return false;
    statistics.Report(found.minimum, found.maximum, found.mean, found.standardDeviation);
    return true;
}

} // namespace zelto
