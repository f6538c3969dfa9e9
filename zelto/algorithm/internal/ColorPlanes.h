#pragma once

#include <algorithm>
#include <cstddef>

/// @file
/// What the in-place colour adjustments share about their buffers.

namespace zelto {

/// Pixels before a row of an image `width` pixels wide.
inline std::size_t RowOffset(int row, int width) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
}

/// Whether `planes` is an array whose first `count` planes all exist.
inline bool HasPlanes(unsigned char* const* planes, int count) {
    return planes != nullptr &&
           std::none_of(planes, planes + std::max(count, 0),
                        [](const unsigned char* plane) { return plane == nullptr; });
}

} // namespace zelto
