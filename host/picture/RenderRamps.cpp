#include "host/picture/RenderRamps.h"

#include "host/base/Failure.h"

#include <utility>
#include <vector>

namespace zelto::host {

namespace {

using Colors = std::vector<CRgbaColor>;

/// Control colours at equal distances from the lowest to the highest display value. "viridis" is
/// sampled from matplotlib's colour map of that name (public domain, CC0); the others are the
/// project's own.
const std::vector<std::pair<std::string, Colors>>& Ramps() {
    static const std::vector<std::pair<std::string, Colors>> ramps = {
        {"grey", {{0, 0, 0, 255}, {255, 255, 255, 255}}},
        {"heat",
         {{0, 0, 0, 255},
          {128, 0, 0, 255},
          {255, 96, 0, 255},
          {255, 224, 64, 255},
          {255, 255, 255, 255}}},
        {"terrain",
         {{24, 92, 60, 255},
          {124, 168, 84, 255},
          {222, 206, 140, 255},
          {150, 104, 66, 255},
          {248, 248, 248, 255}}},
        {"spectrum",
         {{32, 32, 160, 255},
          {0, 160, 208, 255},
          {64, 192, 64, 255},
          {248, 224, 48, 255},
          {208, 32, 32, 255}}},
        {"viridis",
         {{68, 1, 84, 255},
          {71, 44, 122, 255},
          {59, 81, 139, 255},
          {44, 113, 142, 255},
          {33, 144, 141, 255},
          {39, 173, 129, 255},
          {92, 200, 99, 255},
          {170, 220, 50, 255},
          {253, 231, 37, 255}}},
    };
    return ramps;
}

} // namespace

std::string RampNames() {
    std::string names;
    for (const auto& [name, colors] : Ramps())
        names += (names.empty() ? "" : ", ") + name;
    return names;
}

CColorRamp MakeRamp(const std::string& name) {
    for (const auto& [known, colors] : Ramps())
        if (known == name)
            return CColorRamp(colors);
    throw UsageError("--ramp: '" + name + "' is none of " + RampNames());
}

} // namespace zelto::host
