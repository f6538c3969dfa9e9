#pragma once

#include <string>

namespace CLI {
class App;
}

namespace zelto::cli {

/// Whether an option stands on the command line.
bool IsGiven(const CLI::App& command, const std::string& option);

/// Throws UsageError where an option is given that has no effect.
/// @param belongsTo what it needs: "--aoi", "--stretch table"
void RequireEffect(const CLI::App& command, const std::string& option, bool hasEffect,
                   const std::string& belongsTo);

} // namespace zelto::cli
