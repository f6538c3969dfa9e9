#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zelto::test {

/// What a finished run of the program left behind.
struct RunResult {
    int exitStatus = -1; ///< −1: it did not end by itself
    std::string output;  ///< standard output
    std::string errors;  ///< standard error
};

/// Runs the built `zelto` with these arguments, `input` on its standard input, and waits for it.
/// @param meanwhile called with the program's process while it runs
RunResult RunZelto(const std::vector<std::string>& arguments, const std::string& input = "",
                   const std::function<void(pid_t)>& meanwhile = {});

} // namespace zelto::test
