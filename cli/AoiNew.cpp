#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"

#include "cli/AoiFile.h"
#include "cli/support/Failure.h"
#include "cli/support/Open.h"
#include "cli/support/Text.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace zelto::cli {

namespace {

/// Hands a complete shape over.
void Add(CAOISource& aoi, std::unique_ptr<CDrawShape> shape) {
    shape->m_useMark = USE_MARK_AOI;
    if (aoi.AddDrawShape(shape.get()))
        static_cast<void>(shape.release());
}

template <typename Shape>
void AddBox(CAOISource& aoi, const std::string& option, const std::string& text) {
    const CBoundingBox box = ParseBox(option, text);
    const bool hasSize = box.m_left < box.m_right && box.m_bottom < box.m_top;
    if (!hasSize || !std::isfinite(box.GetWidth()) || !std::isfinite(box.GetHeight()))
        throw UsageError(option + ": '" + text + "' has no positive width and height");
    auto shape = std::make_unique<Shape>();
    shape->AddVertex(box.TopLeft());
    shape->AddVertex(box.BottomRight());
    Add(aoi, std::move(shape));
}

void AddPolygon(CAOISource& aoi, const std::string& text) {
    const std::vector<double> numbers = ParseNumbers("--polygon", text);
    if (numbers.size() % 2 != 0 || numbers.size() < 6)
        throw UsageError("--polygon: '" + text + "' is not three or more pairs of x and y");
    auto polygon = std::make_unique<CDrawPolygon>();
    for (std::size_t i = 0; i < numbers.size(); i += 2)
        polygon->AddVertex({numbers[i], numbers[i + 1]});
    polygon->m_complete = true;
    Add(aoi, std::move(polygon));
}

bool HasFiniteVertices(const CDrawShape& shape) {
    return std::all_of(shape.m_vertices.begin(), shape.m_vertices.end(),
                       [](const CPoint2D& p) { return std::isfinite(p.x) && std::isfinite(p.y); });
}

/// Takes copies of the polygons of a GeoJSON file or text.
void AddGeoJson(CAOISource& aoi, const std::string& fileOrText) {
    CAOISource source;
    OpenOrFail(source, fileOrText);
    if (source.GetDrawShapeCount() == 0)
        throw Failure(fileOrText, "holds no polygons");
    if (aoi.GetSpatialReferenceWKT().empty())
        aoi.SetSpatialReferenceWKT(source.GetSpatialReferenceWKT().c_str());
    for (int i = 0; i < source.GetDrawShapeCount(); ++i) {
        if (!HasFiniteVertices(*source.GetDrawShape(i)))
            throw Failure(fileOrText, "has a vertex that is not a finite number");
        Add(aoi, std::unique_ptr<CDrawShape>(CDrawShape::CreateCopy(source.GetDrawShape(i))));
    }
}

} // namespace

void CreateAoi(const AoiNewOptions& options) {
    RequireAoiFormat(options.out);
    CAOISource aoi;
    if (!options.srs.empty()) {
        const std::string wkt = SrsAsWkt(options.srs, "FORMAT=WKT1_GDAL");
        if (wkt.empty())
            throw UsageError("--srs: '" + options.srs + "' is no reference system");
        aoi.SetSpatialReferenceWKT(wkt.c_str());
    }
    for (const std::string& text : options.rectangles)
        AddBox<CDrawRectangle>(aoi, "--rect", text);
    for (const std::string& text : options.ellipses)
        AddBox<CDrawEllipse>(aoi, "--ellipse", text);
    for (const std::string& text : options.polygons)
        AddPolygon(aoi, text);
    for (const std::string& text : options.geojson)
        AddGeoJson(aoi, text);
    if (aoi.GetDrawShapeCount() == 0)
        throw UsageError("no shapes are given: --rect, --ellipse, --polygon or --geojson");
    SaveAoiOrFail(aoi, options.out);
}

} // namespace zelto::cli
