#pragma once

#include "host/picture/Picture.h"

#include <string>
#include <vector>

namespace zelto::cli {

/// One picture of a sheet and what stands below it.
struct SheetCell {
    std::string label;
    host::Picture picture;
};

/// Pictures of equal size side by side, four to a row, each with its label below. Throws
/// UsageError where the sheet would be larger than can be drawn.
host::Picture MakeSheet(const std::vector<SheetCell>& cells);

} // namespace zelto::cli
