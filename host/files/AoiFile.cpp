#include "host/files/AoiFile.h"

#include "zelto/aoi/DrawEllipse.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/NewFileSet.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/NewVector.h"
#include "host/files/Open.h"

#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zelto::host {

namespace {

std::string ExtensionOf(const std::string& path) {
    return Narrow(CommonFun::GetExtensionName(Wide(path)));
}

bool IsVectorFile(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    return extension == "shp" || extension == "gpkg" || extension == "geojson" ||
           extension == "json";
}

/// Of an ellipse whose longer side is 1.
constexpr double USUAL_TOLERANCE = 0.00001;

/// How many vertices, evenly around an ellipse, leave no chord farther from it than the tolerance:
/// an ellipse is a circle that is pressed in one direction, which brings chords nearer.
int VertexCount(double longerAxis, double tolerance) {
    constexpr int MOST = 1'000'000;
    const double cosine = 1.0 - tolerance / longerAxis;
    if (!(cosine > 0.0))
        return 8;
    const double count = std::ceil(std::numbers::pi / std::acos(cosine) / 4.0) * 4.0;
    return static_cast<int>(std::clamp(count, 8.0, static_cast<double>(MOST)));
}

void AddEllipse(OGRLinearRing& ring, const CDrawRectangle& ellipse, double tolerance) {
    const double a = ellipse.m_width / 2;
    const double b = ellipse.m_height / 2;
    const double longer = std::max(a, b);
    const int count =
        VertexCount(longer, tolerance > 0.0 ? tolerance : 2 * longer * USUAL_TOLERANCE);
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::numbers::pi * i / count;
        ring.addPoint(ellipse.m_topLeft.x + a + a * std::cos(angle),
                      ellipse.m_topLeft.y - b - b * std::sin(angle));
    }
}

OGRPolygon ToPolygon(const CDrawShape& shape, double tolerance) {
    OGRLinearRing ring;
    const auto* const cornered = dynamic_cast<const CDrawRectangle*>(&shape);
    if (cornered != nullptr && shape.m_shapeKind == SHAPE_ELLIPSE) {
        AddEllipse(ring, *cornered, tolerance);
    } else if (cornered != nullptr) {
        const auto [left, top] = cornered->m_topLeft;
        const double right = left + cornered->m_width;
        const double bottom = top - cornered->m_height;
        for (const auto& [x, y] : {CPoint2D(left, top), CPoint2D(right, top),
                                   CPoint2D(right, bottom), CPoint2D(left, bottom)})
            ring.addPoint(x, y);
    } else {
        for (const CPoint2D& vertex : shape.m_vertices)
            ring.addPoint(vertex.x, vertex.y);
    }
    OGRPolygon polygon;
    polygon.addRing(&ring);
    polygon.closeRings();
    return polygon;
}

void SaveAsVector(CAOISource& aoi, const std::string& path, double tolerance) {
    NewVector file(path);
    if (file.IsGeoJson() && aoi.GetSpatialReferenceWKT().empty())
        throw Failure(path, "GeoJSON is in longitude and latitude, and the area has no reference "
                            "system");
    OGRLayer& layer = file.MakeLayer(aoi.GetSpatialReferenceWKT(), wkbPolygon);
    OGRFieldDefn kind("kind", OFTString);
    bool written = layer.CreateField(&kind) == OGRERR_NONE;
    for (int i = 0; written && i < aoi.GetDrawShapeCount(); ++i) {
        const CDrawShape& shape = *aoi.GetDrawShape(i);
        OGRFeature feature(layer.GetLayerDefn());
        feature.SetField("kind", KindName(shape).c_str());
        const OGRPolygon polygon = ToPolygon(shape, tolerance);
        written = feature.SetGeometry(&polygon) == OGRERR_NONE &&
                  layer.CreateFeature(&feature) == OGRERR_NONE;
    }
    if (!written)
        throw Failure(path, LastReason("cannot be written"));
    file.Finish();
}

void SaveAsAoi(CAOISource& aoi, const std::string& path) {
    CNewFileSet files(Wide(path));
    if (!files.IsOpen())
        throw Failure(CGISDataSource::GetLastErrorText());
    if (aoi.SaveAs(files.GetTemporaryPath().c_str(), VDF_AOI) != GIS_SUCCESS)
        throw Failure(path, LastReason("cannot be written"));
    if (!files.Commit())
        throw Failure(CGISDataSource::GetLastErrorText());
}

} // namespace

void OpenAoiOrFail(CAOISource& aoi, const std::string& path, const std::string& srs) {
    ForgetReasons();
    TrustFileEncodings();
    const char* target = srs.empty() ? nullptr : srs.c_str();
    const GISError error = aoi.OpenAndWarped(Wide(path).c_str(), GIS_READONLY, target);
    if (error == GIS_NOT_SUPPORTED)
        throw Failure(path, "is no file of areas of interest");
    if (error == GIS_OPEN_FAILED)
        throw Failure(path, aoi.GetSpatialReferenceWKT().empty()
                                ? "has no reference system to transform from"
                                : "cannot be transformed to " + srs);
    if (error != GIS_SUCCESS)
        throw Failure(path, ReasonForFailure(path, error));
    // A file that ends early opens with what it holds, which is not what the user asked for.
    const std::string missing = LastReason("");
    if (!missing.empty())
        throw Failure(path, missing);
}

void UseModerateRings(CAOISource& aoi) {
    constexpr double STEPS_PER_QUARTER = 5000;
    double longest = 0.0;
    for (int i = 0; i < aoi.GetDrawShapeCount(); ++i)
        if (const auto* ellipse = dynamic_cast<CDrawEllipse*>(aoi.GetDrawShape(i)))
            longest = std::max(longest, ellipse->m_width / 2);
    aoi.SetResolution(longest / STEPS_PER_QUARTER);
}

void RequireAoiFormat(const std::string& path, double tolerance) {
    if (ExtensionOf(path) != "aif" && !IsVectorFile(path))
        throw UsageError(path + ": areas of interest are written as .aif, .shp, .gpkg or .geojson");
    if (tolerance > 0.0 && !IsVectorFile(path))
        throw UsageError("--tolerance: " + path + " keeps ellipses as they are");
}

void SaveAoiOrFail(CAOISource& aoi, const std::string& path, double tolerance) {
    ForgetReasons();
    if (IsVectorFile(path))
        SaveAsVector(aoi, path, tolerance);
    else
        SaveAsAoi(aoi, path);
}

std::string KindName(const CDrawShape& shape) {
    switch (shape.m_shapeKind) {
    case SHAPE_RECTANGLE:
        return "rectangle";
    case SHAPE_ELLIPSE:
        return "ellipse";
    case SHAPE_POLYGON:
        return "polygon";
    default:
        return "other";
    }
}

} // namespace zelto::host
