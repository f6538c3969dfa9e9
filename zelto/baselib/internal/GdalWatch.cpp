#include "zelto/baselib/internal/GdalWatch.h"

#include "zelto/baselib/internal/LastError.h"

namespace zelto {

GdalWatch::GdalWatch() {
    Begin();
}

GdalWatch::~GdalWatch() {
    CPLPopErrorHandler();
}

void GdalWatch::Begin() {
    CPLPushErrorHandlerEx(Note, this);
    // Debug messages go where they went.
    CPLSetCurrentErrorHandlerCatchDebug(FALSE);
}

bool GdalWatch::Succeeded(bool answer, const std::string& file) {
    if (answer && !m_failed)
        return true;
    const std::string reason = m_error.empty() ? "GDAL gives no reason" : m_error;
    SetLastError(file.empty() ? reason : file + ": " + reason);
    return false;
}

void GdalWatch::Note(CPLErr severity, CPLErrorNum number, const char* message) {
    auto& watch = *static_cast<GdalWatch*>(CPLGetErrorHandlerUserData());
    if (severity >= CE_Failure && !watch.m_failed) {
        watch.m_failed = true;
        watch.m_error = message;
    }
    // GDAL does not tell which handler was there before; it is reached by stepping aside. The
    // text is GDAL's own buffer, which saying it again would overwrite.
    const std::string text = message;
    CPLPopErrorHandler();
    CPLError(severity, number, "%s", text.c_str());
    watch.Begin();
}

} // namespace zelto
