#include "zelto/baselib/Log.h"

#include "zelto/baselib/CommonFun.h"

#include <cstdarg>
#include <ctime>
#include <cwchar>
#include <fstream>
#include <locale.h>

CLog* CLog::m_pLogger = nullptr;

namespace {

/// The C library's %s takes narrow text also in wide formats; here it takes wide text.
std::wstring WithWideStrings(const wchar_t* format) {
    std::wstring result;
    for (const wchar_t* c = format; *c != L'\0'; ++c) {
        result += *c;
        if (*c != L'%')
            continue;
        for (++c; *c != L'\0' && std::wcschr(L"-+ #0123456789.*", *c) != nullptr; ++c)
            result += *c;
        if (*c == L's')
            result += L'l';
        if (*c == L'h' && c[1] == L's')
            ++c;
        if (*c == L'\0')
            break;
        result += *c;
    }
    return result;
}

/// While it lives, this thread formats numbers with a '.' and narrow texts as UTF-8, whatever
/// the host's locale is.
class NeutralLocale {
  public:
    NeutralLocale() : m_former(uselocale(Shared())) {}
    ~NeutralLocale() { uselocale(m_former); }
    NeutralLocale(const NeutralLocale&) = delete;
    NeutralLocale& operator=(const NeutralLocale&) = delete;

  private:
    static locale_t Shared() {
        static const locale_t shared = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
        return shared; // null, which changes nothing, on a system without it
    }

    locale_t m_former;
};

std::wstring Format(const wchar_t* format, std::va_list arguments) {
    constexpr std::size_t LONGEST = std::size_t{1} << 20U;
    const std::wstring wideFormat = WithWideStrings(format);
    const NeutralLocale locale;
    // The wide printf does not tell how much room it wants.
    for (std::size_t room = 1024; room <= LONGEST; room *= 4) {
        std::wstring text(room, L'\0');
        std::va_list copy;
        va_copy(copy, arguments);
        const int length = std::vswprintf(text.data(), text.size(), wideFormat.c_str(), copy);
        va_end(copy);
        if (length >= 0) {
            text.resize(static_cast<std::size_t>(length));
            return text;
        }
    }
    return format;
}

} // namespace

CLog::~CLog() {
    if (m_pLogger == this)
        m_pLogger = nullptr;
}

void CLog::WriteLog(int level, const wchar_t* file, int line, const wchar_t* function,
                    const wchar_t* format, ...) {
    if (format == nullptr)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    const std::wstring message = Format(format, arguments);
    va_end(arguments);
    WriteMessage(level, file != nullptr ? file : L"", line, function != nullptr ? function : L"",
                 message);
}

void CFileLog::WriteMessage(int level, const std::wstring& file, int line,
                            const std::wstring& function, const std::wstring& message) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
    std::ofstream stream(CommonFun::U2M(m_path), std::ios::app);
    stream << stamp << " [" << level << "] " << CommonFun::U2M(file) << ':' << line << ' '
           << CommonFun::U2M(function) << ": " << CommonFun::U2M(message) << '\n';
}
