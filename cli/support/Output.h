#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zelto::cli {

/// Adds --overwrite, without which no command replaces a file.
void AddOverwriteOption(CLI::App& command, bool& overwrite);

/// Throws Failure where a file must not be made: where one exists that may not be replaced, and,
/// whether it may or not, where it is one of those that the command reads.
/// @param path empty: nothing is made
/// @param inputs paths; what is no file is ignored
void RequireFreePath(const std::string& path, bool overwrite,
                     const std::vector<std::string>& inputs = {});

} // namespace zelto::cli
