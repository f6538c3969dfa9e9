#pragma once

#include "zelto/classify/ClassifiedAssistantFile.h"

#include <string>
#include <vector>

namespace zelto::host {

/// Reads classes from a CSV file with the columns value, red, green, blue, name. A first line
/// of column names is skipped, empty lines are ignored. A name may stand in double quotes and
/// then hold commas; a quote within is doubled. Throws Failure naming file and line.
std::vector<CClassifiedAssistantFile::ClassRecord> ReadClassTable(const std::string& path);

/// Path of an image's classes, the assistant file beside it, whether there is one or not.
std::string AssistantOf(const std::string& image);

} // namespace zelto::host
