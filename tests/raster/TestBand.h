#pragma once

#include "zelto/raster/RasterBand.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace zelto::test {

/// The engine's band over the first band of a raster file made for the test.
class TestBand {
  public:
    TestBand(const RasterSpec& spec, const Pixels& pixels, unsigned access = GDAL_OF_READONLY) {
        m_path = WriteRaster(m_folder.File("band.tif"), spec, {pixels});
        Open(access);
    }

    void Open(unsigned access) {
        Close();
        m_dataset.reset(GDALDataset::Open(m_path.c_str(), GDAL_OF_RASTER | access));
        ASSERT_NE(m_dataset, nullptr);
        m_band = std::make_unique<CRasterBand>(Gdal(), true, false);
    }
    void Close() {
        m_band.reset();
        m_dataset.reset();
    }

    CRasterBand* operator->() { return m_band.get(); }
    CRasterBand& operator*() { return *m_band; }
    GDALRasterBand* Gdal() { return m_dataset->GetRasterBand(1); }
    const std::string& Path() const { return m_path; }
    TemporaryFolder& Folder() { return m_folder; }

  private:
    TemporaryFolder m_folder;
    std::string m_path;
    GDALDatasetUniquePtr m_dataset;
    std::unique_ptr<CRasterBand> m_band;
};

/// 0 … 11 in four columns and three rows.
inline Pixels Twelve() {
    return MakePixels(4, 3, [](int c, int r) { return r * 4 + c; });
}

} // namespace zelto::test
