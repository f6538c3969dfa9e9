#pragma once

#include "host/picture/View.h"

#include <string>

class CRasterSource;

namespace zelto::cli {

/// What part of the ground is drawn, as the options say it; empty texts were not given.
struct ViewOptions {
    std::string box;    ///< left,top,right,bottom
    std::string center; ///< x,y
    double scale = 0.0; ///< ground units per output pixel; 0: the image's
    std::string size;   ///< WxH, Wx, xH or W
};

using host::View;

/// The view of a source: the whole image at most 1024 pixels along the longer side, unless the
/// options say otherwise. Where one side of the size is given the other keeps the box's shape.
/// Throws UsageError.
View ChooseView(const CRasterSource& source, const ViewOptions& options);

/// The same for the rectangle around an area, as far as the image reaches, widened to whole pixels
/// of the image. Throws Failure where the area lies beside the image.
/// @param aoi path of the area
View ChooseCrop(const CRasterSource& source, const std::string& aoi, const ViewOptions& options);

} // namespace zelto::cli
