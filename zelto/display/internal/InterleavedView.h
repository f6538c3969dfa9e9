#pragma once

#include "zelto/baselib/internal/Truncate.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/RowsBehind.h"
#include "zelto/display/internal/ShownReads.h"
#include "zelto/display/internal/ShownSamples.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/display/internal/ViewRows.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <omp.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <list>
#include <optional>
#include <utility>
#include <vector>

namespace zelto {

/// A view of a source that is drawn into one interleaved image.
class InterleavedView {
  public:
    /// Has no window when the box misses the raster.
    InterleavedView(CRasterSource& source, const CBoundingBox& box, int w, int h,
                    unsigned char* out, FirstColor first)
        : m_source(source),
          m_w(w),
          m_h(h),
          m_out(out),
          m_first(first),
          m_window(SelectViewWindow(GridOf(source), box, w, h, ViewRule::Interleaved)),
          // The pixel's corner is looked up here, its centre in the planes.
          m_output(OutputOf(source, box, m_window, w, 0.0)),
          m_reads(source, source.GetShowBandCount(), m_window.read),
          m_sameRows(Status() == ViewStatus::Selected ? static_cast<std::size_t>(h) : 0, 1) {}

    ViewStatus Status() const { return m_window.status; }

    /// @param k number of the shown band
    std::optional<WindowSamples> Read(int k, CRasterBand* band, bool keepsCache) {
        if (band == nullptr)
            return FailWith(std::nullopt, L"", noShownBand);
        if (!keepsCache)
            band->ReleaseCache();
        return m_reads.Take(k);
    }

    void Clear() const { std::memset(m_out, 255, PixelIndex(m_h, m_w) * 4); }

    void DrawColors(const WindowSamples& samples, CRasterBand& band) {
        const int transparency = TruncateToByte(m_source.m_transparency * 255.0);
        const SamplePositions positions = PositionsOf(band);
        const bool shows = NeedsDisplayState(samples, band, m_w, m_h, positions, m_noMask,
                                             [](std::size_t) { return true; });
        const auto lookup =
            shows ? ShowColors(samples, m_source, band, transparency, transparentWhite)
                  : ShowNothing(samples, transparentWhite);
        DrawRows(BandView{m_w, m_h, positions, lookup, m_noMask}, Repeatable(),
                 [this](std::size_t pixel, int count, const PackedColor* colors) {
                     ComposePixels(colors, count, m_out + pixel * 4, m_first);
                 });
    }

    /// Draws the samples into the channel of the k-th shown band, at the latest with the next
    /// DrawAwaited(). Channels that are drawn together pass over the image once; large ones are
    /// drawn while the next band is read.
    /// @param sums counts what is drawn, may be null
    void DrawChannel(WindowSamples samples, CRasterBand& band, int k, ShowSums* sums) {
        FinishBehind();
        // The image is asked below, and an auto-levels map takes the place of what others show by.
        if (DisplayMapping::AwaitsAutoLevels(band))
            DrawAwaited();
        AwaitedChannel& channel = m_awaited.emplace_back(AwaitedChannel{
            std::move(samples), PositionsOf(band), {}, {ShownChannel(k, m_first), k == 0}, sums});
        const bool shows = NeedsDisplayState(
            channel.samples, band, m_w, m_h, channel.positions, m_noMask,
            [k, out = m_out](std::size_t pixel) { return k == 0 || out[pixel * 4 + 3] != 0; });
        channel.lookup.emplace(shows ? ShowBytes(channel.samples, band)
                                     : ShowNothing(channel.samples, ShownByte{0}));
        m_awaitedBytes += channel.samples.Visit(
            [](const auto& values) { return values.size() * sizeof values[0]; });
        const bool isLast = k + 1 == m_source.GetShowBandCount();
        if (!isLast && m_awaitedBytes > LEAST_BEHIND && omp_get_max_threads() > 1)
            DrawBehind();
        else if (m_awaitedBytes > MOST_AWAITED)
            DrawAwaited();
    }

    /// Draws the channels that wait for it.
    void DrawAwaited() {
        FinishBehind();
        if (m_awaited.empty())
            return;
        const bool all = !Counts() && m_awaited.size() == mostShownBands;
        ForEachRow(
            m_w, m_h, Written(), [this](int row) { return RepeatsRowAbove(row); },
            [this, all](int row) {
                if (all)
                    DrawRowOfAll(row);
                else
                    DrawRowOfEach(row);
            });
        Forget();
    }

