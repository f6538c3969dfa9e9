#pragma once

#include <string>
#include <vector>

class GDALDataset;

namespace zelto {

/// Where the blocks of a pyramid are in their file, one after the other.
using BlockPlaces = std::vector<std::string>;

/// The places of all blocks of the levels, as far as these are TIFF; of an image that has written
/// them, those that the file shall name.
BlockPlaces PlacesOfLevels(GDALDataset& image);

/// Whether a file names these places of its levels' blocks: GDAL is silent where the disk refuses
/// that index, and then reads zeros. The reason against it goes to LastError() under the name of
/// `file`.
bool NamesPlaces(GDALDataset& image, const BlockPlaces& written, const std::string& file);

/// Whether no block of levels that are TIFF is without bytes, which only the host can ask for. The
/// reason against it goes to LastError() under the name of `file`.
bool HasEveryBlock(GDALDataset& image, const std::string& file);

} // namespace zelto
