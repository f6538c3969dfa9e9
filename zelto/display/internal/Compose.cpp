#include "zelto/display/internal/Compose.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace zelto {
namespace {

// An interleaved pixel with blue first is blue, green, red, alpha in memory, which is a packed
// colour as a little-endian machine stores it. Loops over whole pixels become vector code that way.
static_assert(std::endian::native == std::endian::little);

PackedColor LoadPixel(const unsigned char* pixel) {
    PackedColor color = 0;
    std::memcpy(&color, pixel, sizeof color);
    return color;
}

void StorePixel(unsigned char* pixel, PackedColor color) {
    std::memcpy(pixel, &color, sizeof color);
}

constexpr PackedColor alphaBits = 0xFF000000;

constexpr PackedColor WithRedAndBlueSwapped(PackedColor color) {
    return (color & 0xFF00FF00U) | (color & 0xFFU) << 16 | (color >> 16 & 0xFFU);
}

/// Whether a band writes its byte into a pixel.
bool IsWritten(ShownByte byte, PackedColor before) {
    return (byte & isShown) != 0 && (before & alphaBits) != 0;
}

/// @param kept bits of the pixel that a written byte leaves as they are
/// @param alpha bits that it sets besides
PackedColor WithChannel(PackedColor before, ShownByte byte, int shift, PackedColor kept,
                        PackedColor alpha) {
    return IsWritten(byte, before) ? (before & kept) | (byte & 255U) << shift | alpha
                                   : before & ~alphaBits;
}

constexpr int ShiftOf(Channel channel) {
    return 8 * static_cast<int>(channel);
}

/// A pixel before its first band.
constexpr PackedColor untouched = ~PackedColor{0};

template <bool isFirst, bool counting>
void ComposeChannelRun(const ShownByte* bytes, int count, const ChannelRule& rule,
                       unsigned char* pixels, ShowSums* sums) {
    const int shift = ShiftOf(rule.channel);
    const PackedColor kept = ~(PackedColor{255} << shift) & (rule.setsAlpha ? ~alphaBits : ~0U);
    const PackedColor alpha = rule.setsAlpha ? PackedColor{rule.alpha} << 24 : 0;
    // A run is short enough for 32 bits.
    std::uint32_t shown = 0;
    std::uint32_t sum = 0;
    std::uint32_t squares = 0;
    for (int i = 0; i < count; ++i) {
        const PackedColor before = isFirst ? untouched : LoadPixel(pixels + 4 * i);
        StorePixel(pixels + 4 * i, WithChannel(before, bytes[i], shift, kept, alpha));
        if constexpr (counting) {
            const bool isWritten = IsWritten(bytes[i], before);
            const PackedColor byte = bytes[i] & 255U;
            shown += isWritten ? 1 : 0;
            sum += isWritten ? byte : 0;
            squares += isWritten ? byte * byte : 0;
        }
    }
    if constexpr (counting)
        sums->Add(shown, sum, squares);
}

} // namespace

void ShowSums::Report(double& mean, double& deviation) const {
    if (m_count == 0)
        return;
    const auto count = static_cast<double>(m_count);
    mean = static_cast<double>(m_sum) / count;
    const double variance = static_cast<double>(m_squares) / count - mean * mean;
    // Rounding may leave a variance of nothing just below zero.
    deviation = variance > 0.0 ? std::sqrt(variance) : 0.0;
}

void ComposeChannel(const ShownByte* bytes, int count, const ChannelRule& rule,
                    unsigned char* pixels, ShowSums* sums) {
    const auto compose =
        rule.isFirst
            ? (sums != nullptr ? ComposeChannelRun<true, true> : ComposeChannelRun<true, false>)
            : (sums != nullptr ? ComposeChannelRun<false, true> : ComposeChannelRun<false, false>);
    compose(bytes, count, rule, pixels, sums);
}

void ComposeChannels(const ShownByte* red, const ShownByte* green, const ShownByte* blue, int count,
                     unsigned char* pixels, FirstColor first) {
    const int redShift = ShiftOf(ShownChannel(0, first));
    const int blueShift = ShiftOf(ShownChannel(2, first));
    const auto add = [](PackedColor before, ShownByte byte, int shift) {
        return WithChannel(before, byte, shift, ~(PackedColor{255} << shift), 0);
    };
    for (int i = 0; i < count; ++i) {
        PackedColor color = add(untouched, red[i], redShift);
        color = add(color, green[i], ShiftOf(Channel::Green));
        color = add(color, blue[i], blueShift);
        StorePixel(pixels + 4 * i, color);
    }
}

void ComposePixels(const PackedColor* colors, int count, unsigned char* pixels, FirstColor first) {
    if (first == FirstColor::Blue) {
        std::memcpy(pixels, colors, static_cast<std::size_t>(count) * sizeof *colors);
        return;
    }
    for (int i = 0; i < count; ++i)
        StorePixel(pixels + 4 * i, WithRedAndBlueSwapped(colors[i]));
}

void SwapRedAndBlue(unsigned char* pixels, std::size_t count) {
    constexpr std::size_t ALONE = 1 << 16;
#pragma omp parallel for if (count > ALONE)
    for (std::size_t i = 0; i < count; ++i)
        StorePixel(pixels + 4 * i, WithRedAndBlueSwapped(LoadPixel(pixels + 4 * i)));
}

void ComposePlane(const PackedColor* colors, int count, Channel channel, unsigned char* plane) {
    const int shift = 8 * static_cast<int>(channel);
    for (int i = 0; i < count; ++i)
        plane[i] = static_cast<unsigned char>(colors[i] >> shift);
}

} // namespace zelto
