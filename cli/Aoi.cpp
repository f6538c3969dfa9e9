#include "cli/AoiFile.h"
#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/GdalUse.h"
#include "cli/support/Json.h"
#include "cli/support/Open.h"
#include "cli/support/Table.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <numeric>

namespace zelto::cli {

namespace {

struct Options {
    std::string file;
    std::string out;
    std::string srs;
    std::string point;
    bool json = false;
};

std::vector<std::string> BoxCells(const CBoundingBox& box) {
    return {FormatNumber(box.m_left), FormatNumber(box.m_top), FormatNumber(box.m_right),
            FormatNumber(box.m_bottom)};
}

Json ShapeJson(const CDrawShape& shape, int number) {
    Json json = {{"number", number}, {"kind", KindName(shape)}};
    if (shape.m_shapeKind == SHAPE_POLYGON)
        json["vertices"] = shape.m_vertices.size();
    json["extent"] = JsonBox(shape.m_extent);
    return json;
}

/// A table of the shapes with these positions in the list; people count from 1.
void PrintShapes(const CAOISource& aoi, const std::vector<int>& positions) {
    Table table({"shape", "kind", "vertices", "left", "top", "right", "bottom"});
    for (const int position : positions) {
        const CDrawShape& shape = *aoi.GetDrawShape(position);
        std::vector<std::string> cells = {
            std::to_string(position + 1), KindName(shape),
            shape.m_shapeKind == SHAPE_POLYGON ? std::to_string(shape.m_vertices.size()) : "-"};
        const auto box = BoxCells(shape.m_extent);
        cells.insert(cells.end(), box.begin(), box.end());
        table.AddRow(cells);
    }
    table.Print();
}

std::vector<int> AllShapes(const CAOISource& aoi) {
    std::vector<int> positions(static_cast<std::size_t>(aoi.GetDrawShapeCount()));
    std::iota(positions.begin(), positions.end(), 0);
    return positions;
}

std::vector<int> ShapesAt(const CAOISource& aoi, const CPoint2D& p) {
    std::vector<int> positions;
    for (const int i : AllShapes(aoi))
        if (aoi.GetDrawShape(i)->TopoRelationWithPoint(p, 0.0, 1) == TOPO_CONTAIN)
            positions.push_back(i);
    return positions;
}

Json ShapesJson(const CAOISource& aoi, const std::vector<int>& positions) {
    Json shapes = Json::array();
    for (const int position : positions)
        shapes.push_back(ShapeJson(*aoi.GetDrawShape(position), position + 1));
    return shapes;
}

void Info(const Options& options) {
    CAOISource aoi;
    OpenAoiOrFail(aoi, options.file);
    aoi.InitCoordinateName();
    const std::string system = Narrow(aoi.GetCoordinateNameNew());
    const auto all = AllShapes(aoi);
    if (options.json) {
        PrintJson({{"file", options.file},
                   {"count", all.size()},
                   {"extent", all.empty() ? Json() : JsonBox(aoi.GetExtent())},
                   {"coordinateSystem", system},
                   {"wkt", aoi.GetSpatialReferenceWKT()},
                   {"shapes", ShapesJson(aoi, all)}});
        return;
    }
    Table table({"file", options.file});
    table.AddRow({"shapes", std::to_string(all.size())});
    table.AddRow({"system", system.empty() ? "none" : system});
    if (!all.empty()) {
        const auto box = BoxCells(aoi.GetExtent());
        table.AddRow({"extent", box[0] + "," + box[1] + "," + box[2] + "," + box[3]});
    }
    table.Print();
    if (!all.empty()) {
        std::cout << '\n';
        PrintShapes(aoi, all);
    }
}

void Convert(const Options& options) {
    RequireAoiFormat(options.out);
    CAOISource aoi;
    OpenAoiOrFail(aoi, options.file, options.srs);
    if (aoi.GetDrawShapeCount() == 0)
        throw Failure(options.file, "holds no polygons");
    SaveAoiOrFail(aoi, options.out);
}

void Hit(const Options& options) {
    const std::vector<double> xy = ParseNumbers("POINT", options.point, 2);
    CAOISource aoi;
    OpenAoiOrFail(aoi, options.file);
    const auto hit = ShapesAt(aoi, {xy[0], xy[1]});
    if (options.json)
        PrintJson({{"point", {JsonNumber(xy[0]), JsonNumber(xy[1])}},
                   {"inside", !hit.empty()},
                   {"shapes", ShapesJson(aoi, hit)}});
    else if (hit.empty())
        std::cout << "no shape holds the point\n";
    else
        PrintShapes(aoi, hit);
}

/// GDAL's own messages are part of the program's, not beside them.
template <typename Run, typename Given>
auto Quietly(Run run, std::shared_ptr<Given> options) {
    return [run, options] {
        const QuietGdalUse gdal;
        run(*options);
    };
}

void AddInfoOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<Options>();
    auto* info = aoi.add_subcommand("info", "which shapes a file holds");
    info->add_option("FILE", options->file, ".aif or any vector file")->required();
    info->add_flag("--json", options->json, "print JSON");
    info->callback(Quietly(Info, options));
}

void AddConvertOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<Options>();
    auto* convert = aoi.add_subcommand("convert", "write an area of interest in another format");
    convert->add_option("IN", options->file, ".aif or any vector file")->required();
    convert->add_option("OUT", options->out, ".aif or .shp; replaced if it exists")->required();
    convert->add_option("--srs", options->srs, "transform to this reference system");
    convert->callback(Quietly(Convert, options));
}

