#pragma once

#include <string>

namespace zelto {

/// Severities of a raster source's log records.
inline constexpr int LOG_CREATION = 2;
inline constexpr int LOG_NOTICE = 3;
inline constexpr int LOG_FAILURE = 4;

/// Writes a record of the raster source to the base library's logger, when there is one.
/// @param line source line that the record names
/// @param function qualified name of the operation
void LogRaster(int level, int line, const wchar_t* function, const std::wstring& message);

} // namespace zelto
