#include "zelto/raster/internal/RasterTransfer.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/DiskSync.h"
#include "zelto/baselib/internal/FilePaths.h"
#include "zelto/baselib/internal/FilesAside.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/internal/PyramidFiles.h"
#include "zelto/raster/internal/WorldFile.h"

#include <gdal_priv.h>
#include <vrtdataset.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zelto {

namespace {

namespace fs = std::filesystem;
using Files = std::vector<fs::path>;

/// Leaves the reason and answers false.
bool FailTransfer(const fs::path& path, const std::string& reason) {
    SetLastError(path.string() + ": " + reason);
    return false;
}

bool Contains(const Files& files, const fs::path& file) {
    return std::find(files.begin(), files.end(), file) != files.end();
}

GDALDatasetUniquePtr OpenQuietly(const fs::path& path) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    CPLErrorReset();
    return GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
}

bool BeginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

bool IsVirtualRaster(GDALDataset& dataset) {
    return dynamic_cast<VRTDataset*>(&dataset) != nullptr;
}

/// Whether a virtual raster names what it reads by paths that begin in its own folder.
bool ReadsBesideItself(GDALDataset& dataset) {
    char** const xml = IsVirtualRaster(dataset) ? dataset.GetMetadata("xml:VRT") : nullptr;
    return xml != nullptr && *xml != nullptr && std::strstr(*xml, "relativeToVRT=\"1\"") != nullptr;
}

/// The open raster's files as GDAL knows them and its world file; not the pyramid of another
/// image, nor what a virtual raster reads.
Files FilesOf(GDALDataset& dataset, const fs::path& path) {
    Files files = {path};
    const CPLStringList listed(dataset.GetFileList());
    const Files others = ForeignPyramidFiles(path);
    const Files pyramid = PyramidFilesBeside(path);
    const std::string appended = path.filename().string() + ".";
    for (int i = 0; i < listed.size(); ++i) {
        fs::path file = listed[i];
        if (IsSameFile(FolderOf(file), FolderOf(path)))
            file = path.parent_path() / file.filename(); // however GDAL spells it
        const bool isOwn = !IsVirtualRaster(dataset) || Contains(pyramid, file) ||
                           BeginsWith(file.filename().string(), appended);
        if (isOwn && !Contains(files, file) && !Contains(others, file))
            files.push_back(file);
    }
    const std::optional<fs::path> worldFile = OwnWorldFile(*dataset.GetDriver(), path);
    if (worldFile && !Contains(files, *worldFile))
        files.push_back(*worldFile);
    return files;
}

/// Names of what belongs to the raster that is replaced and stands beside it, so that nothing of
/// it goes on to count for the new one.
std::vector<std::wstring> NamesReplaced(const fs::path& path) {
    const GDALDatasetUniquePtr dataset = OpenQuietly(path);
    Files files = dataset ? FilesOf(*dataset, path) : Files{path};
    for (const fs::path& file : PyramidFilesBeside(path))
        files.push_back(file);
    std::vector<std::wstring> names;
    for (const fs::path& file : files)
        if (file != path && file.parent_path() == path.parent_path() && Exists(file))
            names.push_back(CommonFun::M2U(file.filename().string()));
    return names;
}

/// What a file of `from` is called when that becomes `to`; empty where it cannot be told.
fs::path NameFor(const fs::path& file, const fs::path& from, const fs::path& to) {
    if (file == from)
        return to;
    if (file.parent_path() != from.parent_path())
        return {};
    const std::string name = file.filename().string();
    for (const auto& [before, after] :
         {std::pair(from.filename().string() + ".", to.filename().string() + "."),
          std::pair(from.stem().string(), to.stem().string())})
        if (BeginsWith(name, before))
            return to.parent_path() / (after + name.substr(before.size()));
    return from.filename() == to.filename() ? to.parent_path() / name : fs::path();
}

/// A file under another name: itself where it only moves, else a copy. A link moves as what it
/// leads to.
bool MakeFile(const fs::path& file, const fs::path& made, TransferKind kind) {
    std::error_code ignored;
    const bool canBeLinked = kind == TransferKind::MOVE && !fs::is_symlink(file, ignored);
    if (canBeLinked && link(file.c_str(), made.c_str()) == 0)
        return true;
    errno = 0;
    return CPLCopyFile(made.c_str(), file.c_str()) == 0;
}

