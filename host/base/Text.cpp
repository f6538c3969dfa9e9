#include "host/base/Text.h"

#include "zelto/baselib/CommonFun.h"

#include "host/base/Failure.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace zelto::host {

std::wstring Wide(const std::string& utf8) {
    return CommonFun::M2U(utf8);
}

std::string Narrow(const std::wstring& wide) {
    return CommonFun::U2M(wide);
}

std::string FormatNumber(double value) {
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value > 0 ? "Infinity" : "-Infinity";
    char text[32];
    // 500000, not 5e+05; exponents only where digits would be many.
    const double magnitude = std::abs(value);
    const bool plain = value == 0.0 || (magnitude >= 1e-5 && magnitude < 1e15);
    const auto end = plain
                         ? std::to_chars(text, text + sizeof text, value, std::chars_format::fixed)
                         : std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

std::string FormatBriefly(double value) {
    if (!std::isfinite(value))
        return FormatNumber(value);
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 10);
    return {text, end.ptr};
}

namespace {

std::vector<std::string> SplitAtCommas(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(',', start);
        parts.push_back(text.substr(start, comma - start));
        if (comma == std::string::npos)
            return parts;
        start = comma + 1;
    }
}

double ParseNumber(const std::string& option, const std::string& text) {
    const std::size_t first = text.find_first_not_of(" +");
    const std::size_t last = text.find_last_not_of(' ');
    double value = 0.0;
    if (first != std::string::npos) {
        const char* end = text.data() + last + 1;
        const auto parsed = std::from_chars(text.data() + first, end, value);
        if (parsed.ec == std::errc() && parsed.ptr == end && std::isfinite(value))
            return value;
    }
    throw UsageError(option + ": '" + text + "' is not a finite number");
}

} // namespace

std::vector<double> ParseNumbers(const std::string& option, const std::string& text,
                                 std::size_t count) {
    std::vector<double> numbers;
    for (const std::string& part : SplitAtCommas(text))
        numbers.push_back(ParseNumber(option, part));
    if (count > 0 && numbers.size() != count)
        throw UsageError(option + ": expected " + std::to_string(count) +
                         " comma-separated numbers, got " + std::to_string(numbers.size()));
    return numbers;
}

std::vector<int> ParseBands(const std::string& option, const std::string& text, int bandCount) {
    std::vector<int> bands;
    for (const double number : ParseNumbers(option, text)) {
        if (number != std::floor(number) || number < 1 || number > bandCount)
            throw UsageError(option + ": bands are numbered from 1 to " +
                             std::to_string(bandCount));
        bands.push_back(static_cast<int>(number) - 1);
    }
    return bands;
}

CBoundingBox ParseBox(const std::string& option, const std::string& text) {
    const std::vector<double> sides = ParseNumbers(option, text, 4);
    return {sides[0], sides[1], sides[2], sides[3]};
}

} // namespace zelto::host
