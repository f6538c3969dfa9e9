#include "zelto/baselib/NewFileSet.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/DiskSync.h"
#include "zelto/baselib/internal/FileSetBackup.h"
#include "zelto/baselib/internal/FoldersInUse.h"
#include "zelto/baselib/internal/HiddenFolder.h"
#include "zelto/baselib/internal/LastError.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using zelto::FileSetNames;

/// The file a path leads to: links stay links when their target is replaced.
fs::path ResolveLinks(const fs::path& path) {
    std::error_code ignored;
    const fs::path resolved = fs::canonical(path, ignored);
    return resolved.empty() ? path : resolved;
}

/// Things that are no regular files (a folder, a device) are not replaced, nor are protected ones.
bool CanBeReplaced(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return true;
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    return access(path.c_str(), W_OK) == 0;
}

/// A file keeps the permissions of the one it replaces. One that has another name already is not
/// new: it keeps its own.
bool TakePermissions(const fs::path& file, const fs::path& replaced) {
    struct stat own {};
    struct stat old {};
    if (stat(file.c_str(), &own) == 0 && own.st_nlink > 1)
        return true;
    return stat(replaced.c_str(), &old) != 0 || chmod(file.c_str(), old.st_mode & 07777U) == 0;
}

bool Exists(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

} // namespace

struct CNewFileSet::Files {
    fs::path main; ///< where the main file will be
    zelto::HiddenFolder folder;

    fs::path Parent() const { return main.parent_path(); }
    bool Fail() const;
    bool ReadNames(FileSetNames& names) const;
    bool Complete(const FileSetNames& names) const;
    bool MoveIn(const std::string& name) const;
    bool ReplaceSet(const FileSetNames& oldNames, const FileSetNames& newNames) const;
    bool Exchange(const FileSetNames& oldNames, const FileSetNames& newNames) const;
    bool Place(const FileSetNames& oldNames, const FileSetNames& newNames) const;
};

/// Notes the system's reason.
bool CNewFileSet::Files::Fail() const {
    zelto::SetLastError(main.string() + ": " + std::strerror(errno));
    return false;
}

/// The names of the new files, the main one first.
bool CNewFileSet::Files::ReadNames(FileSetNames& names) const {
    names = {main.filename().string()};
    std::error_code error;
    for (fs::directory_iterator entry(folder.Path(), error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().filename() != names.front())
            names.push_back(entry->path().filename().string());
    std::sort(names.begin() + 1, names.end());
    if (error)
        errno = error.value();
    return !error;
}

/// Gives the new files the permissions they will have and waits until they are on the disk.
bool CNewFileSet::Files::Complete(const FileSetNames& names) const {
    return std::all_of(names.begin(), names.end(), [this](const std::string& name) {
        const fs::path file = folder.Path() / name;
        const fs::path place = Parent() / name;
        return TakePermissions(file, place) && zelto::SyncFile(file);
    });
}

bool CNewFileSet::Files::MoveIn(const std::string& name) const {
    return std::rename((folder.Path() / name).c_str(), (Parent() / name).c_str()) == 0;
}

bool CNewFileSet::Files::ReplaceSet(const FileSetNames& oldNames,
                                    const FileSetNames& newNames) const {
    zelto::FileSetBackup backup(Parent(), oldNames, newNames);
    if (!backup.IsMade())
        return false;
    if (Exchange(oldNames, newNames)) {
        backup.Drop();
        return true;
    }
    const int reason = errno;
    backup.PutBack();
    errno = reason;
    return false;
}

/// Takes the main file away, then the side files that the new set lacks, moves the new side files
/// in and the main file last.
bool CNewFileSet::Files::Exchange(const FileSetNames& oldNames,
                                  const FileSetNames& newNames) const {
    for (const std::string& name : oldNames) {
        const bool isMain = name == oldNames.front();
        const bool isReplaced = std::find(newNames.begin(), newNames.end(), name) != newNames.end();
        if ((isMain || !isReplaced) && unlink((Parent() / name).c_str()) != 0 && errno != ENOENT)
            return false;
    }
    const fs::path parent = Parent();
    return zelto::SyncFolder(parent) &&
           std::all_of(newNames.begin() + 1, newNames.end(),
                       [this](const std::string& name) { return MoveIn(name); }) &&
           zelto::SyncFolder(parent) && MoveIn(newNames.front());
}

/// From the first name that changes to the last, which the end of the process waits for.
bool CNewFileSet::Files::Place(const FileSetNames& oldNames, const FileSetNames& newNames) const {
    const auto notNow = zelto::FoldersInUse::HoldEndOff();
    if (zelto::FoldersInUse::AreAbandoned()) {
        errno = ECANCELED;
        return false;
    }
    const bool isSingle = newNames.size() == 1 && std::none_of(oldNames.begin() + 1, oldNames.end(),
                                                               [this](const std::string& name) {
                                                                   return Exists(Parent() / name);
                                                               });
    const bool done = isSingle ? MoveIn(newNames.front()) : ReplaceSet(oldNames, newNames);
    return done && zelto::SyncFolder(Parent());
}

CNewFileSet::CNewFileSet(const std::wstring& mainFile) : m_files(std::make_unique<Files>()) {
    m_files->main = ResolveLinks(CommonFun::U2M(mainFile));
    if (!m_files->main.has_filename())
        errno = ENOENT;
    else if (CanBeReplaced(m_files->main))
        m_files->folder = zelto::HiddenFolder(m_files->Parent());
    if (!IsOpen())
        m_files->Fail();
}

CNewFileSet::~CNewFileSet() = default;

bool CNewFileSet::IsOpen() const {
    return m_files->folder.IsMade();
}

std::wstring CNewFileSet::GetTemporaryPath() const {
    return CommonFun::M2U((m_files->folder.Path() / m_files->main.filename()).string());
}

bool CNewFileSet::Commit(const std::vector<std::wstring>& oldFiles) {
    if (!IsOpen())
        return false;
    FileSetNames newNames;
    FileSetNames oldNames = {m_files->main.filename().string()};
    // Each once, whoever names it.
    const auto add = [&oldNames](const std::string& name) {
        if (std::find(oldNames.begin(), oldNames.end(), name) == oldNames.end())
            oldNames.push_back(name);
    };
    for (const std::wstring& name : oldFiles)
        add(CommonFun::U2M(name));
    if (!m_files->ReadNames(newNames) || !m_files->Complete(newNames))
        return m_files->Fail();
    // Side files that come into the place of others belong to what is replaced.
    for (const std::string& name : newNames)
        add(name);
    if (!m_files->Place(oldNames, newNames))
        return m_files->Fail();
    m_files->folder.Remove();
    return true;
}

void CNewFileSet::Restore(const std::wstring& mainFile) {
    const fs::path path = ResolveLinks(CommonFun::U2M(mainFile));
    const fs::path backup = zelto::FileSetBackup::PathFor(path);
    if (path.has_filename() && Exists(backup))
        zelto::FileSetBackup::PutBack(backup);
}

void CNewFileSet::AbandonAll() {
    zelto::FoldersInUse::Abandon();
}
