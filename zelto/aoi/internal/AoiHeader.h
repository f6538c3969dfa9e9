#pragma once

#include "zelto/baselib/internal/BinaryFile.h"
#include "zelto/geometry/BoundingBox.h"

#include <cstdint>
#include <string>

namespace zelto {

/// Header of a file of areas of interest: 1584 bytes, of which the version and the extent are
/// for other readers only.
struct AoiHeader {
    bool hasTag = false; ///< the tag says that this is such a file; written always
    std::string wkt;     ///< cut to 1023 bytes, on a character boundary, when written
    CBoundingBox extent; ///< not read
    std::int64_t shapeCount = 0;
};

/// @return false when the file is shorter than a header
bool ReadAoiHeader(BinaryReader& reader, AoiHeader& header);
void WriteAoiHeader(BinaryWriter& writer, const AoiHeader& header);

} // namespace zelto
