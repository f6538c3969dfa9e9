#pragma once

#include <filesystem>
#include <system_error>

namespace zelto {

/// Whether something stands at a path, or where it leads to as a link.
inline bool Exists(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// Whether two paths are the same or lead to the same thing.
inline bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code ignored;
    return a == b || std::filesystem::equivalent(a, b, ignored);
}

/// The folder of a path; the working folder where it names none.
inline std::filesystem::path FolderOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

} // namespace zelto
