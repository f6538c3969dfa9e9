#pragma once

#include "zelto/datasource/Enumerations.h"
#include "zelto/geometry/PlatformTypes.h"

#include <string>
#include <vector>

class CRasterSource;

namespace zelto::host {

/// What of an image is copied.
struct CopySelection {
    std::vector<int> bands; ///< from 0
    CRect window;           ///< pixels of the image, right and bottom not included
    PixelDataType type = PDT_Byte;

    int Width() const { return window.right - window.left; }
    int Height() const { return window.bottom - window.top; }
};

/// Creation options, KEY=VALUE, with which a new GeoTIFF has the bands' colours, but for those
/// whose key `given` has.
std::vector<std::string> ColorOptions(const CRasterSource& source, const CopySelection& selection,
                                      const std::vector<std::string>& given);

/// Takes what an image says beside its pixels to its copy: control points and rational
/// polynomials, moved with the window's corner, metadata, and of each band no-data value, colour
/// table and meaning, description, unit, scale, offset and categories.
/// @return what the format cannot hold, in words
std::vector<std::string> CopyFacts(CRasterSource& source, const CopySelection& selection,
                                   CRasterSource& made);

/// Copies the mask of all bands, where the image has one that is no band. Throws Failure.
/// @param to path of the copy, for messages
/// @return false where the format has none
bool CopyMask(CRasterSource& source, const CopySelection& selection, CRasterSource& made,
              const std::string& from, const std::string& to);

} // namespace zelto::host