class Transfer {
  public:
    Transfer(GDALDriver& driver, fs::path from, fs::path to, TransferKind kind)
        : m_driver(driver), m_from(std::move(from)), m_to(std::move(to)), m_kind(kind) {}

    bool Run(bool overwrite) {
        std::error_code ignored;
        if (IsSameFile(m_from, m_to))
            return FailTransfer(m_to, "origin and destination are the same file");
        if (Exists(m_to)) // links stay links when what they lead to is replaced
            m_to = fs::canonical(m_to, ignored);
        if (!FindFiles() || !CanLeave() || !HasRoom(overwrite))
            return false;
        CNewFileSet made(CommonFun::M2U(m_to.string()));
        return made.IsOpen() && Make(CommonFun::U2M(made.GetTemporaryPath())) &&
               made.Commit(NamesReplaced(m_to)) && (m_kind == TransferKind::COPY || RemoveOrigin());
    }

  private:
    bool FindFiles() {
        const GDALDatasetUniquePtr dataset = OpenQuietly(m_from);
        if (!dataset)
            return FailTransfer(m_from, *CPLGetLastErrorMsg() != '\0' ? CPLGetLastErrorMsg()
                                                                      : "cannot be opened");
        if (ReadsBesideItself(*dataset) && !IsSameFile(FolderOf(m_from), FolderOf(m_to)))
            return FailTransfer(m_from, "what it reads is told by paths from its own folder");
        m_files = FilesOf(*dataset, m_from);
        for (const fs::path& file : m_files) {
            m_names.push_back(NameFor(file, m_from, m_to));
            if (m_names.back().empty())
                return FailTransfer(m_from, file.string() + " belongs to it, but has another name");
        }
        return true;
    }

    /// A move that could not remove its origin is better not begun.
    bool CanLeave() const {
        if (m_kind == TransferKind::COPY || access(FolderOf(m_from).c_str(), W_OK) == 0)
            return true;
        return FailTransfer(m_from, std::strerror(errno));
    }

    bool HasRoom(bool overwrite) const {
        const Files others = ForeignPyramidFiles(m_to);
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            // A new name of the same stem leaves the names of some side files as they are.
            if (IsSameFile(m_files[i], m_names[i]))
                return FailTransfer(m_to, "origin and destination share files");
            if (Contains(others, m_names[i]))
                return FailTransfer(m_names[i], "it belongs to another image");
            if (!overwrite && Exists(m_names[i]))
                return FailTransfer(m_names[i], "it exists");
        }
        return true;
    }

    /// Makes the files in the folder of a new set.
    bool Make(const fs::path& made) const {
        // Formats whose files name each other have a way of their own.
        if (m_driver.pfnCopyFiles != nullptr && m_files.size() > 1)
            return CopyByDriver(made);
        for (std::size_t i = 0; i < m_files.size(); ++i)
            if (!MakeFile(m_files[i], made.parent_path() / m_names[i].filename(), m_kind))
                return FailTransfer(m_to, errno != 0 ? std::strerror(errno) : "cannot be written");
        return true;
    }

    bool CopyByDriver(const fs::path& made) const {
        const FilesSetAside others(ForeignPyramidFiles(m_from));
        if (!others.Succeeded())
            return FailTransfer(m_from, "it cannot be told from another image of its stem");
        GdalWatch watch;
        return watch.Succeeded(m_driver.CopyFiles(made.c_str(), m_from.c_str()), m_to.string());
    }

    /// The main file first: then the rest is no raster any more.
    bool RemoveOrigin() const {
        for (const fs::path& file : m_files)
            if (unlink(file.c_str()) != 0 && errno != ENOENT)
                return FailTransfer(file, std::strerror(errno));
        return SyncFolder(m_from.parent_path()) || FailTransfer(m_from, std::strerror(errno));
    }

    GDALDriver& m_driver;
    fs::path m_from;
    fs::path m_to;
    TransferKind m_kind;
    Files m_files; ///< of the origin, the main one first
    Files m_names; ///< what they will be called
};

} // namespace

bool TransferRaster(GDALDriver& driver, const fs::path& from, const fs::path& to, TransferKind kind,
                    bool overwrite) {
    return Transfer(driver, from, to, kind).Run(overwrite);
}

} // namespace zelto
