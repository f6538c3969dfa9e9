#pragma once

#include "zelto/display/ComposedRaster.h"
#include "zelto/raster/RasterSource.h"

#include "host/picture/FileOpacity.h"
#include "viewer/model/LayerFacts.h"
#include "viewer/worker/Requests.h"

#include <memory>
#include <string>
#include <vector>

class CCoordinateTransformation;

namespace zelto::view {

/// An open image with all that the engine keeps for it. Lives on the worker thread alone.
class LayerSource {
  public:
    /// @param reference system to show the image in, where it has one of its own; empty: that
    /// @param reason receives why nothing was opened
    /// @return null when the image cannot be shown
    static std::unique_ptr<LayerSource> Open(const LayerOrigin& origin,
                                             const std::string& reference, QString& reason);
    ~LayerSource();
    LayerSource(const LayerSource&) = delete;
    LayerSource& operator=(const LayerSource&) = delete;

    LayerFacts Describe();
    /// About what the opened file takes: GDAL's index of its blocks, and a flat sum for the rest.
    qint64 Bytes() const;

    /// Draws the view into `image`, of the view's size and Format_ARGB32.
    /// @param mask pixels outside these shapes stay transparent; empty: none is masked
    /// @return false with the reason when pixels cannot be read or the stretch cannot be had, where
    ///         it is drawn with the former one; what misses the image is no failure and leaves it
    ///         transparent
    bool Draw(const ViewTransform& view, const DisplaySettings& settings, const Shapes& mask,
              QImage& image, QString& reason);

    /// Finds what the settings' stretch goes by, so that the drawing need not. Where that cannot be
    /// had the drawing tells.
    void Prepare(const DisplaySettings& settings);

    /// What the last drawing went between, per shown band.
    const ShownRanges& Ranges() const { return m_ranges; }

    Reading Read(QPointF ground);
    BandHistogram CountValues(int band);

  private:
    LayerSource() = default;

    CRasterSource& Shown() { return m_composed ? *m_composed : *m_sources.front(); }
    bool Compose(const LayerOrigin& origin);
    /// Throws Failure where the file has a mask that cannot be had.
    void OpenMask(const std::string& reference);
    /// The raster and its band that a band number of the settings stands for.
    CRasterBand* BandOf(int index);
    /// @return false with the reason when the stretch cannot be had; the former one stays
    bool Apply(const DisplaySettings& settings, const CBoundingBox& box, QString& reason);
    bool ApplyStretch(const DisplaySettings& settings, const CBoundingBox& box);
    void ApplyLook(CRasterSource& source, const DisplaySettings& settings);
    bool IsFadedAfterwards(const DisplaySettings& settings);
    bool ShowsClasses(const DisplaySettings& settings) const;
    void ApplyClasses(CRasterSource& source, const DisplaySettings& settings) const;
    bool ApplyMask(const ViewTransform& view, QImage& image, QString& reason);
    bool DrawMasked(const ViewTransform& view, const Shapes& mask, QImage& image, QString& reason);

    LayerOrigin m_origin;
    std::string m_reference;
    bool m_warped = false;
    std::vector<std::unique_ptr<CRasterSource>> m_sources; ///< one, or those composed
    std::unique_ptr<CComposedRaster> m_composed;           ///< borrows the sources: goes first
    std::optional<host::FileOpacity> m_opacity;            ///< of an image that is not composed
    std::unique_ptr<CRasterSource> m_mask;                 ///< borrows it; null where it is opaque
    std::optional<DisplaySettings> m_applied;
    ShownRanges m_ranges;
    std::vector<ClassColor> m_classes; ///< of the file: its classes or its colour table
    bool m_hasClassTable = false;      ///< they are its classes
    CCoordinateTransformation* m_toLonLat = nullptr; ///< owned
};

} // namespace zelto::view
