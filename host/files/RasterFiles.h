#pragma once

#include <string>
#include <vector>

namespace zelto::host {

/// Names, without a folder, of the files that belong to the data set at a path beside its main
/// file: what its driver counts among its files in the same folder (pyramids, statistics,
/// headers), and the world file of a GeoTIFF. Files that a virtual raster reads are not its own.
/// Empty when there is no data set.
std::vector<std::wstring> SideFilesOf(const std::string& path);

} // namespace zelto::host
