#pragma once

#include <cstdint>
#include <string>

class CDataProgress;
class CRasterSource;

namespace zelto::host {

/// How polygons are made of pixels.
struct PolygonOptions {
    int band = 1;
    int mask = 0; ///< band whose zeros make no polygons; 0: none
    std::string field = "value";
    bool eight = false; ///< pixels that touch at a corner belong together
    bool keepNoData = false;
};

/// Writes a polygon for every area of equal pixels into a new vector file. Throws Failure and
/// UsageError.
/// @param path the raster's, for messages
/// @return how many there are
std::int64_t BuildPolygons(CRasterSource& raster, const std::string& path, const std::string& out,
                           const PolygonOptions& options, CDataProgress& progress);

} // namespace zelto::host
