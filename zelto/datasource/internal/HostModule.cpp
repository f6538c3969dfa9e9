#include "zelto/datasource/internal/HostModule.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <link.h>
#include <sstream>
#include <string>
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

/// A loaded object: its path as it was given to the loader, perhaps a relative one, and an address
/// inside it.
struct LoadedObject {
    std::string path;
    std::uintptr_t address = 0;
};

std::uintptr_t AddressInside(const dl_phdr_info& object) {
    for (int i = 0; i < object.dlpi_phnum; ++i)
        if (object.dlpi_phdr[i].p_type == PT_LOAD)
            return object.dlpi_addr + object.dlpi_phdr[i].p_vaddr;
    return object.dlpi_addr;
}

/// Called for each loaded object; a non-zero result ends the walk.
int TakeHostModule(dl_phdr_info* object, std::size_t /*size*/, void* result) {
    if (object->dlpi_name == nullptr)
        return 0;
    for (const std::string_view name : HOST_MODULE_NAMES) {
        if (LastComponent(object->dlpi_name) == name) {
            *static_cast<LoadedObject*>(result) = {object->dlpi_name, AddressInside(*object)};
            return 1;
        }
    }
    return 0;
}

/// The list of mappings writes a line feed of a path as "\012".
std::string WithLineFeeds(std::string path) {
    constexpr std::string_view ESCAPED = "\\012";
    for (std::size_t at = path.find(ESCAPED); at != std::string::npos; at = path.find(ESCAPED)) {
        path[at] = '\n';
        path.erase(at + 1, ESCAPED.size() - 1);
    }
    return path;
}

/// Absolute path of the file that is mapped at an address; empty when the system does not tell.
std::string FileMappedAt(std::uintptr_t address) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        // "7f12-7f34 r-xp 00000000 08:01 1234   /path"
        std::istringstream fields(line);
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        std::string permissions;
        std::string offset;
        std::string device;
        std::string inode;
        std::string path;
        fields >> std::hex >> begin >> dash >> end >> permissions >> offset >> device >> inode;
        if (address >= begin && address < end && std::getline(fields >> std::ws, path))
            return WithLineFeeds(path);
    }
    return {};
}

/// Path of the host module, else of the executable.
std::filesystem::path ModulePath() {
    LoadedObject hostModule;
    std::error_code ignored;
    if (dl_iterate_phdr(TakeHostModule, &hostModule) == 0)
        return std::filesystem::read_symlink("/proc/self/exe", ignored);
    if (std::filesystem::path(hostModule.path).is_absolute())
        return hostModule.path;
    // The working directory may be another by now than when the module was loaded.
    const std::string mapped = FileMappedAt(hostModule.address);
    return mapped.empty() ? std::filesystem::absolute(hostModule.path, ignored)
                          : std::filesystem::path(mapped);
}

} // namespace

std::string InstallationFolder() {
    return ModulePath().parent_path().string();
}

bool IsSystemFolder(const std::string& folder) {
    std::error_code ignored;
    const std::filesystem::path path = std::filesystem::weakly_canonical(folder, ignored);
    const std::filesystem::path below = path.relative_path();
    return below.empty() || *below.begin() == "usr";
}

} // namespace zelto
