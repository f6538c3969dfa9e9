#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zelto::host {

/// The fields of a line of comma-separated values, without blanks around them. A field may stand
/// in double quotes and then hold commas; a quote within is doubled.
std::vector<std::string> CsvFields(const std::string& line);

/// Whether a line holds column names: its first field starts with a letter.
bool IsCsvHeading(const std::string& line);

/// A text as a field in double quotes.
std::string CsvText(const std::string& text);

/// Calls `use` with every line of a file that is not empty, and its number from 1. Throws Failure
/// where the file cannot be read.
void ForEachCsvLine(const std::string& path,
                    const std::function<void(const std::string& line, int number)>& use);

} // namespace zelto::host
