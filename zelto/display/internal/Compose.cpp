#include "zelto/display/internal/Compose.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace zelto {
namespace {

// An interleaved pixel is blue, green, red, alpha in memory, which is a packed colour as a
// little-endian machine stores it. Loops over whole pixels become vector code that way.
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

template <bool isFirst, bool counting>
void ComposeChannelRun(const ShownByte* bytes, int count, const ChannelRule& rule,
                       unsigned char* pixels, ShowSums* sums) {
    const int shift = 8 * static_cast<int>(rule.channel);
    const PackedColor kept = ~(PackedColor{255} << shift) & (rule.setsAlpha ? ~alphaBits : ~0U);
    const PackedColor alpha = rule.setsAlpha ? PackedColor{rule.alpha} << 24 : 0;
    // A run is short enough for 32 bits.
    std::uint32_t shown = 0;
    std::uint32_t sum = 0;
    std::uint32_t squares = 0;
    for (int i = 0; i < count; ++i) {
        const PackedColor before = isFirst ? ~0U : LoadPixel(pixels + 4 * i);
        const PackedColor byte = bytes[i] & 255U;
        const bool isWritten = (bytes[i] & isShown) != 0 && (before & alphaBits) != 0;
        StorePixel(pixels + 4 * i,
                   isWritten ? (before & kept) | byte << shift | alpha : before & ~alphaBits);
        if constexpr (counting) {
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

void ComposePixels(const PackedColor* colors, int count, unsigned char* pixels) {
    std::memcpy(pixels, colors, static_cast<std::size_t>(count) * sizeof *colors);
}

void ComposePlane(const PackedColor* colors, int count, Channel channel, unsigned char* plane) {
    const int shift = 8 * static_cast<int>(channel);
    for (int i = 0; i < count; ++i)
        plane[i] = static_cast<unsigned char>(colors[i] >> shift);
}

} // namespace zelto
