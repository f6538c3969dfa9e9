#pragma once

#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/GdalWatch.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zelto::host {

/// A new vector file that appears under its name, with its side files, only when it is complete;
/// see CNewFileSet. What GDAL says in the life of the object decides about success.
class NewVector {
  public:
    /// Throws UsageError for an extension that no format which can be written has.
    explicit NewVector(const std::string& path);

    const std::string& Path() const { return m_path; }
    /// GeoJSON is in longitude and latitude; shapes in another system are transformed.
    bool IsGeoJson() const;
    /// The file's one layer, named as the file. Throws Failure, also where the format keeps no
    /// geometries.
    /// @param srs WKT, or empty
    /// @return it is the file's, and gone with Finish()
    OGRLayer& MakeLayer(const std::string& srs, OGRwkbGeometryType type);
    /// Closes the file, reads it to its end to see that it is whole, and puts it in its place.
    /// Throws Failure.
    /// @return number of features
    std::int64_t Finish();

  private:
    std::string TemporaryPath() const;
    CPLStringList LayerOptions() const;

    std::string m_path;
    GDALDriver* m_driver = nullptr;
    std::optional<CNewFileSet> m_files;
    GdalWatch m_watch;
    GDALDatasetUniquePtr m_dataset; ///< closed before its files go
};

} // namespace zelto::host
