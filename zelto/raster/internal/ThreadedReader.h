#pragma once

#include "zelto/raster/internal/PixelBox.h"

#include <gdal_priv.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zelto {

/// Reads stored pixels of a file that is open for reading, and decodes its blocks on several
/// threads. Every thread has a handle of its own that reads as the source's does, so that the
/// pixels are the same whatever the number of threads. GDAL's own decoding threads are not used: on
/// a handle that has them, a band of a file that stores its samples pixel by pixel is decoded again
/// for every other band, and reading some bands of a file that stores them one after the other
/// writes beyond the buffer.
class ThreadedReader {
  public:
    /// As many threads as the host has set as GDAL_NUM_THREADS, or else as OpenMP would use on the
    /// calling one; fewer for large blocks.
    /// @param bands of one data set, of one type; not owned, only looked at here
    /// @return null where one thread is wanted, nothing needs to be decoded, or another handle
    ///         might not read the same
    static std::unique_ptr<ThreadedReader> Of(const std::vector<GDALRasterBand*>& bands);
    /// Whether Of() is worth a try for a window: it lies inside, is large enough, and what costs
    /// nothing to ask is as it must be.
    static bool IsWorth(const std::vector<GDALRasterBand*>& bands, const PixelBox& window);

    GDALDataType Type() const { return m_type; }
    std::size_t BytesOfBand(const PixelBox& box) const;
    std::size_t BytesOf(const PixelBox& box) const { return m_numbers.size() * BytesOfBand(box); }

    /// Reads the box of all bands, quietly: BytesOfBand() for one after the other, in rows without
    /// a gap. Blocks stay in GDAL's cache, as far as it holds them, until this object is destroyed.
    /// @return false when a pixel cannot be read. Whoever then reads through the bands themselves
    ///         hears why.
    bool Read(const PixelBox& box, std::byte* samples) const;

  private:
    ThreadedReader() = default;

    bool OpenHandles(GDALDataset& dataset, std::size_t count);
    std::vector<PixelBox> Share(const PixelBox& box) const;
    bool ReadPart(GDALDataset& handle, const PixelBox& part, const PixelBox& box,
                  std::byte* samples) const;

    std::vector<GDALDatasetUniquePtr> m_handles; ///< one for each thread
    std::vector<int> m_numbers;                  ///< of the bands
    GDALDataType m_type = GDT_Unknown;
    int m_blockWidth = 1;
    int m_blockHeight = 1;
};

} // namespace zelto
