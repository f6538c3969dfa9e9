#include "host/base/StateFolder.h"

#include "zelto/datasource/GISDataSource.h"

#include <cstdlib>
#include <string>

namespace zelto::host {

namespace {

/// An absolute path of the environment; empty for none, as relative ones are to be ignored.
std::string FolderIn(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value == '/' ? value : "";
}

} // namespace

void LogBelowStateFolder() {
    std::string folder = FolderIn("XDG_STATE_HOME");
    if (folder.empty() && !FolderIn("HOME").empty())
        folder = FolderIn("HOME") + "/.local/state";
    CGISDataSource::SetLogFolder(folder.empty() ? "" : (folder + "/zelto").c_str());
}

} // namespace zelto::host
