#pragma once

#include "zelto/raster/internal/PickedSamples.h"

#include <gdal_priv.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// @file
/// The samples of the window that was picked last. A view of a large image without a pyramid costs
/// seconds, and is mostly wanted again at once: with another stretch, or for the next picture of a
/// contact sheet.

namespace zelto {

/// Windows with more samples than this are not kept; views seldom have.
inline constexpr std::int64_t LARGEST_LAST_WINDOW = std::int64_t{16} << 20; // bytes

/// Keeps copies of samples that ReadPicked() has filled, in place of those kept before, where the
/// bands' data set is one that IsAsOpened(). Does nothing without memory for them.
void KeepLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples);

/// Does what ReadPicked() does where it was done last, and the file is still the same.
/// @return whether it was
bool CopyLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples);

/// Drops what is kept of a data set, which is about to be closed.
void ForgetLastWindow(const GDALDataset* dataset);

} // namespace zelto
