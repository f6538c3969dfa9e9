#pragma once

#include <string>
#include <vector>

namespace zelto::host {

/// Throws Failure where a file must not be made: where one exists that may not be replaced, and,
/// whether it may or not, where it is one of those that are read.
/// @param path empty: nothing is made
/// @param inputs paths; what is no file is ignored
void RequireFreePath(const std::string& path, bool overwrite,
                     const std::vector<std::string>& inputs = {});

} // namespace zelto::host
