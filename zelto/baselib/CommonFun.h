#pragma once

#include "zelto/Export.h"

#include <string>

/// Text and path helpers. Wide strings are UTF-32, narrow ones UTF-8 whatever the locale; the
/// path separator is '/'. Nothing here touches the working directory.
class ZELTO_API CommonFun {
  public:
    /// Wide to narrow text. What M2U() made of a byte that is not UTF-8 becomes that byte again;
    /// any other value that is no character becomes U+FFFD.
    static std::string U2M(const std::wstring& text);
    /// Narrow to wide text. Each byte that is not part of valid UTF-8 becomes U+DC00 + byte, so
    /// that file names in other encodings survive the way there and back.
    static std::wstring M2U(const std::string& text);

    /// What follows the last dot of the file name, case kept; empty without a dot.
    static std::wstring GetExtensionName(const std::wstring& path);
    /// File name without directory and extension.
    static std::wstring GetFileName(const std::wstring& path);
    static std::wstring GetFileNameWithExtension(const std::wstring& path);
    /// Directory of the path; empty when the path names none.
    /// @param withSeparator keep the '/' at its end
    static std::wstring GetFileDirectory(const std::wstring& path, bool withSeparator);
    static std::wstring GetFilePahWithoutExtension(const std::wstring& path);
    /// Path in the temporary folder that no file has yet.
    /// @param extension without the dot; may be empty
    static std::wstring GetTempFilePath(const std::wstring& extension);
    /// Data file that belongs to an ENVI header: the header's path without its extension, or
    /// with one of the extensions dat, img, bsq, bil, bip, raw, bin in lower or upper case,
    /// whichever exists first. Empty when none does.
    static std::wstring getEnviDataFilePath(const std::wstring& headerPath);
    /// Whether the path names something that exists.
    static bool IsFileExist(const std::wstring& path);

    /// The text after the first '='; the whole text when there is none.
    static std::wstring GetAfterEqualString(const std::wstring& text);
    /// Whether two texts are equal letter by letter.
    static bool StrIsSame(const std::string& a, const std::string& b);

    /// floor(x + 0.5); the least integer where that is not a number or does not fit.
    static int Round(double x);
    /// Shortest text that reads back to the same double, with a '.' whatever the locale.
    static std::string double2string(double value);
    static std::wstring int2wstring(int value);
};
