#pragma once

#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/GdalWatch.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <string>

namespace zelto {

/// The driver "ESRI Shapefile", or null.
GDALDriver* ShapefileDriver();

/// Whether the driver can create vector data sets.
bool CanCreateVector(GDALDriver& driver);

/// Deletes the data source at the path with all its files, if there is one.
void DeleteVectorQuietly(GDALDriver& driver, const std::string& path);

/// A new shapefile that takes its place, with its side files, only when it is complete; see
/// CNewFileSet. Without Commit() nothing remains of it and what was at the path stays. What GDAL
/// says in the life of the object decides about success.
class NewShapefile {
  public:
    /// @param path UTF-8
    explicit NewShapefile(const std::string& path);

    /// False without the driver, and where the folder cannot be written.
    bool IsOpen() const { return m_dataset != nullptr; }
    /// Creates the layer, without a spatial reference; null when that fails.
    OGRLayer* CreateLayer(const char* name, OGRwkbGeometryType type);
    /// Closes the file, which must have its layer, and puts it in the place of the old one.
    /// @return false when writing or moving it failed
    bool Commit();

  private:
    std::string m_path;
    GdalWatch m_watch;
    CNewFileSet m_files;
    GDALDatasetUniquePtr m_dataset; ///< closed before its files go
};

} // namespace zelto
