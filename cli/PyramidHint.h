#pragma once

#include <string>

class CRasterSource;

namespace zelto::host {
struct RasterFacts;
}

namespace zelto::cli {

/// Tells on a terminal how to build the pyramid that would have spared a command reading a large
/// image whole. Says nothing of small images, of those that have a pyramid, where standard error
/// is no terminal, and the second time. For the thread that prints.
/// @param path as given, for the command to type
void HintAtPyramid(const CRasterSource& raster, const std::string& path);
void HintAtPyramid(const host::RasterFacts& facts);

} // namespace zelto::cli
