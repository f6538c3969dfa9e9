#include "zelto/baselib/internal/LastError.h"

#include "zelto/baselib/CommonFun.h"

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

void SetLastError(const std::wstring& file, const std::string& reason) {
    SetLastError(file.empty() ? reason : CommonFun::U2M(file) + ": " + reason);
}

void NameFileOfLastError(const std::wstring& file) {
    const std::string name = CommonFun::U2M(file);
    if (!s_lastError.empty() && s_lastError.compare(0, name.size(), name) != 0)
        SetLastError(file, std::string(s_lastError));
}

const std::string& LastError() {
    return s_lastError;
}

void ClearLastError() {
    s_lastError.clear();
}

} // namespace zelto
