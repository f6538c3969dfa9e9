#include "host/base/Printable.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace zelto::host {

namespace {

constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD";

unsigned ByteAt(std::string_view text, std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
}

/// Length of the UTF-8 character that the text starts with; 0 for none. Overlong forms,
/// surrogates and numbers beyond Unicode are none.
std::size_t CharacterLength(std::string_view text) {
    const unsigned first = ByteAt(text, 0);
    if (first < 0x80)
        return 1;
    const unsigned second = ByteAt(text, 1);
    const auto isMore = [text](std::size_t i) { return (ByteAt(text, i) & 0xC0U) == 0x80U; };
    if (first >= 0xC2 && first <= 0xDF)
        return isMore(1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        const bool fits = (first != 0xE0 || second >= 0xA0) && (first != 0xED || second <= 0x9F);
        return fits && isMore(1) && isMore(2) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool fits = (first != 0xF0 || second >= 0x90) && (first != 0xF4 || second <= 0x8F);
        return fits && isMore(1) && isMore(2) && isMore(3) ? 4 : 0;
    }
    return 0;
}

/// Number of the control character, of ASCII or Latin-1, that a character is; 0x100 for none.
unsigned ControlNumber(std::string_view character) {
    const unsigned first = ByteAt(character, 0);
    if (first < 0x20 || first == 0x7F)
        return first;
    const unsigned second = ByteAt(character, 1);
    return first == 0xC2 && second < 0xA0 ? second : 0x100U;
}

void AppendEscaped(std::string& out, unsigned number) {
    constexpr std::string_view DIGITS = "0123456789abcdef";
    out += "\\x";
    out += DIGITS[number >> 4U];
    out += DIGITS[number & 0xFU];
}

std::string Cleaned(std::string_view text, bool keepsLines) {
    std::string out;
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        const unsigned control = ControlNumber(character);
        if (length == 0)
            out += REPLACEMENT;
        else if (control > 0xFF || (keepsLines && control == '\n'))
            out += character;
        else
            AppendEscaped(out, control);
        text.remove_prefix(character.size());
    }
    return out;
}

} // namespace

std::string Printable(const std::string& text) {
    return Cleaned(text, false);
}

std::string PrintableLines(const std::string& text) {
    return Cleaned(text, true);
}

} // namespace zelto::host
