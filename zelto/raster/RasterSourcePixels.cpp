#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
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
    const zelto::OperationScope scope;
    if (values == nullptr)
        return zelto::FailWith(GIS_FAILED, m_filePath, "there is no buffer for the values");
    if (!IsInside(col, row))
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
    const zelto::OperationScope scope;
    if (m_dataset == nullptr || values == nullptr)
        return zelto::FailWith(GIS_FAILED, m_filePath, "it is not open, or there are no values");
    if (!IsInside(col, row))
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
        zelto::GdalWatch watch;
        const CPLErr written = band->RasterIO(GF_Write, col, row, 1, 1, sample.data(), 1, 1,
                                              static_cast<GDALDataType>(m_dataType), 0, 0, nullptr);
        // Leaves the reason; the pixel counts as written all the same.
        watch.Succeeded(written, CommonFun::U2M(m_filePath));
    }
    return GIS_SUCCESS;
}

bool CRasterSource::IsInside(int col, int row) const {
    if (col >= 0 && col < m_width && row >= 0 && row < m_height)
        return true;
    zelto::SetLastError(m_filePath, "no pixel stands at column " + std::to_string(col) + ", row " +
                                        std::to_string(row));
    return false;
}
