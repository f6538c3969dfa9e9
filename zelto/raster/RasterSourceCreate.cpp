#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/FilesAside.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/PyramidFiles.h"
#include "zelto/raster/internal/RasterLayout.h"
#include "zelto/raster/internal/RasterLog.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

namespace {

/// Pixel data beyond this many megabytes is written as BigTIFF: 2.8 gigabytes, which leaves
/// room below the 4 of classic TIFF for pyramids and tags.
constexpr double LARGEST_CLASSIC_TIFF = 2.8 * 1024;

bool CanCreate(GDALDriver& driver) {
    return CPLFetchBool(driver.GetMetadata(), GDAL_DCAP_CREATE, false);
}

bool IsGTiffFamily(RasterDataFormat format) {
    return format == RDF_GTiff || format == RDF_GTiffVariant39 || format == RDF_GTiffVariant40;
}

/// Deletes what stands at the path; a failure is logged under the function's name. Nothing stays
/// that would count as part of the new image: once the old one is gone, the driver does not know
/// its world file any more, nor does a pyramid tell that its image has been replaced.
bool DeleteExisting(const std::wstring& path, int line, const wchar_t* function) {
    const std::string name = CommonFun::U2M(path);
    const zelto::FilesSetAside others(zelto::ForeignPyramidFiles(name));
    zelto::GdalWatch watch;
    if (!watch.Succeeded(GDALDriver::QuietDelete(name.c_str()), name)) {
        zelto::LogRaster(zelto::LOG_CREATION, line, function,
                         L"删除已存在的文件失败: " + path +
                             L"，可能文件已经打开，或者无权限删除文件！");
        return false;
    }
    std::error_code ignored;
    for (const std::filesystem::path& file : zelto::PyramidFilesBeside(name))
        std::filesystem::remove(file, ignored);
    return true;
}

/// Deletes the world file of an earlier image of this name.
void DeleteStaleWorldFile(const std::wstring& path) {
    std::error_code ignored;
    std::filesystem::remove(CommonFun::U2M(CommonFun::GetFilePahWithoutExtension(path) + L".tfw"),
                            ignored);
}

/// Notes what a format does not hold; the image is created all the same.
void NoteUnwritten(const std::wstring& path, const char* what, bool written) {
    if (!written)
        zelto::LogRaster(zelto::LOG_NOTICE, __LINE__, L"CRasterSource::CreateRaster",
                         path + L": its " + CommonFun::M2U(what) + L" is not written");
}

/// Size of the pixels in megabytes.
double PixelMegabytes(const zelto::RasterLayout& layout) {
    const int bits = GDALGetDataTypeSizeBits(static_cast<GDALDataType>(layout.type));
    return static_cast<double>(layout.width) * layout.height * layout.bands * bits * 0.125 / 1024 /
           1024;
}

/// The caller's options with those that every GeoTIFF of ours has, where the caller does not
/// say otherwise.
CPLStringList GTiffOptions(const zelto::RasterLayout& layout, char** callerOptions) {
    CPLStringList options(CSLDuplicate(callerOptions));
    const auto addMissing = [&options](const char* key, const char* value) {
        if (options.FetchNameValue(key) == nullptr)
            options.SetNameValue(key, value);
    };
    addMissing("INTERLEAVE", "BAND");
    addMissing("TFW", "YES");
    addMissing("PHOTOMETRIC", layout.bands < 3 ? "MINISBLACK" : "RGB");
    if (PixelMegabytes(layout) > LARGEST_CLASSIC_TIFF)
        addMissing("BIGTIFF", "YES");
    return options;
}

} // namespace

