#pragma once

#include "zelto/baselib/internal/Truncate.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/display/internal/BandDisplay.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace zelto {

/// Most bands that are shown at once.
inline constexpr int mostShownBands = 3;

/// Display type of a single band shown through the source's colour ramp.
inline constexpr auto displayRamp = static_cast<DataDisplayType>(1);

/// Bytes of an interleaved pixel, in the order they stand in.
enum class Channel : int { Blue = 0, Green = 1, Red = 2 };

/// Which of its colours an interleaved pixel has first; the last one is alpha in any case.
enum class FirstColor { Blue, Red };

/// Channel of the k-th shown band: red, green, blue.
/// @return where it stands in a pixel, which is that of blue for red where that is first
inline constexpr Channel ShownChannel(int k, FirstColor first = FirstColor::Blue) {
    return static_cast<Channel>(first == FirstColor::Blue ? 2 - k : k);
}

/// Alpha byte of a transparency of 0 … 1: the complement of its share of 255. The product is
/// single precision.
inline unsigned char AlphaOfTransparency(float transparency) {
    return static_cast<unsigned char>(~TruncateToByte(transparency * 255.0F));
}

/// Pixels without a sample in an interleaved image: white, transparent.
inline constexpr PackedColor transparentWhite = PackColor(255, 255, 255, 0);

/// Count, sum and sum of squares of display bytes. Whole numbers: the totals are exact and do
/// not depend on the order or on the number of threads.
class ShowSums {
  public:
    void Add(std::uint64_t count, std::uint64_t sum, std::uint64_t squares) {
        m_count.fetch_add(count, std::memory_order_relaxed);
        m_sum.fetch_add(sum, std::memory_order_relaxed);
        m_squares.fetch_add(squares, std::memory_order_relaxed);
    }

    /// Mean and population deviation; both stay as they are when nothing was counted.
    void Report(double& mean, double& deviation) const;

  private:
    std::atomic<std::uint64_t> m_count = 0;
    std::atomic<std::uint64_t> m_sum = 0;
    std::atomic<std::uint64_t> m_squares = 0;
};

/// How a band's bytes go into one channel of an interleaved image.
struct ChannelRule {
    Channel channel = Channel::Red;
    /// The first band writes whole pixels, whatever the buffer holds: white and opaque but for
    /// its channel.
    bool isFirst = false;
    bool setsAlpha = false; ///< whether shown pixels take the alpha below, or keep theirs
    unsigned char alpha = 0;
};

/// Writes display bytes into a channel of `count` interleaved pixels. A pixel that an earlier
/// band made transparent stays as it is; one without a byte becomes transparent.
/// @param sums counts what is written, may be null
void ComposeChannel(const ShownByte* bytes, int count, const ChannelRule& rule,
                    unsigned char* pixels, ShowSums* sums);

/// What ComposeChannel() makes of three shown bands one after the other, in one pass over the
/// pixels and without counting.
void ComposeChannels(const ShownByte* red, const ShownByte* green, const ShownByte* blue, int count,
                     unsigned char* pixels, FirstColor first = FirstColor::Blue);

/// Writes colours as interleaved pixels.
void ComposePixels(const PackedColor* colors, int count, unsigned char* pixels,
                   FirstColor first = FirstColor::Blue);

/// Turns pixels of blue, green, red, alpha into red, green, blue, alpha, and the other way.
void SwapRedAndBlue(unsigned char* pixels, std::size_t count);

/// Writes one channel of packed colours into a plane.
void ComposePlane(const PackedColor* colors, int count, Channel channel, unsigned char* plane);

} // namespace zelto
