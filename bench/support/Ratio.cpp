#include "bench/support/Ratio.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <map>
#include <vector>

namespace zelto::bench {

namespace {

struct Result {
    std::string name;
    double timeNs = 0.0;
    double baselineNs = 0.0;
    double ratio = 0.0;
    double limit = 0.0;
};

std::vector<Result>& Results() {
    static std::vector<Result> results;
    return results;
}

std::map<std::string, std::string>& Remarks() {
    static std::map<std::string, std::string> remarks;
    return remarks;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Nanoseconds one run takes.
double TimeOnce(const Work& work) {
    if (work.prepare)
        work.prepare();
    const auto start = std::chrono::steady_clock::now();
    work.run();
    const auto end = std::chrono::steady_clock::now();
    return std::chrono::duration<double, std::nano>(end - start).count();
}

void RunPairs(benchmark::State& state, const std::string& name, double limit, const Work& measured,
              const Work& baseline) {
    TimeOnce(baseline);
    TimeOnce(measured);
    std::vector<double> times;
    std::vector<double> baselines;
    std::vector<double> ratios;
    for (auto _ : state) {
        baselines.push_back(TimeOnce(baseline));
        times.push_back(TimeOnce(measured));
        ratios.push_back(times.back() / baselines.back());
        state.SetIterationTime(times.back() * 1e-9);
    }
    Results().push_back({name, Median(times), Median(baselines), Median(ratios), limit});
    state.counters["ratio"] = Median(ratios);
}

void RunAlone(benchmark::State& state, const std::string& name, double items,
              const Work& measured) {
    TimeOnce(measured);
    std::vector<double> times;
    for (auto _ : state) {
        times.push_back(TimeOnce(measured) / std::max(items, 1.0));
        state.SetIterationTime(times.back() * 1e-9);
    }
    Results().push_back({name, Median(times), 0.0, 0.0, 0.0});
}

void AppendToJson(const std::string& path) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    if (std::ifstream existing(path); existing)
        all = nlohmann::ordered_json::parse(existing);
    for (const Result& result : Results()) {
        nlohmann::ordered_json entry = {{"name", result.name},
                                        {"time_ns", result.timeNs},
                                        {"baseline_ns", result.baselineNs},
                                        {"ratio", result.ratio},
                                        {"limit", result.limit}};
        if (const auto remark = Remarks().find(result.name); remark != Remarks().end())
            entry["remark"] = remark->second;
        all.push_back(std::move(entry));
    }
    std::ofstream(path) << all.dump(1) << '\n';
}

} // namespace

void AddRatio(const std::string& name, double limit, Work measured, Work baseline, int pairs) {
    benchmark::RegisterBenchmark(
        name.c_str(),
        [=](benchmark::State& state) { RunPairs(state, name, limit, measured, baseline); })
        ->UseManualTime()
        ->Iterations(pairs)
        ->Unit(benchmark::kMillisecond);
}

void AddTime(const std::string& name, double items, Work measured, int repetitions) {
    benchmark::RegisterBenchmark(
        name.c_str(), [=](benchmark::State& state) { RunAlone(state, name, items, measured); })
        ->UseManualTime()
        ->Iterations(repetitions)
        ->Unit(items > 1 ? benchmark::kNanosecond : benchmark::kMillisecond);
}

void Remark(const std::string& name, const std::string& text) {
    Remarks()[name] = text;
}

} // namespace zelto::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    zelto::bench::Register();
    benchmark::RunSpecifiedBenchmarks();
    if (const char* path = std::getenv("ZELTO_BENCH_JSON"); path != nullptr)
        zelto::bench::AppendToJson(path);
    return 0;
}
