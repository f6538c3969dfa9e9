#include "zelto/vector/internal/NewShapefile.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/vector/internal/ReadableFeatures.h"

#include <cpl_error.h>

#include <filesystem>
#include <vector>

namespace zelto {

namespace fs = std::filesystem;

GDALDriver* ShapefileDriver() {
    return GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
}

bool CanCreateVector(GDALDriver& driver) {
    return CPLFetchBool(driver.GetMetadata(), GDAL_DCAP_VECTOR, false) &&
           CPLFetchBool(driver.GetMetadata(), GDAL_DCAP_CREATE, false);
}

void DeleteVectorQuietly(GDALDriver& driver, const std::string& path) {
    CPLPushErrorHandler(CPLQuietErrorHandler);
    driver.Delete(path.c_str());
    CPLPopErrorHandler();
    CPLErrorReset();
}

namespace {

/// The files that may belong to a shapefile beside its main file.
std::vector<std::wstring> SideFiles(const std::string& path) {
    static constexpr const char* EXTENSIONS[] = {"shx", "dbf", "sbn", "sbx", "prj",
                                                 "idm", "ind", "qix", "cpg", "qpj"};
    std::vector<std::wstring> names;
    for (const char* extension : EXTENSIONS)
        names.push_back(
            CommonFun::M2U(fs::path(path).filename().replace_extension(extension).string()));
    return names;
}

} // namespace

NewShapefile::NewShapefile(const std::string& path) : m_path(path), m_files(CommonFun::M2U(path)) {
    GDALDriver* driver = ShapefileDriver();
    if (driver == nullptr || !m_files.IsOpen())
        return;
    m_dataset.reset(driver->Create(CommonFun::U2M(m_files.GetTemporaryPath()).c_str(), 0, 0, 0,
                                   GDT_Unknown, nullptr));
}

OGRLayer* NewShapefile::CreateLayer(const char* name, OGRwkbGeometryType type) {
    OGRLayer* const layer =
        m_dataset != nullptr ? m_dataset->CreateLayer(name, nullptr, type, nullptr) : nullptr;
    if (layer == nullptr && m_files.IsOpen())
        m_watch.Succeeded(false, m_path);
    return layer;
}

bool NewShapefile::Commit() {
    const GIntBig made = m_dataset->GetLayer(0)->GetFeatureCount();
    // Blocks still in memory are written when the data set closes, which reports no result.
    m_dataset.reset();
    if (!m_watch.Succeeded(true, m_path))
        return false;
    if (CountReadableFeatures(CommonFun::U2M(m_files.GetTemporaryPath())) != made) {
        SetLastError(m_path + ": was not written whole");
        return false;
    }
    return m_files.Commit(SideFiles(m_path));
}

} // namespace zelto
