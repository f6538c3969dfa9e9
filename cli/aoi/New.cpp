#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawPolygon.h"

#include "cli/aoi/Commands.h"
#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/AoiFile.h"
#include "host/files/Output.h"
#include "host/files/Reference.h"

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
    const CBoundingBox box = host::ParseBox(option, text);
    const bool hasSize = box.m_left < box.m_right && box.m_bottom < box.m_top;
    if (!hasSize || !std::isfinite(box.GetWidth()) || !std::isfinite(box.GetHeight()))
        throw host::UsageError(option + ": '" + text + "' has no positive width and height");
    auto shape = std::make_unique<Shape>();
    shape->AddVertex(box.TopLeft());
    shape->AddVertex(box.BottomRight());
    Add(aoi, std::move(shape));
}

void AddPolygon(CAOISource& aoi, const std::string& text) {
    const std::vector<double> numbers = host::ParseNumbers("--polygon", text);
    if (numbers.size() % 2 != 0 || numbers.size() < 6)
        throw host::UsageError("--polygon: '" + text + "' is not three or more pairs of x and y");
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

/// Takes copies of the polygons of a GeoJSON file or text, in the area's system.
void AddGeoJson(CAOISource& aoi, const std::string& fileOrText) {
    CAOISource source;
    host::OpenAoiOrFail(source, fileOrText, aoi.GetSpatialReferenceWKT());
    if (source.GetDrawShapeCount() == 0)
        throw host::Failure(fileOrText, "holds no polygons");
    for (int i = 0; i < source.GetDrawShapeCount(); ++i) {
        if (!HasFiniteVertices(*source.GetDrawShape(i)))
            throw host::Failure(fileOrText, "has a vertex that is not a finite number");
        Add(aoi, std::unique_ptr<CDrawShape>(CDrawShape::CreateCopy(source.GetDrawShape(i))));
    }
}

/// The system that --srs names, otherwise that of the first GeoJSON, otherwise none.
std::string ChooseSystem(const AoiNewOptions& options) {
    if (!options.srs.empty()) {
        const std::string wkt = host::ReferenceAsWkt(options.srs);
        if (wkt.empty())
            throw host::UsageError("--srs: '" + options.srs + "' is no reference system");
        return wkt;
    }
    const auto first = std::find_if(options.shapes.begin(), options.shapes.end(),
                                    [](const ShapeText& s) { return s.option == "geojson"; });
    if (first == options.shapes.end())
        return {};
    CAOISource source;
    host::OpenAoiOrFail(source, first->text);
    return source.GetSpatialReferenceWKT();
}

void AddShape(CAOISource& aoi, const ShapeText& shape) {
    if (shape.option == "rect")
        AddBox<CDrawRectangle>(aoi, "--rect", shape.text);
    else if (shape.option == "ellipse")
        AddBox<CDrawEllipse>(aoi, "--ellipse", shape.text);
    else if (shape.option == "polygon")
        AddPolygon(aoi, shape.text);
    else
        AddGeoJson(aoi, shape.text);
}

std::vector<std::string> GeoJsonFiles(const AoiNewOptions& options) {
    std::vector<std::string> files;
    for (const ShapeText& shape : options.shapes)
        if (shape.option == "geojson")
            files.push_back(shape.text);
    return files;
}

} // namespace

void CreateAoi(const AoiNewOptions& options) {
    host::RequireAoiFormat(options.out, options.tolerance);
    if (options.shapes.empty())
        throw host::UsageError("no shapes are given: --rect, --ellipse, --polygon or --geojson");
    CAOISource aoi;
    aoi.SetSpatialReferenceWKT(ChooseSystem(options).c_str());
    for (const ShapeText& shape : options.shapes)
        AddShape(aoi, shape);
    if (aoi.GetDrawShapeCount() == 0)
        throw host::Failure(options.out, "the GeoJSON holds no polygons");
    host::RequireFreePath(options.out, options.overwrite, GeoJsonFiles(options));
    host::SaveAoiOrFail(aoi, options.out, options.tolerance);
}

} // namespace zelto::cli
