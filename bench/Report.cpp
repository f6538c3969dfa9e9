// Prints the results that the benchmark programs collected as one table.

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>
#include <string>

namespace {

/// A time in the unit that leaves one to three digits before the point.
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

void PrintLine(const nlohmann::json& entry) {
    const double ratio = entry.at("ratio");
    const double limit = entry.at("limit");
    std::printf("%-52s %12s", entry.at("name").get<std::string>().c_str(),
                Readable(entry.at("time_ns")).c_str());
    if (ratio > 0)
        std::printf(" %12s %8.3f", Readable(entry.at("baseline_ns")).c_str(), ratio);
    if (limit > 0)
        std::printf(" %8.3f %s", limit, ratio <= limit ? "ok" : "OVER");
    if (entry.contains("remark"))
        std::printf("  %s", entry.at("remark").get<std::string>().c_str());
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv) {
    std::ifstream file(argc > 1 ? argv[1] : "build/bench.json");
    if (!file) {
        std::fprintf(stderr, "no benchmark results to report\n");
        return 1;
    }
    std::printf("%-52s %12s %12s %8s %8s\n", "benchmark", "time", "baseline", "ratio", "limit");
    for (const auto& entry : nlohmann::json::parse(file))
        PrintLine(entry);
    return 0;
}
