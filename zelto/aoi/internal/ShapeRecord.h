#pragma once

#include "zelto/aoi/DrawShape.h"
#include "zelto/baselib/internal/BinaryFile.h"

#include <memory>

/// @file
/// The record of a draw shape in files of areas of interest and of classification samples: one
/// byte of ShapeKind, then for rectangles and ellipses top-left x and y, width and height as
/// doubles, for polygons the number of vertices as int32 and x and y of each as doubles, and
/// nothing for every other kind.

namespace zelto {

/// What the two kinds of file do differently with the same record.
enum class ShapeRecordUse {
    /// Rectangles and ellipses are drawn anew from their corners: a negative width or height
    /// becomes positive, others stay as they are. The vertices of a polygon with fewer than
    /// three are not read, so that what follows is read out of step.
    AREA_OF_INTEREST,
    /// Every number is kept as it is, and polygons may have any number of vertices.
    SAMPLE,
};

/// Reads one record.
/// @return the shape, complete and with its extent; null for a kind that is no rectangle,
///         ellipse or polygon, for a polygon left out, and when the file ends within the
///         record, after which `reader` is no longer good
std::unique_ptr<CDrawShape> ReadShapeRecord(BinaryReader& reader, ShapeRecordUse use);

/// Writes one record; null is written as a shape without a kind.
void WriteShapeRecord(BinaryWriter& writer, const CDrawShape* shape);

} // namespace zelto
