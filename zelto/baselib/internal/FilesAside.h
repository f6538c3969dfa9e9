#pragma once

#include "zelto/baselib/internal/FileSetBackup.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace zelto {

/// Files of one folder that are out of the way while others are made in their place, and come
/// back at the end unless they are dropped. When the process is killed in between, the next save
/// into the folder brings them back, as long as the first of them is missing.
class FilesSetAside {
  public:
    /// @param files those that do not exist are left out
    explicit FilesSetAside(const std::vector<std::filesystem::path>& files);
    ~FilesSetAside() { PutBack(); }
    FilesSetAside(const FilesSetAside&) = delete;
    FilesSetAside& operator=(const FilesSetAside&) = delete;

    /// Whether all could be moved; if not, none is.
    bool Succeeded() const { return m_succeeded; }
    /// Returns the files to their places, over what has been made there.
    void PutBack();
    /// The files are no longer wanted.
    void Drop();

  private:
    std::optional<FileSetBackup> m_backup;
    bool m_succeeded = true;
};

/// Copies of files, from which they can be restored.
class FileCopies {
  public:
    /// @param beside names the file in whose folder the copies are kept
    /// @param files those that do not exist are left out
    FileCopies(const std::filesystem::path& beside,
               const std::vector<std::filesystem::path>& files);

    /// Whether all could be copied.
    bool Succeeded() const { return m_succeeded; }
    /// Puts the copies in place of the files; none where copying failed.
    void Restore();

  private:
    HiddenFolder m_folder;
    std::vector<std::filesystem::path> m_files;
    bool m_succeeded = true;
};

} // namespace zelto
