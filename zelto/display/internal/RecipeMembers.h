#pragma once

#include "zelto/datasource/StretchType.h"

#include <array>

/// @file
/// What the text of a recipe is written and read by.

namespace zelto {

inline constexpr const char* RECIPE_FORMAT = "zelto display recipe";
inline constexpr int RECIPE_VERSION = 1;

/// The numbers of a stretch function by their names, as SetStretchData() takes them.
inline std::array<const char*, 6> NamesOfNumbers(StretchType type) {
    if (type == StretchWallis)
        return {"sourceMean", "sourceDeviation", "lowerClamp",
                "upperClamp", "targetMean",      "targetDeviation"};
    return {nullptr, nullptr, "low", "high", nullptr, nullptr};
}

} // namespace zelto
