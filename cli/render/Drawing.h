#pragma once

#include "cli/render/Options.h"
#include "cli/render/View.h"
#include "host/picture/Picture.h"

#include <string>

class CAOISource;
class CRasterSource;

namespace zelto::cli {

/// Sets the options that are display settings of the source. Those of another raster come first,
/// so that what is said on the command line holds. Throws Failure and UsageError.
void ApplySettings(CRasterSource& source, const RenderOptions& options);

/// Draws what the source shows. Throws Failure.
host::Picture DrawWhole(CRasterSource& source, const View& view, const std::string& path);

/// Draws it within an area. Pixels outside the area are transparent or black, whatever is adjusted;
/// pixels without data inside it are black before the adjustments. Throws Failure.
host::Picture DrawMasked(CRasterSource& source, CAOISource& aoi, const View& view,
                         const RenderOptions& options);

/// Draws it under every stretch that suits the shown bands. Throws Failure.
host::Picture DrawSheet(const View& view, const RenderOptions& options);

} // namespace zelto::cli
