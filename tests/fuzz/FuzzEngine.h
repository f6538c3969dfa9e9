#pragma once

namespace zelto::fuzz {

/// Sets the engine up for inputs by the thousand, once per process: GDAL registered and silent,
/// without side files and network, and work on one thread.
void PrepareEngine();

/// Ends the process, which makes the present input a finding, where `holds` is false.
/// @param rule what does not hold
void Require(bool holds, const char* rule);

} // namespace zelto::fuzz
