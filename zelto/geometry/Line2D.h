#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/Point2D.h"

/// A segment between two ground points; the same object also serves as the infinite line
/// through both. All comparisons use GEOMETRY_EPSILON ("eps" below) unless a tolerance is
/// passed.
class ZELTO_API CLine2D {
  public:
    CPoint2D m_start;
    CPoint2D m_end;

    CLine2D(const CPoint2D& start, const CPoint2D& end) : m_start(start), m_end(end) {}
    CLine2D(const CLine2D&) = default;
    CLine2D& operator=(const CLine2D&) = default;
    virtual ~CLine2D();

    /// end − start
    CPoint2D getVector() const { return m_end - m_start; }
    double length() const { return getVector().length(); }
    CPoint2D midPoint() const { return m_start + getVector() * 0.5; }

    /// Unit normal: the direction turned a quarter counter-clockwise. A segment no longer than
    /// eps in both directions has the zero vector.
    CPoint2D normal() const;

    /// Intersection of the two infinite lines; (0, 0) when they are parallel within eps, which
    /// callers cannot tell from an intersection at the origin.
    CPoint2D intersectInfinite(const CLine2D& other) const;

    /// Intersection of the two segments; (0, 0) when there is none. This segment is tested by
    /// the parameter along it, the other one by the distance from its midpoint, both widened
    /// by eps.
    CPoint2D intersectSegment(const CLine2D& other) const;

    /// Whether `p` lies on the infinite line: within eps of an end point, or at most
    /// `tolerance` away from an axis-parallel line, or nearer than `tolerance` to any other.
    bool isPointOnInfiniteLine(const CPoint2D& p, double tolerance) const;

    /// Whether `p` lies on the infinite line and within the segment's range. The y range is
    /// tested with its bounds exchanged, so that a positive tolerance always answers false and
    /// tolerance 0 answers true on horizontal segments only; hosts rely on this answer.
    bool isPointWithin(const CPoint2D& p, double tolerance) const;
};
