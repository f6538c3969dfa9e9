#pragma once

#include "zelto/raster/RasterSource.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zelto::cli {

/// What a new raster shall be.
struct NewRasterLayout {
    RasterDataFormat format = RDF_Unknown;
    int width = 0;
    int height = 0;
    int bands = 1;
    PixelDataType type = PDT_Byte;
    double* geoTransform = nullptr; ///< six values; null: none
    std::string wkt;                ///< empty: none
    std::vector<std::string> options;
};

/// A raster that appears under its name only when it is complete: it is made in a hidden folder
/// beside that name, which the destructor removes with whatever is in it.
class NewRaster {
  public:
    /// Creates the raster. Throws Failure.
    /// @param path where it will appear
    NewRaster(const std::string& path, const NewRasterLayout& layout);
    ~NewRaster();
    NewRaster(const NewRaster&) = delete;
    NewRaster& operator=(const NewRaster&) = delete;

    /// The raster, open for writing.
    CRasterSource& Raster() { return m_raster; }
    /// Closes the raster and moves it to its name, in place of what stands there. Throws
    /// Failure; the old file is gone only when the new one is complete.
    void Commit();

  private:
    void MoveLeftOvers(const std::filesystem::path& folder) const;

    std::string m_path;
    std::filesystem::path m_folder;
    CRasterSource m_raster;
};

} // namespace zelto::cli
