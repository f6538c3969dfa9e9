#pragma once

#include "zelto/coordinate/Reproject.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace zelto::test {

/// An open byte raster of zeros at a given place.
class PlacedRaster {
  public:
    PlacedRaster(int width, int height, const std::array<double, 6>& geoTransform,
                 const std::string& srs) {
        const RasterSpec spec = {
            .width = width, .height = height, .geoTransform = geoTransform, .srs = srs};
        const Pixels zeros(static_cast<std::size_t>(width) * height, 0.0);
        WriteRaster(m_folder.File("raster.tif"), spec, {zeros});
        EXPECT_EQ(m_source.Open(m_folder.WideFile("raster.tif").c_str(), GIS_READONLY, true),
                  GIS_SUCCESS);
    }
    CRasterSource* operator->() { return &m_source; }
    CRasterSource* Get() { return &m_source; }

  private:
    TemporaryFolder m_folder;
    CRasterSource m_source;
};

constexpr const char* UTM50 = "EPSG:32650";

inline std::unique_ptr<CReproject> Bind(PlacedRaster& raster, const char* target) {
    return std::unique_ptr<CReproject>(CReproject::Create(raster.Get(), target, nullptr, nullptr));
}

} // namespace zelto::test
