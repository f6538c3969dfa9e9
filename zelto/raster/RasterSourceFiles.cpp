#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

namespace {

/// The raster driver that recognises a path; vector drivers must not answer, or they would
/// delete a table that happens to have the name.
GDALDriver* IdentifyDriver(const std::string& path) {
    return GDALDriver::FromHandle(
        GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, nullptr, nullptr));
}

/// @param operation takes the driver and the new and the old path
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
    return operation(*driver, to.c_str(), from.c_str()) == CE_None ? GIS_SUCCESS : GIS_FAILED;
}

} // namespace

GISError CRasterSource::DeleteFileW(const wchar_t* path) {
    if (path == nullptr)
        return GIS_FAILED;
    const std::string name = CommonFun::U2M(path);
    GDALDriver* driver = IdentifyDriver(name);
    if (driver == nullptr)
        return GIS_NOT_SUPPORTED;
    return driver->Delete(name.c_str()) == CE_None ? GIS_SUCCESS : GIS_FAILED;
}

GISError CRasterSource::RenameFile(const wchar_t* oldPath, const wchar_t* newPath) {
    return MoveOrCopy(oldPath, newPath, [](GDALDriver& driver, const char* to, const char* from) {
        return driver.Rename(to, from);
    });
}

GISError CRasterSource::CopyFiles(const wchar_t* oldPath, const wchar_t* newPath) {
    return MoveOrCopy(oldPath, newPath, [](GDALDriver& driver, const char* to, const char* from) {
        return driver.CopyFiles(to, from);
    });
}
