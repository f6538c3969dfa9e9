#include "tests/fuzz/InputMutator.h"

#include <algorithm>

namespace zelto::fuzz {

namespace {

constexpr std::size_t LONGEST_INPUT = 4096;

} // namespace

Input InputMutator::Next() {
    Input input = AnyInput();
    for (std::size_t changes = 1 + Below(4); changes > 0; --changes)
        Change(input);
    input.resize(std::min(input.size(), LONGEST_INPUT));
    return input;
}

std::size_t InputMutator::Below(std::size_t count) {
    return count == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random);
}

void InputMutator::Change(Input& input) {
    const std::size_t at = Below(input.size() + 1);
    const std::size_t length = Below(std::min<std::size_t>(64, input.size() - at) + 1);
    const auto first = input.begin() + static_cast<std::ptrdiff_t>(at);
    const auto last = first + static_cast<std::ptrdiff_t>(length);
    switch (Below(7)) {
    case 0: // a bit
        if (at < input.size())
            input[at] = static_cast<std::uint8_t>(input[at] ^ 1U << Below(8));
        break;
    case 1:
        std::generate(first, last, [&] { return static_cast<std::uint8_t>(Below(256)); });
        break;
    case 2:
        input.erase(first, last);
        break;
    case 3: {
        const Input part(first, last);
        input.insert(last, part.begin(), part.end());
        break;
    }
    case 4: {
        const Input& other = AnyInput();
        input.resize(at);
        input.insert(input.end(),
                     other.begin() + static_cast<std::ptrdiff_t>(Below(other.size() + 1)),
                     other.end());
        break;
    }
    case 5:
        input.resize(at);
        break;
    default:
        WriteExtreme(input);
    }
}

/// A little-endian number that is at an end of its range.
void InputMutator::WriteExtreme(Input& input) {
    constexpr std::uint64_t EXTREMES[] = {0,
                                          1,
                                          0x7F,
                                          0x80,
                                          0xFFFF,
                                          0x7FFFFFFF,
                                          0x80000000,
                                          0xFFFFFFFF,
                                          0x7FF0000000000000,
                                          0x7FEFFFFFFFFFFFFF,
                                          0xFFFFFFFFFFFFFFFF};
    std::uint64_t value = EXTREMES[Below(std::size(EXTREMES))];
    const std::size_t size = std::size_t{1} << Below(4);
    const std::size_t at = Below(input.size());
    for (std::size_t i = at; i < std::min(at + size, input.size()); ++i, value >>= 8U)
        input[i] = static_cast<std::uint8_t>(value);
}

} // namespace zelto::fuzz
