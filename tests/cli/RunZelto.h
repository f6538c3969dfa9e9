#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zelto::test {

/// Where the built `zelto` is: beside the test programs.
std::string ProgramPath();

/// The calling process, a child of the test's, becomes the built `zelto`.
[[noreturn]] void BecomeZelto(const std::vector<std::string>& arguments);

/// What a finished run of the program left behind.
struct RunResult {
    int exitStatus = -1; ///< −1: it did not end by itself
    int endSignal = 0;   ///< the signal that ended it; 0: none did
    std::chrono::milliseconds duration{0};
    long mostMemory = 0; ///< resident at one time, KiB
    std::string output;  ///< standard output
    std::string errors;  ///< standard error
};

/// Existing files in place of those that a run has by itself; empty: none.
struct RunFiles {
    std::string input = {};
    std::string output = {};
    std::string errors = {};
};

/// Runs the built `zelto` with these arguments, `input` on its standard input, and waits for it.
/// @param meanwhile called with the program's process while it runs
RunResult RunZelto(const std::vector<std::string>& arguments, const std::string& input = "",
                   const std::function<void(pid_t)>& meanwhile = {}, const RunFiles& files = {});

/// Waits until a process that was just started takes signals for itself, rather than being ended
/// by them while the system loads it.
void WaitUntilItListens(pid_t process);

/// Waits until a process has a function of its own for a signal.
void WaitUntilItCatches(pid_t process, int signalNumber);

} // namespace zelto::test
