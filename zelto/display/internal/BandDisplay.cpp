#include "zelto/display/internal/BandDisplay.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/DisplayMapping.h"
#include "zelto/display/internal/PaletteEntry.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/CachedRegion.h"

namespace zelto {
namespace {

/// Replaces the entries of no-data samples by `missing`.
template <typename Entry>
void DropNoData(const CRasterBand& band, const double* samples, int count, Entry* entries,
                Entry missing) {
    if (!band.IsHaveNoData())
        return;
    const double noData = band.GetNoDataValue();
    for (int i = 0; i < count; ++i)
        if (IsNearNoData(samples[i], noData))
            entries[i] = missing;
}

/// A conversion of each sample on its own by `entryOf`.
template <typename Entry, typename EntryOf>
SampleLookup<Entry> ShowEach(const WindowSamples& samples, const CRasterBand& band, Entry missing,
                             EntryOf entryOf) {
    return {samples,
            [&band, missing, entryOf](const double* values, int count, Entry* entries) {
                for (int i = 0; i < count; ++i)
                    entries[i] = entryOf(values[i]);
                DropNoData(band, values, count, entries, missing);
            },
            missing};
}

/// The colours of the 256 display bytes, opaque.
using ByteColors = std::array<PackedColor, 256>;

template <typename ColorOf>
ByteColors MakeByteColors(ColorOf colorOf) {
    ByteColors colors;
    for (int v = 0; v < 256; ++v)
        colors[static_cast<std::size_t>(v)] = colorOf(static_cast<unsigned char>(v));
    return colors;
}

SampleLookup<PackedColor> ShowByteColors(const WindowSamples& samples, CRasterBand& band,
                                         PackedColor missing, const ByteColors& byteColors) {
    return {samples,
            [&band, missing, byteColors,
             mapping = DisplayMapping(band)](const double* values, int count, PackedColor* colors) {
                mapping.Visit([&](const auto& stretch) {
                    for (int i = 0; i < count; ++i)
                        colors[i] = byteColors[stretch(values[i])];
                });
                DropNoData(band, values, count, colors, missing);
            },
            missing};
}

PackedColor ClassColor(const CClassifyDisplayTable& table, double value, int transparency) {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
    unsigned char alpha = 0;
    table.GetColor(value, red, green, blue, alpha);
    return PackColor(red, green, blue, alpha < transparency ? 0 : alpha);
}

PackedColor PaletteColor(const GDALColorTable& table, double value, int transparency) {
    const GDALColorEntry entry = PaletteEntry(table, value);
    return PackColor(static_cast<unsigned char>(entry.c1), static_cast<unsigned char>(entry.c2),
                     static_cast<unsigned char>(entry.c3),
                     static_cast<unsigned char>(entry.c4 - transparency));
}

/// Display bytes with a mark beside them; 0 where there is none.
template <typename Entry>
SampleLookup<Entry> ShowMarked(const WindowSamples& samples, CRasterBand& band, Entry mark) {
    return {samples,
            [&band, mark, mapping = DisplayMapping(band)](const double* values, int count,
                                                          Entry* bytes) {
                mapping.Visit([&](const auto& stretch) {
                    for (int i = 0; i < count; ++i)
                        bytes[i] = static_cast<Entry>(mark | stretch(values[i]));
                });
                DropNoData(band, values, count, bytes, Entry{0});
            },
            Entry{0}};
}

} // namespace

SampleLookup<unsigned char> MarkValues(const WindowSamples& samples, const CRasterBand& band) {
    return ShowEach(samples, band, static_cast<unsigned char>(0),
                    [](double) { return static_cast<unsigned char>(1); });
}

SampleLookup<ShownByte> ShowBytes(const WindowSamples& samples, CRasterBand& band) {
    return ShowMarked(samples, band, isShown);
}

SampleLookup<unsigned char> ShowPlaneBytes(const WindowSamples& samples, CRasterBand& band) {
    return ShowMarked<unsigned char>(samples, band, 0);
}

SingleBandKind KindOf(const CRasterSource& source, const CRasterBand& band) {
    if (source.GetDisplayType() == displayRamp && source.GetColorRamp() != nullptr)
        return SingleBandKind::Ramp;
    if (source.GetDisplayType() == DISPLAY_CLASSIFIED &&
        source.GetClassifyDisplayTable() != nullptr)
        return SingleBandKind::Classes;
    return band.IsHaveColorTable() ? SingleBandKind::Palette : SingleBandKind::Grey;
}

SampleLookup<PackedColor> ShowColors(const WindowSamples& samples, const CRasterSource& source,
                                     CRasterBand& band, int transparency, PackedColor missing) {
    switch (KindOf(source, band)) {
    case SingleBandKind::Ramp:
        return ShowByteColors(samples, band, missing,
                              MakeByteColors([&ramp = *source.GetColorRamp()](unsigned char v) {
                                  return PackColor(ramp.Red(v), ramp.Green(v), ramp.Blue(v), 255);
                              }));
    case SingleBandKind::Classes:
        return ShowEach(samples, band, missing,
                        [&table = *source.GetClassifyDisplayTable(), transparency](double value) {
                            return ClassColor(table, value, transparency);
                        });
    case SingleBandKind::Palette:
        return ShowEach(
            samples, band, missing, [table = PaletteOf(band), transparency, missing](double value) {
                return table != nullptr ? PaletteColor(*table, value, transparency) : missing;
            });
    default:
        return ShowByteColors(samples, band, missing, MakeByteColors([](unsigned char v) {
                                  return PackColor(v, v, v, 255);
                              }));
    }
}

} // namespace zelto
