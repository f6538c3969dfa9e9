#pragma once

#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/RasterSource.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zelto::host {

/// What a new raster shall be.
struct NewRasterLayout {
    RasterDataFormat format = RDF_Unknown;
    int width = 0;
    int height = 0;
    int bands = 1;
    PixelDataType type = PDT_Byte;
    double* geoTransform = nullptr;   ///< six values of the caller's; null: none
    std::string wkt;                  ///< empty: none
    std::vector<std::string> options; ///< creation options of the format, KEY=VALUE
};

/// A raster that appears under its name, with its side files, only when it is complete; see
/// CNewFileSet. What GDAL says in the life of the object decides about success.
class NewRaster {
  public:
    /// Creates the raster. Throws Failure.
    /// @param path where it will appear
    NewRaster(const std::string& path, const NewRasterLayout& layout);

    /// The raster, open for writing.
    CRasterSource& Raster() { return m_raster; }
    /// Closes the raster, opens it again to see that it is there, and moves it to its name in
    /// place of what stands there. Throws Failure; the old file is gone only when the new one is
    /// complete.
    void Commit();

  private:
    void CheckReadable(const std::filesystem::path& made) const;

    std::string m_path;
    CNewFileSet m_files;
    CRasterSource m_raster; ///< closed before its files go
    GdalWatch m_watch;      ///< gone before the source, with which GDAL may go
};

} // namespace zelto::host
