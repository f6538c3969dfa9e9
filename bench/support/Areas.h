#pragma once

#include <array>
#include <string>

namespace zelto::bench {

/// Files of areas over the large scenes, made anew in the folder of the benches' data.

/// A star around the middle of a scene of `size` pixels, nearly as wide as it: GeoJSON in the
/// scenes' reference system.
std::string StarArea(int size, int vertices);
/// Left, top, right and bottom of the ground box around the star.
std::array<double, 4> StarBox(int size);

/// A hundred stars of 50 vertices and about 1,000 pixels across, spread over a scene of 12,000.
std::string HundredAreas();

} // namespace zelto::bench
