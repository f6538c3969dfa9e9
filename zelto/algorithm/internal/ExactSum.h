#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zelto {

// GCC's and clang's own types, which the language does not know.
__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;

/// A sum of doubles, or of products of two doubles each, without any rounding: one whole number
/// so wide that every finite term is a multiple of its unit. Terms may be added, and sums merged,
/// in any order and in any parts, with the same result to the last bit.
///
/// The number is kept as digits of 32 bits in words of 64, so that carries are rare.
class ExactSum {
  public:
    /// Binary logarithm of the unit.
    static constexpr int UNIT_EXPONENT = -2148;

    /// @param value finite
    void Add(double value);
    /// The exact product of two finite numbers.
    void AddProduct(double a, double b);
    /// A whole number of units of one.
    void AddWhole(Int128 value);

    /// The number in two's complement, least significant byte first.
    std::vector<unsigned char> Bytes() const;

  private:
    /// From the unit up to the square of the greatest double, 2^63 times over, and the sign.
    static constexpr std::size_t DIGITS = 135;

    /// @param magnitude below 2^106
    void AddScaled(bool negative, UInt128 magnitude, int exponent);
    void CountTerm();

    std::array<std::int64_t, DIGITS> m_digits{};
    std::uint32_t m_termsSinceCarry = 0;
};

} // namespace zelto
