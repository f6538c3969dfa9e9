#pragma once

#include <filesystem>

namespace zelto {

/// Waits until the contents of a file are on the disk.
/// @return false, with errno set, when they are not
bool SyncFile(const std::filesystem::path& file);

/// Waits until the names in a folder (empty: the working folder) are on the disk. File systems
/// that cannot say so are believed.
/// @return false, with errno set, when they are not
bool SyncFolder(const std::filesystem::path& folder);

} // namespace zelto
