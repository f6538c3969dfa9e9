#pragma once

#include <string>

namespace CLI {
class App;
}

namespace zelto::cli {

/// The manual page of the program, or of one of its commands with those below it, in roff.
/// @param version "zelto 1.0.0"
std::string ManualPage(const CLI::App& command, const std::string& version);

/// Scripts that let a shell complete the names of commands and options.
std::string BashCompletion(const CLI::App& program);
std::string ZshCompletion(const CLI::App& program);

/// Writes all of them below a folder, where a system looks for them below its "share". Throws
/// Failure.
void WriteManual(const CLI::App& program, const std::string& version, const std::string& folder);

} // namespace zelto::cli
