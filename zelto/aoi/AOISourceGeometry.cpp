#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/aoi/internal/ShapeGeometry.h"
#include "zelto/baselib/internal/SpatialReference.h"

#include <ogr_geometry.h>
#include <ogr_spatialref.h>

#include <memory>
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
    if (shape.m_shapeKind == SHAPE_POLYGON)
        return shape.m_vertices;
    const auto& rectangle = static_cast<const CDrawRectangle&>(shape);
    const auto [left, top] = rectangle.m_topLeft;
    return {{left, top}, {left + rectangle.m_width, top - rectangle.m_height}};
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
    auto source = std::make_unique<CAOISource>();
    if (geometry == nullptr)
        return source.release();
    source->AddPolygons(geometry);
    return source->m_drawShapes.empty() ? nullptr : source.release();
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
    for (int i = 0; i < ring.getNumPoints(); ++i)
        polygon->AddVertex(CPoint2D(ring.getX(i), ring.getY(i)));
    if (polygon->m_vertices.size() >= 3)
        AddOwnShape(std::move(polygon));
}

OGRGeometry* CAOISource::GetOGRGeometries() {
    if (m_geometry != nullptr || m_drawShapes.empty())
        return m_geometry;
    if (m_drawShapes.size() == 1)
        return m_geometry = zelto::MakePolygon(*m_drawShapes.front(), m_resolution);
    auto* collection = new OGRGeometryCollection;
    for (const CDrawShape* shape : m_drawShapes)
        collection->addGeometryDirectly(zelto::MakePolygon(*shape, m_resolution));
    return m_geometry = collection;
}

GISError CAOISource::OpenAndWarped(const wchar_t* path, GISDataAccess access,
                                   const char* targetWkt) {
    const GISError error = Open(path, access, true);
    if (error != GIS_SUCCESS || targetWkt == nullptr)
        return error;
    OGRSpatialReference source;
    OGRSpatialReference target;
    zelto::LoadSpatialReference(source, m_wkt.c_str());
    zelto::LoadSpatialReference(target, targetWkt);
    if (zelto::IsSameReference(source, target))
        return error;
    const Transformation transformation(OGRCreateCoordinateTransformation(&source, &target));
    if (transformation == nullptr)
        return GIS_OPEN_FAILED;
    for (CDrawShape* shape : m_drawShapes)
        TransformShape(*transformation, *shape);
    RecomputeExtent();
    SetSpatialReferenceWKT(zelto::ExportToWkt(target).c_str());
    return error;
}
