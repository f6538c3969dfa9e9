#pragma once

#include <cstdint>
#include <limits>

/// @file
/// Truncation of doubles toward zero with a defined result for every input: NaN and values
/// that do not fit give the most negative integer, as the x86-64 conversions do.

namespace zelto {

// The instruction itself rather than its intrinsic: compilers fold the intrinsic's constant
// arguments to the nearest integer that fits.

inline std::int64_t TruncateToInt64(double value) {
#if defined(__x86_64__) && defined(__GNUC__)
    std::int64_t result;
    asm("cvttsd2si %1, %0" : "=r"(result) : "x"(value));
    return result;
#else
    constexpr double LIMIT = 9223372036854775808.0; // 2^63
    if (value >= -LIMIT && value < LIMIT)
        return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
#endif
}

inline std::int32_t TruncateToInt32(double value) {
#if defined(__x86_64__) && defined(__GNUC__)
    std::int32_t result;
    asm("cvttsd2si %1, %0" : "=r"(result) : "x"(value));
    return result;
#else
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
#endif
}

/// Low 8 bits of the value truncated to 64 bits: 300.7 gives 44, −1.0 gives 255, NaN 0.
inline unsigned char TruncateToByte(double value) {
    return static_cast<unsigned char>(static_cast<std::uint64_t>(TruncateToInt64(value)) & 0xFFU);
}

} // namespace zelto
