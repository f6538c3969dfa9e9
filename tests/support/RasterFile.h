#pragma once

#include <gdal_priv.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace zelto::test {

/// What a test raster looks like; pixels are given apart.
struct RasterSpec {
    int width = 1;
    int height = 1;
    GDALDataType type = GDT_Byte;
    std::string driver = "GTiff";
    std::optional<std::array<double, 6>> geoTransform = {};
    std::string srs = {}; ///< anything the spatial reference's user-input parser takes
    std::optional<double> noData = {};
    std::vector<std::string> options = {}; ///< creation options, "KEY=VALUE"
    std::vector<int> overviews = {};       ///< overview levels to build, nearest
};

/// One band's pixels, row by row.
using Pixels = std::vector<double>;

/// Creates a raster file with one band per element of `bands` and returns its path.
/// Fails the test when GDAL reports an error.
std::string WriteRaster(const std::string& path, const RasterSpec& spec,
                        const std::vector<Pixels>& bands);

/// Writes a netCDF file whose every band is a sub-data-set: it has no bands of its own.
/// @param bands at least two
/// @return the path
std::string WriteContainer(const std::string& path, const RasterSpec& spec,
                           const std::vector<Pixels>& bands);

/// Gives a GeoTIFF of width × height pixels a mask inside it.
/// @param values 0 to 255, row by row
void AddMask(const std::string& path, std::vector<unsigned char> values, int width, int height);

/// Pixel value `f(column, row)` for every pixel of a width × height band.
template <typename Function>
Pixels MakePixels(int width, int height, Function f) {
    Pixels pixels;
    pixels.reserve(static_cast<std::size_t>(width) * height);
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            pixels.push_back(f(column, row));
    return pixels;
}

/// The band's pixels as doubles, read by GDAL alone.
Pixels ReadBand(const std::string& path, int band);

/// A north-up geotransform: top-left corner and pixel size.
std::array<double, 6> NorthUp(double left, double top, double pixelSize);

} // namespace zelto::test
