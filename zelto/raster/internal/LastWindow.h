#pragma once

#include "zelto/raster/internal/OpenedFile.h"
#include "zelto/raster/internal/PickedSamples.h"

#include <gdal_priv.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// @file
/// The samples of the window that was picked last. A view of a large image without a pyramid costs
/// seconds, and is mostly wanted again at once: with another stretch, or by another source of the
/// same file for the next picture of a contact sheet. Which samples are picked depends on nothing
/// but the file, the bands and the window.

namespace zelto {

/// Windows with more samples than this are not kept; views seldom have.
inline constexpr std::int64_t LARGEST_LAST_WINDOW = std::int64_t{16} << 20; // bytes

/// Keeps copies of samples that ReadPicked() has filled, in place of those kept before, where the
/// bands' data set is one that IsAsOpened(). Does nothing without memory for them.
void KeepLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples);

/// Does what ReadPicked() does where it was done last, of the same file, and that is still the
/// same.
/// @return whether it was
bool CopyLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples);

/// Drops what is kept of a file, which is closed or to be read anew.
void ForgetLastWindow(const FileState& file);

} // namespace zelto
