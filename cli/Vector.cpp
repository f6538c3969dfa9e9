#include "zelto/vector/VectorSource.h"

#include "cli/Commands.h"
#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Printable.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/report/Json.h"
#include "host/report/JsonReference.h"
#include "host/report/Table.h"

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

host::Json LayerJson(const CVectorLayer& layer) {
    host::Json fields = host::Json::array();
    for (const auto& [name, type] : Fields(layer))
        fields.push_back({{"name", name}, {"type", type}});
    host::Json json = {
        {"name", host::Narrow(layer.GetLayerName())},
        {"geometry", GeometryName(layer)},
        {"features", layer.GetOGRLayer()->GetFeatureCount()},
        {"extent", HasExtent(layer) ? host::JsonBox(layer.GetExtent()) : host::Json()}};
    json.update(host::JsonReference(SystemName(layer), layer.GetSpatialReferenceWKT()));
    json["fields"] = fields;
    return json;
}

std::string FormatBox(const CBoundingBox& box) {
    std::string text = host::FormatNumber(box.m_left);
    for (const double side : {box.m_top, box.m_right, box.m_bottom})
        text.append(",").append(host::FormatNumber(side));
    return text;
}

void PrintLayer(const CVectorLayer& layer) {
    host::Table table({"layer", host::Narrow(layer.GetLayerName())});
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
    const host::QuietGdalUse gdal;
    CVectorSource source;
    host::OpenOrFail(source, options.file);
    const std::string driver = source.GetOGRDataSource()->GetDriverName();
    if (options.json) {
        host::Json layers = host::Json::array();
        for (int i = 0; i < source.GetLayerCount(); ++i)
            layers.push_back(LayerJson(*source.GetVectorLayer(i)));
        host::PrintJson({{"path", options.file}, {"format", driver}, {"layers", layers}});
        return;
    }
    std::cout << host::Printable(options.file) << ": " << driver << ", " << source.GetLayerCount()
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
