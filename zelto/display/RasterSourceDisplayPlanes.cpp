#include "zelto/aoi/RasterAOI.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/ShownReads.h"
#include "zelto/display/internal/ShownSamples.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/display/internal/ViewRows.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <span>

namespace zelto {
namespace {

/// The caller's planes of w × h bytes.
struct PlaneImage {
    std::span<unsigned char* const> planes; ///< none where the caller gives none
    int w;
    int h;

    PlaneImage(unsigned char* const* pointers, int count, int width, int height)
        : w(width), h(height) {
        if (pointers != nullptr && count > 0)
            planes = {pointers, static_cast<std::size_t>(count)};
    }

    bool IsComplete() const {
        return !planes.empty() &&
               std::none_of(planes.begin(), planes.end(), [](auto* p) { return p == nullptr; });
    }
    void Clear() const {
        for (unsigned char* plane : planes)
            std::memset(plane, 0, PixelIndex(h, w));
    }
};

/// A view of a source that is drawn into planes.
class PlaneView {
  public:
    PlaneView(CRasterSource& source, const CBoundingBox& box, const PlaneImage& image,
              CRasterAOI* aoi)
        : m_source(source),
          m_image(image),
          m_masked(aoi != nullptr),
          m_window(SelectViewWindow(GridOf(source), box, image.w, image.h, ViewRule::Planes)),
          m_output(OutputOf(source, box, m_window, image.w, 0.5)) {
        if (Status() == ViewStatus::Selected)
            m_mask = ViewMask(m_output, image.h, aoi);
    }

    ViewStatus Status() const { return m_window.status; }

    /// The samples of the first `count` shown bands.
    ShownReads Reads(int count) const { return {m_source, count, m_window.read}; }

    /// Writes the band's display bytes into each of the planes.
    void DrawBytes(const WindowSamples& samples, CRasterBand& band,
                   std::span<unsigned char* const> planes) const {
        const SamplePositions positions = PositionsOf(band);
        const auto lookup = IsShown(samples, band, positions)
                                ? ShowPlaneBytes(samples, band)
                                : ShowNothing<unsigned char>(samples, 0);
        DrawRows(BandView{m_image.w, m_image.h, positions, lookup, m_mask},
                 {planes, PixelIndex(1, m_image.w)},
                 [planes](std::size_t pixel, int count, const unsigned char* bytes) {
                     for (unsigned char* plane : planes)
                         std::memcpy(plane + pixel, bytes, static_cast<std::size_t>(count));
                 });
    }

    /// Writes the band's colours into the first three planes, as many as there are.
    void DrawColors(const WindowSamples& samples, CRasterBand& band) const {
        // Hosts expect red first where an area of interest is given and blue first otherwise.
        const std::array<Channel, 3> order =
            m_masked ? std::array{Channel::Red, Channel::Green, Channel::Blue}
                     : std::array{Channel::Blue, Channel::Green, Channel::Red};
        const auto planes = m_image.planes.first(std::min(order.size(), m_image.planes.size()));
        const bool dropsTransparent = KindOf(m_source, band) == SingleBandKind::Classes;
        const SamplePositions positions = PositionsOf(band);
        const auto lookup = IsShown(samples, band, positions)
                                ? ShowColors(samples, m_source, band, 0, PackedColor{0})
                                : ShowNothing(samples, PackedColor{0});
        DrawRows(BandView{m_image.w, m_image.h, positions, lookup, m_mask},
                 {planes, PixelIndex(1, m_image.w)},
                 [&](std::size_t pixel, int count, PackedColor* colors) {
                     if (dropsTransparent)
                         DropTransparent(colors, count);
                     for (std::size_t p = 0; p < planes.size(); ++p)
                         ComposePlane(colors, count, order[p], planes[p] + pixel);
                 });
    }

    void DrawSingleBand(const WindowSamples& samples, CRasterBand& band) const {
        const SingleBandKind kind = KindOf(m_source, band);
        if (kind == SingleBandKind::Grey ||
            (kind == SingleBandKind::Ramp && m_image.planes.size() == 1))
            DrawBytes(samples, band, m_image.planes);
        else
            DrawColors(samples, band);
    }

