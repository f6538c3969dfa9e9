#include "zelto/baselib/internal/Utf16.h"

#include <algorithm>
#include <cstdint>

namespace zelto {

namespace {

constexpr std::uint32_t REPLACEMENT = 0xFFFD;

bool IsHighSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(std::uint32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void StoreUnit(std::span<unsigned char> field, std::size_t index, std::uint32_t unit) {
    field[2 * index] = static_cast<unsigned char>(unit & 0xFFU);
    field[2 * index + 1] = static_cast<unsigned char>(unit >> 8U);
}

} // namespace

std::wstring DecodeUtf16Field(std::span<const unsigned char> field) {
    const std::size_t units = field.size() / 2;
    const auto unitAt = [&](std::size_t i) -> std::uint32_t {
        return i < units ? field[2 * i] | static_cast<std::uint32_t>(field[2 * i + 1]) << 8U : 0;
    };
    std::wstring text;
    for (std::size_t i = 0; i < units && unitAt(i) != 0; ++i) {
        std::uint32_t c = unitAt(i);
        if (IsHighSurrogate(c) && IsLowSurrogate(unitAt(i + 1)))
            c = 0x10000 + ((c - 0xD800) << 10U) + (unitAt(++i) - 0xDC00);
        else if (IsHighSurrogate(c) || IsLowSurrogate(c))
            c = REPLACEMENT;
        text += static_cast<wchar_t>(c);
    }
    return text;
}

void EncodeUtf16Field(const std::wstring& text, std::span<unsigned char> field) {
    std::fill(field.begin(), field.end(), static_cast<unsigned char>(0));
    const std::size_t room = field.size() / 2;
    std::size_t used = 0;
    for (const wchar_t wide : text) {
        auto c = static_cast<std::uint32_t>(wide);
        if (c > 0x10FFFF || IsHighSurrogate(c) || IsLowSurrogate(c))
            c = REPLACEMENT;
        const std::size_t needed = c >= 0x10000 ? 2 : 1;
        if (c == 0 || used + needed + 1 > room)
            return;
        if (needed == 2) {
            StoreUnit(field, used++, 0xD800 + ((c - 0x10000) >> 10U));
            StoreUnit(field, used++, 0xDC00 + ((c - 0x10000) & 0x3FFU));
        } else {
            StoreUnit(field, used++, c);
        }
    }
}

} // namespace zelto