  private:
    /// What is to be drawn into one channel of the image.
    struct AwaitedChannel {
        WindowSamples samples;
        SamplePositions positions;
        std::optional<SampleLookup<ShownByte>> lookup; ///< refers to the samples
        ChannelRule rule;
        ShowSums* sums;
    };

    /// Bytes of samples that wait to be drawn together: what a core's cache holds until then. More
    /// of them cost more than the second pass over the image that they save.
    static constexpr std::size_t MOST_AWAITED = std::size_t{1} << 20;
    /// Bytes of samples that take longer to draw than another thread to begin.
    static constexpr std::size_t LEAST_BEHIND = std::size_t{512} << 10;

    /// Begins to draw the channels that wait for it, on another thread.
    void DrawBehind() {
        m_behind.Start(m_h, [this, written = Written()](int first, int end) {
            for (int row = first; row < end; ++row)
                DrawOrRepeat(
                    row, row > first ? row - 1 : -1, written,
                    [this](int of) { return RepeatsRowAbove(of); },
                    [this](int of) { DrawRowOfEach(of); });
        });
        m_isBehind = true;
    }
    void FinishBehind() {
        m_behind.Finish();
        if (std::exchange(m_isBehind, false))
            Forget();
    }
    void Forget() {
        m_awaited.clear();
        m_awaitedBytes = 0;
    }

    /// A repeated row would not be counted.
    bool Counts() const {
        return std::any_of(m_awaited.begin(), m_awaited.end(),
                           [](const AwaitedChannel& of) { return of.sums != nullptr; });
    }
    RowBuffers Written() { return Counts() ? RowBuffers{} : Repeatable(); }
    bool RepeatsRowAbove(int row) const {
        return std::all_of(m_awaited.begin(), m_awaited.end(), [&](const AwaitedChannel& of) {
            return ShowsSameAsRowAbove(ViewOf(of), row);
        });
    }
    BandView<ShownByte> ViewOf(const AwaitedChannel& of) const {
        return {m_w, m_h, of.positions, *of.lookup, m_noMask};
    }
    void DrawRowOfEach(int row) const {
        for (const AwaitedChannel& of : m_awaited)
            VisitRow(ViewOf(of), row, [&](std::size_t pixel, int count, const ShownByte* bytes) {
                ComposeChannel(bytes, count, of.rule, m_out + pixel * 4, of.sums);
            });
    }
    /// The same of red, green and blue, none of which is counted.
    void DrawRowOfAll(int row) const {
        SamplePositions::Scratch scratch;
        std::array<std::array<ShownByte, SamplePositions::chunk>, mostShownBands> bytes;
        for (int column = 0; column < m_w; column += SamplePositions::chunk) {
            const int count = std::min(SamplePositions::chunk, m_w - column);
            auto* ofChannel = bytes.data();
            for (const AwaitedChannel& of : m_awaited)
                of.lookup->Get(of.positions.RunOf(row, column, count, scratch),
                               (ofChannel++)->data());
            ComposeChannels(bytes[0].data(), bytes[1].data(), bytes[2].data(), count,
                            m_out + (PixelIndex(row, m_w) + static_cast<std::size_t>(column)) * 4,
                            m_first);
        }
    }
    RowBuffers Repeatable() { return {{&m_out, 1}, PixelIndex(1, m_w) * 4, m_sameRows.data()}; }
    SamplePositions PositionsOf(const CRasterBand& band) const {
        return {m_output, m_window.read, band.GetWidth(), band.GetHeight()};
    }

    CRasterSource& m_source;
    int m_w;
    int m_h;
    unsigned char* m_out;
    FirstColor m_first;
    ViewWindow m_window;
    OutputGrid m_output;
    ShownReads m_reads;
    ViewMask m_noMask;
    std::vector<unsigned char> m_sameRows; ///< see RowBuffers
    std::list<AwaitedChannel> m_awaited;   ///< stays in its place as it grows
    std::size_t m_awaitedBytes = 0;        ///< of their samples
    bool m_isBehind = false;               ///< whether another thread draws them
    RowsBehind m_behind;                   ///< goes first: it draws what is above
};

} // namespace zelto
