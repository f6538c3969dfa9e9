#pragma once

namespace zelto::cli {

/// Runs the whole program once: takes the process's standard streams and its signals, and does
/// what the command line says.
/// @return the exit status
int RunProgram(int argc, char** argv);

} // namespace zelto::cli
