#pragma once

#include "zelto/raster/internal/PixelBox.h"

#include <gdal_priv.h>

#include <cstdint>
#include <vector>

/// @file
/// Samples of large windows of files without a pyramid. GDAL reads such a window band by band, on
/// one thread, and decodes every block of it for each band where its cache cannot keep them. Here
/// the blocks are decoded once for all bands, those of windows beyond the cache on several threads,
/// and the same samples are picked.

namespace zelto {

/// A window and the grid of samples that it is read as.
struct SampledWindow {
    PixelBox box;
    int columns;
    int rows;

    bool operator==(const SampledWindow&) const = default;
};

/// Memory for the pixels that the samples of a part of the window are picked from.
inline constexpr std::int64_t PICKING_BYTES = std::int64_t{16} << 20;

/// Whether the band's blocks are compressed, and GDAL picks samples from these, not from a pyramid
/// or around the blocks.
bool CanBePicked(GDALRasterBand& band);

/// Whether the file stores the samples of a pixel together, so that a block that is decoded for one
/// band is for all others too.
bool HasBandsTogether(GDALRasterBand& band);

/// Whether picking decodes fewer blocks than reading band by band, or decodes them on several
/// threads.
/// @param bands as for ReadPicked()
bool IsWorthPicking(const std::vector<GDALRasterBand*>& bands, const PixelBox& window);

/// Reads what GDAL would read of every band for the window, quietly.
/// @param bands all of one data set, of one type, and CanBePicked()
/// @param samples for every band, room for the grid in the bands' own type
/// @return false where it cannot be done: too little memory, a pixel that cannot be read
bool ReadPicked(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                const std::vector<void*>& samples);

} // namespace zelto
