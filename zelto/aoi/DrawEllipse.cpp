#include "zelto/aoi/DrawEllipse.h"

#include "zelto/aoi/internal/HitPredicates.h"

#include <algorithm>
#include <cmath>

namespace {

/// Segments narrower than this along an axis count as parallel to the other one.
constexpr double AXIS_PARALLEL = 1e-8;

bool IsStrictlyInside(const zelto::EllipseAxes& e, const CPoint2D& p) {
    const double dx = p.x - e.centreX;
    const double dy = p.y - e.centreY;
    return dx * dx / (e.a * e.a) + dy * dy / (e.b * e.b) < 1;
}

/// Whether the line y = kx + m through `p` and `q` meets the ellipse between them at the root
/// with the larger x. Only that root is looked at: with both ends outside, a chord has both of
/// its roots between the ends or none.
bool SlantedLineCrosses(const zelto::EllipseAxes& e, const CPoint2D& p, const CPoint2D& q) {
    const double k = (p.y - q.y) / (p.x - q.x);
    const double m = q.y - k * q.x;
    const double a2 = e.a * e.a;
    const double b2 = e.b * e.b;
    const double fromCentre = m - e.centreY;
    const double A = b2 + a2 * (k * k);
    const double B = 2 * a2 * k * fromCentre - 2 * b2 * e.centreX;
    const double C = b2 * (e.centreX * e.centreX) + a2 * (fromCentre * fromCentre) - a2 * b2;
    const double discriminant = B * B - 4 * A * C;
    if (discriminant <= 0)
        return false;
    const double x = (std::sqrt(discriminant) - B) / (2 * A);
    return std::min(p.x, q.x) <= x && x <= std::max(p.x, q.x);
}

} // namespace

CDrawEllipse::CDrawEllipse() {
    m_shapeKind = SHAPE_ELLIPSE;
}

CDrawEllipse::~CDrawEllipse() = default;

SpatialTopoRelation CDrawEllipse::TopoRelationWithPoint(CPoint2D p, double tolerance, int mode) {
    if (mode == 0)
        return CDrawRectangle::TopoRelationWithPoint(p, tolerance, mode);
    if (!m_extent.IsContain(p))
        return TOPO_DISJOINT;
    const zelto::EllipseAxes axes(m_topLeft, m_width, m_height);
    return axes.Holds(p.x, p.y) ? TOPO_CONTAIN : TOPO_DISJOINT;
}

SpatialTopoRelation CDrawEllipse::TopoRelationWithBoundingbox(CBoundingBox* box) {
    if (box == nullptr || zelto::AreDisjoint(*box, m_extent))
        return TOPO_DISJOINT;
    if (IsIntersect(box->TopLeft(), box->BottomLeft()) ||
        IsIntersect(box->TopLeft(), box->TopRight()) ||
        IsIntersect(box->TopRight(), box->BottomRight()) ||
        IsIntersect(box->BottomLeft(), box->BottomRight()))
        return TOPO_INTERSECT;
    const zelto::EllipseAxes axes(m_topLeft, m_width, m_height);
    if (axes.Holds(box->m_left, box->m_top))
        return TOPO_CONTAIN;
    return box->IsContain(axes.centreX, axes.centreY) ? TOPO_INTERSECT : TOPO_DISJOINT;
}

bool CDrawEllipse::IsIntersect(CPoint2D p, CPoint2D q) const {
    const CBoundingBox segment(std::min(p.x, q.x), std::max(p.y, q.y), std::max(p.x, q.x),
                               std::min(p.y, q.y));
    if (zelto::AreDisjoint(segment, m_extent))
        return false;
    const zelto::EllipseAxes e(m_topLeft, m_width, m_height);
    const bool pInside = IsStrictlyInside(e, p);
    const bool qInside = IsStrictlyInside(e, q);
    if (pInside || qInside)
        return pInside != qInside;
    const auto [left, top] = m_topLeft;
    if (std::fabs(p.x - q.x) < AXIS_PARALLEL)
        return !(left >= p.x || p.x >= left + m_width) &&
               (q.y - e.centreY) * (p.y - e.centreY) <= 0;
    if (std::fabs(p.y - q.y) < AXIS_PARALLEL)
        return !(p.y >= top || top - m_height >= p.y) && (q.x - e.centreX) * (p.x - e.centreX) <= 0;
    return SlantedLineCrosses(e, p, q);
}
