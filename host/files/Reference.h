#pragma once

#include <ogr_spatialref.h>

#include <optional>
#include <string>

namespace zelto::host {

/// The spatial reference of a text in any form that GDAL reads, longitude before latitude. Nothing
/// is fetched from a network for it, for the text may come from a file.
/// @return nothing for an empty text and for one that is no reference
std::optional<OGRSpatialReference> ParseReference(const std::string& text);

/// What ParseReference() reads, as WKT in GDAL's first form, which the engine takes; empty where
/// that reads nothing.
std::string ReferenceAsWkt(const std::string& text);

/// Throws Failure for a text that the engine cannot read as a reference system.
void RequireReference(const std::string& text);

} // namespace zelto::host
