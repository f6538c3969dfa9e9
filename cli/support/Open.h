#pragma once

#include "zelto/datasource/Enumerations.h"

#include <string>

class CGISDataSource;

namespace zelto::cli {

/// Opens a data source or throws Failure with the reason: no such file, a folder, an empty
/// file, not recognised, or GDAL's own words.
/// @param warp show rotated rasters through a north-up view
void OpenOrFail(CGISDataSource& source, const std::string& path,
                GISDataAccess access = GIS_READONLY, bool warp = false);

/// Why `path` could not be opened, after an attempt that failed with `error`.
std::string ReasonForFailure(const std::string& path, GISError error);

/// GDAL's last message, or `otherwise` when there is none.
std::string LastGdalMessage(const std::string& otherwise);

} // namespace zelto::cli
