#include "zelto/baselib/CommonFun.h"

#include <cstdint>

namespace {

constexpr std::uint32_t REPLACEMENT_CHARACTER = 0xFFFD;
/// M2U() carries a byte b that is not UTF-8 as ESCAPE + b.
constexpr std::uint32_t ESCAPE = 0xDC00;

bool IsEscapedByte(std::uint32_t c) {
    return c >= ESCAPE + 0x80 && c <= ESCAPE + 0xFF;
}

bool IsCharacter(std::uint32_t c) {
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

void AppendUtf8(std::string& text, std::uint32_t c) {
    const auto append = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto continuation = [&](int shift) { append(0x80U | ((c >> shift) & 0x3FU)); };
    if (c < 0x80) {
        append(c);
    } else if (c < 0x800) {
        append(0xC0U | (c >> 6U));
        continuation(0);
    } else if (c < 0x10000) {
        append(0xE0U | (c >> 12U));
        continuation(6);
        continuation(0);
    } else {
        append(0xF0U | (c >> 18U));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

/// Continuation bytes that a lead byte announces; 0 for a byte that can lead nothing.
int ContinuationCount(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF)
        return 1;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 2;
    return lead >= 0xF0 && lead <= 0xF4 ? 3 : 0;
}

/// Decodes the multi-byte character at `at`.
/// @return its length in bytes, 0 when the bytes are no valid, shortest form of a character
std::size_t DecodeAt(const std::string& text, std::size_t at, std::uint32_t& c) {
    constexpr std::uint32_t LEAST[] = {0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[at]);
    const int count = ContinuationCount(lead);
    if (count == 0 || text.size() - at <= static_cast<std::size_t>(count))
        return 0;
    c = lead & (0x3FU >> static_cast<unsigned>(count));
    for (int i = 1; i <= count; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + static_cast<std::size_t>(i)]);
        if ((byte & 0xC0U) != 0x80U)
            return 0;
        c = (c << 6U) | (byte & 0x3FU);
    }
    return c >= LEAST[count] && IsCharacter(c) ? static_cast<std::size_t>(count) + 1 : 0;
}

} // namespace

std::string CommonFun::U2M(const std::wstring& text) {
    std::string result;
    result.reserve(text.size());
    for (const wchar_t wide : text) {
        const auto c = static_cast<std::uint32_t>(wide);
        if (IsEscapedByte(c))
            result += static_cast<char>(c - ESCAPE);
        else
            AppendUtf8(result, IsCharacter(c) ? c : REPLACEMENT_CHARACTER);
    }
    return result;
}

std::wstring CommonFun::M2U(const std::string& text) {
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        std::uint32_t c = byte;
        std::size_t length = 1;
        if (byte >= 0x80) {
            length = DecodeAt(text, i, c);
            if (length == 0) {
                c = ESCAPE + byte;
                length = 1;
            }
        }
        result += static_cast<wchar_t>(c);
        i += length;
    }
    return result;
}
