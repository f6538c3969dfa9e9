#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace zelto::bench {

/// A time in the unit that leaves one to three digits before the point.
std::string Readable(double nanoseconds);

/// Writes the results between the marks of a Markdown page and the plots of how cost grows
/// beside it, as performance-….svg. Throws std::runtime_error.
void WriteMarkdown(const nlohmann::json& results, const std::string& page);

} // namespace zelto::bench
