#include "zelto/geometry/Line2D.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double EPS = GEOMETRY_EPSILON;

double Dot(const CPoint2D& a, const CPoint2D& b) {
    return a.x * b.x + a.y * b.y;
}

/// Position of the intersection along `line`, in lengths of `line`.
/// @return false when the lines are parallel within EPS
bool IntersectionParameter(const CLine2D& line, const CLine2D& other, double& t) {
    const CPoint2D u = line.getVector();
    const CPoint2D v = other.getVector();
    const double d = u.x * v.y - u.y * v.x;
    if (std::fabs(d) <= EPS)
        return false;
    const CPoint2D between = line.m_start - other.m_start;
    t = (between.y * v.x - between.x * v.y) / d;
    return true;
}

} // namespace

CLine2D::~CLine2D() = default;

CPoint2D CLine2D::normal() const {
    const CPoint2D v = getVector();
    const bool steep = std::fabs(v.x) <= EPS;
    const bool flat = std::fabs(v.y) <= EPS;
    const CPoint2D n = steep ? CPoint2D(-v.y, 0.0) : CPoint2D(flat ? 0.0 : -v.y, v.x);
    const double length = n.length();
    return length > EPS ? n / length : n;
}

CPoint2D CLine2D::intersectInfinite(const CLine2D& other) const {
    double t = 0.0;
    if (!IntersectionParameter(*this, other, t))
        return {};
    return m_start + getVector() * t;
}

CPoint2D CLine2D::intersectSegment(const CLine2D& other) const {
    double t = 0.0;
    if (!IntersectionParameter(*this, other, t))
        return {};
    if (!(t >= -EPS && t <= 1.0 + EPS))
        return {};
    const CPoint2D p = m_start + getVector() * t;
    if (p.distance(other.midPoint()) / other.length() > 0.5 + EPS)
        return {};
    return p;
}

bool CLine2D::isPointOnInfiniteLine(const CPoint2D& p, double tolerance) const {
    if (p == m_start || p == m_end)
        return true;
    if (std::fabs(m_start.x - m_end.x) <= EPS)
        return std::fabs(p.x - m_start.x) <= tolerance;
    if (std::fabs(m_start.y - m_end.y) <= EPS)
        return std::fabs(p.y - m_start.y) <= tolerance;
    const CPoint2D u = getVector() / length();
    const double s = Dot(p - m_start, u);
    const CPoint2D foot = m_start + u * s;
    // Strict here and inclusive above: oblique lines are a little harder to hit.
    return p.distance(foot) < tolerance;
}

bool CLine2D::isPointWithin(const CPoint2D& p, double tolerance) const {
    if (!isPointOnInfiniteLine(p, tolerance))
        return false;
    const auto [xMin, xMax] = std::minmax(m_start.x, m_end.x);
    const auto [yMin, yMax] = std::minmax(m_start.y, m_end.y);
    return p.x >= xMin - tolerance && p.x <= xMax + tolerance && p.y >= yMax + tolerance &&
           p.y <= yMin - tolerance;
}
