#pragma once

#include "zelto/baselib/ColorRamp.h"

#include <string>

namespace zelto::host {

/// Names of the ramps, separated by commas.
std::string RampNames();

/// A ramp by its name. Throws UsageError for a name that is none.
CColorRamp MakeRamp(const std::string& name);

} // namespace zelto::host
