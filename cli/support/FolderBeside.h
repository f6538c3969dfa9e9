#pragma once

#include <filesystem>
#include <string>

namespace zelto::cli {

/// A new hidden folder beside a path, ".kept-by-zelto-" and a random text, for old files that may
/// have to come back. They keep their names in there, because formats and the files that go with
/// them depend on those. No later save takes it for a leftover: what could not be put back stays.
/// Throws Failure naming the path.
std::filesystem::path MakeFolderBeside(const std::string& path);

} // namespace zelto::cli
