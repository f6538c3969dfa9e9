#pragma once

#include "zelto/datasource/DataProgress.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zelto::cli {

/// Adds --jobs: how many files are worked on at once. 0, the default, takes the processors.
CLI::Option* AddJobsOption(CLI::App& command, int& jobs);

/// Runs `work` for every file, several at a time, each in a thread of its own; a single file in
/// the calling one, with its own progress on the terminal. Of several the progress is that of the
/// files. What throws Failure or UsageError is put aside, and the other files are done.
/// @param work is told the position of a file; it cancels where the progress says so
/// @param jobs 0: as many as processors
/// @return the lines of the failures, in the order of the files. Throws what else `work` threw,
///         UsageError of a single file, and Interruption.
std::vector<std::string>
ForEachFile(const std::vector<std::string>& files, int jobs,
            const std::function<void(std::size_t file, CDataProgress& progress)>& work);

/// Tells the failures, if there are any, after what was printed, and throws the last as Failure.
void TellFailures(const std::vector<std::string>& failures);

} // namespace zelto::cli
