#include "cli/zonal/ZonalReport.h"

#include "cli/zonal/Zones.h"
#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Printable.h"
#include "host/base/Text.h"
#include "host/files/NewVector.h"
#include "host/files/Open.h"
#include "host/report/Json.h"
#include "host/report/Table.h"

#include <ogrsf_frmts.h>

#include <cmath>
#include <functional>
#include <iostream>
#include <optional>

namespace zelto::cli {

namespace {

using Band = CZonalStatistics::Band;

/// A number of a zone by its names in tables and fields.
struct Column {
    std::string name;
    std::string field;
    std::function<double(const Band&)> value;
};

std::vector<Column> ColumnsOf(const ZonalReport& report) {
    std::vector<Column> columns = {
        {"count", "count", [](const Band& band) { return static_cast<double>(band.count); }}};
    if (report.hasCoverage)
        columns.push_back({"weight", "weight", [](const Band& band) { return band.weight; }});
    columns.insert(
        columns.end(),
        {{"minimum", "min", [](const Band& band) { return band.minimum; }},
         {"maximum", "max", [](const Band& band) { return band.maximum; }},
         {"sum", "sum", [](const Band& band) { return band.sum; }},
         {"mean", "mean", [](const Band& band) { return band.mean; }},
         {"standardDeviation", "stddev", [](const Band& band) { return band.standardDeviation; }}});
    for (std::size_t i = 0; i < report.percentages.size(); ++i) {
        const std::string percent = host::FormatNumber(report.percentages[i]);
        columns.push_back({"percentile" + percent, "p" + percent,
                           [i](const Band& band) { return band.quantiles[i]; }});
    }
    return columns;
}

/// Calls use(cells) for the header and for every zone and band.
template <typename Use>
void VisitRows(const ZonalReport& report, const std::function<std::string(double)>& format,
               Use use) {
    const std::vector<Column> columns = ColumnsOf(report);
    std::vector<std::string> header = {report.zones.IdName()};
    const auto& fields = report.zones.FieldNames();
    header.insert(header.end(), fields.begin(), fields.end());
    header.emplace_back("band");
    for (const Column& column : columns)
        header.push_back(column.name);
    use(header);
    int number = 0;
    for (const Zone& zone : report.zones.List()) {
        for (const Band& band : report.statistics.GetZone(number)) {
            std::vector<std::string> cells = {zone.id};
            cells.insert(cells.end(), zone.fields.begin(), zone.fields.end());
            cells.push_back(std::to_string(band.index + 1));
            for (const Column& column : columns)
                cells.push_back(format(column.value(band)));
            use(cells);
        }
        ++number;
    }
}

std::string Quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted += letter;
        if (letter == '"')
            quoted += letter;
    }
    return quoted + '"';
}

std::string FieldName(const Band& band, const Column& column) {
    return "b" + std::to_string(band.index + 1) + "_" + column.field;
}

/// The fields of the zones and those of the results, in this order.
void MakeFields(OGRLayer& layer, const ZonalReport& report, const std::string& path) {
    const OGRFeatureDefn& definition = *report.zones.Layer().GetLayerDefn();
    const auto add = [&](OGRFieldDefn& field) {
        host::ForgetReasons();
        if (layer.CreateField(&field) != OGRERR_NONE)
            throw host::Failure(path, host::LastReason("cannot have a field '" +
                                                       std::string(field.GetNameRef()) + "'"));
    };
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        OGRFieldDefn copy(definition.GetFieldDefn(i));
        add(copy);
    }
    for (const Band& band : report.statistics.GetZone(0)) {
        for (const Column& column : ColumnsOf(report)) {
            const std::string name = FieldName(band, column);
            if (definition.GetFieldIndex(name.c_str()) >= 0)
                throw host::Failure(path, "the zones have a field '" + name + "' already");
            OGRFieldDefn field(name.c_str(), column.name == "count" ? OFTInteger64 : OFTReal);
            add(field);
        }
    }
}

