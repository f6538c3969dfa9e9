#include "zelto/datasource/internal/HostModule.h"

#include <array>
#include <filesystem>
#include <link.h>
#include <string_view>
#include <system_error>

namespace zelto {

namespace {

constexpr std::array<std::string_view, 3> HOST_MODULE_NAMES = {"libHalvorn.so", "Halvorn.so",
                                                               "Halvorn.dll"};

std::string_view LastComponent(std::string_view path) {
    const std::size_t separator = path.rfind('/');
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

/// Called for each loaded object; a non-zero result ends the walk.
int TakePathOfHostModule(dl_phdr_info* object, std::size_t /*size*/, void* path) {
    if (object->dlpi_name == nullptr)
        return 0;
    for (const std::string_view name : HOST_MODULE_NAMES) {
        if (LastComponent(object->dlpi_name) == name) {
            *static_cast<std::string*>(path) = object->dlpi_name;
            return 1;
        }
    }
    return 0;
}

/// Path of the host module, else of the executable.
std::filesystem::path ModulePath() {
    std::string hostModule;
    std::error_code ignored;
    if (dl_iterate_phdr(TakePathOfHostModule, &hostModule) != 0)
        return std::filesystem::absolute(hostModule, ignored);
    return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

} // namespace

std::string InstallationFolder() {
    return ModulePath().parent_path().string();
}

} // namespace zelto
