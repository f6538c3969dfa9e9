#pragma once

#include "host/picture/View.h"

#include <memory>
#include <string>

class CRasterSource;

namespace zelto::host {

/// Opens a raster for display in its own system, or in another one.
/// @param srs empty: its own
/// @param view what will be drawn; where it is given, the pixels of another system are those of
///        the picture, or parts of them, so that it is sampled once. The source is then open in
///        that system already
/// Throws Failure.
void OpenForDisplay(CRasterSource& source, const std::string& path, const std::string& srs,
                    const View* view = nullptr);

/// Opens a raster for the picture of a view alone. Throws Failure.
/// @param srs empty: its own
std::unique_ptr<CRasterSource> OpenForPicture(const std::string& path, const std::string& srs,
                                              const View& view);

/// Shows the bands that the file calls red, green and blue, whatever their order. Changes nothing
/// where it does not name all three.
void ShowBandsByColor(CRasterSource& source);

} // namespace zelto::host
