#include "zelto/raster/RasterBand.h"

#include <gdal_priv.h>

GISError CRasterBand::SetColorTable(GDALColorTable* table) {
    if (m_band == nullptr || table == nullptr || m_band->SetColorTable(table) != CE_None)
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
    return m_band->SetColorTable(&table) == CE_None ? GIS_SUCCESS : GIS_FAILED;
}
