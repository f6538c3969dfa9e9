#pragma once

#include <fstream>
#include <string>

/// @file
/// Files that are read are regular ones. Opening a pipe waits for a writer that may never come,
/// and a device has no end; both are refused before they are opened.

namespace zelto {

/// Whether the path leads to a pipe, a socket or a device. False where nothing is.
bool IsPipeOrDevice(const std::string& path);

/// Opens a regular file for reading bytes.
/// @return false where the path leads to anything else or cannot be opened; LastError() then
///         tells why
bool OpenRegularFile(std::ifstream& stream, const std::string& path);

/// Whether GDAL may open the path: neither it nor one of the files that GDAL looks for beside it
/// (world file, projection, auxiliary file, overviews…) is a pipe or a device. Where one is,
/// LastError() names it. Folders and names that are no files may be opened.
bool MayBeOpened(const std::string& path);

} // namespace zelto
