#include "zelto/vector/internal/NewShapefile.h"

#include <cpl_error.h>

#include <cstdlib>
#include <system_error>

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

/// A new empty folder beside the path; empty when the folder does not allow it.
fs::path CreateFolderBeside(const fs::path& path) {
    std::string name = path.string() + ".XXXXXX";
    return path.empty() || mkdtemp(name.data()) == nullptr ? fs::path() : fs::path(name);
}

} // namespace

NewShapefile::NewShapefile(const std::string& path)
    : m_path(path), m_folder(CreateFolderBeside(m_path)) {
    GDALDriver* driver = ShapefileDriver();
    if (driver == nullptr || m_folder.empty())
        return;
    // What goes wrong from here on is found when the file is closed.
    CPLErrorReset();
    const std::string inFolder = (m_folder / m_path.filename()).string();
    m_dataset.reset(driver->Create(inFolder.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
}

NewShapefile::~NewShapefile() {
    m_dataset.reset();
    std::error_code ignored;
    if (!m_folder.empty())
        fs::remove_all(m_folder, ignored);
}

OGRLayer* NewShapefile::CreateLayer(const char* name, OGRwkbGeometryType type) {
    return m_dataset != nullptr ? m_dataset->CreateLayer(name, nullptr, type, nullptr) : nullptr;
}

bool NewShapefile::Commit() {
    if (m_dataset == nullptr)
        return false;
    // Blocks still in memory are written when the data set closes, which reports no result.
    m_dataset.reset();
    return CPLGetLastErrorType() != CE_Failure && MoveIntoPlace();
}

bool NewShapefile::MoveIntoPlace() const {
    DeleteVectorQuietly(*ShapefileDriver(), m_path.string());
    std::error_code error;
    for (fs::directory_iterator file(m_folder, error), end; !error && file != end;
         file.increment(error)) {
        fs::rename(file->path(), m_path.parent_path() / file->path().filename(), error);
        if (error)
            break;
    }
    return !error;
}

} // namespace zelto
