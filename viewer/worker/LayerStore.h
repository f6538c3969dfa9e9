#pragma once

#include "viewer/model/LayerFacts.h"
#include "viewer/worker/LayerSource.h"
#include "viewer/worker/Requests.h"

#include <QImage>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace zelto::view {

/// The open images, and what is kept of each so that it need not be made again: the opened file,
/// its drawing in the last picture, the counts of its bands. All of it together stays below a
/// bound: what was seen longest ago is let go, drawings first, and made again when it is wanted.
/// The file seen last stays open whatever it takes. Lives on the worker thread alone.
class LayerStore {
  public:
    /// What is kept may take this many bytes, beside the blocks of files that GDAL keeps.
    static constexpr qint64 MOST_BYTES = qint64{256} << 20;

    /// Opens an image, in place of one that is there under its number.
    /// @param referenceLayer the layer whose reference system it is shown in
    /// @return false with the reason
    bool Open(int layer, const LayerOrigin& origin, int referenceLayer, QString& reason);
    void Close(int layer) { m_layers.erase(layer); }
    bool Has(int layer) const { return m_layers.count(layer) != 0; }
    const LayerFacts& Facts(int layer) const { return m_layers.at(layer).facts; }
    /// The image of a layer that is there, opened again where it was let go. Good until the next
    /// call.
    /// @return null with the reason where it cannot be opened again, or is another image now
    LayerSource* Find(int layer, QString& reason);

    /// Draws one of the request's layers, or answers its drawing where nothing has changed.
    /// @return Format_ARGB32; without pixels, with the reason, where the layer cannot be opened
    ///         again. A reason beside pixels tells what they lack.
    QImage Draw(const LayerDrawing& layer, const DrawRequest& request, QString& reason);
    /// What its last drawing went between, per shown band.
    const ShownRanges& Ranges(int layer) const { return m_layers.at(layer).ranges; }
    BandHistogram CountValues(int layer, int band, QString& reason);

    LayersMemory Memory() const;
    /// @param bytes for what is kept
    void SetBound(qint64 bytes);

  private:
    /// The drawing of a layer with all that it depends on.
    struct Drawing {
        ViewTransform view;
        DisplaySettings settings;
        Shapes mask;
        QImage image;
    };

    struct Kept {
        LayerOrigin origin;
        std::string reference; ///< that it was opened with
        std::unique_ptr<LayerSource> source;
        LayerFacts facts;
        ShownRanges ranges;
        std::optional<Drawing> drawing;
        std::map<int, BandHistogram> counts; ///< by band
        quint64 seen = 0;

        qint64 Bytes() const;
    };

    Kept& See(int layer);
    qint64 Bytes() const;
    /// Lets go until the bound holds.
    void Trim();
    template <typename HasIt, typename LetGo>
    void TrimBy(const HasIt& hasIt, const LetGo& letGo);

    std::map<int, Kept> m_layers;
    qint64 m_bound = MOST_BYTES;
    quint64 m_clock = 0;
};

} // namespace zelto::view
