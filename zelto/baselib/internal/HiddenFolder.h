#pragma once

#include <filesystem>
#include <string>

namespace zelto {

/// A new hidden folder, ".zelto-" and a random text, in which files are made before they take
/// their place in the folder around it. It is locked for as long as its owner lives, so that one
/// without a lock is known to be left over from a process that was killed. The destructor removes
/// it with all that is in it.
class HiddenFolder {
  public:
    /// Without a folder; see IsMade().
    HiddenFolder() = default;
    /// Made in `parent` (empty: the working folder). Leftovers of processes that are gone are
    /// removed from there first.
    explicit HiddenFolder(const std::filesystem::path& parent);
    ~HiddenFolder();
    HiddenFolder(HiddenFolder&& other) noexcept;
    HiddenFolder& operator=(HiddenFolder&& other) noexcept;

    /// False where the parent does not allow it; errno then has the reason.
    bool IsMade() const { return !m_path.empty(); }
    const std::filesystem::path& Path() const { return m_path; }
    /// Gives the folder another name in the same parent, under which it stays locked and is kept
    /// when the process ends early. False, with errno set, when that fails.
    bool Rename(const std::string& name);
    /// Removes the folder and its contents now.
    void Remove();
    /// Lets go of the folder, which stays.
    void Leave();

  private:
    friend HiddenFolder TakeOver(const std::filesystem::path& path);

    void Take(const std::filesystem::path& path, int lock);

    std::filesystem::path m_path;
    int m_lock = -1;  ///< descriptor of the folder, which holds the lock
    int m_number = 0; ///< the folder's among those in use
};

/// Takes over a hidden folder whose owner is gone; not made when it does not exist, or when its
/// owner lives.
HiddenFolder TakeOver(const std::filesystem::path& path);

} // namespace zelto
