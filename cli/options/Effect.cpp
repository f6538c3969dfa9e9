#include "cli/options/Effect.h"

#include "host/base/Failure.h"

#include <CLI/CLI.hpp>

namespace zelto::cli {

bool IsGiven(const CLI::App& command, const std::string& option) {
    return command.count(option) > 0;
}

void RequireEffect(const CLI::App& command, const std::string& option, bool hasEffect,
                   const std::string& belongsTo) {
    if (!hasEffect && IsGiven(command, option))
        throw host::UsageError(option + ": belongs to " + belongsTo);
}

} // namespace zelto::cli
