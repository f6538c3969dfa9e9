#pragma once

namespace zelto::host {

/// Lets GDAL's errors be logged in "zelto" below the user's folder for such things,
/// $XDG_STATE_HOME or ~/.local/state, and nowhere where there is neither. Call it before the
/// engine is used.
void LogBelowStateFolder();

} // namespace zelto::host
