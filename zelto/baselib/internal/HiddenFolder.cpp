#include "zelto/baselib/internal/HiddenFolder.h"

#include "zelto/baselib/internal/FileSetBackup.h"
#include "zelto/baselib/internal/FoldersInUse.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zelto {

namespace fs = std::filesystem;

namespace {

constexpr const char* PREFIX = ".zelto-";

/// Opens the folder and locks it; -1 when it is not there, is no folder or is locked by another.
int Lock(const fs::path& path) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder >= 0 && flock(folder, LOCK_EX | LOCK_NB) == 0)
        return folder;
    if (folder >= 0)
        close(folder);
    return -1;
}

/// Whether the path still leads to the open folder.
bool IsStillThere(const fs::path& path, int folder) {
    struct stat opened {};
    struct stat named {};
    return fstat(folder, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// What killed processes have left in the folder. A folder that keeps a set of files puts them
/// back; of the others nothing is worth keeping.
void RemoveLeftovers(const fs::path& parent) {
    std::vector<fs::path> leftovers;
    std::error_code error;
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().filename().string().rfind(PREFIX, 0) == 0)
            leftovers.push_back(entry->path());
    for (const fs::path& path : leftovers) {
        if (FileSetBackup::IsOne(path))
            FileSetBackup::PutBack(path);
        else
            TakeOver(path).Remove();
    }
}

} // namespace

HiddenFolder::HiddenFolder(const fs::path& parent) {
    const fs::path place = parent.empty() ? fs::path(".") : parent;
    RemoveLeftovers(place);
    // Another process may take the new folder for a leftover until it is locked.
    constexpr int MOST_TRIES = 100;
    for (int tries = 0; tries < MOST_TRIES && !IsMade(); ++tries) {
        const auto inUse = FoldersInUse::Lock();
        if (FoldersInUse::AreAbandoned()) {
            errno = ECANCELED;
            return;
        }
        std::string pattern = (place / (std::string(PREFIX) + "XXXXXX")).string();
        if (mkdtemp(pattern.data()) == nullptr)
            return;
        const int lock = Lock(pattern);
        if (lock >= 0 && IsStillThere(pattern, lock))
            Take(pattern, lock);
        else if (lock >= 0)
            close(lock);
    }
}

HiddenFolder::~HiddenFolder() {
    Remove();
}

HiddenFolder::HiddenFolder(HiddenFolder&& other) noexcept
    : m_path(std::exchange(other.m_path, {})),
      m_lock(std::exchange(other.m_lock, -1)),
      m_number(other.m_number) {}

HiddenFolder& HiddenFolder::operator=(HiddenFolder&& other) noexcept {
    std::swap(m_path, other.m_path);
    std::swap(m_lock, other.m_lock);
    std::swap(m_number, other.m_number);
    return *this;
}

bool HiddenFolder::Rename(const std::string& name) {
    const fs::path renamed = m_path.parent_path() / name;
    if (std::rename(m_path.c_str(), renamed.c_str()) != 0)
        return false;
    m_path = renamed;
    FoldersInUse::Forget(m_number);
    return true;
}

void HiddenFolder::Remove() {
    if (!IsMade())
        return;
    const int reason = errno;
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
    Leave();
    errno = reason; // of the failure that may have led here
}

void HiddenFolder::Take(const fs::path& path, int lock) {
    m_path = path;
    m_lock = lock;
    m_number = FoldersInUse::Add(path);
}

void HiddenFolder::Leave() {
    if (IsMade()) {
        FoldersInUse::Forget(m_number);
        close(m_lock);
    }
    m_lock = -1;
    m_path.clear();
}

HiddenFolder TakeOver(const fs::path& path) {
    HiddenFolder folder;
    const int lock = Lock(path);
    if (lock >= 0 && IsStillThere(path, lock))
        folder.Take(path, lock);
    else if (lock >= 0)
        close(lock);
    return folder;
}

} // namespace zelto
