#pragma once

#include <string>
#include <vector>

namespace zelto::bench {

/// Path of a program of this project, which stand beside each other.
std::string OwnProgram(const std::string& name);

/// Runs a program to its end with its output thrown away, and throws std::runtime_error when it
/// fails.
/// @param words the program, looked for in PATH where it has no slash, and its arguments
/// @return its peak resident memory in megabytes
double RunProgram(const std::vector<std::string>& words);

} // namespace zelto::bench
