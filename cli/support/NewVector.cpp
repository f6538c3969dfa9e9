#include "cli/support/NewVector.h"

#include "cli/support/Failure.h"
#include "cli/support/FolderBeside.h"
#include "cli/support/Open.h"
#include "cli/support/Reference.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <system_error>

namespace zelto::cli {

namespace {

bool HasExtension(GDALDriver& driver, const std::string& extension) {
    const char* const list = driver.GetMetadataItem(GDAL_DMD_EXTENSIONS);
    const CPLStringList extensions(CSLTokenizeString2(list != nullptr ? list : "", " ", 0));
    return extensions.FindString(extension.c_str()) >= 0;
}

/// The first driver that writes files of this extension; null for none.
GDALDriver* DriverFor(const std::string& path) {
    const std::string extension = std::filesystem::path(path).extension().string();
    if (extension.size() < 2)
        return nullptr;
    GDALDriverManager& drivers = *GetGDALDriverManager();
    for (int i = 0; i < drivers.GetDriverCount(); ++i) {
        GDALDriver& driver = *drivers.GetDriver(i);
        const bool writes = driver.GetMetadataItem(GDAL_DCAP_VECTOR) != nullptr &&
                            driver.GetMetadataItem(GDAL_DCAP_CREATE) != nullptr;
        if (writes && HasExtension(driver, extension.substr(1)))
            return &driver;
    }
    return nullptr;
}

} // namespace

NewVector::NewVector(const std::string& path) : m_path(path), m_driver(DriverFor(path)) {
    if (m_driver == nullptr)
        throw UsageError(path + ": no vector format that can be written has this extension");
    m_folder = MakeFolderBeside(path);
    const auto file = m_folder / std::filesystem::path(path).filename();
    m_dataset.reset(m_driver->Create(file.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
}

NewVector::~NewVector() {
    m_dataset.reset();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

OGRLayer& NewVector::MakeLayer(const std::string& srs, OGRwkbGeometryType type) {
    auto reference = ParseReference(srs);
    const std::string name = std::filesystem::path(m_path).stem().string();
    OGRLayer* const layer =
        m_dataset
            ? m_dataset->CreateLayer(name.c_str(), reference ? &*reference : nullptr, type, nullptr)
            : nullptr;
    if (layer == nullptr)
        throw Failure(m_path, LastGdalMessage("cannot be written"));
    return *layer;
}

void NewVector::Finish() {
    CPLErrorReset();
    m_dataset.reset();
    if (CPLGetLastErrorType() == CE_Failure)
        throw Failure(m_path, LastGdalMessage("cannot be written"));
    if (std::filesystem::exists(m_path)) {
        // With all its side files, as far as the format knows the old file.
        CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
        m_driver->Delete(m_path.c_str());
    }
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
        const auto target = std::filesystem::path(m_path).parent_path() / entry.path().filename();
        std::filesystem::rename(entry.path(), target, error);
        if (error)
            throw Failure(target.string(), error.message());
    }
}

} // namespace zelto::cli
