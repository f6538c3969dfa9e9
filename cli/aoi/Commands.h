#pragma once

#include <string>
#include <vector>

namespace zelto::cli {

/// Shapes as the command line gives them: the option's name, without dashes, and its text.
struct ShapeText {
    std::string option;
    std::string text;
};

/// What `aoi new` makes.
struct AoiNewOptions {
    std::string out;
    std::vector<ShapeText> shapes; ///< in the order of the command line
    std::string srs;
    double tolerance = 0.0;
    bool overwrite = false;
};
void CreateAoi(const AoiNewOptions& options);

/// What `aoi mask` makes.
struct AoiMaskOptions {
    std::string aoi;
    std::string image;
    std::string out;
    bool overwrite = false;
    bool json = false;
};
void WriteAoiMask(const AoiMaskOptions& options);

} // namespace zelto::cli
