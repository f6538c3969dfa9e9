#include "host/report/StatisticsReport.h"

#include "host/base/Printable.h"
#include "host/base/Text.h"
#include "host/report/Table.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iostream>

namespace zelto::host {

namespace {

using Band = CRegionStatistics::Band;

std::vector<std::string> CellsOf(const Band& band, bool percentiles,
                                 const std::function<std::string(double)>& format) {
    std::vector<std::string> cells = {
        std::to_string(band.index + 1), std::to_string(band.count), format(band.minimum),
        format(band.maximum),           format(band.mean),          format(band.standardDeviation)};
    if (percentiles) {
        cells.push_back(format(band.lowPercentile));
        cells.push_back(format(band.highPercentile));
    }
    return cells;
}

/// Puts what tells a report from others before its cells.
void PrependNames(std::vector<std::string>& cells, const RegionReport& report) {
    if (!report.shape.empty())
        cells.insert(cells.begin(), report.shape);
    if (!report.path.empty())
        cells.insert(cells.begin(), report.path);
}

/// The same for the header.
void PrependTitles(std::vector<std::string>& header, const RegionReport& report) {
    if (!report.shape.empty())
        header.insert(header.begin(), "shape");
    if (!report.path.empty())
        header.insert(header.begin(), "path");
}

void PrintBandTable(const std::vector<RegionReport>& reports) {
    std::vector<std::string> header = {"band",    "count", "minimum",
                                       "maximum", "mean",  "standard deviation"};
    const RegionReport& first = reports.front();
    if (first.hasPercentiles)
        header.insert(header.end(), {"low percentile", "high percentile"});
    PrependTitles(header, first);
    Table table(header);
    for (const RegionReport& report : reports) {
        for (const Band& band : report.bands) {
            auto cells = CellsOf(band, report.hasPercentiles, FormatBriefly);
            PrependNames(cells, report);
            table.AddRow(cells);
        }
    }
    table.Print();
}

void PrintMatrix(const RegionReport& report, const std::string& title,
                 const std::function<double(std::size_t, std::size_t)>& entry) {
    std::vector<std::string> header = {title};
    for (const Band& band : report.bands)
        header.push_back(std::to_string(band.index + 1));
    Table table(header);
    for (std::size_t a = 0; a < report.bands.size(); ++a) {
        std::vector<std::string> cells = {std::to_string(report.bands[a].index + 1)};
        for (std::size_t b = 0; b < report.bands.size(); ++b)
            cells.push_back(FormatBriefly(entry(a, b)));
        table.AddRow(cells);
    }
    std::cout << '\n';
    table.Print();
}

Json MatrixAsRows(std::size_t size, const std::function<double(std::size_t, std::size_t)>& entry) {
    Json rows = Json::array();
    for (std::size_t a = 0; a < size; ++a) {
        Json row = Json::array();
        for (std::size_t b = 0; b < size; ++b)
            row.push_back(JsonNumber(entry(a, b)));
        rows.push_back(row);
    }
    return rows;
}

void PrintCsvLine(const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        std::cout << (i > 0 ? "," : "") << Printable(cells[i]);
    std::cout << '\n';
}

} // namespace

__int64 RegionReport::Count() const {
    __int64 count = 0;
    for (const Band& band : bands)
        count = std::max(count, band.count);
    return count;
}

double RegionReport::Correlation(std::size_t a, std::size_t b) const {
    const std::size_t n = bands.size();
    return covariance[a * n + b] / std::sqrt(covariance[a * n + a] * covariance[b * n + b]);
}

void PrintTables(const std::vector<RegionReport>& reports) {
    if (reports.empty())
        return;
    PrintBandTable(reports);
    for (const RegionReport& report : reports) {
        if (report.covariance.empty())
            continue;
        std::string of = report.path;
        if (!report.shape.empty())
            of += (of.empty() ? "" : ", ") + report.shape;
        of = of.empty() ? "" : " (" + of + ")";
        PrintMatrix(report, "covariance" + of, [&](std::size_t a, std::size_t b) {
            return report.covariance[a * report.bands.size() + b];
        });
        PrintMatrix(report, "correlation" + of,
                    [&](std::size_t a, std::size_t b) { return report.Correlation(a, b); });
    }
}

void PrintCsv(const std::vector<RegionReport>& reports) {
    if (reports.empty())
        return;
    const RegionReport& first = reports.front();
    std::vector<std::string> header = {"band",    "count", "minimum",
                                       "maximum", "mean",  "standardDeviation"};
    if (first.hasPercentiles)
        header.insert(header.end(), {"lowPercentile", "highPercentile"});
    if (!first.covariance.empty())
        for (const Band& band : first.bands)
            header.push_back("covariance" + std::to_string(band.index + 1));
    PrependTitles(header, first);
    PrintCsvLine(header);
    for (const RegionReport& report : reports) {
        const std::size_t n = report.bands.size();
        for (std::size_t a = 0; a < n; ++a) {
            auto cells = CellsOf(report.bands[a], report.hasPercentiles, FormatNumber);
            for (std::size_t b = 0; !report.covariance.empty() && b < n; ++b)
                cells.push_back(FormatNumber(report.covariance[a * n + b]));
            PrependNames(cells, report);
            PrintCsvLine(cells);
        }
    }
}

Json ToJson(const RegionReport& report) {
    Json json = Json::object();
    if (!report.path.empty())
        json["path"] = report.path;
    if (!report.shape.empty())
        json["shape"] = report.shape;
    json["count"] = report.Count();
    if (report.sampled)
        json["sampled"] = true;
    json["bands"] = Json::array();
    for (const Band& band : report.bands) {
        Json entry = {{"band", band.index + 1},
                      {"count", band.count},
                      {"minimum", JsonNumber(band.minimum)},
                      {"maximum", JsonNumber(band.maximum)},
                      {"mean", JsonNumber(band.mean)},
                      {"standardDeviation", JsonNumber(band.standardDeviation)}};
        if (report.hasPercentiles) {
            entry["lowPercentile"] = JsonNumber(band.lowPercentile);
            entry["highPercentile"] = JsonNumber(band.highPercentile);
        }
        json["bands"].push_back(entry);
    }
    if (report.covariance.empty())
        return json;
    const std::size_t n = report.bands.size();
    json["covarianceCount"] = report.covarianceCount;
    json["covariance"] =
        MatrixAsRows(n, [&](std::size_t a, std::size_t b) { return report.covariance[a * n + b]; });
    json["correlation"] =
        MatrixAsRows(n, [&](std::size_t a, std::size_t b) { return report.Correlation(a, b); });
    return json;
}

} // namespace zelto::host
