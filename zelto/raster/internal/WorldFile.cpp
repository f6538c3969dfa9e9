#include "zelto/raster/internal/WorldFile.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <system_error>

namespace zelto {

namespace {

namespace fs = std::filesystem;

/// Whether another file of the stem and with an extension of TIFF files stands there.
bool HasNamesake(const fs::path& image) {
    constexpr std::array EXTENSIONS = {".tif", ".tiff", ".TIF", ".TIFF"};
    return std::any_of(EXTENSIONS.begin(), EXTENSIONS.end(), [&](const char* extension) {
        std::error_code ignored;
        const fs::path namesake = fs::path(image).replace_extension(extension);
        return fs::exists(namesake, ignored) && namesake != image &&
               !fs::equivalent(namesake, image, ignored);
    });
}

} // namespace

std::optional<fs::path> OwnWorldFile(GDALDriver& driver, const fs::path& image) {
    const fs::path worldFile = fs::path(image).replace_extension(".tfw");
    std::error_code ignored;
    if (!EQUAL(driver.GetDescription(), "GTiff") || !fs::is_regular_file(worldFile, ignored) ||
        HasNamesake(image))
        return std::nullopt;
    return worldFile;
}

} // namespace zelto
