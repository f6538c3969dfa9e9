#include "zelto/raster/internal/RasterLog.h"

#include "zelto/baselib/Log.h"

namespace zelto {

void LogRaster(int level, int line, const wchar_t* function, const std::wstring& message) {
    if (CLog::m_pLogger == nullptr)
        return;
    CLog::m_pLogger->WriteLog(level, L"RasterSource", line, function, L"%s", message.c_str());
}

} // namespace zelto