GISError CRasterSource::CreateRaster(RasterDataFormat format, const wchar_t* path, int width,
                                     int height, int bands, PixelDataType type,
                                     double* geoTransform, const char* wkt, char** options) {
    if (path == nullptr)
        return GIS_FAILED;
    m_filePath = path;
    m_fileName = CommonFun::GetFileNameWithExtension(m_filePath);
    m_format = GetDataFormat(path);
    const RasterDataFormat wanted = format != RDF_Unknown ? format : m_format;
    if (IsGTiffFamily(wanted))
        return CreateGTiffRaster(wanted, path, width, height, bands, type, geoTransform, wkt,
                                 options);
    GDALDriver* driver = GetDriverByRasterFormat(wanted);
    if (driver == nullptr)
        return GIS_FAILED;
    if (IsOpened())
        Close();
    if (wanted == RDF_ENVI) // the header's name comes from the data file's
        m_filePath = CommonFun::GetFilePahWithoutExtension(m_filePath);
    if (!CanCreate(*driver)) {
        zelto::LogRaster(zelto::LOG_CREATION, __LINE__, L"CRasterSource::CreateRaster",
                         L"Cannot create raster dataset: " + m_fileName +
                             L",Creation is not supported for this format.");
        return GIS_FAILED;
    }
    if (!DeleteExisting(m_filePath, __LINE__, L"CRasterSource::CreateRaster"))
        return GIS_FAILED;
    // Creation options are meant for GeoTIFF; other drivers get none.
    return CreateAtStoredPath(*driver, {width, height, bands, type}, geoTransform,
                              wkt != nullptr ? wkt : "", nullptr);
}

GISError CRasterSource::CreateGTiffRaster(RasterDataFormat format, const wchar_t* path, int width,
                                          int height, int bands, PixelDataType type,
                                          double* geoTransform, const char* wkt, char** options) {
    GDALDriver* driver = GetDriverByRasterFormat(format);
    if (driver == nullptr || path == nullptr)
        return GIS_FAILED;
    if (IsOpened())
        Close();
    m_format = format;
    m_filePath = path;
    m_fileName = CommonFun::GetFileNameWithExtension(m_filePath);
    const bool replaces = CommonFun::IsFileExist(m_filePath);
    if (!DeleteExisting(m_filePath, __LINE__, L"CRasterSource::CreateGTiffRaster"))
        return GIS_FAILED;
    if (replaces)
        DeleteStaleWorldFile(m_filePath);
    const zelto::RasterLayout layout = {width, height, bands, type};
    CPLStringList allOptions = GTiffOptions(layout, options);
    return CreateAtStoredPath(*driver, layout, geoTransform, wkt, allOptions.List());
}

GISError CRasterSource::CreateAtStoredPath(GDALDriver& driver, const zelto::RasterLayout& layout,
                                           double* geoTransform, const char* wkt, char** options) {
    if (layout.type <= PDT_Unknown || layout.type >= static_cast<int>(GDT_TypeCount))
        return GIS_FAILED;
    const std::string path = CommonFun::U2M(m_filePath);
    // A new ERDAS Imagine file takes the levels of its stem away.
    const zelto::FilesSetAside others(zelto::ForeignPyramidFiles(path));
    zelto::GdalWatch creating;
    m_dataset = driver.Create(path.c_str(), layout.width, layout.height, layout.bands,
                              static_cast<GDALDataType>(layout.type), options);
    if (!creating.Succeeded(m_dataset != nullptr, path)) {
        Close();
        return GIS_FAILED;
    }
    m_access = GIS_UPDATE;
    m_description = CommonFun::M2U(m_dataset->GetDescription());
    // A format that cannot hold the georeferencing is created all the same.
    if (geoTransform != nullptr)
        NoteUnwritten(m_filePath, "geotransform",
                      zelto::GdalWatch().Succeeded(m_dataset->SetGeoTransform(geoTransform), path));
    if (wkt != nullptr)
        NoteUnwritten(m_filePath, "reference",
                      zelto::GdalWatch().Succeeded(m_dataset->SetProjection(wkt), path));
    zelto::GdalWatch flushing;
    m_dataset->FlushCache();
    if (!flushing.Succeeded(true, path))
        return GIS_FAILED;
    return GetRasterInfo(false, false);
}

GISError CRasterSource::CreateRasterCopy(RasterDataFormat format, const wchar_t* path,
                                         CRasterSource* source, int bands, PixelDataType type) {
    if (source == nullptr)
        return GIS_FAILED;
    // Copies, because the source may be this one.
    std::array<double, 6> geoTransform = std::to_array(source->m_geoTransform);
    const std::string wkt = source->m_wkt;
    return CreateRaster(
        format, path, source->m_width, source->m_height, bands != 0 ? bands : source->m_bandCount,
        type != PDT_Unknown ? type : source->m_dataType, geoTransform.data(), wkt.c_str(), nullptr);
}
