#pragma once

namespace zelto::cli {

/// Whether a command line is for a cluster: `stats`, `render` or `pyramids` with --cluster.
bool IsForCluster(int argc, char** argv);

/// Puts the Python package, which works on clusters, in place of
/// this program. Signals that were held are let through again.
/// @return only when there is no Python: the exit status, after a message
int HandOverToPython(int argc, char** argv);

} // namespace zelto::cli
