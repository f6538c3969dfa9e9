#include "zelto/aoi/internal/VertexList.h"

#include <algorithm>

namespace zelto {

int AppendVertex(CDrawShape& shape, CPoint2D p) {
    shape.m_vertices.push_back(p);
    if (shape.m_vertices.size() == 1)
        shape.m_extent.SetBoundingBox(p, p);
    else
        shape.m_extent.Recompute(p);
    return static_cast<int>(shape.m_vertices.size());
}

int InsertVertexAt(CDrawShape& shape, CPoint2D p, int index) {
    const int count = static_cast<int>(shape.m_vertices.size());
    shape.m_vertices.insert(shape.m_vertices.begin() + std::clamp(index, 0, count), p);
    return count + 1;
}

int RemoveEqualVertex(CDrawShape& shape, CPoint2D p) {
    auto& vertices = shape.m_vertices;
    auto kept = vertices.begin();
    for (const CPoint2D& vertex : vertices)
        if (vertex != p)
            *kept++ = vertex;
    // Exactly one place goes, however many vertices matched: the rest of the tail keeps what it
    // held before the others moved forward.
    if (kept != vertices.end())
        vertices.erase(kept);
    return static_cast<int>(vertices.size());
}

void SetExtentFromVertices(CDrawShape& shape) {
    shape.m_extent = CBoundingBox();
    shape.CDrawShape::RecomputeExtent();
}

} // namespace zelto
