#pragma once

#include <string>
#include <vector>

class CDataProgress;

namespace zelto::cli {

/// Builds the pyramid of a raster file anew. Throws Failure.
/// @param resampling GDAL's name
/// @param bands counted from 1; none: all
void BuildPyramid(const std::string& path, const std::string& resampling, std::vector<int> bands,
                  CDataProgress& progress);

} // namespace zelto::cli
