#pragma once

#include "zelto/datasource/DataProgress.h"
#include "zelto/raster/internal/PyramidBlocks.h"

#include <string>
#include <vector>

class GDALDataset;

namespace zelto {

/// What pyramid an image shall get.
struct PyramidOrder {
    std::string resampling;
    std::vector<int> levels; ///< reduction factors
    std::vector<int> bands;  ///< numbered from 1; empty: all
    CDataProgress* progress = nullptr;
};

/// Whether GDAL has a resampling of the name for pyramids.
bool IsPyramidResampling(const char* name);

/// Whether a pyramid that the image has is inside its file, or has its index there.
bool HasPyramidInside(GDALDataset& image);

/// Whether GDAL builds the pyramid in the image's file, or in a way of the format's own, rather
/// than in files beside the image.
bool IsBuiltInside(GDALDataset& image);

/// Whether a former pyramid comes back only with a copy of the image's file: its index is part
/// of the file.
bool NeedsCopyToRebuild(GDALDataset& image);

/// Whether the image's format can remove a pyramid inside its file.
bool CanRemovePyramid(GDALDataset& image);

/// Replaces the pyramid of an open image, which sees the new one at once. When it fails or is
/// cancelled, a pyramid beside the image is as it was, one inside the file is removed, and the
/// reason is in LastError().
bool BuildPyramid(GDALDataset& image, const PyramidOrder& order);

/// Whether the file, opened anew, has the whole pyramid. The reason against it goes to
/// LastError().
/// @param written PlacesOfLevels() of the image that has written it
bool IsPyramidInFile(const std::string& path, const PyramidOrder& order,
                     const BlockPlaces& written);

/// Removes the pyramid inside a file that is not open.
void RemovePyramidInside(const std::string& path);

} // namespace zelto
