#pragma once

#include <string>

class CRasterSource;

namespace zelto::host {

/// Where a file is see-through: its alpha band or its mask, as a raster of one band of 0 to 255
/// on the file's grid. No-data values are not in it; the drawing itself leaves those out.
class FileOpacity {
  public:
    /// Throws Failure where the file has a mask that cannot be had.
    /// @param source the open file, or a view of it
    explicit FileOpacity(const CRasterSource& source);
    ~FileOpacity();
    FileOpacity(const FileOpacity&) = delete;
    FileOpacity& operator=(const FileOpacity&) = delete;

    /// Path of the raster, to be opened as the file itself; empty where the file is opaque.
    const std::string& Path() const { return m_path; }

  private:
    std::string m_path;
};

} // namespace zelto::host
