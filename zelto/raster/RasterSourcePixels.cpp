#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace {

/// Room for a sample of any GDAL type. Samples pass through it because the slots of a pixel
/// are narrower than the complex types.
using Sample = std::array<std::byte, 16>;

} // namespace

GISError CRasterSource::GetPixel(void* values, int col, int row, PixelDataType type) {
    if (values == nullptr || !IsInside(col, row))
        return GIS_FAILED;
    const PixelDataType slotType = type == PDT_Unknown ? m_dataType : type;
    const auto slotSize = static_cast<std::size_t>(GetByteOffset(slotType));
    auto* slot = static_cast<std::byte*>(values);
    for (CRasterBand* band : m_bands) {
        Sample sample = {};
        if (band->GetPixel(sample.data(), col, row, slotType) == GIS_SUCCESS)
            std::memcpy(slot, sample.data(), slotSize);
        band->FlushCache();
        slot += slotSize;
    }
    return GIS_SUCCESS;
}

GISError CRasterSource::SetPixel(void* values, int col, int row) {
    if (m_dataset == nullptr || values == nullptr || !IsInside(col, row))
        return GIS_FAILED;
    const auto slotSize = static_cast<std::size_t>(GetByteOffset(m_dataType));
    const auto* slot = static_cast<const std::byte*>(values);
    for (int number = 1; number <= m_bandCount; ++number) {
        Sample sample = {};
        std::memcpy(sample.data(), slot, slotSize);
        slot += slotSize;
        GDALRasterBand* band = m_dataset->GetRasterBand(number);
        if (band == nullptr)
            continue;
        const CPLErr ignored = band->RasterIO(GF_Write, col, row, 1, 1, sample.data(), 1, 1,
                                              static_cast<GDALDataType>(m_dataType), 0, 0, nullptr);
        static_cast<void>(ignored);
    }
    return GIS_SUCCESS;
}

bool CRasterSource::IsInside(int col, int row) const {
    return col >= 0 && col < m_width && row >= 0 && row < m_height;
}
