#pragma once

#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/Point2D.h"

#include <cmath>

/// @file
/// The comparisons that decide hit tests, each written once so that the tests of single points
/// and of whole rows answer alike to the last bit.

namespace zelto {

/// Whether an edge whose ends lie `a` and `b` above the row crosses that row. Horizontal edges
/// never do; an end on the row counts as below it.
inline bool EdgeCrossesRow(double a, double b) {
    return (b > 0 && a <= 0) || (a > 0 && b <= 0);
}

/// Whether an edge from (xi, row + a) to (xj, row + b) crosses the row strictly to the right of
/// `x`. Only for edges that cross the row.
inline bool CrossesRightOf(double xi, double a, double xj, double b, double x) {
    return (a * (xj - x) - (xi - x) * b) / (a - b) > 0;
}

/// An ellipse parallel to the axes.
struct EllipseAxes {
    double centreX = 0.0;
    double centreY = 0.0;
    double a = 0.0; ///< semi-axis along x
    double b = 0.0; ///< semi-axis along y

    EllipseAxes(const CPoint2D& topLeft, double width, double height)
        : centreX(topLeft.x + width / 2),
          centreY(topLeft.y - height / 2),
          a(width / 2),
          b(height / 2) {}

    /// Whether the point lies in the ellipse or on its boundary.
    bool Holds(double x, double y) const {
        const double dx = x - centreX;
        const double dy = y - centreY;
        return dy * dy / (b * b) + dx * dx / (a * a) <= 1;
    }
};

/// Whether both coordinates differ by at most the tolerance.
inline bool IsWithin(const CPoint2D& p, const CPoint2D& q, double tolerance) {
    return std::fabs(p.x - q.x) <= tolerance && std::fabs(p.y - q.y) <= tolerance;
}

/// Whether the boxes have no point in common. Unlike the negation of a containment, this is
/// false as soon as a side is not a number.
inline bool AreDisjoint(const CBoundingBox& a, const CBoundingBox& b) {
    return a.m_left > b.m_right || b.m_bottom > a.m_top || b.m_left > a.m_right ||
           a.m_bottom > b.m_top;
}

} // namespace zelto
