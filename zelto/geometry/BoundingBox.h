#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/Point2D.h"

/// An axis-parallel rectangle in ground units, y pointing up: well-formed when
/// left ≤ right and bottom ≤ top. Nothing here orders or repairs the sides: constructors and
/// setters store what they are given. All comparisons include the edges.
class ZELTO_API CBoundingBox {
  public:
    double m_left = 0.0;   ///< least x
    double m_top = 0.0;    ///< greatest y
    double m_right = 0.0;  ///< greatest x
    double m_bottom = 0.0; ///< least y

    /// The all-zero box. It is not a marker for "empty": combining with it includes the origin.
    CBoundingBox() = default;
    CBoundingBox(CPoint2D topLeft, CPoint2D bottomRight);
    CBoundingBox(double left, double top, double right, double bottom);

    double GetLeft() const { return m_left; }
    double GetTop() const { return m_top; }
    double GetRight() const { return m_right; }
    double GetBottom() const { return m_bottom; }
    void SetLeft(double left) { m_left = left; }
    void SetTop(double top) { m_top = top; }
    void SetRight(double right) { m_right = right; }
    void SetBottom(double bottom) { m_bottom = bottom; }
    void SetBoundingBox(CPoint2D topLeft, CPoint2D bottomRight);
    void SetBoundingBox(double left, double top, double right, double bottom);

    /// |right − left|, also for an inverted box.
    double GetWidth() const;
    /// |top − bottom|, also for an inverted box.
    double GetHeight() const;
    CPoint2D GetCentroid() const;
    CPoint2D TopLeft() const { return {m_left, m_top}; }
    CPoint2D TopRight() const { return {m_right, m_top}; }
    CPoint2D BottomLeft() const { return {m_left, m_bottom}; }
    CPoint2D BottomRight() const { return {m_right, m_bottom}; }

    /// Moves the box by (dx, dy).
    void OffsetBoundingBox(double dx, double dy);

    /// Grows the box to include `p`, at most one side per axis: a box that starts inverted
    /// moves only its left or only its right side. Seed the box with the first vertex.
    void Recompute(CPoint2D p);

    /// Grows the box to include `*box`; null changes nothing.
    void Combine(CBoundingBox* box);

    /// Clips this box to its overlap with `*box`.
    /// @return false, with this box unchanged, when they are disjoint and for null.
    bool Intersect(CBoundingBox* box);

    /// Whether the boxes share at least a point; false for null.
    bool IsIntersect(CBoundingBox* box) const;

    /// Whether `*box` lies inside this box; false for null.
    bool IsContain(CBoundingBox* box) const;
    bool IsContain(CPoint2D p) const;
    bool IsContain(double x, double y) const;
};
