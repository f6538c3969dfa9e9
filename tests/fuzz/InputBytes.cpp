#include "tests/fuzz/InputBytes.h"

#include <bit>
#include <cmath>
#include <iterator>
#include <limits>

namespace zelto::fuzz {

std::uint8_t InputBytes::Byte() {
    return IsEmpty() ? 0 : *m_next++;
}

std::int32_t InputBytes::Integer() {
    std::uint32_t bits = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bits |= static_cast<std::uint32_t>(Byte()) << shift;
    return std::bit_cast<std::int32_t>(bits);
}

int InputBytes::Count() {
    constexpr int EXTREMES[] = {-1,      -2,      255,       256,      257,   1000,
                                4095,    4096,    65535,     65536,    46341, 1 << 24,
                                1 << 26, 1 << 30, INT32_MAX, INT32_MIN};
    constexpr int FIRST_EXTREME = 256 - static_cast<int>(std::size(EXTREMES));
    const int byte = Byte();
    return byte < FIRST_EXTREME ? byte % 64 : EXTREMES[byte - FIRST_EXTREME];
}

double InputBytes::RawNumber() {
    std::uint64_t bits = 0;
    for (unsigned shift = 0; shift < 64; shift += 8)
        bits |= static_cast<std::uint64_t>(Byte()) << shift;
    return std::bit_cast<double>(bits);
}

double InputBytes::Number() {
    using Limits = std::numeric_limits<double>;
    constexpr double SPECIAL[] = {
        Limits::quiet_NaN(),
        Limits::infinity(),
        -Limits::infinity(),
        Limits::max(),
        Limits::lowest(),
        Limits::min(),
        Limits::denorm_min(),
        -0.0,
        1e-9,
        0.1,
        1e6,
        -1e6,
        2147483647.0,
        -2147483649.0,
        4294967296.0,
        9223372036854775807.0,
        1e19,
        -1e19,
        1e100,
        1e-100,
    };
    constexpr int FIRST_SPECIAL = 255 - static_cast<int>(std::size(SPECIAL));
    const int byte = Byte();
    if (byte == 255)
        return RawNumber();
    return byte < FIRST_SPECIAL ? (byte - 80) / 2.0 : SPECIAL[byte - FIRST_SPECIAL];
}

std::vector<double> InputBytes::Numbers(std::size_t count) {
    std::vector<double> numbers(count);
    for (double& number : numbers)
        number = Number();
    return numbers;
}

std::string InputBytes::Rest() {
    std::string rest(m_next, m_end);
    m_next = m_end;
    return rest;
}

std::string InputBytes::Text() {
    std::string text;
    while (!IsEmpty()) {
        const std::uint8_t byte = Byte();
        if (byte == 0)
            break;
        text += static_cast<char>(byte);
    }
    return text;
}

} // namespace zelto::fuzz
