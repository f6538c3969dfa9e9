#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/coordinate/CoordinateTransformation.h"

#include "cli/ReprojectCommands.h"
#include "cli/support/Failure.h"
#include "cli/support/GdalUse.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Json.h"
#include "cli/support/Message.h"
#include "cli/support/Open.h"
#include "cli/support/Reference.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>
#include <vector>

namespace zelto::cli {

namespace {

struct Options {
    std::string file = "-";
    std::string from;
    std::string to;
    std::string fromShift;
    std::string toShift;
    int decimals = -1;
    bool json = false;
};

struct DestroyTransformation {
    void operator()(CCoordinateTransformation* transformation) const {
        CCoordinateTransformation::DestroyCoordinateTransformation(transformation);
    }
};
using Transformation = std::unique_ptr<CCoordinateTransformation, DestroyTransformation>;

Transformation Connect(const Options& options) {
    RequireReference(options.from);
    RequireReference(options.to);
    constexpr std::size_t PARAMETERS = 7;
    std::vector<double> fromShift;
    std::vector<double> toShift;
    if (!options.fromShift.empty())
        fromShift = ParseNumbers("--from-shift", options.fromShift, PARAMETERS);
    if (!options.toShift.empty())
        toShift = ParseNumbers("--to-shift", options.toShift, PARAMETERS);
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
        throw Failure(options.from, "cannot be transformed to " + options.to);
    return result;
}

struct Points {
    std::vector<double> x;
    std::vector<double> y;
    std::vector<int> known;
};

/// The next number of a line, past blanks and separators; nothing where none stands.
std::optional<double> NextNumber(const char*& at, const char* end) {
    while (at != end && std::strchr(" \t,;+", *at) != nullptr)
        ++at;
    double value = 0.0;
    const auto parsed = std::from_chars(at, end, value);
    const bool whole = parsed.ptr == end || std::strchr(" \t,;\r", *parsed.ptr) != nullptr;
    if (parsed.ec != std::errc() || !whole)
        return std::nullopt;
    at = parsed.ptr;
    return value;
}

/// Reads x and y from the lines of a text or CSV file; further columns are ignored, and so are
/// empty lines, comments after '#' and a first line of headings.
class PointReader {
  public:
    explicit PointReader(const std::string& file) : m_name(file) {
        if (file == "-") {
            m_name = "standard input";
            return;
        }
        RequireNoPipe(file);
        m_file.open(file);
        if (!m_file)
            throw Failure(file, std::strerror(errno));
    }

    /// Of the file, for messages.
    const std::string& Name() const { return m_name; }
    /// Reads up to `most` points; fewer, none at last, at the end.
    Points Read(std::size_t most) {
        Points points;
        std::istream& in = m_file.is_open() ? m_file : std::cin;
        std::string line;
        while (points.x.size() < most && std::getline(in, line)) {
            ++m_line;
            const std::size_t first = line.find_first_not_of(" \t\r");
            if (first == std::string::npos || line[first] == '#')
                continue;
            AddPoint(points, line);
            m_contentSeen = true;
        }
        return points;
    }

  private:
    void AddPoint(Points& points, const std::string& line) {
        const char* at = line.data();
        const char* end = at + line.size();
        const auto x = NextNumber(at, end);
        const auto y = x ? NextNumber(at, end) : std::nullopt;
        if (y) {
            points.x.push_back(*x);
            points.y.push_back(*y);
        } else if (m_contentSeen) {
            throw Failure(m_name, "line " + std::to_string(m_line) + ": '" + line +
                                      "' does not start with x and y");
        }
    }

    std::string m_name;
    std::ifstream m_file;
    std::size_t m_line = 0;
    bool m_contentSeen = false;
};

std::string FormatFixed(double value, int decimals) {
    if (!std::isfinite(value))
        return FormatNumber(value);
    char text[400];
    const auto end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    return {text, end.ptr};
}

/// A hundredth of a millimetre or better, in degrees or metres.
int DefaultDecimals(const std::string& srs) {
    return CCoordinateAlgorithm::IsGeographic(srs.c_str()) ? 10 : 4;
}

void Print(const Points& points, int decimals, Json& json, bool asJson) {
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        if (asJson)
            json.push_back({{"x", JsonNumber(points.x[i])},
                            {"y", JsonNumber(points.y[i])},
                            {"known", points.known[i] != 0}});
        else
            std::cout << FormatFixed(points.x[i], decimals) << ' '
                      << FormatFixed(points.y[i], decimals) << '\n';
    }
}

void Run(const Options& options) {
    const QuietGdalUse gdal;
    const Transformation transformation = Connect(options);
    PointReader reader(options.file);
    const int decimals = options.decimals < 0 ? DefaultDecimals(options.to) : options.decimals;
    constexpr std::size_t BATCH = 65536;
    Json json = Json::array();
    std::size_t count = 0;
    std::size_t unknown = 0;
    for (Points points = reader.Read(BATCH); !points.x.empty(); points = reader.Read(BATCH)) {
        EndIfInterrupted();
        points.known.resize(points.x.size());
        transformation->Transform(static_cast<int>(points.x.size()), points.x.data(),
                                  points.y.data(), nullptr, points.known.data());
        count += points.x.size();
        unknown +=
            static_cast<std::size_t>(std::count(points.known.begin(), points.known.end(), 0));
        Print(points, decimals, json, options.json);
    }
    if (options.json)
        PrintJson(json);
    if (unknown > 0 && unknown == count)
        throw Failure(options.to, "none of the points has a place there");
    if (unknown > 0)
        Tell(reader.Name() + ": " + std::to_string(unknown) + " of " + std::to_string(count) +
             " points have no place in " + options.to);
}

} // namespace

void AddReprojectPoints(CLI::App& reproject) {
    auto options = std::make_shared<Options>();
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
    points->add_flag("--json", options->json, "print JSON");
    points->callback([options] { Run(*options); });
}

} // namespace zelto::cli
