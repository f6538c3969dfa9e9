#pragma once

#include "zelto/baselib/NewFileSet.h"
#include "zelto/raster/RasterSource.h"

#include "host/picture/View.h"
#include "python/src/Call.h"

#include <memory>
#include <string>

namespace zelto::python {

/// How a raster is opened.
struct RasterOrigin {
    std::string path; ///< in the file system's encoding
    bool update = false;
    bool warp = true; ///< show what only control points place through a north-up view
    std::string srs;  ///< reference system to show it in; empty: its own
};

/// A raster as Python holds it: open, being made, or closed.
class Raster {
  public:
    /// Throws when it cannot be opened.
    explicit Raster(RasterOrigin origin);
    /// One that is being made: its files take their places when it is closed.
    Raster(RasterOrigin origin, std::unique_ptr<CNewFileSet> files,
           std::unique_ptr<CRasterSource> source);
    ~Raster();
    Raster(const Raster&) = delete;
    Raster& operator=(const Raster&) = delete;

    const std::string& Path() const { return m_origin.path; }
    bool IsClosed() const { return m_source == nullptr; }
    bool IsNew() const { return m_files != nullptr; }
    bool IsWritable() const { return IsNew() || m_origin.update; }

    /// The right to use the sources. Throws ValueError when closed.
    Turn Use();
    CRasterSource& Source() { return *m_source; }
    /// Reference system that it was opened to be shown in; empty: its own.
    const std::string& Srs() const { return m_origin.srs; }
    /// Another source of the file as it is now, for a drawing or for its extent alone. Needs the
    /// turn; may be called without the interpreter's lock. Throws when it cannot be opened.
    /// @param srs system to show it in; empty: that of this raster
    /// @param view what will be drawn, in that system; null: nothing
    std::unique_ptr<CRasterSource> OpenAgain(const std::string& srs, const host::View* view);
    /// The same for a file that belongs to this raster's, such as its mask.
    std::unique_ptr<CRasterSource> OpenLikewise(const std::string& path, const std::string& srs,
                                                const host::View* view) const;
    /// A band by its number from 1. Throws IndexError.
    CRasterBand& Band(int number);

    /// Opens the file again, which was changed beside this raster. Throws; it is then closed.
    void Reopen();
    /// Writes what is in memory; a new raster takes its place. Throws when that fails.
    void Close();
    /// Closes without keeping what is new.
    void Discard();

  private:
    RasterOrigin m_origin;
    std::unique_ptr<CNewFileSet> m_files; ///< gone after the sources
    std::unique_ptr<CRasterSource> m_source;
    bool m_taken = false;
};

/// Opens a source for drawing and reading: a rotated raster keeps its grid. Throws on failure.
std::unique_ptr<CRasterSource> OpenSource(const RasterOrigin& origin);

} // namespace zelto::python
