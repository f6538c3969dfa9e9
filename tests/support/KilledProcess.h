#pragma once

#include <functional>

namespace zelto::test {

/// How a process ended that was to be killed.
enum class Ending {
    Killed,      ///< before the chosen system call
    Finished,    ///< on its own: it makes fewer calls of the kind
    CannotWatch, ///< this user may not watch processes
};

/// Runs `work` in a child process and kills it right before its `number`-th system call, counted
/// from 1, of those that change files: opening for writing, write, fsync, rename, link, unlink,
/// mkdir, rmdir, chmod, truncate. One thread only.
Ending KillBeforeSystemCall(int number, const std::function<void()>& work);

} // namespace zelto::test
