#pragma once

#include "cli/render/View.h"

#include <string>

class CRasterSource;

namespace zelto::cli {

/// Opens a raster for display in its own system, or in another one.
/// @param srs empty: its own
/// @param view what will be drawn; where it is given, the pixels of another system are those of
///        the picture, or parts of them, so that it is sampled once. The source is then open in
///        that system already
/// Throws Failure.
void OpenForDisplay(CRasterSource& source, const std::string& path, const std::string& srs,
                    const View* view = nullptr);

} // namespace zelto::cli
