#pragma once

#include <functional>
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

/// Draws one image into a file.
/// @return what was made, in a line
using DrawOne = std::function<std::string(const std::string& image, const std::string& path)>;

/// Draws every image into the folder, several at a time: under the image's name, with the extension
/// of the format. Tells what was made and what was not; throws Failure where there is no such
/// folder or an image failed, and UsageError where two pictures would have one name.
/// @param firstTwo what was given before the further images; an empty one is none
void DrawMany(const std::vector<std::string>& firstTwo, const ManyPictures& many,
              const DrawOne& draw);

} // namespace zelto::cli
