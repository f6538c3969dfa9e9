#pragma once

#include <cstddef>
#include <cstdint>

namespace zelto::fuzz {

/// Sets the engine up for inputs by the thousand, once per process: GDAL registered and silent,
/// without side files and network, and work on one thread.
void PrepareEngine();

/// Ends the process, which makes the present input a finding, where `holds` is false.
/// @param rule what does not hold
void Require(bool holds, const char* rule);

/// Whether an input is one of those, one in `oneIn` by its bytes, for which a target does what
/// takes much longer than reading: writing, references, whole commands.
bool IsChosen(const std::uint8_t* data, std::size_t size, std::uint32_t oneIn);

/// Whether all inputs are, as in a replay of the corpus.
void ChooseAll(bool all);

} // namespace zelto::fuzz
