#pragma once

#include "zelto/aoi/AOISource.h"

#include <string>

namespace zelto::host {

/// Opens an area of interest, whole or not at all. Throws Failure.
/// @param srs reference system to show it in; empty: its own
void OpenAoiOrFail(CAOISource& aoi, const std::string& path, const std::string& srs = "");

/// Writes an area of interest by the path's extension: "aif", "shp", "gpkg", "geojson" or "json".
/// A file of that name is replaced when the new one is complete. In vector files an ellipse becomes
/// a polygon; GeoJSON is in longitude and latitude. Throws Failure.
/// @param tolerance largest distance of such a polygon from its ellipse in ground units; 0: a
///        hundred-thousandth of the ellipse's longer side
void SaveAoiOrFail(CAOISource& aoi, const std::string& path, double tolerance = 0.0);

/// Lets the largest ellipse become a ring of 20,000 points; the engine's own step of a
/// thousandth of a ground unit would make millions of them.
void UseModerateRings(CAOISource& aoi);

/// Throws UsageError for a path that SaveAoiOrFail() has no format for, and for a tolerance where
/// the format keeps ellipses as they are.
void RequireAoiFormat(const std::string& path, double tolerance = 0.0);

/// "rectangle", "ellipse", "polygon", "other"
std::string KindName(const CDrawShape& shape);

} // namespace zelto::host
