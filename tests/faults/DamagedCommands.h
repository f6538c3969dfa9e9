#pragma once

#include <string>
#include <vector>

namespace zelto::test {

/// Command lines for files that may be damaged. FILE stands for the file, OUT begins a new name in
/// a folder, SCENE is an intact image.
const std::vector<std::vector<std::string>>& RasterCommands();
const std::vector<std::vector<std::string>>& VectorCommands();

} // namespace zelto::test
