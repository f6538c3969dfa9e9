#pragma once

#include "zelto/algorithm/internal/Moments.h"
#include "zelto/algorithm/internal/RegionRows.h"
#include "zelto/algorithm/internal/SampleReader.h"

#include <optional>
#include <vector>

namespace zelto {

/// Moments of every band over the accepted samples of a grid, one element per band in band
/// order; a band that cannot be read has accepted nothing. Membership is decided once for all
/// bands. Afterwards the bands' block caches are flushed.
/// @return nothing when there is no memory
std::optional<std::vector<Moments>> AccumulateMoments(const std::vector<CRasterBand*>& bands,
                                                      const PixelWindow& window,
                                                      const SampleGrid& grid, RegionRows& region);

/// The caller's arrays of one double per band; null ones are not written.
struct MomentArrays {
    double* minimum = nullptr;
    double* maximum = nullptr;
    double* mean = nullptr;
};

/// Writes the bands' moments: the mean of bands that accepted something, and every band's range,
/// which for a band without accepted samples is that of the band before it (0, 0 at first).
/// @return the last band's count; 0 without bands
std::int64_t WriteMoments(const std::vector<Moments>& moments, const MomentArrays& arrays);

} // namespace zelto
