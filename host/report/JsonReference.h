#pragma once

#include "host/report/Json.h"

#include <string>

namespace zelto::host {

/// Number of a reference system in the EPSG registry where its text carries it; null otherwise.
Json JsonEpsg(const std::string& wkt);

/// {coordinateName, epsg, wkt}: a reference system in every command's words. Name and WKT are empty
/// where there is none.
/// @param name for people
Json JsonReference(const std::string& name, const std::string& wkt);

} // namespace zelto::host
