#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <nlohmann/json.hpp>

namespace zelto::host {

/// JSON whose keys stay in the order they were written.
using Json = nlohmann::ordered_json;

/// A number; JSON has none for the special values, which become the strings "NaN", "Infinity"
/// and "-Infinity".
Json JsonNumber(double value);

/// {left, top, right, bottom}
Json JsonBox(const CBoundingBox& box);

/// Prints a value on standard output, indented, with a line end.
void PrintJson(const Json& value);

} // namespace zelto::host
