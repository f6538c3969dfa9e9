#pragma once

class CRasterSource;

/// @file
/// Answers of operations that are not done. The reason goes to the host by LastError().

namespace zelto {

inline constexpr const char* NO_OVERLAP = "the region does not overlap the raster";
inline constexpr const char* NO_PIXELS = "the region has no pixels";
inline constexpr const char* TOO_MANY_PIXELS = "the region has more pixels than can be counted";
inline constexpr const char* NO_MEMORY = "not enough memory";
inline constexpr const char* ROWS_TOO_LONG = "its rows are too long to be read";

/// Remembers the reason, behind the raster's file where it has one.
/// @return false
bool Refuse(const CRasterSource& source, const char* reason);

/// Remembers what the host did not give.
/// @return false
bool RefuseMissing(const char* what);

/// Whether there is a raster that has all the bands it counts. One that was closed, that failed
/// to reopen and a composition that could not be made count bands that they do not have.
bool IsUsable(const CRasterSource* source);

} // namespace zelto
