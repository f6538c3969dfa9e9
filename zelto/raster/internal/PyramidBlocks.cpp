#include "zelto/raster/internal/PyramidBlocks.h"

#include "zelto/baselib/internal/LastError.h"

#include <gdal_priv.h>

#include <utility>

namespace zelto {

namespace {

/// Where a block begins, and how long it is; empty for one without bytes.
std::string PlaceOf(GDALRasterBand& level, int column, int row) {
    std::string place;
    for (const char* const what : {"OFFSET", "SIZE"}) {
        const char* found =
            level.GetMetadataItem(CPLSPrintf("BLOCK_%s_%d_%d", what, column, row), "TIFF");
        place += found != nullptr ? std::string(" ") + found : "";
    }
    return place;
}

bool IsTiff(GDALRasterBand& level) {
    return level.GetMetadataItem("IFD_OFFSET", "TIFF") != nullptr;
}

/// Calls use(place) for every block of the levels that are TIFF.
template <typename Use>
void ForEachBlock(GDALDataset& image, Use use) {
    for (int number = 1; number <= image.GetRasterCount(); ++number) {
        GDALRasterBand& band = *image.GetRasterBand(number);
        for (int i = 0; i < band.GetOverviewCount(); ++i) {
            GDALRasterBand* level = band.GetOverview(i);
            if (level == nullptr || !IsTiff(*level))
                continue;
            int width = 1;
            int height = 1;
            level->GetBlockSize(&width, &height);
            for (int row = 0; row <= (level->GetYSize() - 1) / height; ++row)
                for (int column = 0; column <= (level->GetXSize() - 1) / width; ++column)
                    use(PlaceOf(*level, column, row));
        }
    }
}

bool FailUnless(bool whole, const std::string& file) {
    if (!whole)
        SetLastError(file + ": not all of its pyramid has reached the disk");
    return whole;
}

} // namespace

BlockPlaces PlacesOfLevels(GDALDataset& image) {
    BlockPlaces places;
    ForEachBlock(image, [&](std::string place) { places.push_back(std::move(place)); });
    return places;
}

bool NamesPlaces(GDALDataset& image, const BlockPlaces& written, const std::string& file) {
    return FailUnless(PlacesOfLevels(image) == written, file);
}

bool HasEveryBlock(GDALDataset& image, const std::string& file) {
    if (CPLTestBool(CPLGetConfigOption("SPARSE_OK_OVERVIEW", "NO")))
        return true;
    bool every = true;
    ForEachBlock(image, [&](const std::string& place) { every = every && !place.empty(); });
    return FailUnless(every, file);
}

} // namespace zelto
