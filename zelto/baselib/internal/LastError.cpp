#include "zelto/baselib/internal/LastError.h"

#include <algorithm>
#include <utility>

namespace zelto {

namespace {

thread_local std::string s_lastError;

} // namespace

void SetLastError(std::string reason) {
    std::replace_if(
        reason.begin(), reason.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    s_lastError = std::move(reason);
}

const std::string& LastError() {
    return s_lastError;
}

void ClearLastError() {
    s_lastError.clear();
}

} // namespace zelto
