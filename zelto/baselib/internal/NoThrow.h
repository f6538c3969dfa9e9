#pragma once

#include "zelto/baselib/internal/LastError.h"

#include <exception>
#include <new>

namespace zelto {

/// Remembers a reason where there is memory for it.
inline void TellReason(const char* reason) noexcept {
    try {
        SetLastError(reason);
    } catch (const std::exception&) {
        // The failure itself is still told, by the answer.
    }
}

/// Runs the body of an exported operation, which must not let exceptions out.
/// @return what the body answers, or `onFailure` where it throws; the reason is then in
///         LastError()
template <class Result, class Body>
Result NoThrow(Result onFailure, Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        TellReason("not enough memory");
    } catch (const std::exception& failure) {
        TellReason(failure.what());
    } catch (...) {
        // A host's own shape or progress may throw anything.
        TellReason("unexpected failure");
    }
    return onFailure;
}

} // namespace zelto
