#pragma once

#include <gdal_priv.h>

#include <cstdint>

namespace zelto {

/// Whether memory may be taken for the band's blocks. GDAL holds a block whole, and the size of
/// a block comes from the file: a damaged header of a few bytes can ask for any amount. No
/// healthy file has blocks of more than a gibibyte.
inline bool CanHoldBlocks(GDALRasterBand& band) {
    constexpr std::int64_t LIMIT = std::int64_t{1} << 30;
    int width = 0;
    int height = 0;
    band.GetBlockSize(&width, &height);
    const int sampleSize = GDALGetDataTypeSizeBytes(band.GetRasterDataType());
    return std::int64_t{width} * height <= LIMIT / (sampleSize > 0 ? sampleSize : 1);
}

} // namespace zelto
