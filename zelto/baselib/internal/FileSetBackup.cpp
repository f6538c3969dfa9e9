#include "zelto/baselib/internal/FileSetBackup.h"

#include "zelto/baselib/internal/DiskSync.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <functional>
#include <system_error>
#include <unistd.h>

namespace zelto {

namespace fs = std::filesystem;

namespace {

constexpr const char* BACKUP_PREFIX = ".zelto-old-";

/// The list of names inside: the main file, then the other files of the new set.
constexpr const char* LIST = ".zelto-set";

/// Another link to the file, or a copy where the file system has no links.
bool Keep(const fs::path& file, const fs::path& kept) {
    if (link(file.c_str(), kept.c_str()) == 0)
        return true;
    std::error_code error;
    fs::copy_file(file, kept, error);
    if (error)
        errno = error.value();
    return !error && SyncFile(kept);
}

/// Those that do not exist are passed over.
bool KeepAll(const fs::path& parent, const fs::path& folder, const FileSetNames& names) {
    for (const std::string& name : names) {
        const fs::path file = parent / name;
        const fs::path kept = folder / name;
        std::error_code ignored;
        if (fs::exists(file, ignored) && !Keep(file, kept))
            return false;
    }
    return true;
}

bool WriteList(const fs::path& folder, const std::string& mainFile, const FileSetNames& names) {
    std::ofstream list(folder / LIST, std::ios::binary);
    list << mainFile << '\n';
    for (const std::string& name : names)
        if (name != mainFile)
            list << name << '\n';
    list.close();
    return list && SyncFile(folder / LIST);
}

FileSetNames ReadList(const fs::path& folder) {
    FileSetNames names;
    std::ifstream list(folder / LIST, std::ios::binary);
    for (std::string name; std::getline(list, name);)
        // Names in this folder only, whoever has written the list.
        if (!name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos)
            names.push_back(name);
    return names;
}

/// Files of the new set that the old one does not have would be read with it.
void RemoveNewOnes(const fs::path& folder, const fs::path& parent, const FileSetNames& names) {
    std::error_code ignored;
    for (const std::string& name : names)
        if (!fs::exists(folder / name, ignored))
            fs::remove(parent / name, ignored);
}

/// Moves the kept files to their places, the main file last; a set that is new had none.
bool MoveBack(const fs::path& folder, const fs::path& parent, const std::string& mainFile) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().filename() != LIST && entry->path().filename() != mainFile)
            files.push_back(entry->path());
    if (fs::exists(folder / mainFile, error))
        files.push_back(folder / mainFile);
    return !error && std::all_of(files.begin(), files.end(), [&](const fs::path& file) {
        return std::rename(file.c_str(), (parent / file.filename()).c_str()) == 0;
    });
}

bool BringBack(const fs::path& folder) {
    const FileSetNames names = ReadList(folder);
    const fs::path parent = folder.parent_path();
    if (names.empty())
        return false;
    RemoveNewOnes(folder, parent, {names.begin() + 1, names.end()});
    return MoveBack(folder, parent, names.front()) && SyncFolder(parent);
}

} // namespace

FileSetBackup::FileSetBackup(const fs::path& parent, const FileSetNames& oldNames,
                             const FileSetNames& newNames)
    : m_folder(parent) {
    if (!m_folder.IsMade())
        return;
    const fs::path& folder = m_folder.Path();
    const std::string name = PathFor(parent / oldNames.front()).filename();
    const bool kept = KeepAll(parent, folder, oldNames) &&
                      WriteList(folder, oldNames.front(), newNames) && SyncFolder(folder) &&
                      m_folder.Rename(name) && SyncFolder(parent);
    if (!kept)
        m_folder.Remove();
}

bool FileSetBackup::PutBack() {
    const bool back = BringBack(m_folder.Path());
    if (back)
        m_folder.Remove();
    else
        m_folder.Leave(); // for the next opening or save
    return back;
}

bool FileSetBackup::IsOne(const fs::path& path) {
    return path.filename().string().rfind(BACKUP_PREFIX, 0) == 0;
}

fs::path FileSetBackup::PathFor(const fs::path& mainFile) {
    // A long name leaves no room for the prefix.
    constexpr std::size_t LONGEST = 200;
    std::string name = mainFile.filename().string();
    if (name.size() > LONGEST)
        name = name.substr(0, LONGEST) + '-' + std::to_string(std::hash<std::string>()(name));
    return mainFile.parent_path() / (BACKUP_PREFIX + name);
}

void FileSetBackup::PutBack(const fs::path& folder) {
    HiddenFolder leftover = TakeOver(folder);
    if (!leftover.IsMade())
        return;
    const FileSetNames names = ReadList(folder);
    const fs::path list = folder / LIST;
    std::error_code error;
    const bool isWhole = !names.empty() && fs::exists(folder.parent_path() / names.front(), error);
    // The list was there before the folder got its name.
    const bool isBeingRemoved = !fs::exists(list, error) && !error;
    if (isWhole || isBeingRemoved || BringBack(folder))
        leftover.Remove();
    else
        leftover.Leave();
}

} // namespace zelto
