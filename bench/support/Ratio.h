#pragma once

#include <functional>
#include <string>

namespace zelto::bench {

/// One thing to time. `prepare` runs before each timing and is not counted.
struct Work {
    std::function<void()> run;
    std::function<void()> prepare = {};
};

/// Registers a benchmark that times `measured` and `baseline` in turn, pair by pair, and
/// reports the median of the pairs' ratios, so that a machine whose speed drifts still gives a
/// comparison that holds.
/// @param limit the ratio the project promises; 0: none, the ratio is for information
/// @param pairs how often both are run; one more pair comes first and is not counted
void AddRatio(const std::string& name, double limit, Work measured, Work baseline, int pairs = 7);

/// Registers a benchmark that only reports a time, per item where `items` > 1.
void AddTime(const std::string& name, double items, Work measured, int repetitions = 7);

/// Adds a remark to a benchmark's line, such as a memory figure; called while it runs.
void Remark(const std::string& name, const std::string& text);

/// Supplied by each benchmark program: registers its benchmarks.
void Register();

} // namespace zelto::bench
