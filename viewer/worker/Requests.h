#pragma once

#include "zelto/aoi/DrawShape.h"

#include "viewer/model/DisplaySettings.h"
#include "viewer/model/ViewTransform.h"

#include <QImage>
#include <QMetaType>
#include <QPointF>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

namespace zelto::view {

/// Shapes that nobody changes any more: the interface edits copies, so that requests and the undo
/// history share them.
using Shapes = std::vector<std::shared_ptr<const CDrawShape>>;

/// A layer as it is wanted in a picture.
struct LayerDrawing {
    int layer = 0;
    DisplaySettings settings;
};

/// A picture that the interface wants.
struct DrawRequest {
    ViewTransform view;
    std::vector<LayerDrawing> layers; ///< from the lowest to the topmost
    Shapes mask;                      ///< pixels outside are left out; empty: none
    quint64 revision = 0;             ///< tells answers apart
    bool isKept = false;              ///< the drawings of its layers are kept for the next picture
};

/// The answer: premultiplied, transparent where no layer is.
struct Picture {
    QImage image;
    ViewTransform view;
    quint64 revision = 0;
    double milliseconds = 0.0; ///< that the drawing took
};

/// The values that a layer's shown bands show darkest and brightest.
using ShownRanges = std::vector<Bounds>;

/// What stands under the pointer.
struct Reading {
    int layer = 0;
    QPointF ground;
    int column = 0;
    int row = 0;
    bool isInside = false;
    std::vector<double> values; ///< one per band; empty where they cannot be read
    QString className;
    std::optional<QPointF> lonLat; ///< degrees; none without a reference system
};

/// How often the values of a band occur in a sample of it, spread evenly over its range.
struct BandHistogram {
    int band = 0;
    Bounds range;
    std::vector<int> counts;
    bool whole = false; ///< the values are whole numbers, one bucket each
};

/// What is kept in memory for all layers together.
struct LayersMemory {
    qint64 bytes = 0;
    qint64 bound = 0;
    int closedFiles = 0; ///< layers whose files are opened again when they are wanted
    bool operator==(const LayersMemory&) const = default;
};

} // namespace zelto::view

Q_DECLARE_METATYPE(zelto::view::Picture)
Q_DECLARE_METATYPE(zelto::view::Reading)
Q_DECLARE_METATYPE(std::vector<zelto::view::BandHistogram>)
Q_DECLARE_METATYPE(zelto::view::ShownRanges)
Q_DECLARE_METATYPE(zelto::view::LayersMemory)
