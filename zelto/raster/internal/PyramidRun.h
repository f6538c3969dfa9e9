#pragma once

#include "zelto/raster/internal/PyramidBuild.h"

namespace zelto {

/// GDAL's pyramid build, done only when GDAL says so, has emitted no error and the host has not
/// cancelled: a build inside a GeoTIFF answers success on a full disk and when it is cancelled.
/// The reason of a failure goes to LastError() under the name of `file`.
bool RunPyramidBuild(GDALDataset& dataset, const PyramidOrder& order, const std::string& file);

/// Whether every band of the order has its levels, no others, and their ends can be read; what a
/// file lost when it was closed shows here. The reason of a failure goes to LastError().
bool IsPyramidWhole(GDALDataset& dataset, const PyramidOrder& order, const std::string& file);

} // namespace zelto
