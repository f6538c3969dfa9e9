#pragma once

#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <array>
#include <string>

namespace zelto::test {

/// A raster source whose protected state the tests may look at.
class ExposedRasterSource : public CRasterSource {
  public:
    using CRasterSource::BuildOverviews;
    using CRasterSource::GetByteOffset;

    bool HasBase() const { return m_baseDataset != nullptr; }
    GDALDataset* Base() const { return m_baseDataset; }
    bool AllowsWarp() const { return m_allowWarp; }
    std::array<double, 6> GeoTransform() const { return std::to_array(m_geoTransform); }
    void SetGrid(const std::array<double, 6>& geoTransform, int width, int height) {
        std::copy(geoTransform.begin(), geoTransform.end(), m_geoTransform);
        InvertGeoTransform();
        m_width = width;
        m_height = height;
    }
    /// As a host's own kind of source may.
    void GiveUpReference() {
        m_spatialReference->Release();
        m_spatialReference = nullptr;
    }
    CBoundingBox Extent() const { return GetExtentInit(); }
    void SetUpDisplayBands(int bandCount) {
        m_bandCount = bandCount;
        InitShowBandInfo();
    }
};

/// Number of data sets that GDAL holds open.
inline int OpenDatasetCount() {
    GDALDataset** datasets = nullptr;
    int count = 0;
    datasets = GDALDataset::GetOpenDatasets(&count);
    static_cast<void>(datasets);
    return count;
}

} // namespace zelto::test
