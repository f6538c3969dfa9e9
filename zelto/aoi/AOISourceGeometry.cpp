#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/aoi/internal/ShapeGeometry.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/SpatialReference.h"

#include <ogr_geometry.h>
#include <ogr_spatialref.h>

#include <memory>
#include <new>
#include <vector>

namespace {

using Transformation = std::unique_ptr<OGRCoordinateTransformation>;

/// Transforms the points in place; those that have no place in the target become infinite.
void TransformPoints(OGRCoordinateTransformation& transformation, std::vector<CPoint2D>& points) {
    std::vector<double> xs;
    std::vector<double> ys;
    for (const auto& [x, y] : points) {
        xs.push_back(x);
        ys.push_back(y);
    }
    transformation.Transform(static_cast<int>(points.size()), xs.data(), ys.data());
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = CPoint2D(xs[i], ys[i]);
}

/// The points that make the shape when they are fed to AddVertex().
std::vector<CPoint2D> DefiningPoints(const CDrawShape& shape) {
    // A host may have given the kind of a rectangle to a class of its own.
    const auto* const rectangle = dynamic_cast<const CDrawRectangle*>(&shape);
    if (shape.m_shapeKind == SHAPE_POLYGON || rectangle == nullptr)
        return shape.m_vertices;
    const auto [left, top] = rectangle->m_topLeft;
    return {{left, top}, {left + rectangle->m_width, top - rectangle->m_height}};
}

void AddTo(OGRGeometryCollection& collection, std::unique_ptr<OGRPolygon> polygon) {
    if (collection.addGeometryDirectly(polygon.get()) != OGRERR_NONE)
        throw std::bad_alloc();
    static_cast<void>(polygon.release());
}

void TransformShape(OGRCoordinateTransformation& transformation, CDrawShape& shape) {
    std::vector<CPoint2D> points = DefiningPoints(shape);
    TransformPoints(transformation, points);
    shape.m_vertices.clear();
    for (const CPoint2D& point : points)
        shape.AddVertex(point);
    shape.m_complete = true;
}

} // namespace

CAOISource* CAOISource::Create(OGRGeometry* geometry) {
    using Source = CAOISource*;
    return zelto::NoThrow(Source(nullptr), [&]() -> Source {
        auto source = std::make_unique<CAOISource>();
        if (geometry != nullptr) {
            source->AddPolygons(geometry);
            if (source->m_drawShapes.empty()) {
                zelto::SetLastError("the geometry has no polygon of three points or more");
                return nullptr;
            }
        }
        return source.release();
    });
}

void CAOISource::AddPolygons(const OGRGeometry* geometry) {
    switch (wkbFlatten(geometry->getGeometryType())) {
    case wkbPolygon:
        for (const OGRLinearRing* ring : *geometry->toPolygon())
            AddRing(*ring);
        break;
    case wkbMultiPolygon:
    case wkbGeometryCollection:
        for (const OGRGeometry* member : *geometry->toGeometryCollection())
            AddPolygons(member);
        break;
    default:
        break;
    }
}

/// A hole becomes an area of its own, as every ring does, its closing point included.
void CAOISource::AddRing(const OGRLinearRing& ring) {
    auto polygon = std::make_unique<CDrawPolygon>();
    polygon->m_vertices.reserve(static_cast<std::size_t>(ring.getNumPoints()));
    for (int i = 0; i < ring.getNumPoints(); ++i)
        polygon->AddVertex(CPoint2D(ring.getX(i), ring.getY(i)));
    if (polygon->m_vertices.size() >= 3)
        AddOwnShape(std::move(polygon));
}

OGRGeometry* CAOISource::GetOGRGeometries() {
    if (m_geometry != nullptr || m_drawShapes.empty())
        return m_geometry;
    using Geometry = OGRGeometry*;
    return zelto::NoThrow(Geometry(nullptr), [&]() -> Geometry {
        const zelto::ShapePolygons polygons(m_drawShapes, m_resolution);
        if (m_drawShapes.size() == 1)
            return m_geometry = polygons.Make(*m_drawShapes.front()).release();
        auto collection = std::make_unique<OGRGeometryCollection>();
        for (const CDrawShape* shape : m_drawShapes)
            AddTo(*collection, polygons.Make(*shape));
        return m_geometry = collection.release();
    });
}

GISError CAOISource::OpenAndWarped(const wchar_t* path, GISDataAccess access,
                                   const char* targetWkt) {
    const GISError error = Open(path, access, true);
    return error != GIS_SUCCESS || targetWkt == nullptr ? error : TransformTo(targetWkt);
}

GISError CAOISource::TransformTo(const char* targetWkt) {
    if (targetWkt == nullptr)
        return zelto::FailWith(GIS_OPEN_FAILED, m_filePath, "no reference system to transform to");
    const GISError warped = zelto::NoThrow(GIS_FAILED, [&] { return WarpShapes(targetWkt); });
    // Shapes of which memory has left some in one system and some in the other are of no use.
    if (warped == GIS_FAILED)
        Close();
    return warped;
}

GISError CAOISource::WarpShapes(const char* targetWkt) {
    OGRSpatialReference source;
    OGRSpatialReference target;
    zelto::LoadSpatialReference(source, m_wkt.c_str());
    zelto::LoadSpatialReference(target, targetWkt);
    if (zelto::IsSameReference(source, target))
        return GIS_SUCCESS;
    const std::string file = CommonFun::U2M(m_filePath);
    zelto::GdalWatch creation;
    const Transformation transformation(OGRCreateCoordinateTransformation(&source, &target));
    if (!creation.Succeeded(transformation != nullptr, file))
        return GIS_OPEN_FAILED;
    zelto::GdalWatch watch;
    for (CDrawShape* shape : m_drawShapes)
        TransformShape(*transformation, *shape);
    // Points without a place in the target are no failure: the rest of the area has one.
    watch.Succeeded(true, file);
    RecomputeExtent();
    SetSpatialReferenceWKT(zelto::ExportToWkt(target).c_str());
    return GIS_SUCCESS;
}
