#pragma once

#include "zelto/Export.h"

#include <memory>
#include <string>
#include <vector>

/// One new file, or several that belong together (a raster with its side files, a shapefile),
/// that appear under their names only when all of them are complete. An addition to the fixed
/// interface: every writer of the engine goes this way, and hosts may.
///
/// The files are made in a hidden folder beside their place, ".zelto-" and a random text, under
/// the names they will have. Commit() puts them in place:
/// - A single file that replaces a single file, or none, is renamed over it: a reader finds the
///   old or the new one at every moment.
/// - Of several files the main one, which the set is opened by, is taken away first and comes
///   last. In between, a reader finds none, and the old files are whole in the folder
///   ".zelto-old-" and the main file's name beside it. When a process is killed at that moment,
///   the next opening or save through the engine puts them back; Restore() does it on request.
///
/// Contents and names are on the disk before anything old goes. Files keep the permissions of
/// those they replace (further hard links their own), and links to a file lead to the new one.
/// Hidden folders that killed processes have left are removed by the next save into the same
/// folder. Reasons of failures are told by CGISDataSource::GetLastErrorText().
class ZELTO_API CNewFileSet {
  public:
    /// Makes the hidden folder.
    /// @param mainFile path of the file that the set is opened by; may exist
    explicit CNewFileSet(const std::wstring& mainFile);
    /// Without Commit() nothing remains of the new files, and the old ones stay.
    ~CNewFileSet();
    CNewFileSet(const CNewFileSet&) = delete;
    CNewFileSet& operator=(const CNewFileSet&) = delete;

    /// False where no file can be made: the folder cannot be written, or at the path stands
    /// something that is no regular file or may not be written.
    bool IsOpen() const;
    /// Where the new main file is to be made. Whatever else is made beside it belongs to the set.
    std::wstring GetTemporaryPath() const;
    /// Puts the new files in place; they must be closed.
    /// @param oldFiles names, without a folder, of files beside the main one that belong to the
    ///        old set: those that the new set lacks go with it
    /// @return false, with the old files as they were, when that failed
    bool Commit(const std::vector<std::wstring>& oldFiles = {});

    /// Puts a set back whose replacing was interrupted by the end of its process. Costs one look
    /// into the folder where there is none.
    static void Restore(const std::wstring& mainFile);

    /// For a program that must end in the middle of its work, as on Ctrl-C: removes what all
    /// unfinished sets of the process have made so far, also while other threads write there,
    /// and lets no set begin or take its place any more. One that is taking its place does so to
    /// the end first. The process should end right after.
    static void AbandonAll();

  private:
    struct Files;
    std::unique_ptr<Files> m_files;
};
