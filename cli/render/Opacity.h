#pragma once

#include "cli/render/View.h"
#include "host/picture/Picture.h"

#include <string>

class CRasterSource;

namespace zelto::cli {

/// Makes a picture as transparent as its file is there: by an alpha band, a mask, or because a
/// rotated or reprojected image does not fill its rectangle. Throws Failure.
/// @param source what was drawn
/// @param srs as given to OpenForDisplay()
void ApplyOpacity(host::Picture& picture, const CRasterSource& source, const View& view,
                  const std::string& srs);

} // namespace zelto::cli
