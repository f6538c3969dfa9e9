#pragma once

#include "zelto/aoi/DrawShape.h"

#include "viewer/model/ViewTransform.h"

#include <QPainterPath>
#include <QPointF>
#include <memory>
#include <vector>

namespace zelto::view {

/// Shapes are never changed once made: an edit makes a new one, so that requests and the undo
/// history can hold the old.
using ShapePointer = std::shared_ptr<const CDrawShape>;

/// @param points corners that lie opposite for rectangles and ellipses, else the vertices
/// @return null when these make no such shape
ShapePointer MakeShape(ShapeKind kind, const std::vector<QPointF>& points);
/// Takes ownership; null stays null.
ShapePointer CopyOf(const CDrawShape* shape);

/// Whether the shape covers ground, so that it can mark pixels.
bool IsArea(const CDrawShape& shape);

/// Where the shape can be taken hold of: its vertices, or eight handles clockwise from the
/// top-left corner.
std::vector<QPointF> HandlesOf(const CDrawShape& shape);
/// @return the handle within `tolerance`, −1 without
int HandleAt(const CDrawShape& shape, QPointF ground, double tolerance);
/// Whether the point lies in the shape, or on it where it has no inside.
bool Holds(const CDrawShape& shape, QPointF ground, double tolerance);

ShapePointer MovedBy(const CDrawShape& shape, QPointF offset);
/// The shape itself where the handle cannot stand there.
ShapePointer WithHandleAt(const CDrawShape& shape, int handle, QPointF ground);
/// @return null where no side of a polygon or line passes within the tolerance
ShapePointer WithVertexInserted(const CDrawShape& shape, QPointF ground, double tolerance);
/// @return null where too few vertices would be left
ShapePointer WithVertexRemoved(const CDrawShape& shape, int vertex);

/// The shape in the pixels of a view.
QPainterPath OutlineOf(const CDrawShape& shape, const ViewTransform& view);

} // namespace zelto::view
