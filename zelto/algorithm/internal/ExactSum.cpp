#include "zelto/algorithm/internal/ExactSum.h"

#include <bit>

namespace zelto {

namespace {

constexpr int DIGIT_BITS = 32;
constexpr std::uint64_t DIGIT_MASK = 0xFFFFFFFFU;
/// Terms from carry to carry. Each adds less than 2^32 to a digit, of which its word holds 2^31
/// beside the carry; so many are enough for carrying to cost nothing.
constexpr std::uint32_t MOST_TERMS = 1U << 20;

/// A finite double as ± mantissa × 2^exponent.
struct Parts {
    bool negative;
    std::uint64_t mantissa;
    int exponent;

    explicit Parts(double value) {
        constexpr int MANTISSA_BITS = 52;
        constexpr int EXPONENT_BIAS = 1075;
        const auto bits = std::bit_cast<std::uint64_t>(value);
        const auto biased = static_cast<int>((bits >> MANTISSA_BITS) & 0x7FFU);
        negative = (bits >> 63U) != 0;
        mantissa = bits & ((std::uint64_t{1} << MANTISSA_BITS) - 1);
        if (biased != 0)
            mantissa |= std::uint64_t{1} << MANTISSA_BITS;
        exponent = (biased != 0 ? biased : 1) - EXPONENT_BIAS;
    }
};

/// Moves what does not fit into a digit to the next one; all but the last are then 0 … 2^32 − 1.
template <typename Digits>
void Carry(Digits& digits) {
    std::int64_t carry = 0;
    for (std::size_t i = 0; i + 1 < digits.size(); ++i) {
        const std::int64_t sum = digits[i] + carry;
        digits[i] = static_cast<std::int64_t>(static_cast<std::uint64_t>(sum) & DIGIT_MASK);
        carry = sum >> DIGIT_BITS;
    }
    digits.back() += carry;
}

} // namespace

void ExactSum::Add(double value) {
    const Parts parts(value);
    AddScaled(parts.negative, parts.mantissa, parts.exponent);
}

void ExactSum::AddProduct(double a, double b) {
    const Parts first(a);
    const Parts second(b);
    AddScaled(first.negative != second.negative,
              static_cast<UInt128>(first.mantissa) * second.mantissa,
              first.exponent + second.exponent);
}

void ExactSum::AddWhole(Int128 value) {
    // In two parts, each within what a term may have.
    constexpr int PART_BITS = 96;
    const bool negative = value < 0;
    const auto magnitude = negative ? -static_cast<UInt128>(value) : static_cast<UInt128>(value);
    AddScaled(negative, magnitude & ((static_cast<UInt128>(1) << PART_BITS) - 1), 0);
    AddScaled(negative, magnitude >> PART_BITS, PART_BITS);
}

void ExactSum::AddScaled(bool negative, UInt128 magnitude, int exponent) {
    constexpr int TERM_BITS = 128;
    const auto shift = static_cast<unsigned>(exponent - UNIT_EXPONENT);
    const unsigned within = shift % DIGIT_BITS;
    std::int64_t* digit = m_digits.data() + shift / DIGIT_BITS;
    const std::int64_t sign = negative ? -1 : 1;
    const auto beyond =
        within == 0 ? 0U : static_cast<std::uint64_t>(magnitude >> (TERM_BITS - within));
    for (auto rest = magnitude << within; rest != 0; rest >>= DIGIT_BITS)
        *digit++ += sign * static_cast<std::int64_t>(static_cast<std::uint64_t>(rest) & DIGIT_MASK);
    if (beyond != 0)
        m_digits[shift / DIGIT_BITS + TERM_BITS / DIGIT_BITS] +=
            sign * static_cast<std::int64_t>(beyond);
    CountTerm();
}

void ExactSum::CountTerm() {
    if (++m_termsSinceCarry < MOST_TERMS)
        return;
    Carry(m_digits);
    m_termsSinceCarry = 0;
}

std::vector<unsigned char> ExactSum::Bytes() const {
    auto digits = m_digits;
    Carry(digits);
    std::vector<unsigned char> bytes;
    bytes.reserve(digits.size() * 4);
    for (const std::int64_t digit : digits)
        for (int shift = 0; shift < DIGIT_BITS; shift += 8)
            bytes.push_back(static_cast<unsigned char>(static_cast<std::uint64_t>(digit) >>
                                                       static_cast<unsigned>(shift)));
    return bytes;
}

} // namespace zelto
