#pragma once

#include <functional>

namespace zelto::test {

/// What happens to a process right before a system call.
enum class Disturbance {
    Kill,       ///< it ends
    FullDisk,   ///< the call is not made and answers ENOSPC
    BrokenDisk, ///< the call is not made and answers EIO
};

struct DisturbedRun {
    /// How the process met its disturbance.
    enum class Ending {
        Disturbed,
        Undisturbed, ///< it makes fewer calls of the kind
        CannotWatch, ///< this user may not watch processes
    };
    Ending ending = Ending::CannotWatch;
    int exitStatus = -1; ///< −1: it did not end by itself
    int calls = 0;       ///< of the kind, as far as it came
};

/// Runs `work` in a child process (it may become another program) and disturbs its `number`-th
/// system call, counted from 1 (0: none), of those that change files on the disk: opening for
/// writing, write, fsync, rename, link, unlink, mkdir, rmdir, chmod, truncate. Descriptors 0 to 2
/// do not count, nor what is on no disk.
DisturbedRun Disturb(int number, Disturbance disturbance, const std::function<void()>& work);

} // namespace zelto::test
