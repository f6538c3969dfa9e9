#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/raster/internal/CachedRegion.h"
#include "zelto/raster/internal/StatisticsOnDemand.h"

#include <gdal_priv.h>

bool CRasterBand::IsNoData(double v) const {
    return m_hasNoData != 0 && zelto::IsNearNoData(v, m_noDataValue);
}

bool CRasterBand::SetNoDataValue(double value, bool writeToFile) {
    // Some formats have one value for all bands, and a virtual raster fills its gaps with it;
    // neither must change what is found.
    if (writeToFile && m_pending)
        m_pending->source->TakeAll();
    const zelto::OperationScope scope;
    if (writeToFile && (m_band == nullptr ||
                        !zelto::Writes(*m_band, [&] { return m_band->SetNoDataValue(value); })))
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
