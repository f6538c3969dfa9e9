#include "zelto/geometry/OgrAlgorithm.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/Operation.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double NOTHING_NEAR = std::numeric_limits<double>::max();

double DistanceToLineString(const OGRLineString& line, double x, double y) {
    double least = NOTHING_NEAR;
    for (int i = 0; i + 1 < line.getNumPoints(); ++i) {
        const CPoint2D a(line.getX(i), line.getY(i));
        const CPoint2D b(line.getX(i + 1), line.getY(i + 1));
        least = std::min(least, COgrAlgorithm::DistancePointLine({x, y}, a, b));
    }
    return least;
}

bool IsInAnyExteriorRing(const OGRMultiPolygon& polygons, const OGRPoint& point) {
    return std::any_of(polygons.begin(), polygons.end(), [&](const OGRPolygon* polygon) {
        const OGRLinearRing* ring = polygon->getExteriorRing();
        return ring != nullptr && ring->isPointInRing(&point, TRUE) != FALSE;
    });
}

} // namespace

COgrAlgorithm::~COgrAlgorithm() = default;

double COgrAlgorithm::DistancePointLine(const CPoint2D& p, const CPoint2D& a, const CPoint2D& b) {
    if (std::fabs(a.x - b.x) < GEOMETRY_EPSILON && std::fabs(a.y - b.y) < GEOMETRY_EPSILON)
        return p.distance(a);
    const CPoint2D direction = b - a;
    const CPoint2D offset = p - a;
    const double squaredLength = direction.x * direction.x + direction.y * direction.y;
    const double t = (offset.x * direction.x + offset.y * direction.y) / squaredLength;
    if (t <= 0.0)
        return p.distance(a);
    if (t >= 1.0)
        return p.distance(b);
    const double cross = (a.y - p.y) * (b.x - a.x) - (a.x - p.x) * (b.y - a.y);
    return std::fabs(cross) / squaredLength * direction.length();
}

double COgrAlgorithm::DistanceWithPoint(const OGRGeometry* geometry, double x, double y) {
    if (geometry == nullptr)
        return 0.0;
    switch (wkbFlatten(geometry->getGeometryType())) {
    case wkbLineString:
        return DistanceToLineString(*geometry->toLineString(), x, y);
    case wkbMultiLineString: {
        double least = NOTHING_NEAR;
        for (const OGRLineString* line : *geometry->toMultiLineString())
            least = std::min(least, DistanceWithPoint(line, x, y));
        return least;
    }
    default:
        return NOTHING_NEAR;
    }
}

bool COgrAlgorithm::IsPointOnSurface(OGRGeometry* geometry, OGRPoint* point) {
    if (geometry == nullptr || point == nullptr)
        return false;
    switch (wkbFlatten(geometry->getGeometryType())) {
    case wkbPolygon:
        return geometry->toPolygon()->IsPointOnSurface(point) != FALSE;
    case wkbMultiPolygon:
        // Holes of the members do not count here.
        return IsInAnyExteriorRing(*geometry->toMultiPolygon(), *point);
    case wkbGeometryCollection: {
        OGRGeometryCollection& members = *geometry->toGeometryCollection();
        return std::any_of(members.begin(), members.end(),
                           [&](OGRGeometry* member) { return IsPointOnSurface(member, point); });
    }
    default:
        return false;
    }
}

int COgrAlgorithm::SaveGeometry(const char* path, OGRGeometry* geometry) {
    const zelto::OperationScope scope;
    OGRRegisterAll();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (driver == nullptr || path == nullptr)
        return 1;
    // A dump for looking at: whether it could be written is told by the reason alone.
    zelto::GdalWatch watch;
    GDALDatasetUniquePtr dataset(driver->Create(path, 0, 0, 0, GDT_Unknown, nullptr));
    OGRLayer* layer =
        dataset ? dataset->CreateLayer("polygon", nullptr, wkbPolygon, nullptr) : nullptr;
    bool written = layer != nullptr;
    if (written) {
        OGRFieldDefn field("152", OFTString);
        field.SetWidth(320);
        written = layer->CreateField(&field) == OGRERR_NONE;
        const OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer->GetLayerDefn()));
        feature->SetField("152", "152.tif");
        feature->SetGeometry(geometry);
        written = layer->CreateFeature(feature.get()) == OGRERR_NONE && written;
    }
    dataset.reset(); // what is still in memory is written now
    static_cast<void>(watch.Succeeded(written, path));
    return 1;
}
