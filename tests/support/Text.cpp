#include "tests/support/Text.h"

#include <cpl_conv.h>
#include <cpl_string.h>

namespace zelto::test {

std::wstring Wide(const std::string& utf8) {
    wchar_t* text = CPLRecodeToWChar(utf8.c_str(), CPL_ENC_UTF8, "WCHAR_T");
    std::wstring result = text;
    CPLFree(text);
    return result;
}

std::string Narrow(const std::wstring& wide) {
    char* text = CPLRecodeFromWChar(wide.c_str(), "WCHAR_T", CPL_ENC_UTF8);
    std::string result = text;
    CPLFree(text);
    return result;
}

} // namespace zelto::test
