#pragma once

#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterSource.h"

template <typename Body>
GISError CRasterSource::Opening(const Body& body) {
    const GISError result = zelto::Operation(GIS_OPEN_FAILED, body);
    // Short of memory half-way.
    if (result == GIS_OPEN_FAILED && m_dataset != nullptr)
        Close();
    return result;
}
