#include "cli/Commands.h"
#include "cli/aoi/Commands.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Text.h"
#include "host/files/AoiFile.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/report/Json.h"
#include "host/report/JsonReference.h"
#include "host/report/Table.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <map>
#include <memory>
#include <numeric>

namespace zelto::cli {

namespace {

struct AoiOptions {
    std::string file;
    std::string out;
    std::string srs;
    std::string point;
    double tolerance = 0.0;
    bool overwrite = false;
    bool json = false;
};

std::vector<std::string> BoxCells(const CBoundingBox& box) {
    return {host::FormatNumber(box.m_left), host::FormatNumber(box.m_top),
            host::FormatNumber(box.m_right), host::FormatNumber(box.m_bottom)};
}

host::Json ShapeJson(const CDrawShape& shape, int number) {
    host::Json json = {{"number", number}, {"kind", host::KindName(shape)}};
    if (shape.m_shapeKind == SHAPE_POLYGON)
        json["vertices"] = shape.m_vertices.size();
    json["extent"] = host::JsonBox(shape.m_extent);
    return json;
}

/// A table of the shapes with these positions in the list; people count from 1.
void PrintShapes(const CAOISource& aoi, const std::vector<int>& positions) {
    host::Table table({"shape", "kind", "vertices", "left", "top", "right", "bottom"});
    for (const int position : positions) {
        const CDrawShape& shape = *aoi.GetDrawShape(position);
        std::vector<std::string> cells = {
            std::to_string(position + 1), host::KindName(shape),
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

host::Json ShapesJson(const CAOISource& aoi, const std::vector<int>& positions) {
    host::Json shapes = host::Json::array();
    for (const int position : positions)
        shapes.push_back(ShapeJson(*aoi.GetDrawShape(position), position + 1));
    return shapes;
}

void DescribeAoi(const AoiOptions& options) {
    CAOISource aoi;
    host::OpenAoiOrFail(aoi, options.file);
    aoi.InitCoordinateName();
    const std::string system = host::Narrow(aoi.GetCoordinateNameNew());
    const auto all = AllShapes(aoi);
    if (options.json) {
        host::Json json = {{"path", options.file},
                           {"count", all.size()},
                           {"extent", all.empty() ? host::Json() : host::JsonBox(aoi.GetExtent())}};
        json.update(host::JsonReference(system, aoi.GetSpatialReferenceWKT()));
        json["shapes"] = ShapesJson(aoi, all);
        host::PrintJson(json);
        return;
    }
    host::Table table({"file", options.file});
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

void Convert(const AoiOptions& options) {
    host::RequireAoiFormat(options.out, options.tolerance);
    CAOISource aoi;
    host::OpenAoiOrFail(aoi, options.file, options.srs);
    if (aoi.GetDrawShapeCount() == 0)
        throw host::Failure(options.file, "holds no polygons");
    host::RequireFreePath(options.out, options.overwrite, {options.file});
    host::SaveAoiOrFail(aoi, options.out, options.tolerance);
}

void Hit(const AoiOptions& options) {
    const std::vector<double> xy = host::ParseNumbers("POINT", options.point, 2);
    CAOISource aoi;
    host::OpenAoiOrFail(aoi, options.file);
    const auto hit = ShapesAt(aoi, {xy[0], xy[1]});
    if (options.json)
        host::PrintJson(
            {{"path", options.file},
             {"point", {{"x", host::JsonNumber(xy[0])}, {"y", host::JsonNumber(xy[1])}}},
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
        const host::QuietGdalUse gdal;
        run(*options);
    };
}

constexpr const char* AOI_FORMATS = ".aif, .shp, .gpkg or .geojson";

void AddToleranceOption(CLI::App& command, double& tolerance) {
    command
        .add_option("--tolerance", tolerance,
                    "of vector files: largest distance of an ellipse's outline from its curve in "
                    "ground units, a tenth of a pixel, say (default: 0.00001 of its longer side)")
        ->check(CLI::PositiveNumber);
}

/// An option that may be given any number of times.
void AddShapeOption(CLI::App& command, const std::string& name, const std::string& description) {
    command.add_option("--" + name, description)->expected(1)->take_all();
}

/// The shapes of all options in the order of the command line.
std::vector<ShapeText> ShapesInOrder(const CLI::App& command) {
    std::map<const CLI::Option*, std::size_t> seen;
    std::vector<ShapeText> shapes;
    for (const CLI::Option* option : command.parse_order()) {
        const std::string name = option->get_single_name();
        if (name == "rect" || name == "ellipse" || name == "polygon" || name == "geojson")
            shapes.push_back({name, option->results()[seen[option]++]});
    }
    return shapes;
}

void AddInfoOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<AoiOptions>();
    auto* info = aoi.add_subcommand("info", "which shapes a file holds");
    info->add_option("FILE", options->file, ".aif or any vector file")->required();
    info->add_flag("--json", options->json, "print JSON");
    info->callback(Quietly(DescribeAoi, options));
}

void AddConvertOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<AoiOptions>();
    auto* convert = aoi.add_subcommand("convert", "write an area of interest in another format");
    convert->add_option("IN", options->file, ".aif or any vector file")->required();
    convert->add_option("OUT", options->out, AOI_FORMATS)->required();
    convert->add_option("--srs", options->srs, "transform to this reference system");
    AddToleranceOption(*convert, options->tolerance);
    AddOverwriteOption(*convert, options->overwrite);
    convert->callback(Quietly(Convert, options));
}

void AddNewAoi(CLI::App& aoi) {
    auto options = std::make_shared<AoiNewOptions>();
    auto* create = aoi.add_subcommand("new", "make an area of interest from shapes given as text");
    create->add_option("OUT", options->out, AOI_FORMATS)->required();
    AddShapeOption(*create, "rect", "left,top,right,bottom; repeat for more");
    AddShapeOption(*create, "ellipse", "left,top,right,bottom around an ellipse");
    AddShapeOption(*create, "polygon", "x,y,x,y,x,y,… of a polygon's vertices");
    AddShapeOption(*create, "geojson", "polygons of a GeoJSON file or text");
    create->add_option("--srs", options->srs,
                       "reference system of the area and of the shapes given as text; otherwise "
                       "that of the first GeoJSON");
    AddToleranceOption(*create, options->tolerance);
    AddOverwriteOption(*create, options->overwrite);
    create->footer("The shapes keep the order of the command line. Those of a GeoJSON are brought\n"
                   "into the area's reference system; GeoJSON is in longitude and latitude unless\n"
                   "it says otherwise.");
    create->callback([create, options] {
        const host::QuietGdalUse gdal;
        options->shapes = ShapesInOrder(*create);
        CreateAoi(*options);
    });
}

void AddMaskOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<AoiMaskOptions>();
    auto* mask = aoi.add_subcommand("mask", "burn an area of interest onto an image's grid");
    mask->add_option("AOI", options->aoi, ".aif or any vector file")->required();
    mask->add_option("IMAGE", options->image, "the image that gives the grid")->required();
    mask->add_option("OUT", options->out, "GeoTIFF to write: 1 inside, 0 outside")->required();
    AddOverwriteOption(*mask, options->overwrite);
    mask->add_flag("--json", options->json, "print JSON");
    mask->footer("A pixel is inside when its centre is, or when it touches one that is. An area\n"
                 "in another reference system is transformed to the image's.");
    mask->callback(Quietly(WriteAoiMask, options));
}

void AddHitOfAoi(CLI::App& aoi) {
    auto options = std::make_shared<AoiOptions>();
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
