#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/FilesAside.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/PyramidFiles.h"
#include "zelto/raster/internal/WorldFile.h"

#include <gdal_priv.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

namespace {

namespace fs = std::filesystem;

/// The raster driver that recognises a path; vector drivers must not answer, or they would
/// delete a table that happens to have the name.
GDALDriver* IdentifyDriver(const std::string& path) {
    if (!zelto::MayBeOpened(path))
        return nullptr;
    return GDALDriver::FromHandle(
        GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, nullptr, nullptr));
}

bool IsSameFile(const std::string& a, const std::string& b) {
    std::error_code ignored;
    return a == b || fs::equivalent(a, b, ignored);
}

/// The image's file and those that GDAL counts as its own.
CPLStringList FilesOf(const std::string& path) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    return CPLStringList(dataset ? dataset->GetFileList() : nullptr);
}

/// The names that the files of `from` get under the name `to`.
CPLStringList NewNames(const std::string& from, const std::string& to, CPLStringList files) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    return CPLStringList(CPLCorrespondingPaths(from.c_str(), to.c_str(), files.List()));
}

/// Whether moving or copying would put a file onto itself: a new name of the same stem leaves
/// the names of some side files as they are.
bool WouldMeetItself(const std::string& from, const std::string& to) {
    const CPLStringList files = FilesOf(from);
    const CPLStringList names = NewNames(from, to, files);
    for (int i = 0; i < std::min(files.size(), names.size()); ++i)
        if (IsSameFile(files[i], names[i]))
            return true;
    return false;
}

/// What belongs to the image that is replaced, so that nothing of it goes on to count for the
/// new one.
std::vector<fs::path> FilesReplaced(GDALDriver& driver, const std::string& path) {
    std::vector<fs::path> files = {path};
    const CPLStringList own = FilesOf(path);
    files.insert(files.end(), own.List(), own.List() + own.size());
    const std::vector<fs::path> others = zelto::ForeignPyramidFiles(path);
    for (const fs::path& file : zelto::PyramidFilesBeside(path))
        files.push_back(file);
    if (const std::optional<fs::path> worldFile = zelto::OwnWorldFile(driver, path))
        files.push_back(*worldFile);
    std::erase_if(files, [&](const fs::path& file) {
        return std::find(others.begin(), others.end(), file) != others.end();
    });
    return files;
}

bool Fail(const std::string& path, const char* reason) {
    zelto::SetLastError(path + ": " + reason);
    return false;
}

/// Replaces `to` by what the operation makes of `from`; when it fails, what stood there is back.
/// @param operation takes the driver, the new and the old path and the world file of the old,
///        if any
template <typename Operation>
bool Replace(GDALDriver& driver, const std::string& from, const std::string& to,
             Operation operation) {
    if (IsSameFile(from, to))
        return Fail(to, "origin and destination are the same file");
    if (WouldMeetItself(from, to))
        return Fail(to, "origin and destination share files");
    const zelto::FilesSetAside others(zelto::ForeignPyramidFiles(from));
    zelto::FilesSetAside replaced(FilesReplaced(driver, to));
    if (!others.Succeeded() || !replaced.Succeeded())
        return Fail(to, "it cannot be replaced");
    zelto::GdalWatch watch;
    if (!watch.Succeeded(operation(driver, to, from, zelto::OwnWorldFile(driver, from)), from))
        return false;
    replaced.Drop();
    return true;
}

fs::path WorldFileOf(const std::string& image) {
    return fs::path(image).replace_extension(".tfw");
}

bool Move(GDALDriver& driver, const std::string& to, const std::string& from,
          const std::optional<fs::path>& worldFile) {
    if (driver.Rename(to.c_str(), from.c_str()) != CE_None)
        return false;
    // GDAL has moved it where the image needs it.
    std::error_code ignored;
    if (worldFile && fs::exists(*worldFile, ignored))
        fs::rename(*worldFile, WorldFileOf(to), ignored);
    return true;
}

bool Copy(GDALDriver& driver, const std::string& to, const std::string& from,
          const std::optional<fs::path>& worldFile) {
    const CPLStringList names = NewNames(from, to, FilesOf(from));
    std::error_code ignored;
    if (driver.CopyFiles(to.c_str(), from.c_str()) != CE_None) {
        for (int i = 0; i < names.size(); ++i)
            fs::remove(names[i], ignored);
        return false;
    }
    if (worldFile)
        fs::copy_file(*worldFile, WorldFileOf(to), fs::copy_options::overwrite_existing, ignored);
    return true;
}

/// @param operation as Replace() takes it
template <typename Operation>
GISError MoveOrCopy(const wchar_t* oldPath, const wchar_t* newPath, Operation operation) {
    if (oldPath == nullptr || newPath == nullptr)
        return GIS_FAILED;
    const std::string from = CommonFun::U2M(oldPath);
    const std::string to = CommonFun::U2M(newPath);
    // The destination decides about the driver, so that a data set never moves to a name its
    // driver would not read back.
    GDALDriver* driver = IdentifyDriver(to);
    if (driver == nullptr)
        return GIS_NOT_SUPPORTED;
    return Replace(*driver, from, to, operation) ? GIS_SUCCESS : GIS_FAILED;
}

} // namespace

GISError CRasterSource::DeleteFileW(const wchar_t* path) {
    if (path == nullptr)
        return GIS_FAILED;
    const std::string name = CommonFun::U2M(path);
    GDALDriver* driver = IdentifyDriver(name);
    if (driver == nullptr)
        return GIS_NOT_SUPPORTED;
    const std::optional<fs::path> worldFile = zelto::OwnWorldFile(*driver, name);
    const zelto::FilesSetAside others(zelto::ForeignPyramidFiles(name));
    if (!others.Succeeded()) {
        Fail(name, "it cannot be removed without the pyramid of another image");
        return GIS_FAILED;
    }
    zelto::GdalWatch watch;
    if (!watch.Succeeded(driver->Delete(name.c_str()), name))
        return GIS_FAILED;
    std::error_code ignored;
    if (worldFile)
        fs::remove(*worldFile, ignored);
    return GIS_SUCCESS;
}

GISError CRasterSource::RenameFile(const wchar_t* oldPath, const wchar_t* newPath) {
    return MoveOrCopy(oldPath, newPath, Move);
}

GISError CRasterSource::CopyFiles(const wchar_t* oldPath, const wchar_t* newPath) {
    return MoveOrCopy(oldPath, newPath, Copy);
}
