#pragma once

#include <string>
#include <vector>

class CDataProgress;

namespace zelto::host {

/// Builds the pyramid of a raster file anew. One that is part of a GeoTIFF is built in a copy that
/// takes the file's place; where there is no room for it, the old one stays. Throws Failure.
/// @param resampling GDAL's name
/// @param bands counted from 1; none: all
void BuildPyramid(const std::string& path, const std::string& resampling,
                  const std::vector<int>& bands, CDataProgress& progress);

} // namespace zelto::host
