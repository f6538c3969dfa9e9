#pragma once

#include "zelto/aoi/AOISource.h"

#include <string>
#include <vector>

namespace zelto::cli {

/// Opens an area of interest, whole or not at all.
/// @param srs reference system to show it in; empty: its own
void OpenAoiOrFail(CAOISource& aoi, const std::string& path, const std::string& srs = "");

/// Writes an area of interest by the path's extension, "aif" or "shp"; a shapefile gets its
/// reference system in a .prj file.
void SaveAoiOrFail(CAOISource& aoi, const std::string& path);

/// Lets the largest ellipse become a ring of 20,000 points; the engine's own step of a
/// thousandth of a ground unit would make millions of them.
void UseModerateRings(CAOISource& aoi);

/// Throws UsageError for a path that SaveAoiOrFail() has no format for.
void RequireAoiFormat(const std::string& path);

/// A reference system as WKT; empty for none and for what cannot be read.
/// @param format GDAL's export option: "FORMAT=WKT1_GDAL", or "FORMAT=WKT1_ESRI" as other
///        programs expect it in a .prj file
std::string SrsAsWkt(const std::string& srs, const char* format);

/// "rectangle", "ellipse", "polygon"
std::string KindName(const CDrawShape& shape);

// What the subcommands of `aoi` do.

struct AoiNewOptions {
    std::string out;
    std::vector<std::string> rectangles;
    std::vector<std::string> ellipses;
    std::vector<std::string> polygons;
    std::vector<std::string> geojson;
    std::string srs;
};
void CreateAoi(const AoiNewOptions& options);

struct AoiMaskOptions {
    std::string aoi;
    std::string image;
    std::string out;
    bool json = false;
};
void WriteAoiMask(const AoiMaskOptions& options);

} // namespace zelto::cli
