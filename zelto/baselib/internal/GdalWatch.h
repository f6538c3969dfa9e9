#pragma once

#include <cpl_error.h>

#include <string>

namespace zelto {

/// Watches what GDAL says on this thread while it lives. Several calls answer success after they
/// have emitted an error (a full disk in a pyramid, a reference that is replaced by another, a
/// late error of a close), so that a call counts as done only when both its answer and its
/// messages say so:
///
///     GdalWatch watch;
///     if (!watch.Succeeded(dataset.BuildOverviews(…), path))
///         return GIS_FAILED; // the reason is in LastError()
///
/// Messages go on to the handler that was installed before. Watches may nest; each sees what is
/// said during its own life. Messages of other threads are not seen.
class GdalWatch {
  public:
    GdalWatch();
    ~GdalWatch();
    GdalWatch(const GdalWatch&) = delete;
    GdalWatch& operator=(const GdalWatch&) = delete;

    /// Whether GDAL has emitted an error, rather than a warning, since the beginning.
    bool HasError() const { return m_failed; }
    /// Text of the first error; empty when there was none.
    const std::string& Error() const { return m_error; }

    /// Whether a call is done: it said so and emitted no error. If not, the reason goes to
    /// LastError(), behind the name of the file and a colon.
    bool Succeeded(bool answer, const std::string& file);
    bool Succeeded(CPLErr answer, const std::string& file) {
        return Succeeded(answer == CE_None || answer == CE_Warning, file);
    }

  private:
    void Begin();
    static void CPL_STDCALL Note(CPLErr severity, CPLErrorNum number, const char* message);

    std::string m_error;
    bool m_failed = false;
};

} // namespace zelto
