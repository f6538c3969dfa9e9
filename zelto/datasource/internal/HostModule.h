#pragma once

#include <string>

namespace zelto {

/// Folder of the installation, without a separator at its end: the folder of the loaded host
/// module (a shared object named libHalvorn.so, Halvorn.so or Halvorn.dll), or that of the
/// running executable when no such module is loaded. Empty when neither can be found.
std::string InstallationFolder();

/// Whether a folder is one that packages fill and programs do not write to: /usr and what is below
/// it, also under a link's name, and what is no folder of an installation at all: none, or the
/// root.
bool IsSystemFolder(const std::string& folder);

} // namespace zelto
