#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/CachedRegion.h"

#include <gdal_priv.h>

bool CRasterBand::IsNoData(double v) const {
    return m_hasNoData != 0 && zelto::IsNearNoData(v, m_noDataValue);
}

bool CRasterBand::SetNoDataValue(double value, bool writeToFile) {
    // A virtual raster fills its gaps with the value, which must not change what is found.
    if (writeToFile)
        TakeStatistics();
    if (writeToFile && (m_band == nullptr || m_band->SetNoDataValue(value) != CE_None))
        return false;
    m_noDataValue = value;
    m_hasNoData = 1;
    return true;
}

bool CRasterBand::ClearNoDataValue(bool writeToFile) {
    m_hasNoData = 0;
    m_noDataValue = 0.0;
    return !writeToFile;
}
