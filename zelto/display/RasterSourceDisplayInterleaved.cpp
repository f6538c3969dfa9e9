#include "zelto/baselib/internal/Truncate.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/ShownReads.h"
#include "zelto/display/internal/ShownSamples.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/display/internal/ViewRows.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <cstring>
#include <optional>
#include <vector>

namespace zelto {
namespace {

/// A view of a source that is drawn into one interleaved image.
class InterleavedView {
  public:
    /// Has no window when the box misses the raster.
    InterleavedView(CRasterSource& source, const CBoundingBox& box, int w, int h,
                    unsigned char* out)
        : m_source(source),
          m_w(w),
          m_h(h),
          m_out(out),
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
                 [out = m_out](std::size_t pixel, int count, const PackedColor* colors) {
                     ComposePixels(colors, count, out + pixel * 4);
                 });
    }

    /// Draws into the channel of the k-th shown band.
    /// @param sums counts what is drawn, may be null
    void DrawChannel(const WindowSamples& samples, CRasterBand& band, int k, ShowSums* sums) {
        const ChannelRule rule{ShownChannel(k), k == 0};
        const SamplePositions positions = PositionsOf(band);
        const bool shows = NeedsDisplayState(
            samples, band, m_w, m_h, positions, m_noMask,
            [k, out = m_out](std::size_t pixel) { return k == 0 || out[pixel * 4 + 3] != 0; });
        const auto lookup = shows ? ShowBytes(samples, band) : ShowNothing(samples, ShownByte{0});
        // A repeated row would not be counted.
        DrawRows(BandView{m_w, m_h, positions, lookup, m_noMask},
                 sums == nullptr ? Repeatable() : RowBuffers{},
                 [&](std::size_t pixel, int count, const ShownByte* bytes) {
                     ComposeChannel(bytes, count, rule, m_out + pixel * 4, sums);
                 });
    }

  private:
    RowBuffers Repeatable() { return {{&m_out, 1}, PixelIndex(1, m_w) * 4, m_sameRows.data()}; }
    SamplePositions PositionsOf(const CRasterBand& band) const {
        return {m_output, m_window.read, band.GetWidth(), band.GetHeight()};
    }

    CRasterSource& m_source;
    int m_w;
    int m_h;
    unsigned char* m_out;
    ViewWindow m_window;
    OutputGrid m_output;
    ShownReads m_reads;
    ViewMask m_noMask;
    std::vector<unsigned char> m_sameRows; ///< see RowBuffers
};

} // namespace
} // namespace zelto

using namespace zelto;

bool CRasterSource::GetShowData(CBoundingBox* box, int w, int h, unsigned char* out, bool adjust) {
    return DrawOrTell(*this, [=, this] { return DrawInterleaved(box, w, h, out, adjust, false); });
}

bool CRasterSource::GetShowDataWithoutCache(CBoundingBox* box, int w, int h, unsigned char* out,
                                            bool adjust) {
    return DrawOrTell(*this, [=, this] { return DrawInterleaved(box, w, h, out, adjust, true); });
}

bool CRasterSource::DrawInterleaved(const CBoundingBox* box, int w, int h, unsigned char* out,
                                    bool adjust, bool keepsCaches) {
    if (box == nullptr || out == nullptr)
        return Refuse(noPlaceToDraw);
    InterleavedView view(*this, *box, w, h, out);
    if (view.Status() != ViewStatus::Selected)
        return Refuse(ReasonOf(view.Status()));
    for (int k = 0; k < m_showBandCount; ++k) {
        CRasterBand* band = GetShownBand(k);
        const auto samples = view.Read(k, band, keepsCaches);
        if (!samples) {
            // The bands drawn so far stay in the buffer.
            if (k == 0)
                view.Clear();
            return false;
        }
        ShowSums sums;
        if (m_showBandCount == 1)
            view.DrawColors(*samples, *band);
        else
            view.DrawChannel(*samples, *band, k, m_showStatisticsKnown ? nullptr : &sums);
        sums.Report(m_showMeans[k], m_showStandardDeviations[k]);
    }
    if (m_showBandCount < 1)
        view.Clear();
    // Computed once per source, on the first image that has something to count.
    if (m_showMeans[0] != 0.0)
        m_showStatisticsKnown = true;
    if (adjust)
        AdjustColors(out, w, h);
    return true;
}
