#pragma once

#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/DisplayMapping.h"
#include "zelto/display/internal/ViewRows.h"

#include <cstddef>

namespace zelto {

/// Whether a value of the band stands under an output pixel that is open to it.
/// @param isOpen whether the output pixel of an index takes a sample of this band
template <typename IsOpen>
bool ShowsSample(const WindowSamples& samples, const CRasterBand& band, int w, int h,
                 const SamplePositions& positions, const ViewMask& mask, const IsOpen& isOpen) {
    const auto marks = MarkValues(samples, band);
    const BandView view{w, h, positions, marks, mask};
    bool shows = false;
    for (int row = 0; row < h && !shows; ++row)
        VisitRow(view, row, [&](std::size_t pixel, int count, const unsigned char* hasValue) {
            for (int i = 0; i < count && !shows; ++i)
                shows = hasValue[i] != 0 && isOpen(pixel + static_cast<std::size_t>(i));
        });
    return shows;
}

/// Whether a drawing is to take the band's display state. It is not where that builds an
/// auto-levels map in the place of an equalisation map without a sample that is shown through
/// it. See ShowsSample(), which costs a pass over the view and is asked in this case only.
template <typename IsOpen>
bool NeedsDisplayState(const WindowSamples& samples, CRasterBand& band, int w, int h,
                       const SamplePositions& positions, const ViewMask& mask,
                       const IsOpen& isOpen) {
    return !DisplayMapping::AwaitsAutoLevels(band) ||
           ShowsSample(samples, band, w, h, positions, mask, isOpen);
}

} // namespace zelto
