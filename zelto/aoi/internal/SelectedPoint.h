#pragma once

#include <atomic>
#include <cstdint>

namespace zelto {

/// Stores what a hit test found. Several threads may hit-test one shape at a time; in the
/// containment modes they all store −1, so atomicity is all that is needed and no order.
inline void StoreSelectedPoint(std::int32_t& selectedPointIndex, std::int32_t found) {
    std::atomic_ref<std::int32_t>(selectedPointIndex).store(found, std::memory_order_relaxed);
}

} // namespace zelto
