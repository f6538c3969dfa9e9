#pragma once

#include <memory>
#include <span>

class CDrawShape;
class OGRPolygon;

namespace zelto {

/// Points that the rings of an area's ellipses have together at most, but for areas of so many
/// ellipses that LEAST_STEPS of each are more.
inline constexpr int MOST_ELLIPSE_POINTS = 2'000'000;
/// Points that the ring of one ellipse has at most.
inline constexpr int MOST_RING_POINTS = 1'000'000;

/// Makes polygons of an area's shapes.
///
/// An ellipse becomes points at whole multiples of a step along x, clockwise from the top, each
/// quarter with both of its ends, so that points repeat where quarters join. The step is the
/// resolution; where it is longer than a fiftieth of the semi-axis, that is taken instead. A ring
/// that would have more points than MOST_RING_POINTS has as many steps in a quarter as fit. Where
/// all rings together would have more than MOST_ELLIPSE_POINTS, one limit is set to the steps of
/// every ellipse: the greatest with which they fit, and not less than 8 in a quarter. Ellipses
/// that need fewer keep theirs, and the order of the shapes does not matter.
class ShapePolygons {
  public:
    /// @param shapes all shapes of the area; null entries are skipped
    /// @param resolution step along x in ground units
    ShapePolygons(std::span<CDrawShape* const> shapes, double resolution);

    /// The shape as a polygon with one ring; without a ring for kinds other than rectangle,
    /// ellipse and polygon, for a polygon without vertices and for an ellipse without a positive
    /// width and height. Throws std::bad_alloc.
    std::unique_ptr<OGRPolygon> Make(const CDrawShape& shape) const;

  private:
    double m_resolution;
    int m_mostSteps; ///< in a quarter of an ellipse
};

} // namespace zelto
