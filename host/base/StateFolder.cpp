#include "host/base/StateFolder.h"

#include "zelto/datasource/GISDataSource.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace zelto::host {

namespace {

/// An absolute path of the environment; empty for none, as relative ones are to be ignored.
std::string FolderIn(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value == '/' ? value : "";
}

/// Programs that are writing the log go on in the one that is set aside.
void SetAsideWhereLarge(const std::string& log) {
    constexpr std::uintmax_t LARGE = 1U << 20;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(log, error);
    if (!error && size >= LARGE)
        std::filesystem::rename(log, log + ".1", error);
}

} // namespace

void LogBelowStateFolder() {
    std::string folder = FolderIn("XDG_STATE_HOME");
    if (folder.empty() && !FolderIn("HOME").empty())
        folder = FolderIn("HOME") + "/.local/state";
    if (folder.empty()) {
        CGISDataSource::SetLogFolder("");
        return;
    }
    folder += "/zelto";
    SetAsideWhereLarge(folder + "/gdal.log");
    CGISDataSource::SetLogFolder(folder.c_str());
}

} // namespace zelto::host
