#include "zelto/aoi/internal/VertexList.h"

#include "zelto/baselib/internal/NoThrow.h"

#include <algorithm>

namespace zelto {

bool PushVertex(CDrawShape& shape, CPoint2D p) {
    return NoThrow(false, [&] {
        shape.m_vertices.push_back(p);
        return true;
    });
}

int AppendVertex(CDrawShape& shape, CPoint2D p) {
    if (!PushVertex(shape, p))
        return static_cast<int>(shape.m_vertices.size());
    if (shape.m_vertices.size() == 1)
        shape.m_extent.SetBoundingBox(p, p);
    else
        shape.m_extent.Recompute(p);
    return static_cast<int>(shape.m_vertices.size());
}

int InsertVertexAt(CDrawShape& shape, CPoint2D p, int index) {
    const int count = static_cast<int>(shape.m_vertices.size());
    if (!PushVertex(shape, p))
        return count;
    std::rotate(shape.m_vertices.begin() + std::clamp(index, 0, count), shape.m_vertices.end() - 1,
                shape.m_vertices.end());
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
