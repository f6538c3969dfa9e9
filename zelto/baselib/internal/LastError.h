#pragma once

#include <string>

namespace zelto {

/// Remembers why an operation failed, for CGISDataSource::GetLastErrorText(). The text belongs to
/// the calling thread and names the file, where there is one, and the reason, in one line.
void SetLastError(std::string reason);

/// The reason of this thread's last failure; empty when there is none to tell.
const std::string& LastError();

void ClearLastError();

} // namespace zelto
