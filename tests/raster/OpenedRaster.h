#pragma once

#include "zelto/raster/internal/OpenedFile.h"

#include <gdal_priv.h>

#include <string>
#include <vector>

namespace zelto::test {

/// A data set that is open as a source opens one.
class OpenedRaster {
  public:
    explicit OpenedRaster(const std::string& path) {
        const auto file = FileState::Of(path);
        m_dataset.reset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        NoteOpened(*m_dataset, file);
    }
    ~OpenedRaster() { NoteClosed(m_dataset.get()); }
    OpenedRaster(const OpenedRaster&) = delete;
    OpenedRaster& operator=(const OpenedRaster&) = delete;

    GDALDataset& operator*() const { return *m_dataset; }
    std::vector<GDALRasterBand*> Bands() const {
        std::vector<GDALRasterBand*> bands;
        for (int number = 1; number <= m_dataset->GetRasterCount(); ++number)
            bands.push_back(m_dataset->GetRasterBand(number));
        return bands;
    }

  private:
    GDALDatasetUniquePtr m_dataset;
};

} // namespace zelto::test
