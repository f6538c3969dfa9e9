#include "zelto/display/internal/WindowSamples.h"

#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/VirtualBand.h"

#include <gdal_priv.h>

#include <new>
#include <stdexcept>

namespace zelto {
namespace {

/// Type that the band's samples are read as: doubles for virtual bands, and for the 64-bit and
/// complex types, which have no exact smaller one here.
GDALDataType ReadType(GDALRasterBand* band) {
    const GDALDataType type = band->GetRasterDataType();
    if (type < GDT_Byte || type > GDT_Float32 || IsVirtual(band))
        return GDT_Float64;
    return type;
}

template <typename T>
std::optional<WindowSamples::Samples<T>> ReadAs(GDALDataType type, GDALRasterBand* band,
                                                const ReadWindow& window) {
    WindowSamples::Samples<T> samples(static_cast<std::size_t>(window.bufWidth) *
                                      static_cast<std::size_t>(window.bufHeight));
    if (samples.empty())
        return samples;
    if (band->RasterIO(GF_Read, window.xOff, window.yOff, window.xSize, window.ySize,
                       samples.data(), window.bufWidth, window.bufHeight, type, 0, 0,
                       nullptr) != CE_None)
        return std::nullopt;
    return samples;
}

} // namespace

std::optional<WindowSamples> WindowSamples::Read(GDALRasterBand* band, const ReadWindow& window) {
    if (band == nullptr || !CanHoldBlocks(*band))
        return std::nullopt;
    const auto as = [&](auto sample) -> std::optional<WindowSamples> {
        auto samples = ReadAs<decltype(sample)>(ReadType(band), band, window);
        if (!samples)
            return std::nullopt;
        return WindowSamples(std::move(*samples));
    };
    try {
        switch (ReadType(band)) {
        case GDT_Byte:
            return as(std::uint8_t{});
        case GDT_UInt16:
            return as(std::uint16_t{});
        case GDT_Int16:
            return as(std::int16_t{});
        case GDT_UInt32:
            return as(std::uint32_t{});
        case GDT_Int32:
            return as(std::int32_t{});
        case GDT_Float32:
            return as(float{});
        default:
            return as(double{});
        }
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    } catch (const std::length_error&) {
        return std::nullopt;
    }
}

} // namespace zelto