/// The feature with the results; what is no number stays empty.
OGRFeatureUniquePtr CopyOf(const Zone& zone, const std::vector<Band>& bands, OGRLayer& layer,
                           const std::vector<Column>& columns) {
    OGRFeatureUniquePtr copy(OGRFeature::CreateFeature(layer.GetLayerDefn()));
    const int own = zone.feature->GetFieldCount();
    std::vector<int> places(static_cast<std::size_t>(own));
    for (int i = 0; i < own; ++i)
        places[static_cast<std::size_t>(i)] = i;
    copy->SetFieldsFrom(zone.feature.get(), places.data(), TRUE);
    copy->SetGeometry(zone.feature->GetGeometryRef());
    int field = own;
    for (const Band& band : bands) {
        for (const Column& column : columns) {
            const double value = column.value(band);
            if (std::isfinite(value))
                copy->SetField(field, value);
            ++field;
        }
    }
    return copy;
}

std::string WktOf(const OGRSpatialReference* reference) {
    char* text = nullptr;
    if (reference != nullptr)
        reference->exportToWkt(&text);
    const std::string wkt = text != nullptr ? text : "";
    CPLFree(text);
    return wkt;
}

} // namespace

void PrintZoneTable(const ZonalReport& report) {
    std::optional<host::Table> table;
    VisitRows(report, host::FormatBriefly, [&](const std::vector<std::string>& cells) {
        if (table)
            table->AddRow(cells);
        else
            table.emplace(cells);
    });
    table->Print();
}

void PrintZoneCsv(const ZonalReport& report) {
    VisitRows(report, host::FormatNumber, [](const std::vector<std::string>& cells) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            std::cout << (i > 0 ? "," : "") << Quoted(host::Printable(cells[i]));
        std::cout << '\n';
    });
}

void PrintZoneJson(const ZonalReport& report) {
    const std::vector<Column> columns = ColumnsOf(report);
    host::Json zones = host::Json::array();
    int number = 0;
    for (const Zone& zone : report.zones.List()) {
        host::Json entry = {{"id", zone.id}};
        if (!zone.fields.empty())
            entry["fields"] = host::Json::object();
        for (std::size_t i = 0; i < zone.fields.size(); ++i)
            entry["fields"][report.zones.FieldNames()[i]] = zone.fields[i];
        entry["bands"] = host::Json::array();
        for (const Band& band : report.statistics.GetZone(number)) {
            host::Json values = {{"band", band.index + 1}, {"count", band.count}};
            for (std::size_t i = 1; i < columns.size(); ++i)
                values[columns[i].name] = host::JsonNumber(columns[i].value(band));
            entry["bands"].push_back(std::move(values));
        }
        zones.push_back(std::move(entry));
        ++number;
    }
    host::PrintJson({{"weights", report.hasCoverage ? "coverage" : "center"}, {"zones", zones}});
}

void WriteZones(const ZonalReport& report, const std::string& path) {
    host::NewVector file(path);
    OGRLayer& source = report.zones.Layer();
    OGRLayer& layer = file.MakeLayer(WktOf(source.GetSpatialRef()), source.GetGeomType());
    MakeFields(layer, report, path);
    const std::vector<Column> columns = ColumnsOf(report);
    // Databases would otherwise secure every feature on the disk by itself.
    const bool inTransaction = layer.StartTransaction() == OGRERR_NONE;
    int number = 0;
    for (const Zone& zone : report.zones.List()) {
        host::EndIfInterrupted();
        const auto copy = CopyOf(zone, report.statistics.GetZone(number++), layer, columns);
        host::ForgetReasons();
        if (layer.CreateFeature(copy.get()) != OGRERR_NONE)
            throw host::Failure(path, host::LastReason("cannot be written"));
    }
    if (inTransaction && layer.CommitTransaction() != OGRERR_NONE)
        throw host::Failure(path, host::LastReason("cannot be written"));
    file.Finish();
}

} // namespace zelto::cli
