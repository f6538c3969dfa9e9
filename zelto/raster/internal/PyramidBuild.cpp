#include "zelto/raster/internal/PyramidBuild.h"

#include "zelto/baselib/internal/FilePaths.h"
#include "zelto/baselib/internal/FilesAside.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/internal/PyramidBeside.h"
#include "zelto/raster/internal/PyramidFiles.h"
#include "zelto/raster/internal/PyramidRun.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

namespace zelto {

namespace {

namespace fs = std::filesystem;

bool IsDriver(GDALDataset& image, const char* name) {
    return image.GetDriver() != nullptr && EQUAL(image.GetDriver()->GetDescription(), name);
}

bool IsOn(const char* option) {
    return CPLTestBool(CPLGetConfigOption(option, "NO"));
}

bool HasLevels(GDALDataset& image) {
    GDALRasterBand* band = image.GetRasterBand(1);
    return band != nullptr && band->GetOverviewCount() > 0;
}

/// Removes what the format lets GDAL remove.
/// @return false when that has failed, which only some drivers tell. The reason goes to
/// LastError().
bool RemoveLevels(GDALDataset& image) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    GdalWatch watch;
    image.BuildOverviews("NEAREST", 0, nullptr, 0, nullptr, GDALProgressFuncNone, nullptr);
    image.FlushCache();
    // Other drivers report an error although they can build anew.
    return !IsDriver(image, "GTiff") || watch.Succeeded(true, image.GetDescription());
}

/// Where a pyramid inside the file must put up with what stands beside the file.
class InsideSettings {
  public:
    explicit InsideSettings(GDALDataset& image) {
        // A pyramid inside the file can be replaced, but not joined by one beside it. In files of
        // a stem, GDAL neither removes nor replaces that of an image with a file of masks.
        if (HasPyramidInside(image) || HasMasksBeside(image))
            m_noneBeside.emplace("USE_RRD", "NO", false);
        if (IsDriver(image, "HFA") && HasForeignIndex(image.GetDescription()))
            m_noLevelsBeside.emplace("HFA_USE_RRD", "NO", false);
    }

  private:
    std::optional<CPLConfigOptionSetter> m_noneBeside;
    std::optional<CPLConfigOptionSetter> m_noLevelsBeside;
};

/// The levels that an ERDAS Imagine file means by "stem.rrd", but another image owns by now.
/// Removing the former would delete the file.
std::vector<fs::path> LevelsOfAnother(GDALDataset& image) {
    const fs::path path = image.GetDescription();
    if (!IsDriver(image, "HFA") || !SharesLevels(path))
        return {};
    return {fs::path(path).replace_extension(".rrd")};
}

/// Bytes that a pyramid takes in an ERDAS Imagine file, whose blocks have 64 × 64 pixels.
std::uint64_t BytesOfLevels(GDALDataset& image, const PyramidOrder& order) {
    constexpr std::uint64_t SIDE = 64;
    constexpr std::uint64_t HEADERS = 1U << 16U;
    std::uint64_t pixels = 0;
    for (const int level : order.levels) {
        const auto blocks = [level](int size) {
            return static_cast<std::uint64_t>(size) / level / SIDE + 1;
        };
        pixels += blocks(image.GetRasterXSize()) * blocks(image.GetRasterYSize()) * SIDE * SIDE;
    }
    std::uint64_t bytes = HEADERS;
    for (int number = 1; number <= image.GetRasterCount(); ++number)
        bytes += pixels * static_cast<std::uint64_t>(GDALGetDataTypeSizeBytes(
                              image.GetRasterBand(number)->GetRasterDataType()));
    return bytes;
}

/// GDAL's driver of ERDAS Imagine files does not outlive a disk that fills up meanwhile.
bool HasRoomForLevels(GDALDataset& image, const PyramidOrder& order) {
    if (!IsDriver(image, "HFA"))
        return true;
    std::error_code error;
    const fs::space_info space = fs::space(FolderOf(image.GetDescription()), error);
    return error || space.available >= BytesOfLevels(image, order);
}

bool BuildInside(GDALDataset& image, const PyramidOrder& order) {
    const std::string path = image.GetDescription();
    if (!HasRoomForLevels(image, order)) {
        SetLastError(path + ": there is no room for its pyramid");
        return false;
    }
    const InsideSettings settings(image);
    const bool looksBeside = CanHavePyramidBeside(image);
    const FilesSetAside another(LevelsOfAnother(image));
    FilesSetAside own(looksBeside ? PyramidFilesBeside(path) : std::vector<fs::path>());
    if (!another.Succeeded() || !own.Succeeded()) {
        SetLastError(path + ": its pyramid cannot be replaced");
        return false;
    }
    if (looksBeside)
        RescanPyramidBeside(image);
    const bool removed = RemoveLevels(image);
    // An ERDAS Imagine file is whole when it is closed.
    const bool done =
        removed && RunPyramidBuild(image, order, path) &&
        (IsDriver(image, "HFA") || IsPyramidInFile(path, order, PlacesOfLevels(image)));
    if (done) {
        own.Drop();
        return true;
    }
    // An unfinished pyramid would be shown as if it were whole. Levels that could not be removed
    // are whole, and GDAL may never end when it is to remove them again.
    if (removed)
        RemoveLevels(image);
    own.PutBack();
    if (looksBeside)
        RescanPyramidBeside(image);
    return false;
}

} // namespace

bool IsPyramidResampling(const char* name) {
    constexpr std::array NAMES = {"NEAREST",
                                  "AVERAGE",
                                  "AVERAGE_MAGPHASE",
                                  "AVERAGE_BIT2GRAYSCALE",
                                  "RMS",
                                  "BILINEAR",
                                  "CUBIC",
                                  "CUBICSPLINE",
                                  "LANCZOS",
                                  "MODE",
                                  "GAUSS"};
    return name != nullptr && std::any_of(NAMES.begin(), NAMES.end(),
                                          [name](const char* known) { return EQUAL(name, known); });
}

bool HasPyramidInside(GDALDataset& image) {
    return HasLevels(image) && CountLevelsBeside(image) == 0;
}

bool IsBuiltInside(GDALDataset& image) {
    if (HasPyramidInside(image) || !CanHavePyramidBeside(image))
        return true;
    if (image.GetAccess() != GA_Update)
        return false;
    return IsDriver(image, "HFA") ||
           (IsDriver(image, "GTiff") && !IsOn("USE_RRD") && !IsOn("TIFF_USE_OVR"));
}

bool BuildPyramid(GDALDataset& image, const PyramidOrder& order) {
    return IsBuiltInside(image) ? BuildInside(image, order) : BuildPyramidBeside(image, order);
}

bool IsPyramidInFile(const std::string& path, const PyramidOrder& order,
                     const BlockPlaces& written) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored))
        return true; // a view, or a part of a container
    const GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    if (file != nullptr)
        return IsPyramidWhole(*file, order, path) && NamesPlaces(*file, written, path);
    SetLastError(path + ": it cannot be opened with its pyramid");
    return false;
}

void RemovePyramidInside(const std::string& path) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr file(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    if (file != nullptr && HasPyramidInside(*file))
        RemoveLevels(*file);
}

bool NeedsCopyToRebuild(GDALDataset& image) {
    return image.GetAccess() == GA_Update && HasPyramidInside(image) &&
           (IsDriver(image, "HFA") || IsDriver(image, "PCIDSK"));
}

bool CanRemovePyramid(GDALDataset& image) {
    return !IsDriver(image, "PCIDSK");
}

} // namespace zelto
