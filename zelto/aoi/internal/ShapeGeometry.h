#pragma once

class CDrawShape;
class OGRPolygon;

namespace zelto {

/// The shape as a polygon with one ring, owned by the caller; without a ring for kinds other
/// than rectangle, ellipse and polygon, for a polygon without vertices and for an ellipse
/// without a positive width and height.
///
/// An ellipse becomes points at whole multiples of a step along x, clockwise from the top, each
/// quarter with both of its ends, so that points repeat where quarters join.
/// @param resolution step along x in ground units; where it is longer than a fiftieth of the
///        semi-axis, that is taken instead, and where a quarter would have more than a million
///        steps, a millionth
OGRPolygon* MakePolygon(const CDrawShape& shape, double resolution);

} // namespace zelto
