#pragma once

/// @file
/// Enumerations of vector data. Geometry and field types carry OGR's own codes and pass to it
/// unchanged; a code not named here may be used as well.

/// File formats that vector data can be written to.
enum VectorDataFormat : int {
    VDF_SHAPEFILE = 1, ///< the driver "ESRI Shapefile"
    VDF_AOI = 2,       ///< the engine's own file of areas of interest
};

enum VectorGeometryType : int {
    VGT_Unknown = 0,
    VGT_Point = 1,
    VGT_LineString = 2,
    VGT_Polygon = 3,
    VGT_MultiPoint = 4,
    VGT_MultiLineString = 5,
    VGT_MultiPolygon = 6,
    VGT_GeometryCollection = 7,
    VGT_None = 100, ///< a layer without geometries
};

enum VectorFieldType : int {
    VFT_Integer = 0,
    VFT_IntegerList = 1,
    VFT_Real = 2,
    VFT_RealList = 3,
    VFT_String = 4,
    VFT_StringList = 5,
    VFT_Binary = 8,
    VFT_Date = 9,
    VFT_Time = 10,
    VFT_DateTime = 11,
    VFT_Integer64 = 12,
    VFT_Integer64List = 13,
};
