#pragma once

#include "zelto/raster/internal/BandSampling.h"

#include <gdal_priv.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zelto {

/// A band to be sampled together with others of its data set.
struct JointBand {
    GDALRasterBand* band;
    std::optional<double> noData;
};

/// Memory for the samples of the bands that are sampled at once, more of which share out into
/// several passes. The pixels that they are picked from take a quarter as much again.
inline constexpr std::int64_t JOINT_SAMPLING_BYTES = std::int64_t{64} << 20;

/// Whether SampleJointly() takes the band: one of several whose samples the file stores pixel by
/// pixel in compressed blocks, so that sampling each alone would decode every block once for each.
bool CanSampleJointly(GDALRasterBand& band);

/// SampleBand() of bands of one data set, all of which CanSampleJointly(), in one pass: every
/// block is decoded once, and the samples are those that GDAL picks when a band is read alone.
/// @return empty, without a message, where it cannot be done: too little memory, a pixel that
///         cannot be read
std::vector<BandSummary> SampleJointly(const std::vector<JointBand>& bands);

} // namespace zelto
