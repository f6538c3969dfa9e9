#pragma once

#include "zelto/Export.h"

class OGRCoordinateTransformation;
class OGRSpatialReference;

/// Transforms coordinates from one reference system to another. x is east or longitude, y is
/// north or latitude, whatever axis order the systems define; units are those of the systems.
///
/// Seven parameters are always in this order: shift x, y, z in metres, rotation x, y, z in
/// arc-seconds, scale in parts per million. In a transformation they are those of the
/// position-vector rotation (EPSG method 9606) from a datum to WGS 84; parameters published for
/// the coordinate-frame rotation (9607) are the same with the rotations' signs changed.
class ZELTO_API CCoordinateTransformation {
  public:
    CCoordinateTransformation(const CCoordinateTransformation&) = delete;
    CCoordinateTransformation& operator=(const CCoordinateTransformation&) = delete;

    /// Connects two systems, each in any form GDAL's user-input parser takes, the way the
    /// projection library knows for their datums.
    /// @param sevenParams seven values that are stored, rotations in radians, and not applied;
    ///        null: zeros
    /// @return null when a text cannot be read, no transformation is known or only one of the
    ///         systems counts heights alone; CGISDataSource::GetLastErrorText() then tells why.
    ///         Else an object to be freed with DestroyCoordinateTransformation()
    static CCoordinateTransformation*
    CreateCoordinateTransformation(const char* src, const char* dst, double* sevenParams);

    /// Connects two systems by way of WGS 84 with the given parameters, also where the systems
    /// carry authority codes for which other ways are known. A system that is WGS 84 itself
    /// is not shifted.
    /// @param srcToWgs84,dstToWgs84 seven parameters each; null: zeros, a change of spheroid
    ///        alone
    /// @return as the other overload
    static CCoordinateTransformation* CreateCoordinateTransformation(const char* src,
                                                                     const char* dst,
                                                                     double* srcToWgs84,
                                                                     double* dstToWgs84);

    /// Transforms `count` points in place. A point without an answer becomes infinite.
    /// @param z heights in metres, which take part in a datum shift; may be null
    /// @param success receives 1 or 0 for every point; may be null
    /// @return true when at least one point has an answer (or there are none to transform);
    ///         false for null x or y
    bool Transform(int count, double* x, double* y, double* z, int* success);

    /// Frees a transformation; null is allowed.
    static void DestroyCoordinateTransformation(CCoordinateTransformation* transformation);

    /// The stored parameters, rotations in radians.
    const double* GetSevenParameters() const { return m_sevenParameters; }

  private:
    static CCoordinateTransformation* Connect(const OGRSpatialReference& source,
                                              const OGRSpatialReference& target);
    explicit CCoordinateTransformation(OGRCoordinateTransformation* transformation)
        : m_transformation(transformation) {}
    ~CCoordinateTransformation();

    OGRCoordinateTransformation* m_transformation = nullptr; ///< owned
    double m_sevenParameters[7] = {};
};
