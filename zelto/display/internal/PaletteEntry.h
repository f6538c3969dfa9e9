#pragma once

#include "zelto/baselib/internal/Truncate.h"
#include "zelto/raster/RasterBand.h"

#include <gdal_priv.h>

namespace zelto {

/// The colour table that a band is shown through; null for a band that has found none. A band given
/// other colours as records keeps its pointer to the table that GDAL has freed in their place.
inline const GDALColorTable* PaletteOf(const CRasterBand& band) {
    return band.GetColorTable() != nullptr ? band.GetGDALBand()->GetColorTable() : nullptr;
}

/// Colour-table entry of a sample: the entry whose index is the sample truncated. Indices
/// beyond the table and tables that are not RGB give a transparent black.
inline GDALColorEntry PaletteEntry(const GDALColorTable& table, double sample) {
    GDALColorEntry entry{};
    table.GetColorEntryAsRGB(TruncateToInt32(sample), &entry);
    return entry;
}

} // namespace zelto
