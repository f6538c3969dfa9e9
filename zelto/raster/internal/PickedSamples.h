#pragma once

#include "zelto/raster/internal/PixelBox.h"

#include <gdal_priv.h>

#include <cstdint>
#include <vector>

/// @file
/// Samples of large windows of files without a pyramid. GDAL reads such a window band by band and
/// decodes every block of it for each band, where its cache cannot keep them. Here the blocks are
/// decoded once for all bands, and the same samples are picked.

namespace zelto {

/// A window and the grid of samples that it is read as.
struct SampledWindow {
    PixelBox box;
    int columns;
    int rows;
};

/// Memory for the pixels that the samples of a part of the window are picked from.
inline constexpr std::int64_t PICKING_BYTES = std::int64_t{16} << 20;

/// Whether the band is one of several whose samples the file stores pixel by pixel in compressed
/// blocks, and GDAL picks samples from these, not from a pyramid or around the blocks.
bool CanBePickedJointly(GDALRasterBand& band);

/// Reads what GDAL would read of every band for the window, quietly.
/// @param bands all of one data set, of one type, and CanBePickedJointly()
/// @param samples for every band, room for the grid in the bands' own type
/// @return false where it cannot be done: too little memory, a pixel that cannot be read
bool ReadPicked(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                const std::vector<void*>& samples);

} // namespace zelto
