#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zelto::cli {

/// The commands of a command, in the order they were added.
std::vector<const CLI::App*> Subcommands(const CLI::App& command);

/// What stands on the command line by its position.
std::vector<const CLI::Option*> Words(const CLI::App& command);

/// What begins with a dash, but for options that help does not show.
std::vector<const CLI::Option*> Switches(const CLI::App& command);

/// Calls `use` with the program, its commands and theirs, each behind the words that lead to it:
/// "", "aoi", "aoi info".
void ForEachCommand(
    const CLI::App& program,
    const std::function<void(const CLI::App& command, const std::string& words)>& use);

} // namespace zelto::cli
