#pragma once

namespace zelto {

/// From where a band's histogram counts when it is to begin at `low`: background is zero in most
/// images and would dwarf every other count, so a histogram from zero begins above it.
constexpr double FirstCounted(double low) {
    return low == 0.0 ? 0.5 : low;
}

} // namespace zelto
