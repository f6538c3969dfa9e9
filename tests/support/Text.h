#pragma once

#include <string>

namespace zelto::test {

/// UTF-8 to UTF-32 and back, independent of the engine's own conversion.
std::wstring Wide(const std::string& utf8);
std::string Narrow(const std::wstring& wide);

} // namespace zelto::test