    /// The area's part of the view; empty without an area.
    std::span<const unsigned char> Inside() const { return m_mask.Inside(); }

  private:
    static void DropTransparent(PackedColor* colors, int count) {
        std::replace_if(
            colors, colors + count, [](PackedColor color) { return AlphaOf(color) == 0; },
            PackedColor{0});
    }
    bool IsShown(const WindowSamples& samples, CRasterBand& band,
                 const SamplePositions& positions) const {
        return NeedsDisplayState(samples, band, m_image.w, m_image.h, positions, m_mask,
                                 [](std::size_t) { return true; });
    }
    SamplePositions PositionsOf(const CRasterBand& band) const {
        return {m_output, m_window.read, band.GetWidth(), band.GetHeight()};
    }

    CRasterSource& m_source;
    PlaneImage m_image;
    bool m_masked;
    ViewWindow m_window;
    OutputGrid m_output;
    ViewMask m_mask;
};

/// Draws the shown bands of a source.
bool DrawShownBands(const CRasterSource& source, const PlaneView& view, const PlaneImage& image) {
    const int count = source.GetShowBandCount();
    ShownReads reads = view.Reads(count);
    for (int k = 0; k < count; ++k) {
        CRasterBand* band = source.GetShownBand(k);
        if (band == nullptr)
            return Refuse(noShownBand);
        band->ReleaseCache();
        const auto samples = reads.Take(k);
        if (!samples)
            return false;
        if (count == 1)
            view.DrawSingleBand(*samples, *band);
        else if (static_cast<std::size_t>(k) < image.planes.size())
            view.DrawBytes(*samples, *band, image.planes.subspan(static_cast<std::size_t>(k), 1));
    }
    return true;
}

} // namespace
} // namespace zelto

using namespace zelto;

bool CRasterSource::GetShowData(CBoundingBox* box, int w, int h, int bands, unsigned char** planes,
                                CRasterAOI* aoi, bool /*flag*/) {
    return DrawPlanes(box, w, h, bands, planes, aoi, nullptr);
}

bool CRasterSource::GetMaskedShowData(CBoundingBox* box, int w, int h, int bands,
                                      unsigned char** planes, CRasterAOI* aoi,
                                      unsigned char* inside) {
    return DrawOrTell(*this, [=, this] {
        return aoi != nullptr && inside != nullptr
                   ? DrawPlanes(box, w, h, bands, planes, aoi, inside)
                   : Refuse(noPlaceToDraw);
    });
}

bool CRasterSource::DrawPlanes(const CBoundingBox* box, int w, int h, int bands,
                               unsigned char** planes, CRasterAOI* aoi, unsigned char* inside) {
    return DrawOrTell(*this, [=, this] {
        const PlaneImage image(planes, bands, w, h);
        if (box == nullptr || !image.IsComplete())
            return Refuse(noPlaceToDraw);
        const PlaneView view(*this, *box, image, aoi);
        if (view.Status() != ViewStatus::Selected)
            return Refuse(ReasonOf(view.Status()));
        image.Clear();
        const bool drawn = DrawShownBands(*this, view, image);
        if (drawn)
            AdjustColors(planes, bands, w, h);
        if (drawn && inside != nullptr)
            std::ranges::copy(view.Inside(), inside);
        return drawn;
    });
}

bool CRasterSource::GetShowDataGray(CBoundingBox* box, int w, int h, int bands,
                                    unsigned char** planes, CRasterAOI* aoi, bool /*flag*/) {
    return DrawOrTell(*this, [=, this] {
        const PlaneImage image(planes, bands, w, h);
        CRasterBand* band = GetShownBand(0);
        if (box == nullptr || !image.IsComplete())
            return Refuse(noPlaceToDraw);
        if (band == nullptr)
            return Refuse(noShownBand);
        const PlaneView view(*this, *box, image, aoi);
        if (view.Status() != ViewStatus::Selected)
            return Refuse(ReasonOf(view.Status()));
        image.Clear();
        band->ReleaseCache();
        const auto samples = view.Reads(1).Take(0);
        if (samples)
            view.DrawBytes(*samples, *band, image.planes);
        return samples.has_value();
    });
}
