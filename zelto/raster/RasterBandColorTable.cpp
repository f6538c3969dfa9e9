#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"

#include <gdal_priv.h>

GISError CRasterBand::SetColorTable(GDALColorTable* table) {
    const zelto::OperationScope scope;
    if (m_band == nullptr || table == nullptr ||
        !zelto::Writes(*m_band, [&] { return m_band->SetColorTable(table); }))
        return GIS_FAILED;
    m_colorTable = m_band->GetColorTable();
    return GIS_SUCCESS;
}

GISError CRasterBand::SetColorTable(tagColorEntry* entries, int count) {
    if (m_band == nullptr || entries == nullptr)
        return GIS_FAILED;
    GDALColorTable table;
    for (int i = 0; i < count; ++i) {
        const GDALColorEntry entry{entries[i].red, entries[i].green, entries[i].blue,
                                   entries[i].alpha};
        table.SetColorEntry(i, &entry);
    }
    const zelto::OperationScope scope;
    return zelto::Writes(*m_band, [&] { return m_band->SetColorTable(&table); }) ? GIS_SUCCESS
                                                                                 : GIS_FAILED;
}
