#include "zelto/display/internal/WindowSamples.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/LastWindow.h"
#include "zelto/raster/internal/PickedSamples.h"
#include "zelto/raster/internal/VirtualBand.h"

#include <gdal_priv.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace zelto {
namespace {

/// Type that the band's samples are read as: doubles for virtual bands, and for the 64-bit and
/// complex types, which have no exact smaller one here.
GDALDataType ReadType(GDALRasterBand* band) {
    const GDALDataType type = band->GetRasterDataType();
    if (type > GDT_Float32 || IsVirtual(band))
        return GDT_Float64;
    return type;
}

/// Memory for the samples of bands that are read together.
constexpr std::int64_t MOST_READ_TOGETHER = std::int64_t{64} << 20;

/// Whether a window is read so much larger than it is that its samples fill the memory. Zooming
/// into a pixel does that; other views read no more samples than they have output pixels.
bool IsEnlargedTooFar(const ReadWindow& window, GDALDataType type) {
    constexpr double LIMIT = 4294967296.0; // bytes
    const double bytes =
        static_cast<double>(window.bufWidth) * window.bufHeight * GDALGetDataTypeSizeBytes(type);
    return (window.bufWidth > window.xSize || window.bufHeight > window.ySize) && bytes > LIMIT;
}

/// Whether the bands are of one data set and may be read together, and the window is so large that
/// this is better.
bool IsReadTogether(const std::vector<GDALRasterBand*>& bands, const ReadWindow& window) {
    GDALRasterBand* first = bands.front();
    // Those of a file from which samples can be picked are all of one type.
    const auto suits = [&](GDALRasterBand* band) {
        return band != nullptr && band->GetDataset() == first->GetDataset() &&
               ReadType(band) == band->GetRasterDataType() && CanBePicked(*band);
    };
    const bool isReduced = window.bufWidth > 0 && window.bufHeight > 0 &&
                           window.bufWidth <= window.xSize && window.bufHeight <= window.ySize;
    if (!isReduced || !std::all_of(bands.begin(), bands.end(), suits))
        return false;
    const std::int64_t sampleSize = GDALGetDataTypeSizeBytes(first->GetRasterDataType());
    const std::int64_t stored =
        sampleSize * window.xSize * window.ySize *
        (HasBandsTogether(*first) ? first->GetDataset()->GetRasterCount() : std::ssize(bands));
    const std::int64_t read = sampleSize * window.bufWidth * window.bufHeight * std::ssize(bands);
    return stored > GDALGetCacheMax64() && read <= MOST_READ_TOGETHER &&
           IsWorthPicking(bands, {window.xOff, window.yOff, window.xSize, window.ySize});
}

template <typename T>
std::optional<WindowSamples::Samples<T>> ReadAs(GDALDataType type, GDALRasterBand* band,
                                                const ReadWindow& window) {
    const std::size_t count =
        static_cast<std::size_t>(window.bufWidth) * static_cast<std::size_t>(window.bufHeight);
    WindowSamples::Samples<T> samples(count);
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

/// Calls read() with a sample of the type.
template <typename Read>
auto AsType(GDALDataType type, const Read& read) {
    switch (type) {
    case GDT_Byte:
        return read(std::uint8_t{});
    case GDT_UInt16:
        return read(std::uint16_t{});
    case GDT_Int16:
        return read(std::int16_t{});
    case GDT_UInt32:
        return read(std::uint32_t{});
    case GDT_Int32:
        return read(std::int32_t{});
    case GDT_Float32:
        return read(float{});
    default:
        return read(double{});
    }
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
        return AsType(ReadType(band), as);
    } catch (const std::bad_alloc&) {
        return FailWith(std::nullopt, L"", "not enough memory for the pixels");
    } catch (const std::length_error&) {
        return FailWith(std::nullopt, L"", "not enough memory for the pixels");
    }
}

std::vector<WindowSamples> WindowSamples::ReadTogether(const std::vector<GDALRasterBand*>& bands,
                                                       const ReadWindow& window) {
    if (!IsReadTogether(bands, window))
        return {};
    const auto as = [&](auto sample) -> std::vector<WindowSamples> {
        std::vector<Samples<decltype(sample)>> samples;
        std::vector<void*> targets;
        targets.reserve(bands.size());
        for (std::size_t b = 0; b < bands.size(); ++b)
            samples.emplace_back(static_cast<std::size_t>(window.bufWidth) *
                                 static_cast<std::size_t>(window.bufHeight));
        for (auto& ofBand : samples)
            targets.push_back(ofBand.data());
        const SampledWindow picked = {{window.xOff, window.yOff, window.xSize, window.ySize},
                                      window.bufWidth,
                                      window.bufHeight};
        if (!CopyLastWindow(bands, picked, targets)) {
            if (!ReadPicked(bands, picked, targets))
                return {};
            KeepLastWindow(bands, picked, targets);
        }
        std::vector<WindowSamples> read;
        read.reserve(samples.size());
        for (auto& ofBand : samples)
            read.push_back(WindowSamples(std::move(ofBand)));
        return read;
    };
    try {
        return AsType(ReadType(bands.front()), as);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace zelto
