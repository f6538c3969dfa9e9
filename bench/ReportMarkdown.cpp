#include "bench/ReportMarkdown.h"

#include "bench/ReportPlot.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zelto::bench {

namespace {

constexpr const char* BEGIN = "<!-- results: begin -->\n";
constexpr const char* END = "<!-- results: end -->\n";
/// Benchmarks with this name are points of curves: cost/<axis>/<command>/<x>.
const std::string CURVE = "cost/";

bool IsPoint(const nlohmann::json& entry) {
    return entry.at("name").get<std::string>().rfind(CURVE, 0) == 0;
}

std::string ThreeDigits(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", value);
    return text;
}

std::string Row(const nlohmann::json& entry) {
    const double ratio = entry.at("ratio");
    const double limit = entry.at("limit");
    std::string row =
        "| " + entry.at("name").get<std::string>() + " | " + Readable(entry.at("time_ns")) + " | ";
    row += ratio > 0 ? Readable(entry.at("baseline_ns")) + " | " + ThreeDigits(ratio) : " | ";
    row += limit > 0 ? " | " + ThreeDigits(limit) + (ratio <= limit ? "" : " **over**") : " | ";
    return row + " | " + entry.value("remark", "") + " |\n";
}

std::string Table(const nlohmann::json& results) {
    std::string table = "| benchmark | time | baseline | ratio | limit | |\n"
                        "|---|--:|--:|--:|--:|---|\n";
    for (const auto& entry : results)
        if (!IsPoint(entry))
            table += Row(entry);
    return table;
}

/// The curves along one axis.
Curves CurvesOf(const nlohmann::json& results, const std::string& axis) {
    Curves curves;
    for (const auto& entry : results) {
        const std::string name = entry.at("name");
        const std::string start = CURVE + axis + '/';
        if (name.rfind(start, 0) != 0)
            continue;
        const std::size_t last = name.rfind('/');
        curves[name.substr(start.size(), last - start.size())][std::stod(name.substr(last + 1))] =
            entry.at("time_ns").get<double>() * 1e-9;
    }
    return curves;
}

std::string ReadText(const std::string& path) {
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream file(path);
    if (!(file << text << std::flush))
        throw std::runtime_error("cannot write " + path.string());
}

} // namespace

std::string Readable(double nanoseconds) {
    const char* units[] = {"ns", "us", "ms", "s"};
    int unit = 0;
    while (nanoseconds >= 1000.0 && unit < 3) {
        nanoseconds /= 1000.0;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.4g %s", nanoseconds, units[unit]);
    return text;
}

void WriteMarkdown(const nlohmann::json& results, const std::string& page) {
    std::string text = ReadText(page);
    const std::size_t begin = text.find(BEGIN);
    const std::size_t end = text.find(END);
    if (begin == std::string::npos || end == std::string::npos || end < begin)
        throw std::runtime_error(page + " has no marks for the results");
    std::string section = Table(results);
    for (const std::string axis : {"pixels", "vertices"}) {
        const Curves curves = CurvesOf(results, axis);
        if (curves.empty())
            continue;
        const std::string picture = "performance-" + axis + ".svg";
        WriteText(std::filesystem::path(page).parent_path() / picture, PlotCurves(curves, axis));
        section += "\n![Time against " + axis + "](" + picture + ")\n";
    }
    const std::size_t first = begin + std::string(BEGIN).size();
    WriteText(page, text.replace(first, end - first, section));
}

} // namespace zelto::bench
