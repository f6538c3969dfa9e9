#pragma once

#include "zelto/geometry/BoundingBox.h"

#include "viewer/model/DisplaySettings.h"

#include <QMetaType>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace zelto::view {

/// What a layer is made from: one file, or one band of each of three that are shown together.
struct LayerOrigin {
    QStringList paths;              ///< one, or red, green and blue
    std::array<int, 3> bands = {0}; ///< of three files, counted from 0

    bool IsComposed() const { return paths.size() == 3; }
    QString Path() const { return paths.value(0); }
    /// The name that people know it by: that of the file, without its folder.
    QString Name() const;
    bool operator==(const LayerOrigin&) const = default;
};

struct BandFacts {
    QString type; ///< GDAL's name
    bool hasColorTable = false;
};

/// What the interface thread knows of an open image. The thread that owns the image makes it
/// once, so that nothing here asks the engine.
struct LayerFacts {
    LayerOrigin origin;
    int width = 0;
    int height = 0;
    CBoundingBox extent;
    std::array<double, 6> geoTransform{}; ///< image to ground, GDAL's order
    std::array<double, 6> inverse{};      ///< ground to image
    std::vector<BandFacts> bands;
    std::string wkt;         ///< of what is shown: the first layer's where the image was warped
    QString coordinateName;  ///< readable; empty without a reference system
    QString coordinateWords; ///< the reference system explained line by line
    bool geographic = false;
    bool warped = false;             ///< shown in another reference system than its own
    bool lacksPyramid = false;       ///< drawing all of it reads most of a large file
    QStringList subdatasets;         ///< images of the container whose first one is shown
    std::vector<ClassColor> classes; ///< or the entries of the first band's colour table
    DisplaySettings initial;         ///< what the engine would show

    double PixelSize() const;
    /// Position in the image's pixels, with fractions.
    QPointF ToImage(QPointF ground) const;
};

} // namespace zelto::view

Q_DECLARE_METATYPE(zelto::view::LayerFacts)
