#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <functional>
#include <vector>

class CRasterSource;

namespace zelto::test {

/// Whether a pixel position lies in an area of interest; empty: everything does, and planes of
/// a single coloured band come blue first.
using IsInArea = std::function<bool(double column, double row)>;

/// What a rendering leaves behind.
struct ReferenceImage {
    bool succeeded = false;
    bool touched = false;                           ///< whether the buffer was written at all
    std::vector<unsigned char> pixels;              ///< interleaved
    std::vector<std::vector<unsigned char>> planes; ///< or one vector per plane
    double means[3] = {0.0, 0.0, 0.0};
    double deviations[3] = {0.0, 0.0, 0.0};
    bool counted[3] = {false, false, false}; ///< whether the mean and deviation are of anything
};

/// The interleaved rendering as the rules say it, one pixel after the other through the band's
/// own point query and conversion; no adjustments.
ReferenceImage RenderInterleavedPlainly(CRasterSource& source, CBoundingBox box, int w, int h);

/// The plane rendering in the same way; no adjustments.
ReferenceImage RenderPlanesPlainly(CRasterSource& source, CBoundingBox box, int w, int h,
                                   int planeCount, const IsInArea& isInArea);

} // namespace zelto::test
