#pragma once

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

namespace zelto::test {

/// An image opened by GDAL alone; null where it cannot.
inline GDALDatasetUniquePtr OpenImage(const std::string& path) {
    GDALAllRegister();
    return GDALDatasetUniquePtr(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
}

inline std::array<double, 6> GeoTransformOf(const std::string& path) {
    std::array<double, 6> geoTransform = {};
    EXPECT_EQ(OpenImage(path)->GetGeoTransform(geoTransform.data()), CE_None);
    return geoTransform;
}

} // namespace zelto::test
