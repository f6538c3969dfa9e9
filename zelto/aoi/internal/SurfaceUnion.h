#pragma once

#include <memory>

class OGRGeometry;

namespace zelto {

/// A copy of `geometry` that GDAL can cut: every polygon that crosses or touches itself is
/// repaired, after which a point is inside where a line from it outwards crosses the rings an odd
/// number of times, as in CDrawPolygon; what encloses no area is left out; and the polygons of a
/// collection are merged, because one whose members overlap cannot be cut. A geometry that is no
/// surface or collection of surfaces is copied as it is.
///
/// A polygon that cannot be repaired or merged is left out and the reason told by LastError();
/// the others stay. Throws std::bad_alloc.
std::unique_ptr<OGRGeometry> UniteSurfaces(const OGRGeometry& geometry);

} // namespace zelto
