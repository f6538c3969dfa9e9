#pragma once

#include <cstdint>
#include <limits>

/// @file
/// Truncation toward zero of doubles to integers, defined for every input. What does not fit,
/// infinities and NaN included, gives the most negative integer, as the conversion instructions
/// of x86-64 do; the display tables and pixel positions of the engine depend on that result.

namespace zelto {

inline std::int64_t TruncateToInt64(double value) {
    constexpr double bound = 9223372036854775808.0;
    if (value >= -bound && value < bound)
        return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
}

inline std::int32_t TruncateToInt32(double value) {
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

/// The low 8 bits of TruncateToInt64(), so that values outside 0 … 255 wrap.
inline unsigned char TruncateToByte(double value) {
    return static_cast<unsigned char>(static_cast<std::uint64_t>(TruncateToInt64(value)) & 255U);
}

} // namespace zelto
