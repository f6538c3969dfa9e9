#include "host/files/Output.h"

#include "host/base/Failure.h"

#include <filesystem>
#include <system_error>

namespace zelto::host {

void RequireFreePath(const std::string& path, bool overwrite,
                     const std::vector<std::string>& inputs) {
    if (path.empty())
        return;
    std::error_code ignored;
    for (const std::string& input : inputs)
        if (std::filesystem::equivalent(path, input, ignored))
            throw Failure(path, "it is what the command reads; write to another name");
    // Folders, pipes and devices have reasons of their own, which the writing tells.
    if (!overwrite && std::filesystem::is_regular_file(path, ignored))
        throw Failure(path, "it exists; --overwrite replaces it");
}

} // namespace zelto::host
