#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/Point2D.h"

class OGRGeometry;
class OGRPoint;

/// Static functions on vector geometries.
class ZELTO_API COgrAlgorithm {
  public:
    COgrAlgorithm() = default;
    COgrAlgorithm(const COgrAlgorithm&) = default;
    COgrAlgorithm& operator=(const COgrAlgorithm&) = default;
    virtual ~COgrAlgorithm();

    /// Distance from `p` to the segment between `a` and `b`.
    static double DistancePointLine(const CPoint2D& p, const CPoint2D& a, const CPoint2D& b);

    /// Least distance from (x, y) to a line string or to the members of a multi line string;
    /// z is ignored. 0 for a null geometry, the largest double for every other type and for a
    /// line string with fewer than two vertices.
    static double DistanceWithPoint(const OGRGeometry* geometry, double x, double y);

    /// Whether `point` lies on the surface of `geometry`: in a polygon outside its holes, in
    /// the exterior ring of any member of a multi polygon (holes ignored), or on any member of
    /// a collection. False for null and for every other type.
    static bool IsPointOnSurface(OGRGeometry* geometry, OGRPoint* point);

    /// Diagnostic dump: writes a copy of `geometry` as the only feature of a new polygon
    /// shapefile at `path`.
    /// @return 1, whether or not it could be written.
    static int SaveGeometry(const char* path, OGRGeometry* geometry);
};
