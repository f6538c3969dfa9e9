// Prints the results that the benchmark programs collected as one table:
//     zelto_report_benches RESULTS.json [PAGE.md]
// With a page, the results and plots of how cost grows go there as well.

#include "bench/ReportMarkdown.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

namespace {

using zelto::bench::Readable;

void PrintLine(const nlohmann::json& entry) {
    const double ratio = entry.at("ratio");
    const double limit = entry.at("limit");
    std::printf("%-66s %12s", entry.at("name").get<std::string>().c_str(),
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

int main(int argc, char** argv) try {
    std::ifstream file(argc > 1 ? argv[1] : "build/bench.json");
    if (!file) {
        std::fprintf(stderr, "no benchmark results to report\n");
        return 1;
    }
    const nlohmann::json results = nlohmann::json::parse(file);
    std::printf("%-66s %12s %12s %8s %8s\n", "benchmark", "time", "baseline", "ratio", "limit");
    for (const auto& entry : results)
        PrintLine(entry);
    if (argc > 2)
        zelto::bench::WriteMarkdown(results, argv[2]);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
