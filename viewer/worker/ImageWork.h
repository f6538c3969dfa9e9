#pragma once

#include "zelto/datasource/DataProgress.h"
#include "zelto/geometry/BoundingBox.h"

#include <QImage>
#include <QString>
#include <optional>
#include <string>

namespace zelto::view {

// Work on whole files, for the thread of long works. Each answers why it failed; an empty text
// means that it did not. The thread also tells what is thrown.

/// Builds the pyramid of an image beside it, or inside where the format keeps it there.
/// @param resampling GDAL's name
QString BuildPyramid(const QString& path, const QString& resampling, CDataProgress& progress);

/// Copies an image into the format of the target's extension.
QString CopyImage(const QString& path, const QString& target, CDataProgress& progress);

/// Writes a polygon for every area of equal pixels into a new vector file of the target's
/// extension.
/// @param band from 1
/// @param eight pixels that touch at a corner belong together
QString MakePolygons(const QString& path, const QString& target, int band, bool eight,
                     CDataProgress& progress);

/// Where an image is to lie.
struct Placement {
    std::optional<CBoundingBox> box; ///< of the whole image, north up; none: as it is
    QString srs;                     ///< any form that GDAL reads; empty: as it is
};

/// Writes the place into the file.
QString PlaceImage(const QString& path, const Placement& placement);

/// Writes a picture as the extension says: .png, or .tif with its place on the ground.
QString WritePicture(const QString& path, const QImage& picture, const CBoundingBox& box,
                     const std::string& reference);

} // namespace zelto::view
