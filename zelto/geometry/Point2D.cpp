#include "zelto/geometry/Point2D.h"

#include <cmath>

const CPoint2D& CPoint2D::operator+=(const CPoint2D& other) {
    x += other.x;
    y += other.y;
    return *this;
}

const CPoint2D& CPoint2D::operator-=(const CPoint2D& other) {
    x -= other.x;
    y -= other.y;
    return *this;
}

bool CPoint2D::operator==(const CPoint2D& other) const {
    return std::fabs(x - other.x) < GEOMETRY_EPSILON && std::fabs(y - other.y) < GEOMETRY_EPSILON;
}

double CPoint2D::length() const {
    return std::sqrt(x * x + y * y);
}

double CPoint2D::distance(CPoint2D other) const {
    return (*this - other).length();
}
