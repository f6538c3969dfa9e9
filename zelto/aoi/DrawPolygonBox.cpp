#include "zelto/aoi/DrawPolygon.h"

#include <algorithm>
#include <array>

namespace {

struct Segment {
    CPoint2D start;
    CPoint2D end;

    /// Positive when `p` lies to the left of the segment's direction, 0 on its line.
    double Orientation(const CPoint2D& p) const { return (end - start) ^ (p - start); }

    /// Whether `p` lies in the least box around the segment.
    bool BoxHolds(const CPoint2D& p) const {
        return std::min(start.x, end.x) <= p.x && p.x <= std::max(start.x, end.x) &&
               std::min(start.y, end.y) <= p.y && p.y <= std::max(start.y, end.y);
    }
};

bool AreOpposite(double o1, double o2) {
    return (o1 > 0 && o2 < 0) || (o1 < 0 && o2 > 0);
}

/// Whether the segments have a point in common.
bool Meet(const Segment& ab, const Segment& cd) {
    const double o1 = cd.Orientation(ab.start);
    const double o2 = cd.Orientation(ab.end);
    const double o3 = ab.Orientation(cd.start);
    const double o4 = ab.Orientation(cd.end);
    if (AreOpposite(o1, o2) && AreOpposite(o3, o4))
        return true;
    return (o1 == 0 && cd.BoxHolds(ab.start)) || (o2 == 0 && cd.BoxHolds(ab.end)) ||
           (o3 == 0 && ab.BoxHolds(cd.start)) || (o4 == 0 && ab.BoxHolds(cd.end));
}

bool IsCorner(const CBoundingBox& box, const CPoint2D& p) {
    return p == box.TopLeft() || p == box.TopRight() || p == box.BottomLeft() ||
           p == box.BottomRight();
}

bool CoincidesWith(const std::vector<CPoint2D>& vertices, const CBoundingBox& box) {
    return vertices.size() == 4 && std::all_of(vertices.begin(), vertices.end(),
                                               [&](const CPoint2D& p) { return IsCorner(box, p); });
}

/// Whether any edge of the closed polygon meets a side of the box.
bool OutlineMeets(const std::vector<CPoint2D>& vertices, const CBoundingBox& box) {
    const std::array<Segment, 4> sides = {{{box.TopRight(), box.TopLeft()},
                                           {box.BottomRight(), box.TopRight()},
                                           {box.BottomRight(), box.BottomLeft()},
                                           {box.BottomLeft(), box.TopLeft()}}};
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const Segment edge{vertices[i], vertices[i + 1 < vertices.size() ? i + 1 : 0]};
        if (std::any_of(sides.begin(), sides.end(),
                        [&](const Segment& side) { return Meet(edge, side); }))
            return true;
    }
    return false;
}

} // namespace

SpatialTopoRelation CDrawPolygon::TopoRelationWithBoundingbox(CBoundingBox* box) {
    if (box == nullptr || m_vertices.size() < 3)
        return TOPO_DISJOINT;
    if (CoincidesWith(m_vertices, *box))
        return TOPO_TOUCH;
    if (OutlineMeets(m_vertices, *box))
        return TOPO_INTERSECT;
    CPoint2D corner = box->TopLeft();
    if (IsPointIn(&corner))
        return TOPO_CONTAIN;
    return box->IsContain(m_vertices.front()) ? TOPO_INTERSECT : TOPO_DISJOINT;
}
