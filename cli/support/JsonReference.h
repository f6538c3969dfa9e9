#pragma once

#include "cli/support/Json.h"

#include <string>

namespace zelto::cli {

/// Number of a reference system in the EPSG registry where its text carries it; null otherwise.
Json JsonEpsg(const std::string& wkt);

/// {coordinateName, epsg, wkt}: a reference system in every command's words. Name and WKT are empty
/// where there is none.
/// @param name for people
Json JsonReference(const std::string& name, const std::string& wkt);

} // namespace zelto::cli
