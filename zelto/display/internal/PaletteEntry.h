#pragma once

#include "zelto/baselib/internal/Truncate.h"

#include <gdal_priv.h>

namespace zelto {

/// Colour-table entry of a sample: the entry whose index is the sample truncated. Indices
/// beyond the table and tables that are not RGB give a transparent black.
inline GDALColorEntry PaletteEntry(const GDALColorTable& table, double sample) {
    GDALColorEntry entry{};
    table.GetColorEntryAsRGB(TruncateToInt32(sample), &entry);
    return entry;
}

} // namespace zelto
