#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zelto::cli {

/// A picture of each of several images.
struct ManyPictures {
    std::string folder;            ///< where they go; empty: there is one, whose path is given
    std::string format = "png";    ///< extension
    std::vector<std::string> more; ///< images beside the first two
    int jobs = 0;
};

/// Adds --into, --format, --jobs and the further images.
void AddManyOptions(CLI::App& render, ManyPictures& many);

/// Where the picture of each image goes: under its name, with the extension of the format. Throws
/// Failure where there is no such folder, and UsageError where two would have one name.
std::vector<std::string> PathsOfPictures(const std::vector<std::string>& images,
                                         const ManyPictures& many);

} // namespace zelto::cli
