#pragma once

#include <gdal_priv.h>

#include <filesystem>
#include <string>

namespace zelto::cli {

/// A new vector file. It is written in a folder of its own beside the place it is meant for, and
/// moved there when it is complete; unfinished, it leaves nothing behind.
class NewVector {
  public:
    /// Throws UsageError for an extension that no format which can be written has.
    explicit NewVector(const std::string& path);
    ~NewVector();
    NewVector(const NewVector&) = delete;
    NewVector& operator=(const NewVector&) = delete;

    const std::string& Path() const { return m_path; }
    /// The file's one layer, named as the file. Throws Failure.
    /// @param srs WKT, or empty
    OGRLayer& MakeLayer(const std::string& srs, OGRwkbGeometryType type);
    /// Closes the file and puts it in its place. Throws Failure.
    void Finish();

  private:
    std::string m_path;
    std::filesystem::path m_folder;
    GDALDriver* m_driver = nullptr;
    GDALDatasetUniquePtr m_dataset;
};

} // namespace zelto::cli
