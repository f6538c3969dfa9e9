#pragma once

#include "zelto/baselib/NewFileSet.h"

#include "host/base/Failure.h"
#include "host/base/Interrupts.h"

#include <optional>
#include <string>

namespace zelto::host {

/// A raster whose header is changed: in a copy of it with all its files, which takes its place
/// when it is complete. A process that ends in the middle, or a disk that is full, leaves it as it
/// was. A virtual raster that names what it reads from its own folder, a part of a container and a
/// raster in a folder that may not be written are changed in place.
class ChangedRaster {
  public:
    /// Makes the copy of a raster that can be opened. Throws Failure.
    explicit ChangedRaster(const std::string& path);

    /// What is to be changed.
    const std::string& Path() const { return m_changed; }
    /// LastReason() as a failure of the raster under its own name.
    Failure Fail(const std::string& otherwise) const;
    /// Puts the copy, which must be closed, in place. Throws Failure.
    void Commit();

  private:
    void Copy();

    std::string m_path;
    std::string m_changed;
    std::optional<CNewFileSet> m_files;
    std::optional<ChangeInPlace> m_inPlace;
};

} // namespace zelto::host
