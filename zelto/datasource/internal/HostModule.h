#pragma once

#include <string>

namespace zelto {

/// Folder of the installation, without a separator at its end: the folder of the loaded host
/// module (a shared object named libHalvorn.so, Halvorn.so or Halvorn.dll), or that of the
/// running executable when no such module is loaded. Empty when neither can be found.
std::string InstallationFolder();

} // namespace zelto
