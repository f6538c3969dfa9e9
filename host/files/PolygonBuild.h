#pragma once

#include <cstdint>
#include <string>

class CDataProgress;
class CRasterSource;

namespace zelto::host {

/// How polygons are made of pixels.
struct PolygonOptions {
    int band = 1;                ///< counted from 1, as the next
    int mask = 0;                ///< band whose zeros make no polygons; 0: none
    std::string field = "value"; ///< name of the attribute that holds the pixels' value
    bool eight = false;          ///< pixels that touch at a corner belong together
    bool keepNoData = false;     ///< no-data pixels make polygons as well
};

/// Writes a polygon for every area of equal pixels into a new vector file, which replaces one of
/// its name when it is complete. Throws Failure and UsageError.
/// @param path the raster's, for messages
/// @param out path of the new file
/// @return how many there are
std::int64_t BuildPolygons(CRasterSource& raster, const std::string& path, const std::string& out,
                           const PolygonOptions& options, CDataProgress& progress);

} // namespace zelto::host
