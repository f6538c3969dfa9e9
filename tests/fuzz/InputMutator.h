#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace zelto::fuzz {

using Input = std::vector<std::uint8_t>;

/// Makes new inputs of old ones: some bytes changed, left out or doubled, numbers replaced by
/// extreme ones, two inputs joined.
class InputMutator {
  public:
    /// @param inputs at least one
    InputMutator(std::vector<Input> inputs, unsigned int seed)
        : m_inputs(std::move(inputs)), m_random(seed) {}

    Input Next();

  private:
    /// 0 … count − 1; 0 for a count of 0.
    std::size_t Below(std::size_t count);
    const Input& AnyInput() { return m_inputs[Below(m_inputs.size())]; }
    void Change(Input& input);
    void WriteExtreme(Input& input);

    std::vector<Input> m_inputs;
    std::mt19937 m_random;
};

} // namespace zelto::fuzz
