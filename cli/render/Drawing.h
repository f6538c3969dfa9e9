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

/// Draws what the source shows, as transparent as its file is. Throws Failure.
/// @param area only what lies in it is drawn; null: everything
host::Picture Draw(CRasterSource& source, CAOISource* area, const View& view,
                   const RenderOptions& options);

/// Draws it under every stretch that suits the shown bands. Throws Failure.
host::Picture DrawSheet(const View& view, const RenderOptions& options);

} // namespace zelto::cli
