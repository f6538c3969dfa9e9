#pragma once

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <string>

namespace zelto {

/// The driver "ESRI Shapefile", or null.
GDALDriver* ShapefileDriver();

/// Whether the driver can create vector data sets.
bool CanCreateVector(GDALDriver& driver);

/// Deletes the data source at the path with all its files, if there is one.
void DeleteVectorQuietly(GDALDriver& driver, const std::string& path);

/// A new shapefile that takes its place only when it is complete: it is written in a temporary
/// folder beside the path and moved by Commit(). Without Commit() nothing remains of it and
/// what was at the path stays.
class NewShapefile {
  public:
    /// @param path UTF-8
    explicit NewShapefile(const std::string& path);
    ~NewShapefile();
    NewShapefile(const NewShapefile&) = delete;
    NewShapefile& operator=(const NewShapefile&) = delete;

    /// False without the driver, and where the folder cannot be written.
    bool IsOpen() const { return m_dataset != nullptr; }
    /// Creates the layer, without a spatial reference; null when that fails.
    OGRLayer* CreateLayer(const char* name, OGRwkbGeometryType type);
    /// Closes the file and puts it in the place of the old one.
    /// @return false when writing or moving it failed
    bool Commit();

  private:
    bool MoveIntoPlace() const;

    std::filesystem::path m_path;
    std::filesystem::path m_folder; ///< temporary; empty when it could not be made
    GDALDatasetUniquePtr m_dataset;
};

} // namespace zelto
