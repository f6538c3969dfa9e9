#include "zelto/raster/RasterSource.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"

#include <gdal_priv.h>

CRasterSource::CRasterSource() {
    m_dataSourceType = DS_RASTER;
}

CRasterSource::~CRasterSource() {
    CRasterSource::Close();
}

bool CRasterSource::IsOpened() {
    return m_dataset != nullptr;
}

bool CRasterSource::IsComposedRaster() {
    return false;
}

std::wstring CRasterSource::GetRasterDataTypeName() const {
    return CommonFun::M2U(GDALGetDataTypeName(static_cast<GDALDataType>(m_dataType)));
}

CRasterBand* CRasterSource::GetRasterBand(int index) const {
    // A closed source keeps its band count but has no bands.
    if (index < 0 || index >= m_bandCount || index >= static_cast<int>(m_bands.size()))
        return nullptr;
    return m_bands[static_cast<std::size_t>(index)];
}

void CRasterSource::TakeStatistics() const {
    for (const CRasterBand* band : m_bands)
        band->FindOwnStatistics();
}

CRasterSource* CRasterSource::GetSubRaster(int index) const {
    if (index < 0 || index >= GetSubRasterCount())
        return nullptr;
    return m_subRasters[static_cast<std::size_t>(index)];
}

int CRasterSource::GetByteOffset(PixelDataType type) {
    switch (type) {
    case PDT_Unknown:
        return 0;
    case PDT_Byte:
        return 1;
    case PDT_UInt16:
    case PDT_Int16:
        return 2;
    case PDT_Float64:
        return 8;
    default:
        return 4;
    }
}
