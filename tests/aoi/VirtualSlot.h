#pragma once

#include <bit>
#include <cstddef>

namespace zelto::test {

/// Position of a virtual operation in its class's table, counted without the destructor. A
/// pointer to a virtual member holds its offset in the table plus one; the destructor takes two
/// places there.
template <typename Member>
std::ptrdiff_t SlotOf(Member member) {
    struct Representation {
        std::ptrdiff_t offsetPlusOne;
        std::ptrdiff_t adjustment;
    };
    const auto representation = std::bit_cast<Representation>(member);
    return (representation.offsetPlusOne - 1) / std::ptrdiff_t{sizeof(void*)} - 1;
}

} // namespace zelto::test
