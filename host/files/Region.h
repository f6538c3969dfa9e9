#pragma once

#include "zelto/aoi/AOISource.h"
#include "zelto/raster/RasterSource.h"

#include <memory>
#include <string>

namespace zelto::host {

/// What chooses a part of an image; one of the texts at most is not empty.
struct RegionOptions {
    std::string aoi;   ///< path of an area of interest or of a vector file
    std::string box;   ///< left,top,right,bottom in the raster's ground units
    std::string shape; ///< in the same units, as ParseShape() reads it

    bool IsWholeImage() const { return aoi.empty() && box.empty() && shape.empty(); }
};

/// Opens a raster for reading numbers from a part of it: on its own pixel grid, also where that
/// is rotated; one that only control points place is opened as a north-up view. Throws Failure.
void OpenForRegion(CRasterSource& raster, const std::string& path, const RegionOptions& options);

/// The shapes of the region, in the raster's reference system: those of the area file, or one
/// for a box or a shape. Null for the whole image. Throws Failure or UsageError.
std::unique_ptr<CAOISource> MakeRegion(const RegionOptions& options, const CRasterSource& raster);

/// A complete shape from a text such as "polygon 0,0 10,0 10,5", "rectangle 0,10,5,0" or
/// "ellipse left,top,right,bottom"; blanks, commas and semicolons part the numbers. Throws
/// UsageError naming `option`.
std::unique_ptr<CDrawShape> ParseShape(const std::string& option, const std::string& text);

} // namespace zelto::host