void AddNewAoi(CLI::App& aoi) {
    auto options = std::make_shared<AoiNewOptions>();
    auto* create = aoi.add_subcommand("new", "make an area of interest from shapes given as text");
    create->add_option("OUT", options->out, ".aif or .shp; replaced if it exists")->required();
    create->add_option("--rect", options->rectangles, "left,top,right,bottom; repeat for more")
        ->expected(1)
        ->take_all();
    create->add_option("--ellipse", options->ellipses, "left,top,right,bottom around an ellipse")
        ->expected(1)
        ->take_all();
    create->add_option("--polygon", options->polygons, "x,y,x,y,x,y,… of a polygon's vertices")
        ->expected(1)
        ->take_all();
    create->add_option("--geojson", options->geojson, "polygons of a GeoJSON file or text")
        ->expected(1)
        ->take_all();
    create->add_option("--srs", options->srs,
                       "the shapes' reference system; otherwise that of the first GeoJSON");
    create->callback(Quietly(CreateAoi, options));
}

void AddMaskOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<AoiMaskOptions>();
    auto* mask = aoi.add_subcommand("mask", "burn an area of interest onto an image's grid");
    mask->add_option("AOI", options->aoi, ".aif or any vector file")->required();
    mask->add_option("IMAGE", options->image, "the image that gives the grid")->required();
    mask->add_option("OUT", options->out, "GeoTIFF to write: 1 inside, 0 outside")->required();
    mask->add_flag("--json", options->json, "print JSON");
    mask->footer("A pixel is inside when its centre is, or when it touches one that is. An area\n"
                 "in another reference system is transformed to the image's.");
    mask->callback(Quietly(WriteAoiMask, options));
}

void AddHitOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<Options>();
    auto* hit = aoi.add_subcommand("hit", "which shapes hold a point");
    hit->add_option("FILE", options->file, ".aif or any vector file")->required();
    hit->add_option("POINT", options->point, "x,y in the file's ground units")->required();
    hit->add_flag("--json", options->json, "print JSON");
    hit->callback(Quietly(Hit, options));
}

} // namespace

void AddAoi(CLI::App& program) {
    auto* aoi =
        program.add_subcommand("aoi", "look into, make, convert and burn areas of interest");
    aoi->require_subcommand(1);
    AddInfoOfAoi(*aoi);
    AddConvertOfAoi(*aoi);
    AddNewAoi(*aoi);
    AddMaskOfAoi(*aoi);
    AddHitOfAoi(*aoi);
}

} // namespace zelto::cli
