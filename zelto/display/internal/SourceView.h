#pragma once

#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/display/internal/SamplePositions.h"
#include "zelto/display/internal/ViewWindow.h"

#include <cstddef>
#include <string>

class CRasterSource;

namespace zelto {

RasterGrid GridOf(const CRasterSource& source);

/// The output image of a view that begins at the box's top-left corner.
/// @param anchor see OutputGrid
OutputGrid OutputOf(const CRasterSource& source, const CBoundingBox& box, const ViewWindow& view,
                    int w, double anchor);

/// Path of a source; the name of one without a file.
std::wstring NameOf(const CRasterSource& source);

/// The answer of `draw`, an exported operation that draws from `source`. Nothing is thrown: false
/// where the memory for the output's size cannot be had. The reason of a failure names the source.
template <typename Draw>
bool DrawOrTell(const CRasterSource& source, const Draw& draw) {
    const OperationScope scope;
    const bool drawn = NoThrow(false, draw);
    if (!drawn)
        NameFileOfLastError(NameOf(source));
    return drawn;
}

/// Refuses to draw for a reason, to which DrawOrTell() adds the name of the source.
inline bool Refuse(const char* reason) {
    SetLastError(reason);
    return false;
}

inline constexpr const char* noPlaceToDraw = "there is no box, or no image to draw into";
inline constexpr const char* noShownBand = "a band that is to be shown does not exist";

/// Index of the first pixel of a row in an image `width` pixels wide.
inline std::size_t PixelIndex(int row, int width) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
}

} // namespace zelto
