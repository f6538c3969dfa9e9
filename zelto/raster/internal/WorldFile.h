#pragma once

#include <filesystem>
#include <optional>

class GDALDriver;

namespace zelto {

/// The world file of a GeoTIFF where it has one that is not another's. GDAL writes it, but does
/// not count it among the image's files when the image is georeferenced itself.
std::optional<std::filesystem::path> OwnWorldFile(GDALDriver& driver,
                                                  const std::filesystem::path& image);

} // namespace zelto
