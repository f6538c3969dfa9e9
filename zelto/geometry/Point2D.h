#pragma once

#include "zelto/Export.h"

/// Absolute tolerance of the geometry classes, in ground units: 2^-23. It is never scaled by
/// the size of the coordinates.
inline constexpr double GEOMETRY_EPSILON = 1.1920928955078125e-7;

/// A point or vector in ground units; y points up.
class ZELTO_API CPoint2D {
  public:
    double x = 0.0;
    double y = 0.0;

    CPoint2D() = default;
    CPoint2D(double px, double py) : x(px), y(py) {}

    CPoint2D operator+(const CPoint2D& other) const { return {x + other.x, y + other.y}; }
    CPoint2D operator-(const CPoint2D& other) const { return {x - other.x, y - other.y}; }
    const CPoint2D& operator+=(const CPoint2D& other);
    const CPoint2D& operator-=(const CPoint2D& other);

    CPoint2D operator*(const double& factor) const { return {x * factor, y * factor}; }
    /// A zero divisor is not guarded against: the result is infinite or not a number.
    CPoint2D operator/(const double& divisor) const { return {x / divisor, y / divisor}; }

    /// z component of the cross product: positive when `other` lies counter-clockwise of this
    /// vector.
    double operator^(const CPoint2D& other) const { return x * other.y - y * other.x; }

    /// True when both coordinates differ by less than GEOMETRY_EPSILON.
    bool operator==(const CPoint2D& other) const;
    bool operator!=(const CPoint2D& other) const { return !(*this == other); }

    /// Length of the vector from the origin.
    double length() const;
    /// Euclidean distance to `other`.
    double distance(CPoint2D other) const;
};
