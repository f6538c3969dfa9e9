#include "cli/support/FolderBeside.h"

#include "cli/support/Failure.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace zelto::cli {

std::filesystem::path MakeFolderBeside(const std::string& path) {
    std::string pattern =
        (std::filesystem::path(path).parent_path() / ".kept-by-zelto-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw Failure(path, std::strerror(errno));
    return pattern;
}

} // namespace zelto::cli
