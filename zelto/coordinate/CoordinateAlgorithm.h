#pragma once

#include "zelto/Export.h"

#include <string>

/// Static operations on spatial-reference texts. It has no state and no instances.
///
/// A text is anything GDAL's user-input parser takes: WKT of any dialect, "EPSG:4326", a PROJ
/// string, the name of a file that holds one. The vertical systems of projection files
/// ("VERTCS[…]") count as valid too. Null, empty and unreadable texts give false or an empty
/// text; nothing is logged.
class ZELTO_API CCoordinateAlgorithm {
  public:
    /// Whether the text can be read.
    static bool IsValidCoordinate(const char* srs);

    /// Whether both texts can be read and describe the same system. The order of the axes and
    /// the dialect do not count, so that a system read back from a file stays the same.
    static bool IsSameCoordinate(const char* srsA, const char* srsB);

    static bool IsProjected(const char* srs);
    static bool IsGeographic(const char* srs);

    /// Readable summary, lines ended by CR LF: name, datum, spheroid with its axes and inverse
    /// flattening, angular unit, prime meridian and, of a projected system, the geographic
    /// system and the projection. "Unknown", without a line end, for every other kind.
    static std::string GetCoordinateInfoString(const char* srs);

    /// First line of a projection file, without its line end (LF or CR LF) and unchecked; empty
    /// when the file cannot be read.
    static std::string GetWKTFromPrjFile(const wchar_t* path);

    /// Name of the system, chosen by the keyword that the text itself contains, looked for in
    /// the order PROJCS, GEOGCS, VERTCS. "Unknow" for a readable text without one of them, such
    /// as an EPSG code.
    static std::string GetCoordinateName(const char* srs);

    /// Datum of a text that contains GEOGCS, else of one that contains VERTCS; otherwise empty.
    static std::string GetDatum(const char* srs);

    /// Name of the unit: linear for a text that contains PROJCS, else angular for GEOGCS, else
    /// linear for VERTCS.
    /// @param wkt well-known text only
    static std::string GetUnit(const char* wkt);

    /// WKT of the geographic system that the text describes or is built on.
    static std::string CopyGeogCSFrom(const char* srs);

    /// WKT of a Gauss-Kruger system on the geographic system of `srs`: transverse Mercator with
    /// scale 1, false easting 500000 m without a zone prefix, false northing 0, metres. The
    /// geographic system of a projected, compound or three-dimensional text is kept whole, with
    /// the parameters of its datum shift. Where there is none (geocentric, vertical and local
    /// systems) the result is empty and CGISDataSource::GetLastErrorText() says why.
    ///
    /// Its name starts with the geographic system's name as it stands in a WKT text, what
    /// precedes and includes "GCS_" left out, and goes on, with the central meridian in degrees
    /// of at most three characters, as "_GK_CM_117E" or "_3_Degree_GK_CM_117E". The projection
    /// is written as "Gauss_Kruger".
    /// @param zoneWidth 6: central meridian 6 · zone − 3; 3: central meridian 3 · zone; any
    ///        other: central meridian 0 and the bare name
    static std::string NewChinaProjCS(const char* srs, int zone, int zoneWidth);

    /// Whether two rasters must be reprojected before they are used together.
    /// @param needed true when both have a spatial reference and these differ; false when
    ///        neither has one; unchanged when a file does not open
    /// @return false when a file does not open as a raster or only one has a reference
    static bool IsNeededProject(const wchar_t* pathA, const wchar_t* pathB, bool& needed);
};
