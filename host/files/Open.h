#pragma once

#include "zelto/datasource/Enumerations.h"

#include <string>

class CGISDataSource;

namespace zelto::host {

/// Lets vector files tell the encoding of their texts themselves, as in a .cpg, where the engine
/// takes the bytes as they are. Until GDAL is set up anew.
void TrustFileEncodings();

/// Opens a data source or throws Failure with the reason: no such file, a folder, an empty
/// file, not recognised, or GDAL's own words.
/// @param warp show rotated rasters through a north-up view
void OpenOrFail(CGISDataSource& source, const std::string& path,
                GISDataAccess access = GIS_READONLY, bool warp = false);

/// Whether the path leads to a pipe, a socket or a device. Reading one waits for a writer that may
/// never come, or never ends, so that no host opens one.
bool IsPipeOrDevice(const std::string& path);

/// Throws Failure for a pipe, a socket and a device.
void RequireNoPipe(const std::string& path);

/// Why `path` could not be opened, after an attempt that failed with `error`.
std::string ReasonForFailure(const std::string& path, GISError error);

/// Forgets the reasons of earlier failures, the engine's and GDAL's; at the head of an attempt
/// after which LastReason() may be asked.
void ForgetReasons();

/// The engine's reason of a failure, else GDAL's last message, else `otherwise`; in one line.
std::string LastReason(const std::string& otherwise);

/// The same of work with progress that has not come to its end: "interrupted" where the user asked
/// to stop.
std::string ReasonOfEnding(const std::string& otherwise);

} // namespace zelto::host
