#pragma once

#include "zelto/algorithm/internal/RegionWindow.h"
#include "zelto/raster/internal/RowsAhead.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

class CRasterBand;
class CRasterSource;
class GDALRasterBand;

namespace zelto {

/// Uninitialised memory for `count` samples; null when there is none or `count` is below 1.
template <typename Sample>
std::unique_ptr<Sample[]> AllocateSamples(std::int64_t count) {
    constexpr auto LIMIT = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(Sample);
    if (count < 1 || static_cast<std::uint64_t>(count) > LIMIT)
        return nullptr;
    return std::unique_ptr<Sample[]>(new (std::nothrow) Sample[static_cast<std::size_t>(count)]);
}

/// One raster read of the window into width × height packed samples. False for a null band, for
/// an empty window or grid (which GDAL would take for done) and on a GDAL error; the reason is
/// then in LastError().
bool ReadSamples(GDALRasterBand* band, const PixelWindow& window, int width, int height,
                 double* samples);
bool ReadSamples(GDALRasterBand* band, const PixelWindow& window, int width, int height,
                 float* samples);

/// The bands of a source in order.
std::vector<CRasterBand*> BandsOf(CRasterSource& source);

/// Cuts a window of some bands into strips of full rows that stay in the processor's caches. A
/// window of stored pixels read one by one gives the same samples in strips as at once; one that is
/// decimated, whose rows GDAL picks from the whole, or virtual is a single strip.
class WindowStrips {
  public:
    /// @param bands must outlive this object
    /// @param maximumRows upper limit of a strip's rows; a strip has fewer where that is faster
    WindowStrips(const std::vector<CRasterBand*>& bands, const PixelWindow& window,
                 const SampleGrid& grid, int maximumRows);

    /// Samples of the largest strip.
    std::int64_t Capacity() const { return std::int64_t{m_rows} * m_grid.width; }
    int RowsFrom(int firstRow) const;
    int NextRow(int firstRow) const { return firstRow + m_rows; }
    /// Waits for what has been decoded ahead of the strip that starts at the row, where that is
    /// done. Called before the strip is read, for one strip after the other from the top.
    void Prepare(int firstRow);
    /// Reads the rows of the grid that start at `firstRow`, packed.
    /// @param band position among the bands
    bool Read(std::size_t band, int firstRow, double* samples) const;

  private:
    void DecodeAhead();

    const std::vector<CRasterBand*>& m_bands;
    PixelWindow m_window;
    SampleGrid m_grid;
    int m_rows;
    std::unique_ptr<RowsAhead> m_ahead; ///< may be null
};

/// What is done with a strip of all bands.
/// @param samples per band, packed rows
/// @return false to stop
using StripVisitor = std::function<bool(std::span<const double*> samples, int firstRow, int rows)>;

/// Reads all bands of a window strip by strip and visits each strip. Afterwards the bands' block
/// caches are flushed.
/// @param maximumRows rows of the largest strip
/// @return false without memory, when a band cannot be read and when the visitor stopped
bool VisitBandStrips(const std::vector<CRasterBand*>& bands, const PixelWindow& window,
                     const SampleGrid& grid, int maximumRows, const StripVisitor& visit);

} // namespace zelto
