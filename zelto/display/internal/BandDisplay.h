#pragma once

#include "zelto/display/internal/SampleLookup.h"

#include <algorithm>
#include <cstdint>

class CRasterBand;
class CRasterSource;

namespace zelto {

/// A display byte with the mark that there is one; 0 where a sample is missing or no-data. As
/// wide as a pixel, which is what it is combined with.
using ShownByte = std::uint32_t;
inline constexpr ShownByte isShown = 0x100;

/// A colour as one number, whatever the byte order of the machine: 0xAARRGGBB.
using PackedColor = std::uint32_t;

inline constexpr PackedColor PackColor(unsigned char red, unsigned char green, unsigned char blue,
                                       unsigned char alpha) {
    return PackedColor{alpha} << 24 | PackedColor{red} << 16 | PackedColor{green} << 8 | blue;
}
inline constexpr unsigned char BlueOf(PackedColor color) {
    return static_cast<unsigned char>(color);
}
inline constexpr unsigned char GreenOf(PackedColor color) {
    return static_cast<unsigned char>(color >> 8);
}
inline constexpr unsigned char RedOf(PackedColor color) {
    return static_cast<unsigned char>(color >> 16);
}
inline constexpr unsigned char AlphaOf(PackedColor color) {
    return static_cast<unsigned char>(color >> 24);
}

/// 1 for samples that have a value, 0 for no-data.
SampleLookup<unsigned char> MarkValues(const WindowSamples& samples, const CRasterBand& band);

/// Shows `missing` whatever the samples are.
template <typename Entry>
SampleLookup<Entry> ShowNothing(const WindowSamples& samples, Entry missing) {
    return {samples,
            [missing](const double*, int count, Entry* entries) {
                std::fill_n(entries, count, missing);
            },
            missing};
}

/// The display bytes of a band's samples under its present stretch.
SampleLookup<ShownByte> ShowBytes(const WindowSamples& samples, CRasterBand& band);

/// The same without the mark: 0 is all that a plane shows of a sample that is missing.
SampleLookup<unsigned char> ShowPlaneBytes(const WindowSamples& samples, CRasterBand& band);

/// How a single shown band becomes colour.
enum class SingleBandKind {
    Grey,    ///< the display byte in every channel
    Ramp,    ///< ramp colour of the display byte
    Classes, ///< class colour of the sample
    Palette, ///< colour-table colour of the sample
};

SingleBandKind KindOf(const CRasterSource& source, const CRasterBand& band);

/// The colours of a single shown band as `source` displays it. Grey and ramp colours are
/// opaque.
/// @param transparency 0 … 255: taken from the alpha of palette colours, which wraps; an alpha
///        of class colours below it becomes 0
/// @param missing colour of pixels without a sample, and of all where the format has not kept the
///        palette that the band was given
SampleLookup<PackedColor> ShowColors(const WindowSamples& samples, const CRasterSource& source,
                                     CRasterBand& band, int transparency, PackedColor missing);

} // namespace zelto
