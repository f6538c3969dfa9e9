#pragma once

#include "zelto/geometry/BoundingBox.h"

#include <string>
#include <vector>

namespace zelto::host {

/// Text and paths as the engine takes them, and as it gives them: bytes that are not UTF-8, as in
/// old file names, survive the way there and back.
std::wstring Wide(const std::string& utf8);
std::string Narrow(const std::wstring& wide);

/// Shortest text that reads back to the same number; "NaN", "Infinity", "-Infinity".
std::string FormatNumber(double value);

/// A number for people: ten digits, more than the data have, few enough to read.
std::string FormatBriefly(double value);

/// Finite numbers of a comma-separated list. Throws UsageError naming `option` when one is no
/// number or, with `count` > 0, when there are more or fewer.
std::vector<double> ParseNumbers(const std::string& option, const std::string& text,
                                 std::size_t count = 0);

/// Band numbers counted from 1, as "3,2,1"; returned counted from 0. Throws UsageError.
std::vector<int> ParseBands(const std::string& option, const std::string& text, int bandCount);

/// A box given as "left,top,right,bottom" in ground units. Throws UsageError.
CBoundingBox ParseBox(const std::string& option, const std::string& text);

} // namespace zelto::host
