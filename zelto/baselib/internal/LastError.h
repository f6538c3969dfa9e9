#pragma once

#include <string>

namespace zelto {

/// Remembers why an operation failed, for CGISDataSource::GetLastErrorText(). The text belongs to
/// the calling thread and names the file, where there is one, and the reason, in one line.
void SetLastError(std::string reason);

/// The same with the name of the file, which may be empty, in front of the reason.
void SetLastError(const std::wstring& file, const std::string& reason);

/// The same in one expression: what the operation answers.
template <typename Answer>
Answer FailWith(Answer answer, const std::wstring& file, const std::string& reason) {
    SetLastError(file, reason);
    return answer;
}

/// Puts the name of a file in front of the reason that is known, unless it stands there already.
/// For what finds a reason without knowing which file it works on.
void NameFileOfLastError(const std::wstring& file);

/// The reason of this thread's last failure; empty when there is none to tell.
const std::string& LastError();

void ClearLastError();

} // namespace zelto
