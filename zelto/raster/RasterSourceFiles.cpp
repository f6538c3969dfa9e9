#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/FilesAside.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/raster/RasterFiles.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/PyramidFiles.h"
#include "zelto/raster/internal/RasterTransfer.h"
#include "zelto/raster/internal/WorldFile.h"

#include <gdal_priv.h>

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

/// @param decides the path whose driver moves or copies: a data set never goes to a name that its
///        driver would not read back, where the new path does
GISError TransferFile(const wchar_t* oldPath, const wchar_t* newPath, const wchar_t* decides,
                      zelto::TransferKind kind, bool overwrite) {
    return zelto::Operation(GIS_FAILED, [&] {
        if (oldPath == nullptr || newPath == nullptr)
            return GIS_FAILED;
        GDALDriver* driver = IdentifyDriver(CommonFun::U2M(decides));
        if (driver == nullptr)
            return GIS_NOT_SUPPORTED;
        const bool done = zelto::TransferRaster(*driver, CommonFun::U2M(oldPath),
                                                CommonFun::U2M(newPath), kind, overwrite);
        return done ? GIS_SUCCESS : GIS_FAILED;
    });
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
        zelto::SetLastError(name + ": it cannot be removed without the pyramid of another image");
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
    return TransferFile(oldPath, newPath, newPath, zelto::TransferKind::MOVE, true);
}

GISError CRasterSource::CopyFiles(const wchar_t* oldPath, const wchar_t* newPath) {
    return TransferFile(oldPath, newPath, newPath, zelto::TransferKind::COPY, true);
}

GISError CRasterFiles::Move(const wchar_t* oldPath, const wchar_t* newPath, bool overwrite) {
    return TransferFile(oldPath, newPath, oldPath, zelto::TransferKind::MOVE, overwrite);
}

GISError CRasterFiles::Copy(const wchar_t* oldPath, const wchar_t* newPath, bool overwrite) {
    return TransferFile(oldPath, newPath, oldPath, zelto::TransferKind::COPY, overwrite);
}
