#pragma once

#include <filesystem>
#include <string>

namespace zelto::cli {

/// A new hidden folder beside a path, for files that appear under their name only when they are
/// complete. They keep their names in there, because formats and the files that go with them
/// depend on those. Throws Failure naming the path.
std::filesystem::path MakeFolderBeside(const std::string& path);

} // namespace zelto::cli
