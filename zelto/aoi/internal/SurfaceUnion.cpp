#include "zelto/aoi/internal/SurfaceUnion.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/geometry/internal/GeosMemory.h"

#include <ogr_geometry.h>

#include <cmath>
#include <new>
#include <utility>
#include <vector>

namespace zelto {

namespace {

constexpr const char* REPAIRING = "a shape cannot be repaired";
constexpr const char* MERGING = "a shape cannot be merged with the others";

bool IsCollection(OGRwkbGeometryType type) {
    return type == wkbMultiPolygon || type == wkbGeometryCollection;
}

/// Appends the polygons in `geometry`.
/// @return false when there is anything else
bool CollectPolygons(const OGRGeometry& geometry, std::vector<const OGRPolygon*>& polygons) {
    const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
    if (type == wkbPolygon)
        polygons.push_back(geometry.toPolygon());
    bool all = type == wkbPolygon || IsCollection(type);
    if (IsCollection(type))
        for (const OGRGeometry* member : *geometry.toGeometryCollection())
            all = CollectPolygons(*member, polygons) && all;
    return all;
}

std::unique_ptr<OGRGeometry> CopyOf(const OGRGeometry& geometry) {
    std::unique_ptr<OGRGeometry> copy(geometry.clone());
    if (copy == nullptr)
        throw std::bad_alloc();
    return copy;
}

void AddCopy(const OGRPolygon& polygon, OGRMultiPolygon& polygons) {
    if (polygons.addGeometry(&polygon) != OGRERR_NONE)
        throw std::bad_alloc();
}

bool HasPlace(const OGRPolygon& polygon) {
    for (const OGRLinearRing* ring : polygon)
        for (const OGRPoint& p : *ring)
            if (!std::isfinite(p.getX()) || !std::isfinite(p.getY()))
                return false;
    return true;
}

bool IsValid(const OGRPolygon& polygon) {
    // Where a polygon crosses itself is nothing to report: it is repaired.
    CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    return polygon.IsValid();
}

/// Adds the polygon, repaired where that is needed.
void AddValid(const OGRPolygon& polygon, OGRMultiPolygon& valid) {
    if (polygon.IsEmpty())
        return;
    // GDAL repairs one without a place to nothing, as it does one without an area.
    if (!HasPlace(polygon)) {
        SetLastError("a shape has coordinates that are not finite");
        return;
    }
    RequireGeosMemory(polygon);
    if (IsValid(polygon)) {
        AddCopy(polygon, valid);
        return;
    }
    GdalWatch watch;
    // The default method takes the rings as lines and fills what lies within an odd number of
    // them; the other one would fill the middle of a star.
    const std::unique_ptr<OGRGeometry> repaired(polygon.MakeValid());
    if (!watch.Succeeded(repaired != nullptr, REPAIRING))
        return;
    // Spikes are left as lines, and a polygon folded onto itself as nothing else.
    std::vector<const OGRPolygon*> surfaces;
    CollectPolygons(*repaired, surfaces);
    for (const OGRPolygon* surface : surfaces)
        AddCopy(*surface, valid);
}

/// The members united one after the other, without those with which that fails.
std::unique_ptr<OGRGeometry> UniteOneByOne(const OGRMultiPolygon& polygons) {
    std::unique_ptr<OGRGeometry> united = CopyOf(*polygons.getGeometryRef(0));
    for (int i = 1; i < polygons.getNumGeometries(); ++i) {
        RequireGeosMemory(*united);
        GdalWatch watch;
        std::unique_ptr<OGRGeometry> more(united->Union(polygons.getGeometryRef(i)));
        if (watch.Succeeded(more != nullptr, MERGING))
            united = std::move(more);
    }
    return united;
}

} // namespace

std::unique_ptr<OGRGeometry> UniteSurfaces(const OGRGeometry& geometry) {
    std::vector<const OGRPolygon*> polygons;
    if (!CollectPolygons(geometry, polygons) || polygons.empty())
        return CopyOf(geometry);
    OGRMultiPolygon valid;
    for (const OGRPolygon* polygon : polygons)
        AddValid(*polygon, valid);
    if (valid.IsEmpty())
        return std::make_unique<OGRPolygon>();
    if (valid.getNumGeometries() == 1)
        return CopyOf(*valid.getGeometryRef(0));
    RequireGeosMemory(valid);
    GdalWatch watch;
    std::unique_ptr<OGRGeometry> united(valid.UnionCascaded());
    return watch.Succeeded(united != nullptr, MERGING) ? std::move(united) : UniteOneByOne(valid);
}

} // namespace zelto
