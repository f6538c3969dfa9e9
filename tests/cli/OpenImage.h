#pragma once

#include <gdal_priv.h>

#include <string>

namespace zelto::test {

/// An image opened by GDAL alone; null where it cannot.
inline GDALDatasetUniquePtr OpenImage(const std::string& path) {
    GDALAllRegister();
    return GDALDatasetUniquePtr(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
}

} // namespace zelto::test
