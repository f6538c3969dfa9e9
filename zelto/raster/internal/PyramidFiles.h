#pragma once

#include <cpl_string.h>

#include <filesystem>
#include <string>
#include <vector>

/// @file
/// Pyramids that stand beside their images. "scene.aux" with the levels in "scene.rrd" is named
/// by the stem alone, so that scene.tif, scene.bmp and scene.img come into question as its
/// image; the index says whose it is. "scene.tif.ovr" leaves no doubt.

namespace zelto {

/// Whether an index of the image's stem stands there that is another image's.
bool HasForeignIndex(const std::filesystem::path& image);

/// Whether a pyramid in "stem.aux" and "stem.rrd" would meet files that are not the image's.
bool IsStemTaken(const std::filesystem::path& image);

/// Whether the levels of an image that names its "stem.rrd" itself, as ERDAS Imagine files do,
/// lie in a file that the index of another image claims as well. Only one of the two can be
/// right.
bool SharesLevels(const std::filesystem::path& image);

/// The files of the pyramid beside an image, as far as they are its own.
std::vector<std::filesystem::path> PyramidFilesBeside(const std::filesystem::path& image);

/// The files of a pyramid beside the image that GDAL would take for the image's, but which
/// belong to another one.
std::vector<std::filesystem::path> ForeignPyramidFiles(const std::filesystem::path& image);

/// The names in the image's folder, but for the index of its stem.
CPLStringList FolderWithoutIndex(const std::filesystem::path& image);

} // namespace zelto
