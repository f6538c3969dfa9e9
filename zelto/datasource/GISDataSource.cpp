#include "zelto/datasource/GISDataSource.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"

#include <gdal.h>
#include <ogr_spatialref.h>

#include <fstream>
#include <utility>

CGISDataSource::CGISDataSource() : m_spatialReference(new OGRSpatialReference) {
    m_spatialReference->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    RegisterGDAL();
}

CGISDataSource::CGISDataSource(const CGISDataSource& other)
    : m_access(other.m_access),
      m_fileName(other.m_fileName),
      m_filePath(other.m_filePath),
      m_visible(other.m_visible),
      m_description(other.m_description),
      m_dataSourceType(other.m_dataSourceType),
      m_wkt(other.m_wkt),
      m_coordinateName(other.m_coordinateName),
      m_extent(other.m_extent),
      m_spatialReference(other.m_spatialReference),
      m_displayType(other.m_displayType),
      m_forDisplay(other.m_forDisplay),
      m_changed(other.m_changed),
      m_selected(other.m_selected) {
    // The handle is shared, so that each of the two destructors gives up one reference to it.
    if (m_spatialReference != nullptr)
        m_spatialReference->Reference();
}

CGISDataSource& CGISDataSource::operator=(const CGISDataSource& other) {
    // The rest describes what this source has open, which an assignment does not change.
    if (this != &other) {
        m_filePath = other.m_filePath;
        m_wkt = other.m_wkt;
    }
    return *this;
}

CGISDataSource::~CGISDataSource() {
    if (m_spatialReference != nullptr)
        m_spatialReference->Release();
    DestroyGDAL();
}

std::string CGISDataSource::GetLastErrorText() {
    return zelto::LastError();
}

void CGISDataSource::ClearLastErrorText() {
    zelto::ClearLastError();
}

void CGISDataSource::SetVisible(bool visible) {
    m_visible = visible;
}

bool CGISDataSource::IsVisible() {
    return m_visible;
}

void CGISDataSource::CopyDisplaySetting(CGISDataSource* /*other*/) {}

bool CGISDataSource::operator==(const CGISDataSource& other) const {
    return m_filePath == other.m_filePath;
}

void CGISDataSource::SetFilePath(std::wstring path) {
    m_filePath = std::move(path);
}

GISDataSourceType CGISDataSource::GetDataSourceType(const wchar_t* path) {
    if (path != nullptr && CommonFun::GetExtensionName(path) == L"shp")
        return DS_VECTOR;
    return DS_RASTER;
}

bool CGISDataSource::WriteGeotransformToWorldFile(const char* basePath, double* geoTransform) {
    if (basePath == nullptr || geoTransform == nullptr)
        return false;
    zelto::GdalWatch watch;
    return watch.Succeeded(GDALWriteWorldFile(basePath, "tfw", geoTransform) != 0, basePath);
}

void CGISDataSource::WriteWkt(const char* path, const char* wkt) {
    if (path == nullptr || wkt == nullptr)
        return;
    std::ofstream file(path);
    file << wkt;
    file.close();
    if (!file)
        zelto::SetLastError(std::string(path) + ": cannot be written");
}
