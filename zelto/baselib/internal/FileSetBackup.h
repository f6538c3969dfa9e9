#pragma once

#include "zelto/baselib/internal/HiddenFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zelto {

/// Names of files in one folder that belong together; the first is the one they are opened by.
using FileSetNames = std::vector<std::string>;

/// The old files of a set while new ones take their places. Beside the set stands the folder
/// ".zelto-old-" and the name of its main file. In it are the old files, as further links to
/// them or copies, and a list of the names of the new ones; it appears under this name when it
/// is complete. As long as the main file is missing from its place, the old set is whole in
/// here, and the next opening or save of it puts it back.
class FileSetBackup {
  public:
    /// @param parent folder of the set
    /// @param oldNames the files that will be replaced or removed, the main file first; those
    ///        that do not exist are passed over
    /// @param newNames the files that will be there
    FileSetBackup(const std::filesystem::path& parent, const FileSetNames& oldNames,
                  const FileSetNames& newNames);

    /// False, with errno set, when it could not be made; nothing has changed then.
    bool IsMade() const { return m_folder.IsMade(); }
    /// The new set is in place: the old files are no longer needed.
    void Drop() { m_folder.Remove(); }
    /// Brings the old set back, over what there is of the new one.
    bool PutBack();

    /// Whether a path has the name of such a folder.
    static bool IsOne(const std::filesystem::path& path);
    /// Where the backup of a set stands, told by the path of its main file.
    static std::filesystem::path PathFor(const std::filesystem::path& mainFile);
    /// Completes what a killed process has begun: brings the old set back if its main file is
    /// missing, and removes the folder. Does nothing when the owner of the folder lives.
    static void PutBack(const std::filesystem::path& folder);

  private:
    HiddenFolder m_folder;
};

} // namespace zelto
