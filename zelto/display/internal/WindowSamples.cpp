#include "zelto/display/internal/WindowSamples.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
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

/// Whether a window is read so much larger than it is that its samples fill the memory. Zooming
/// into a pixel does that; other views read no more samples than they have output pixels.
bool IsEnlargedTooFar(const ReadWindow& window, GDALDataType type) {
    constexpr double LIMIT = 4294967296.0; // bytes
    const double bytes =
        static_cast<double>(window.bufWidth) * window.bufHeight * GDALGetDataTypeSizeBytes(type);
    return (window.bufWidth > window.xSize || window.bufHeight > window.ySize) && bytes > LIMIT;
}

template <typename T>
std::optional<WindowSamples::Samples<T>> ReadAs(GDALDataType type, GDALRasterBand* band,
                                                const ReadWindow& window) {
    WindowSamples::Samples<T> samples(static_cast<std::size_t>(window.bufWidth) *
                                      static_cast<std::size_t>(window.bufHeight));
    if (samples.empty())
        return samples;
    GdalWatch watch;
    if (band->RasterIO(GF_Read, window.xOff, window.yOff, window.xSize, window.ySize,
                       samples.data(), window.bufWidth, window.bufHeight, type, 0, 0,
                       nullptr) == CE_None)
        // An error beside the answer may be about positions outside a view's reach, or an
        // overview that was passed over: the samples are there.
        return samples;
    watch.Succeeded(false, "");
    return std::nullopt;
}

} // namespace

std::optional<WindowSamples> WindowSamples::Read(GDALRasterBand* band, const ReadWindow& window) {
    if (band == nullptr)
        return FailWith(std::nullopt, L"", "a band that is to be read is not open");
    if (!CanHoldBlocks(*band))
        return FailWith(std::nullopt, L"", "its blocks are beyond any healthy size");
    if (IsEnlargedTooFar(window, ReadType(band)))
        return FailWith(std::nullopt, L"", "the view enlarges its pixels too far");
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
        return FailWith(std::nullopt, L"", "not enough memory for the pixels");
    } catch (const std::length_error&) {
        return FailWith(std::nullopt, L"", "not enough memory for the pixels");
    }
}

} // namespace zelto
