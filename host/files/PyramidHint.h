#pragma once

#include <string>

class CRasterSource;

namespace zelto::host {

/// Tells on a terminal how to build the pyramid that would have spared a command reading a large
/// image whole. Says nothing of small images, of those that have a pyramid, where standard error
/// is no terminal, and the second time.
/// @param path as given, for the command to type
void HintAtPyramid(const CRasterSource& raster, const std::string& path);

} // namespace zelto::host
