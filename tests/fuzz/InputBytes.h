#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zelto::fuzz {

/// Takes values off the bytes of an input, from the front. Past the end everything is 0, so that
/// every input means something.
class InputBytes {
  public:
    InputBytes(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

    bool IsEmpty() const { return m_next == m_end; }
    std::uint8_t Byte();
    /// 0 … count − 1.
    int Below(int count) { return Byte() % count; }
    bool Flag() { return (Byte() & 1U) != 0; }
    std::int32_t Integer();
    /// An integer of the kinds that counts and indices are: small ones mostly, and the extremes.
    int Count();
    /// Any double, from its eight bytes.
    double RawNumber();
    /// A double of the kinds that coordinates are: small whole and half numbers mostly, and all
    /// that is special.
    double Number();
    std::vector<double> Numbers(std::size_t count);
    /// What is left.
    std::string Rest();
    /// Up to a zero byte or the end.
    std::string Text();

  private:
    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
};

} // namespace zelto::fuzz
