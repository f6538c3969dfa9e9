#pragma once

namespace zelto::host {

/// Lets GDAL's errors be logged in "zelto" below the user's folder for such things,
/// $XDG_STATE_HOME or ~/.local/state, and nowhere where there is neither. A log of a mebibyte
/// becomes gdal.log.1, in place of the one before, and a new one is begun. Call it before the
/// engine is used.
void LogBelowStateFolder();

} // namespace zelto::host
