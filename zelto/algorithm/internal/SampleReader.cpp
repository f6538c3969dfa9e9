#include "zelto/algorithm/internal/SampleReader.h"

#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/VirtualBand.h"

#include <gdal_priv.h>

#include <algorithm>
#include <iterator>

namespace zelto {

namespace {

/// Samples of a strip: half a megabyte of doubles, which a core's second-level cache keeps
/// between reading and counting.
constexpr int STRIP_SAMPLES = 65'536;

/// Samples of one row in all bands: half a gigabyte of doubles. Only damaged headers tell of
/// longer ones.
constexpr std::int64_t LONGEST_ROW = std::int64_t{1} << 26;

bool ReadWindow(GDALRasterBand* band, const PixelWindow& window, int width, int height,
                void* samples, GDALDataType type) {
    if (band == nullptr)
        return RefuseMissing("band");
    if (!HoldsBlocks(*band))
        return false;
    if (window.width < 1 || window.height < 1 || width < 1 || height < 1) {
        SetLastError(NO_PIXELS);
        return false;
    }
    return Reads(*band, [&] {
        return band->RasterIO(GF_Read, window.left, window.top, window.width, window.height,
                              samples, width, height, type, 0, 0, nullptr);
    });
}

/// Bytes of all the blocks that one row of the window touches.
std::int64_t BytesOfBlockRow(const std::vector<CRasterBand*>& bands, int width) {
    std::int64_t bytes = 0;
    for (const CRasterBand* band : bands) {
        const auto type = static_cast<GDALDataType>(band->GetDataType());
        const std::int64_t columns = std::int64_t{width} + 2 * band->GetBlockXSize();
        bytes += columns * band->GetBlockYSize() * GDALGetDataTypeSizeBytes(type);
    }
    return bytes;
}

} // namespace

bool ReadSamples(GDALRasterBand* band, const PixelWindow& window, int width, int height,
                 double* samples) {
    return ReadWindow(band, window, width, height, samples, GDT_Float64);
}

bool ReadSamples(GDALRasterBand* band, const PixelWindow& window, int width, int height,
                 float* samples) {
    return ReadWindow(band, window, width, height, samples, GDT_Float32);
}

std::vector<CRasterBand*> BandsOf(CRasterSource& source) {
    std::vector<CRasterBand*> bands;
    bands.reserve(static_cast<std::size_t>(source.GetBandCount()));
    for (int b = 0; b < source.GetBandCount(); ++b)
        bands.push_back(source.GetRasterBand(b));
    return bands;
}

WindowStrips::WindowStrips(const std::vector<CRasterBand*>& bands, const PixelWindow& window,
                           const SampleGrid& grid, int maximumRows)
    : m_bands(bands), m_window(window), m_grid(grid), m_rows(maximumRows) {
    // Blocks that do not stay in GDAL's cache from strip to strip would be decoded again for
    // every strip.
    const bool blocksAreKept = BytesOfBlockRow(bands, grid.width) <= GDALGetCacheMax64() / 2;
    const bool cutting = std::none_of(bands.begin(), bands.end(), [](const CRasterBand* band) {
        return IsVirtual(band->GetGDALBand());
    });
    if (grid.step != 1.0)
        m_rows = grid.height;
    else if (blocksAreKept && cutting)
        m_rows = std::min(m_rows, std::max(STRIP_SAMPLES / std::max(grid.width, 1), 1));
    m_rows = std::clamp(m_rows, 1, std::max(grid.height, 1));
    if (grid.step == 1.0)
        DecodeAhead();
}

void WindowStrips::DecodeAhead() {
    std::vector<GDALRasterBand*> stored;
    for (const CRasterBand* band : m_bands)
        stored.push_back(band->GetGDALBand());
    m_ahead = RowsAhead::Of(stored, {m_window.left, m_window.top, m_window.width, m_window.height},
                            m_rows);
}

int WindowStrips::RowsFrom(int firstRow) const {
    return std::min(m_rows, m_grid.height - firstRow);
}

void WindowStrips::Prepare(int firstRow) {
    // What cannot be decoded ahead is read through the bands, which tell why.
    if (m_ahead && !m_ahead->Prepare(firstRow, RowsFrom(firstRow)))
        m_ahead.reset();
}

bool WindowStrips::Read(std::size_t band, int firstRow, double* samples) const {
    const int rows = RowsFrom(firstRow);
    if (m_ahead) {
        m_ahead->Copy(band, firstRow, rows, samples);
        return true;
    }
    PixelWindow strip = m_window;
    if (m_grid.step == 1.0) {
        strip.top += firstRow;
        strip.height = rows;
    }
    return ReadSamples(m_bands[band]->GetGDALBand(), strip, m_grid.width, rows, samples);
}

bool VisitBandStrips(const std::vector<CRasterBand*>& bands, const PixelWindow& window,
                     const SampleGrid& grid, int maximumRows, const StripVisitor& visit) {
    if (grid.width < 1 || grid.height < 1) {
        SetLastError(NO_PIXELS);
        return false;
    }
    if (grid.width > LONGEST_ROW / std::max<std::int64_t>(std::ssize(bands), 1)) {
        SetLastError(ROWS_TOO_LONG);
        return false;
    }
    WindowStrips strips(bands, window, grid, maximumRows);
    std::vector<std::unique_ptr<double[]>> buffers;
    std::vector<const double*> samples;
    for (std::size_t b = 0; b < bands.size(); ++b) {
        buffers.push_back(AllocateSamples<double>(strips.Capacity()));
        samples.push_back(buffers.back().get());
        if (!buffers.back()) {
            SetLastError(NO_MEMORY);
            return false;
        }
    }
    bool going = true;
    for (int row = 0; going && row < grid.height; row = strips.NextRow(row)) {
        strips.Prepare(row);
        for (std::size_t b = 0; going && b < bands.size(); ++b)
            going = strips.Read(b, row, buffers[b].get());
        going = going && visit(samples, row, strips.RowsFrom(row));
    }
    for (CRasterBand* band : bands)
        band->FlushCache();
    return going;
}

} // namespace zelto
