#pragma once

#include "zelto/raster/internal/PyramidBuild.h"

namespace zelto {

/// Builds a pyramid in files beside the image: in a hidden folder, from where it takes the place
/// of the old one when it is complete.
bool BuildPyramidBeside(GDALDataset& image, const PyramidOrder& order);

/// Lets an open image look anew for the pyramid beside it; one of another image is not seen.
void RescanPyramidBeside(GDALDataset& image);

/// Takes the pyramid of another image away from one that has just been opened: "scene.aux" of
/// scene.tif must not show in scene.bmp.
void HideForeignPyramid(GDALDataset& image);

/// Number of levels that GDAL knows beside the image; the first band tells.
int CountLevelsBeside(GDALDataset& image);

/// Whether a file of masks stands beside the image. It has a pyramid of its own, which GDAL builds
/// along with the image's.
bool HasMasksBeside(GDALDataset& image);

/// Whether the image's format leaves the pyramid beside the file to GDAL, and no masks stand there.
bool CanHavePyramidBeside(GDALDataset& image);

} // namespace zelto
