#include "zelto/baselib/internal/Truncate.h"
#include "zelto/display/ComposedRaster.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/ShownSamples.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/display/internal/ViewRows.h"
#include "zelto/raster/RasterBand.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

namespace zelto {
namespace {

/// The output image that all three colours are drawn into.
struct ComposedView {
    CBoundingBox box;
    int w;
    int h;

    double PixelWidth() const { return std::fabs(box.m_right - box.m_left) / w; }
    double PixelHeight() const { return std::fabs(box.m_top - box.m_bottom) / h; }
};

/// The part of a source under the box, one pixel wider on every side, read at the output's
/// resolution.
ReadWindow SelectSourceWindow(CRasterSource& source, ComposedView view) {
    const CRect covered = source.GroundToImage(&view.box);
    const auto widen = [](int edge, int by, int limit) {
        return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{edge} + by, 0, limit));
    };
    CRect rect;
    SetRect(&rect, widen(covered.left, -1, source.GetWidth()),
            widen(covered.top, -1, source.GetHeight()), widen(covered.right, 1, source.GetWidth()),
            widen(covered.bottom, 1, source.GetHeight()));
    const CBoundingBox ground = source.ImageToGround(&rect);
    ReadWindow window;
    window.xOff = rect.left;
    window.yOff = rect.top;
    window.xSize = rect.right - rect.left;
    window.ySize = rect.bottom - rect.top;
    window.bufWidth = TruncateToInt32(ground.GetWidth() / view.PixelWidth());
    window.bufHeight = TruncateToInt32(ground.GetHeight() / view.PixelHeight());
    return window;
}

/// A source that the view misses gives no samples, which is no failure: its pixels are missing.
bool IsReadable(const ReadWindow& window) {
    if (window.bufWidth < 0 || window.bufHeight < 0)
        return false;
    return window.bufWidth == 0 || window.bufHeight == 0 || (window.xSize > 0 && window.ySize > 0);
}

/// One colour of a view: the samples of its source, and where each output pixel finds its own.
class ColorLayer {
  public:
    /// @param band of `source`; its data cache is dropped
    ColorLayer(CRasterSource& source, CRasterBand& band, const ComposedView& view)
        : m_band(band), m_window(SelectSourceWindow(source, view)) {
        ViewWindow grid;
        grid.pixelWidth = view.PixelWidth();
        grid.pixelHeight = view.PixelHeight();
        m_output = OutputOf(source, view.box, grid, view.w, 0.0);
        band.ReleaseCache();
        if (IsReadable(m_window))
            m_samples = WindowSamples::Read(band.GetGDALBand(), m_window);
        else
            SetLastError("no pixels of it can be read for the box");
        if (!m_samples)
            NameFileOfLastError(NameOf(source));
    }

    bool IsRead() const { return m_samples.has_value(); }

    /// Draws what `show`, ShowBytes or ShowPlaneBytes, shows of the samples; see DrawRows().
    /// @param isOpen see ShowsSample()
    template <typename Entry, typename IsOpen, typename Draw>
    void DrawBytes(const ComposedView& view, CRasterAOI* aoi,
                   SampleLookup<Entry> (*show)(const WindowSamples&, CRasterBand&),
                   const IsOpen& isOpen, const RowBuffers& written, const Draw& draw) const {
        const ViewMask mask(m_output, view.h, aoi);
        const SamplePositions positions(m_output, m_window, m_band.GetWidth(), m_band.GetHeight());
        const bool shows =
            NeedsDisplayState(*m_samples, m_band, view.w, view.h, positions, mask, isOpen);
        const auto lookup = shows ? show(*m_samples, m_band) : ShowNothing(*m_samples, Entry{0});
        DrawRows(BandView{view.w, view.h, positions, lookup, mask}, written, draw);
    }

  private:
    CRasterBand& m_band;
    ReadWindow m_window;
    OutputGrid m_output;
    std::optional<WindowSamples> m_samples;
};

} // namespace
} // namespace zelto

using namespace zelto;

bool CComposedRaster::GetShowData(CBoundingBox* box, int w, int h, unsigned char* out,
                                  bool /*adjust*/) {
    return DrawOrTell(*this, [=, this] {
        if (m_components.empty() || box == nullptr || out == nullptr || w < 1 || h < 1)
            return Refuse(noPlaceToDraw);
        const ComposedView view{*box, w, h};
        std::memset(out, 255, PixelIndex(h, w) * 4);
        std::vector<unsigned char> sameRows(static_cast<std::size_t>(h), 1);
        for (int k = 0; k < m_showBandCount; ++k) {
            CRasterSource* source = GetShownSource(k);
            if (source == nullptr)
                return Refuse(noShownBand);
            const ColorLayer layer(*source, *GetShownBand(k), view);
            if (!layer.IsRead())
                return false;
            const ChannelRule rule{ShownChannel(k), k == 0, true,
                                   AlphaOfTransparency(m_transparency)};
            unsigned char* const buffer = out;
            const auto isOpen = [k, out](std::size_t pixel) {
                return k == 0 || out[pixel * 4 + 3] != 0;
            };
            layer.DrawBytes(view, nullptr, ShowBytes, isOpen,
                            {{&buffer, 1}, PixelIndex(1, w) * 4, sameRows.data()},
                            [&](std::size_t pixel, int count, const ShownByte* bytes) {
                                ComposeChannel(bytes, count, rule, out + pixel * 4, nullptr);
                            });
        }
        AdjustColors(out, w, h);
        return true;
    });
}

bool CComposedRaster::GetShowData(CBoundingBox* box, int w, int h, int bands,
                                  unsigned char** planes, CRasterAOI* aoi, bool /*flag*/) {
    return DrawOrTell(*this, [=, this] {
        if (m_components.empty() || box == nullptr || planes == nullptr || w < 1 || h < 1 ||
            bands < 1 || std::find(planes, planes + bands, nullptr) != planes + bands)
            return Refuse(noPlaceToDraw);
        const ComposedView view{*box, w, h};
        for (int plane = 0; plane < bands; ++plane)
            std::memset(planes[plane], 0, PixelIndex(h, w));
        for (int k = 0; k < m_showBandCount; ++k) {
            CRasterSource* source = GetShownSource(k);
            if (source == nullptr)
                return Refuse(noShownBand);
            const ColorLayer layer(*source, *GetShownBand(k), view);
            if (!layer.IsRead())
                return false;
            if (k >= bands)
                continue;
            unsigned char* const plane = planes[k];
            const auto isOpen = [](std::size_t) { return true; };
            layer.DrawBytes(view, aoi, ShowPlaneBytes, isOpen, {{&plane, 1}, PixelIndex(1, w)},
                            [&](std::size_t pixel, int count, const unsigned char* bytes) {
                                std::memcpy(plane + pixel, bytes, static_cast<std::size_t>(count));
                            });
        }
        AdjustColors(planes, bands, w, h);
        return true;
    });
}
