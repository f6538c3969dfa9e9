#pragma once

#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>

#include <string>

namespace zelto::test {

/// Makes the compressed bytes of a one-band file's last tile useless.
inline void DamageLastBlock(const std::string& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    GDALRasterBand& band = *dataset->GetRasterBand(1);
    int width = 0, height = 0;
    band.GetBlockSize(&width, &height);
    const std::string last = std::to_string((band.GetXSize() - 1) / width) + "_" +
                             std::to_string((band.GetYSize() - 1) / height);
    const std::string offset = band.GetMetadataItem(("BLOCK_OFFSET_" + last).c_str(), "TIFF");
    std::string bytes = ReadFile(path);
    bytes.replace(std::stoul(offset), 64, 64, '\xFF');
    WriteFile(path, bytes);
}

} // namespace zelto::test
