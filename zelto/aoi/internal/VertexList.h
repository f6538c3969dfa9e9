#pragma once

#include "zelto/aoi/DrawShape.h"

/// @file
/// Vertex editing that lines and polygons share; see CDrawMultiLine for what each does.

namespace zelto {

/// Adds a vertex to the list alone.
/// @return false without memory; the list is then as before and the reason in LastError()
bool PushVertex(CDrawShape& shape, CPoint2D p);
/// Appends a vertex: the first one becomes the extent, further ones widen it.
int AppendVertex(CDrawShape& shape, CPoint2D p);
int InsertVertexAt(CDrawShape& shape, CPoint2D p, int index);
int RemoveEqualVertex(CDrawShape& shape, CPoint2D p);
/// Sets the extent from the vertices; all zero without any.
void SetExtentFromVertices(CDrawShape& shape);

} // namespace zelto
