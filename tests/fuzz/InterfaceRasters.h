#pragma once

#include <string>
#include <vector>

namespace zelto::fuzz {

/// Names, in the input folder, of small rasters of different kinds, which are made at the first
/// call: types, no-data values, a palette, classes, rotated grids, none at all, pyramids, control
/// points, samples that are not numbers, and sizes up to the greatest.
const std::vector<std::string>& RasterNames();

/// The one that operations change, from the first on.
inline constexpr const char* SCRATCH_NAME = "scratch.tif";

} // namespace zelto::fuzz
