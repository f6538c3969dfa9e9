#pragma once

#include "zelto/baselib/internal/NoThrow.h"

namespace zelto {

/// Marks the life of an operation that leaves a reason when it fails. The outermost one on a
/// thread begins by forgetting the reason of an earlier operation; those that it calls leave
/// alone what is known by then, so that the reason found deepest inside reaches the host.
class OperationScope {
  public:
    OperationScope();
    ~OperationScope();
    OperationScope(const OperationScope&) = delete;
    OperationScope& operator=(const OperationScope&) = delete;
};

/// Runs the body of an exported operation within a scope of its own. No exception leaves it.
/// @return as NoThrow()
template <class Result, class Body>
Result Operation(Result onFailure, Body body) noexcept {
    const OperationScope scope;
    return NoThrow(onFailure, body);
}

} // namespace zelto
