#include "zelto/baselib/internal/DiskSync.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zelto {

namespace {

bool Sync(const char* path, int flags) {
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | flags);
    if (descriptor < 0)
        return false;
    const bool done = fsync(descriptor) == 0;
    const int reason = errno;
    close(descriptor);
    errno = reason;
    return done;
}

} // namespace

bool SyncFile(const std::filesystem::path& file) {
    return Sync(file.c_str(), 0);
}

bool SyncFolder(const std::filesystem::path& folder) {
    return Sync(folder.empty() ? "." : folder.c_str(), O_DIRECTORY) || errno == EINVAL ||
           errno == ENOTSUP || errno == EACCES;
}

} // namespace zelto
