#pragma once

#include <filesystem>
#include <mutex>
#include <shared_mutex>

namespace zelto {

/// The hidden folders that this process works in, known in one place so that they can go when it
/// has to end in the middle of work.
class FoldersInUse {
  public:
    /// Keeps the end of the process off while a folder is made and added.
    static std::unique_lock<std::recursive_mutex> Lock();
    /// @return the number that the folder is known by
    static int Add(const std::filesystem::path& folder);
    /// The folder is gone, or will outlive the process.
    static void Forget(int number);

    /// Holds an end of the process off while files take their places.
    static std::shared_lock<std::shared_mutex> HoldEndOff();
    /// Whether the process is ending: no folder is made and no file put in place any more.
    static bool AreAbandoned();
    /// Removes all of them, with what others are just writing there; from now on they are
    /// abandoned. Waits for files that are taking their places.
    static void Abandon();
};

} // namespace zelto
