#include "zelto/vector/VectorSource.h"

#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/GdalUse.h"
#include "cli/support/Json.h"
#include "cli/support/JsonReference.h"
#include "cli/support/Open.h"
#include "cli/support/Printable.h"
#include "cli/support/Table.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <iostream>
#include <memory>

namespace zelto::cli {

namespace {

struct VectorOptions {
    std::string file;
    bool json = false;
};

/// Name of a layer's reference system; empty for none.
std::string SystemName(const CVectorLayer& layer) {
    const OGRSpatialReference* reference = layer.GetOGRLayer()->GetSpatialRef();
    const char* name = reference != nullptr ? reference->GetName() : nullptr;
    return name != nullptr ? name : "";
}

std::string GeometryName(const CVectorLayer& layer) {
    return OGRGeometryTypeToName(layer.GetOGRLayer()->GetGeomType());
}

/// Names and types of a layer's fields.
std::vector<std::pair<std::string, std::string>> Fields(const CVectorLayer& layer) {
    std::vector<std::pair<std::string, std::string>> fields;
    const OGRFeatureDefn& definition = *layer.GetOGRLayer()->GetLayerDefn();
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        const OGRFieldDefn& field = *definition.GetFieldDefn(i);
        fields.emplace_back(field.GetNameRef(), OGRFieldDefn::GetFieldTypeName(field.GetType()));
    }
    return fields;
}

bool HasExtent(const CVectorLayer& layer) {
    OGREnvelope envelope;
    return layer.GetOGRLayer()->GetFeatureCount() > 0 &&
           layer.GetOGRLayer()->GetExtent(&envelope, TRUE) == OGRERR_NONE;
}

Json LayerJson(const CVectorLayer& layer) {
    Json fields = Json::array();
    for (const auto& [name, type] : Fields(layer))
        fields.push_back({{"name", name}, {"type", type}});
    Json json = {{"name", Narrow(layer.GetLayerName())},
                 {"geometry", GeometryName(layer)},
                 {"features", layer.GetOGRLayer()->GetFeatureCount()},
                 {"extent", HasExtent(layer) ? JsonBox(layer.GetExtent()) : Json()}};
    json.update(JsonReference(SystemName(layer), layer.GetSpatialReferenceWKT()));
    json["fields"] = fields;
    return json;
}

std::string FormatBox(const CBoundingBox& box) {
    std::string text = FormatNumber(box.m_left);
    for (const double side : {box.m_top, box.m_right, box.m_bottom})
        text.append(",").append(FormatNumber(side));
    return text;
}

void PrintLayer(const CVectorLayer& layer) {
    Table table({"layer", Narrow(layer.GetLayerName())});
    table.AddRow({"geometry", GeometryName(layer)});
    table.AddRow({"features", std::to_string(layer.GetOGRLayer()->GetFeatureCount())});
    if (HasExtent(layer))
        table.AddRow({"extent", FormatBox(layer.GetExtent())});
    const std::string system = SystemName(layer);
    table.AddRow({"system", system.empty() ? "none" : system});
    for (const auto& [name, type] : Fields(layer))
        table.AddRow({"field", std::string(name).append(" (").append(type).append(")")});
    table.Print();
}

void DescribeVector(const VectorOptions& options) {
    const QuietGdalUse gdal;
    CVectorSource source;
    OpenOrFail(source, options.file);
    const std::string driver = source.GetOGRDataSource()->GetDriverName();
    if (options.json) {
        Json layers = Json::array();
        for (int i = 0; i < source.GetLayerCount(); ++i)
            layers.push_back(LayerJson(*source.GetVectorLayer(i)));
        PrintJson({{"path", options.file}, {"format", driver}, {"layers", layers}});
        return;
    }
    std::cout << Printable(options.file) << ": " << driver << ", " << source.GetLayerCount()
              << (source.GetLayerCount() == 1 ? " layer\n" : " layers\n");
    for (int i = 0; i < source.GetLayerCount(); ++i) {
        std::cout << '\n';
        PrintLayer(*source.GetVectorLayer(i));
    }
}

} // namespace

void AddVector(CLI::App& program) {
    auto* vector = program.add_subcommand("vector", "look into vector files");
    vector->require_subcommand(1);
    auto options = std::make_shared<VectorOptions>();
    auto* info = vector->add_subcommand("info", "layers, fields, extents and reference systems");
    info->add_option("FILE", options->file)->required();
    info->add_flag("--json", options->json, "print JSON");
    info->callback([options] { DescribeVector(*options); });
}

} // namespace zelto::cli
