#include "zelto/baselib/CommonFun.h"

#include "zelto/baselib/internal/Truncate.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <random>
#include <sys/stat.h>

namespace {

/// Start of the file name in a path.
std::size_t NameStart(const std::wstring& path) {
    const std::size_t separator = path.rfind(L'/');
    return separator == std::wstring::npos ? 0 : separator + 1;
}

/// Position of the dot before the extension, or the path's length without one.
std::size_t ExtensionDot(const std::wstring& path) {
    const std::size_t dot = path.rfind(L'.');
    return dot == std::wstring::npos || dot < NameStart(path) ? path.size() : dot;
}

} // namespace

std::wstring CommonFun::GetExtensionName(const std::wstring& path) {
    const std::size_t dot = ExtensionDot(path);
    return dot == path.size() ? std::wstring() : path.substr(dot + 1);
}

std::wstring CommonFun::GetFileName(const std::wstring& path) {
    const std::size_t start = NameStart(path);
    return path.substr(start, ExtensionDot(path) - start);
}

std::wstring CommonFun::GetFileNameWithExtension(const std::wstring& path) {
    return path.substr(NameStart(path));
}

std::wstring CommonFun::GetFileDirectory(const std::wstring& path, bool withSeparator) {
    const std::size_t start = NameStart(path);
    const bool root = start == 1;
    return path.substr(0, withSeparator || root || start == 0 ? start : start - 1);
}

std::wstring CommonFun::GetFilePahWithoutExtension(const std::wstring& path) {
    return path.substr(0, ExtensionDot(path));
}

std::wstring CommonFun::GetTempFilePath(const std::wstring& extension) {
    std::error_code error;
    std::wstring folder = M2U(std::filesystem::temp_directory_path(error).string());
    if (error)
        folder = L"/tmp";
    std::random_device random;
    for (;;) {
        std::wstring path = folder + L"/zelto-";
        for (int i = 0; i < 2; ++i)
            path += std::to_wstring(random());
        if (!extension.empty())
            path += L"." + extension;
        if (!IsFileExist(path))
            return path;
    }
}

std::wstring CommonFun::getEnviDataFilePath(const std::wstring& headerPath) {
    std::wstring base = GetFilePahWithoutExtension(headerPath);
    const auto isDataFile = [](const std::wstring& path) {
        const std::string file = U2M(path);
        struct stat status {};
        return stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    };
    if (base != headerPath && isDataFile(base))
        return base;
    for (const wchar_t* extension : {L"dat", L"DAT", L"img", L"IMG", L"bsq", L"BSQ", L"bil", L"BIL",
                                     L"bip", L"BIP", L"raw", L"RAW", L"bin", L"BIN"}) {
        std::wstring candidate = base + L"." + extension;
        if (isDataFile(candidate))
            return candidate;
    }
    return {};
}

bool CommonFun::IsFileExist(const std::wstring& path) {
    struct stat status {};
    return stat(U2M(path).c_str(), &status) == 0;
}

std::wstring CommonFun::GetAfterEqualString(const std::wstring& text) {
    const std::size_t equals = text.find(L'=');
    return equals == std::wstring::npos ? text : text.substr(equals + 1);
}

bool CommonFun::StrIsSame(const std::string& a, const std::string& b) {
    return a == b;
}

int CommonFun::Round(double x) {
    return zelto::TruncateToInt32(std::floor(x + 0.5));
}

std::string CommonFun::double2string(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

std::wstring CommonFun::int2wstring(int value) {
    return std::to_wstring(value);
}
