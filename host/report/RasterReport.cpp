#include "host/report/RasterReport.h"

#include "host/base/Printable.h"
#include "host/base/Text.h"
#include "host/report/JsonReference.h"
#include "host/report/Table.h"

#include <cpl_conv.h>
#include <ogr_spatialref.h>

#include <iostream>
#include <sstream>

namespace zelto::host {

namespace {

std::string Numbers(std::initializer_list<double> values) {
    std::string text;
    for (const double value : values)
        text += (text.empty() ? "" : ", ") + FormatNumber(value);
    return text;
}

std::string Size(int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

Json ToJson(const BandFacts& band, int number) {
    Json overviews = Json::array();
    for (const auto& [width, height] : band.overviews)
        overviews.push_back({width, height});
    Json json = {{"band", number},
                 {"dataType", band.dataType},
                 {"blockSize", {band.blockWidth, band.blockHeight}},
                 {"noData", band.noData ? JsonNumber(*band.noData) : Json()},
                 {"colorTable", band.colors > 0},
                 {"colorTableEntries", band.colors},
                 {"overviews", overviews}};
    const auto& s = band.statistics;
    json["minimum"] = s ? JsonNumber(s->minimum) : Json();
    json["maximum"] = s ? JsonNumber(s->maximum) : Json();
    json["mean"] = s ? JsonNumber(s->mean) : Json();
    json["standardDeviation"] = s ? JsonNumber(s->standardDeviation) : Json();
    const auto& limits = band.displayLimits;
    json["displayMinimum"] = limits ? JsonNumber(limits->first) : Json();
    json["displayMaximum"] = limits ? JsonNumber(limits->second) : Json();
    const auto& range = band.displayRange;
    json["displayRange"] =
        range ? Json{JsonNumber(range->first), JsonNumber(range->second)} : Json();
    return json;
}

void AddGrid(TableContent& table, const RasterFacts& facts) {
    const auto& g = facts.geoTransform;
    if (g[2] == 0.0 && g[4] == 0.0) {
        table.rows.push_back({"origin", Numbers({g[0], g[3]})});
        table.rows.push_back({"pixel size", Numbers({g[1], g[5]})});
    } else {
        table.rows.push_back({"geotransform", Numbers({g[0], g[1], g[2], g[3], g[4], g[5]})});
    }
    table.rows.push_back({"extent", Numbers({facts.extent.GetLeft(), facts.extent.GetTop(),
                                             facts.extent.GetRight(), facts.extent.GetBottom()}) +
                                        " (left, top, right, bottom)"});
    if (!facts.controlPoints.empty())
        table.rows.push_back(
            {"control points",
             std::to_string(facts.controlPoints.size()) + " in " +
                 (facts.controlPointName.empty() ? "no system" : facts.controlPointName)});
}

/// Largest and smallest, and how many: "175 x 176 to 22 x 22 (4)".
std::string OverviewSizes(const BandFacts& band) {
    if (band.overviews.empty())
        return "-";
    const auto& [firstWidth, firstHeight] = band.overviews.front();
    const auto& [lastWidth, lastHeight] = band.overviews.back();
    std::string text = Size(firstWidth, firstHeight);
    if (band.overviews.size() > 1)
        text += " to " + Size(lastWidth, lastHeight);
    return text + " (" + std::to_string(band.overviews.size()) + ")";
}

/// Digits enough for people; the JSON has them all.
std::string Rounded(double value) {
    char text[40];
    CPLsnprintf(text, sizeof text, "%.6g", value);
    return text;
}

void PrintStatistics(const RasterFacts& facts) {
    std::cout << '\n';
    std::vector<std::string> columns = {"band", "minimum", "maximum", "mean", "deviation"};
    if (facts.values.sampled)
        columns.insert(columns.end(), {"shown from", "to"});
    Table table(columns);
    int number = 0;
    for (const BandFacts& band : facts.bands) {
        std::vector<std::string> cells = {std::to_string(++number)};
        if (const auto& s = band.statistics)
            for (const double value : {s->minimum, s->maximum, s->mean, s->standardDeviation})
                cells.push_back(Rounded(value));
        cells.resize(5, "-");
        if (band.displayRange) {
            cells.push_back(Rounded(band.displayRange->first));
            cells.push_back(Rounded(band.displayRange->second));
        }
        cells.resize(columns.size(), "-");
        table.AddRow(cells);
    }
    table.Print(2);
}

void PrintReference(const RasterFacts& facts) {
    OGRSpatialReference reference;
    char* pretty = nullptr;
    if (reference.importFromWkt(facts.wkt.c_str()) != OGRERR_NONE ||
        reference.exportToPrettyWkt(&pretty) != OGRERR_NONE) {
        CPLFree(pretty);
        return;
    }
    std::cout << '\n' << PrintableLines(pretty) << '\n';
    CPLFree(pretty);
}

Json ControlPointsJson(const RasterFacts& facts) {
    Json points = Json::array();
    for (const ControlPointFacts& point : facts.controlPoints)
        points.push_back({{"column", JsonNumber(point.column)},
                          {"row", JsonNumber(point.row)},
                          {"x", JsonNumber(point.x)},
                          {"y", JsonNumber(point.y)}});
    return points;
}

void PrintPart(const TableContent& content) {
    std::cout << '\n';
    Table(content).Print(2);
}

/// Null where no values are told.
Json KindOf(ValueFacts values) {
    if (!values.exact && !values.sampled)
        return {};
    return values.exact ? "exact" : "sampled";
}

} // namespace

Json ToJson(const RasterFacts& facts) {
    Json json = {{"path", facts.path},
                 {"format", facts.format},
                 {"width", facts.width},
                 {"height", facts.height},
                 {"bandCount", facts.bands.size()},
                 {"dataType", facts.dataType.empty() ? Json() : Json(facts.dataType)}};
    json["geotransform"] = Json::array();
    for (const double term : facts.geoTransform)
        json["geotransform"].push_back(JsonNumber(term));
    json["extent"] = JsonBox(facts.extent);
    json["controlPoints"] = ControlPointsJson(facts);
    json["controlPointReference"] =
        facts.controlPoints.empty() ? Json()
                                    : JsonReference(facts.controlPointName, facts.controlPointWkt);
    json["coordinateName"] = facts.coordinateName;
    json["epsg"] = JsonEpsg(facts.wkt);
    json["datum"] = facts.datum;
    json["units"] = facts.units;
    json["wkt"] = facts.wkt;
    json["subdatasets"] = Json::array();
    for (const SubdatasetFacts& sub : facts.subdatasets)
        json["subdatasets"].push_back({{"name", sub.name}, {"description", sub.description}});
    json["classes"] = ToJson(facts.classes);
    json["statistics"] = KindOf(facts.values);
    json["bands"] = Json::array();
    int number = 0;
    for (const BandFacts& band : facts.bands)
        json["bands"].push_back(ToJson(band, ++number));
    return json;
}

TableContent SummaryTable(const RasterFacts& facts) {
    TableContent table;
    table.rows.push_back({"format", facts.format + ", " + facts.formatName});
    if (!facts.bands.empty()) {
        table.rows.push_back({"size", Size(facts.width, facts.height) + " pixels"});
        table.rows.push_back(
            {"bands", std::to_string(facts.bands.size()) + " of " + facts.dataType});
        AddGrid(table, facts);
    }
    table.rows.push_back(
        {"coordinates", facts.coordinateName.empty() ? "none" : facts.coordinateName});
    if (!facts.datum.empty())
        table.rows.push_back({"datum", facts.datum});
    if (!facts.units.empty())
        table.rows.push_back({"units", facts.units});
    return table;
}

TableContent BandTable(const RasterFacts& facts) {
    TableContent table{{"band", "type", "block", "no-data", "colours", "overviews"}, {}};
    int number = 0;
    for (const BandFacts& band : facts.bands)
        table.rows.push_back(
            {std::to_string(++number), band.dataType, Size(band.blockWidth, band.blockHeight),
             band.noData ? FormatNumber(*band.noData) : "-",
             band.colors > 0 ? std::to_string(band.colors) : "-", OverviewSizes(band)});
    return table;
}

TableContent ControlPointTable(const RasterFacts& facts) {
    TableContent table{{"point", "column", "row", "x", "y"}, {}};
    int number = 0;
    for (const ControlPointFacts& point : facts.controlPoints)
        table.rows.push_back({std::to_string(++number), FormatNumber(point.column),
                              FormatNumber(point.row), FormatNumber(point.x),
                              FormatNumber(point.y)});
    return table;
}

TableContent SubdatasetTable(const RasterFacts& facts) {
    TableContent table{{"sub-data-set", "description"}, {}};
    for (const SubdatasetFacts& sub : facts.subdatasets)
        table.rows.push_back({sub.name, sub.description});
    return table;
}

void PrintReport(const RasterFacts& facts, bool reference) {
    // The first fact is laid out with the others: the summary has no heading.
    TableContent summary = SummaryTable(facts);
    summary.columns = summary.rows.front();
    summary.rows.erase(summary.rows.begin());
    std::cout << Printable(facts.path) << '\n';
    Table(summary).Print(2);
    if (!facts.bands.empty())
        PrintPart(BandTable(facts));
    if ((facts.values.exact || facts.values.sampled) && !facts.bands.empty())
        PrintStatistics(facts);
    if (!facts.controlPoints.empty())
        PrintPart(ControlPointTable(facts));
    if (!facts.classes.empty())
        PrintPart(ClassTableOf(facts.classes));
    if (!facts.subdatasets.empty())
        PrintPart(SubdatasetTable(facts));
    if (reference && !facts.wkt.empty())
        PrintReference(facts);
}

} // namespace zelto::host
