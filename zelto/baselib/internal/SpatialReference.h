#pragma once

#include <ogr_spatialref.h>

#include <optional>
#include <string>

/// @file
/// The one place where spatial-reference texts become reference objects and back. Every
/// reference made here uses the traditional axis order, x = east or longitude first, whatever
/// order its authority defines, so that coordinates mean the same throughout the engine.

namespace zelto {

/// Replaces the content of `reference` with what `text` describes: WKT of any dialect, an
/// authority code such as "EPSG:4326", a PROJ string, a name such as "WGS84" or a file that
/// holds one of these. The axis order becomes the traditional one. Definitions elsewhere on the
/// network are not fetched, and pipes and devices are not read.
///
/// Vertical systems in the dialect of the .prj files ("VERTCS[…]") count as valid, although
/// GDAL takes them as WKT only and not as user input.
/// @return false, with `reference` empty, for null and for what cannot be read
bool LoadSpatialReference(OGRSpatialReference& reference, const char* text);

/// A new reference loaded from `text`; nothing where LoadSpatialReference() would fail.
std::optional<OGRSpatialReference> ParseSpatialReference(const char* text);

/// Whether two references describe the same system. The order in which they list their axes
/// and their authority codes do not count: a system written to a file and read back through
/// another dialect stays the same. Axes that reverse the sense of a coordinate (westward,
/// downward) do count, and so do datum, projection and units.
/// @return false when either is empty
bool IsSameReference(const OGRSpatialReference& a, const OGRSpatialReference& b);

/// The reference as well-known text in GDAL's default dialect; empty when it cannot be
/// expressed or is empty.
std::string ExportToWkt(const OGRSpatialReference& reference);

/// First value of the first node `keyword` of a well-known text, as it stands there: reading
/// the text into a reference replaces names by those of the registry. Empty without the node.
std::string ReadNodeValue(const char* wkt, const char* keyword);

/// `wkt` with the first value of its first node `keyword` replaced; empty without the node.
std::string ReplaceNodeValue(const std::string& wkt, const char* keyword, const char* value);

} // namespace zelto
