#pragma once

#include <filesystem>

class GDALDriver;

namespace zelto {

enum class TransferKind { COPY, MOVE };

/// Copies or moves the raster at `from`, with the files that belong to it, to the name `to`. The
/// new files take their places together, in place of the raster that stands there and of what
/// belonged to it; see CNewFileSet. The origin of a move goes after that, so that at every moment
/// one of the two is whole. A move within a file system copies no pixels.
/// @param driver copies the files where those of a format name each other
/// @param overwrite whether there may be files under the new names
/// @return false, with the reason in LastError(), when it failed; then the origin is as it was,
///         and so is what stands at `to`, unless only removing the origin failed
bool TransferRaster(GDALDriver& driver, const std::filesystem::path& from,
                    const std::filesystem::path& to, TransferKind kind, bool overwrite);

} // namespace zelto
