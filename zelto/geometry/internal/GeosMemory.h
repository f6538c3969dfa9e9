#pragma once

#include <cpl_vsi.h>
#include <ogr_geometry.h>

#include <new>

namespace zelto {

/// Throws std::bad_alloc where there is no memory for what GDAL copies of the geometry before
/// GEOS works on it. GDAL ends the process when it finds none for the copy; to try first leaves
/// the end to us.
inline void RequireGeosMemory(const OGRGeometry& geometry) {
    // The copy, GEOS's own form of it with three coordinates to a point, and what surrounds both.
    constexpr std::size_t COPIES = 4;
    void* const trial = VSIMalloc2(geometry.WkbSize(), COPIES);
    if (trial == nullptr)
        throw std::bad_alloc();
    VSIFree(trial);
}

} // namespace zelto
