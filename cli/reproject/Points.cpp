#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/coordinate/CoordinateTransformation.h"

#include "cli/options/Effect.h"
#include "cli/reproject/Commands.h"
#include "cli/reproject/PointColumns.h"
#include "cli/reproject/PointLines.h"
#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Interrupts.h"
#include "host/base/Message.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Reference.h"
#include "host/report/Json.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <vector>

namespace zelto::cli {

namespace {

struct PointsOptions {
    std::string file = "-";
    std::string from;
    std::string to;
    std::string fromShift;
    std::string toShift;
    int decimals = -1;
    std::string columns;
    bool json = false;
};

struct DestroyTransformation {
    void operator()(CCoordinateTransformation* transformation) const {
        CCoordinateTransformation::DestroyCoordinateTransformation(transformation);
    }
};
using Transformation = std::unique_ptr<CCoordinateTransformation, DestroyTransformation>;

Transformation Connect(const PointsOptions& options) {
    host::RequireReference(options.from);
    host::RequireReference(options.to);
    constexpr std::size_t PARAMETERS = 7;
    std::vector<double> fromShift;
    std::vector<double> toShift;
    if (!options.fromShift.empty())
        fromShift = host::ParseNumbers("--from-shift", options.fromShift, PARAMETERS);
    if (!options.toShift.empty())
        toShift = host::ParseNumbers("--to-shift", options.toShift, PARAMETERS);
    Transformation result;
    if (fromShift.empty() && toShift.empty())
        result.reset(CCoordinateTransformation::CreateCoordinateTransformation(
            options.from.c_str(), options.to.c_str(), nullptr));
    else
        result.reset(CCoordinateTransformation::CreateCoordinateTransformation(
            options.from.c_str(), options.to.c_str(),
            fromShift.empty() ? nullptr : fromShift.data(),
            toShift.empty() ? nullptr : toShift.data()));
    if (!result)
        throw host::Failure(options.from, "cannot be transformed to " + options.to);
    return result;
}

std::string FormatFixed(double value, int decimals) {
    if (!std::isfinite(value))
        return host::FormatNumber(value);
    char text[400];
    const auto end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    return {text, end.ptr};
}

/// A hundredth of a millimetre or better, in degrees or metres.
int DefaultDecimals(const std::string& srs) {
    return CCoordinateAlgorithm::IsGeographic(srs.c_str()) ? 10 : 4;
}

void PrintPoints(const Points& points, int decimals, host::Json& json, bool asJson) {
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        if (asJson)
            json.push_back({{"x", host::JsonNumber(points.x[i])},
                            {"y", host::JsonNumber(points.y[i])},
                            {"known", points.known[i] != 0}});
        else
            std::cout << FormatFixed(points.x[i], decimals) << ' '
                      << FormatFixed(points.y[i], decimals) << '\n';
    }
}

/// How many points there were, and how many of them have no place in the target.
struct Tally {
    std::size_t points = 0;
    std::size_t unknown = 0;
};

constexpr std::size_t BATCH = 65536;

void Transform(CCoordinateTransformation& transformation, Points& points, Tally& tally) {
    host::EndIfInterrupted();
    points.known.resize(points.x.size());
    transformation.Transform(static_cast<int>(points.x.size()), points.x.data(), points.y.data(),
                             nullptr, points.known.data());
    tally.points += points.x.size();
    tally.unknown +=
        static_cast<std::size_t>(std::count(points.known.begin(), points.known.end(), 0));
}

Tally PrintPoints(LineReader& lines, CCoordinateTransformation& transformation, int decimals,
                  bool asJson) {
    PointReader reader(lines);
    Tally tally;
    host::Json json = host::Json::array();
    for (Points points = reader.Read(BATCH); !points.x.empty(); points = reader.Read(BATCH)) {
        Transform(transformation, points, tally);
        PrintPoints(points, decimals, json, asJson);
    }
    if (asJson)
        host::PrintJson(json);
    return tally;
}

/// The table as it is, with other numbers in two of its columns.
Tally TransformTable(LineReader& lines, CCoordinateTransformation& transformation, int decimals,
                     const std::string& columnNames) {
    PointColumns columns(columnNames);
    Tally tally;
    std::string text;
    for (bool more = true; more;) {
        std::vector<PointLine> table;
        Points points;
        while (table.size() < BATCH && (more = lines.Next(text))) {
            table.push_back(columns.Parse(text, lines.Where()));
            if (table.back().isPoint) {
                points.x.push_back(table.back().x);
                points.y.push_back(table.back().y);
            }
        }
        Transform(transformation, points, tally);
        std::size_t i = 0;
        for (const PointLine& line : table) {
            std::cout << (line.isPoint ? line.With(FormatFixed(points.x[i], decimals),
                                                   FormatFixed(points.y[i], decimals))
                                       : line.text)
                      << '\n';
            i += line.isPoint ? 1 : 0;
        }
    }
    return tally;
}

void RunPoints(const PointsOptions& options) {
    const host::QuietGdalUse gdal;
    const Transformation transformation = Connect(options);
    LineReader lines(options.file);
    const int decimals = options.decimals < 0 ? DefaultDecimals(options.to) : options.decimals;
    const Tally tally = options.columns.empty()
                            ? PrintPoints(lines, *transformation, decimals, options.json)
                            : TransformTable(lines, *transformation, decimals, options.columns);
    if (tally.unknown > 0 && tally.unknown == tally.points)
        throw host::Failure(options.to, "none of the points has a place there");
    if (tally.unknown > 0)
        host::Remark(lines.Name() + ": " + std::to_string(tally.unknown) + " of " +
                     std::to_string(tally.points) + " points have no place in " + options.to);
}

} // namespace

void AddReprojectPoints(CLI::App& reproject) {
    auto options = std::make_shared<PointsOptions>();
    auto* points = reproject.add_subcommand("points", "coordinates, x y per line");
    points->add_option("FILE", options->file,
                       "text or CSV file that starts each line with x and y (default: standard "
                       "input)");
    points->add_option("--from", options->from, "system of the coordinates")->required();
    points->add_option("--to", options->to, "target system")->required();
    const std::string shift = "seven parameters to WGS 84: dx,dy,dz (m), rx,ry,rz (arc-seconds, "
                              "position vector), scale (ppm)";
    points->add_option("--from-shift", options->fromShift, shift + " of the source");
    points->add_option("--to-shift", options->toShift, shift + " of the target");
    points->add_option("--decimals", options->decimals, "default: 10 in degrees, 4 otherwise")
        ->check(CLI::Range(0, 17));
    auto* columns =
        points->add_option("--columns", options->columns,
                           "which columns are x and y, as 3,4 or lon,lat; all are printed, these "
                           "two with the new coordinates");
    points->add_flag("--json", options->json, "print JSON")->excludes(columns);
    points->callback([options, points] {
        RequireEffect(*points, "--decimals", !options->json, "printed text; JSON has all digits");
        RunPoints(*options);
    });
}

} // namespace zelto::cli
