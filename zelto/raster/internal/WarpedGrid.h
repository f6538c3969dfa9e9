#pragma once

#include <array>
#include <string>

class GDALDataset;

namespace zelto {

/// The pixels that a warped view is to have.
struct ViewGrid {
    std::array<double, 6> geoTransform = {}; ///< in the target's system
    int width = 0;
    int height = 0;
};

/// A view of a raster in another reference system whose pixels take the nearest value of the
/// raster. It holds a reference to the raster; close it with GDALClose().
/// @param source, target WKT
/// @return null where there is no transformation; GDAL then tells why
GDALDataset* WarpToGrid(GDALDataset& raster, const std::string& source, const std::string& target,
                        const ViewGrid& grid);

} // namespace zelto
