#pragma once

#include "zelto/raster/internal/BandSampling.h"
#include "zelto/raster/internal/OpenedFile.h"

#include <gdal_priv.h>

#include <optional>

/// @file
/// The sampled statistics of files that are open. Whoever opens a large image without a pyramid a
/// second time, as a contact sheet does for each of its pictures, would decode it once more to find
/// the same.

namespace zelto {

/// Remembers what SampleBand() finds of a band that CanBePicked(), where its data set is one that
/// IsAsOpened().
void KeepStatistics(GDALRasterBand& band, const std::optional<double>& noData,
                    const BandSummary& found);

/// What was kept of the band of that file, which is still the same, for that value of no data.
std::optional<BandSummary> KnownStatistics(GDALRasterBand& band,
                                           const std::optional<double>& noData);

/// Drops what is kept of a file that nobody has open any more.
void ForgetStatistics(const FileState& file);

} // namespace zelto
