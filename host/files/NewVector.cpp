#include "host/files/NewVector.h"

#include "zelto/datasource/GISDataSource.h"

#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/RasterFiles.h"
#include "host/files/Reference.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <optional>

namespace fs = std::filesystem;

namespace zelto::host {

namespace {

bool HasExtension(GDALDriver& driver, const std::string& extension) {
    const char* const list = driver.GetMetadataItem(GDAL_DMD_EXTENSIONS);
    const CPLStringList extensions(CSLTokenizeString2(list != nullptr ? list : "", " ", 0));
    return extensions.FindString(extension.c_str()) >= 0;
}

/// The first driver that writes files of this extension; null for none.
GDALDriver* DriverFor(const std::string& path) {
    const std::string extension = fs::path(path).extension().string();
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

/// Number of features that are in a file; none where it cannot be read to its end.
std::optional<std::int64_t> ReadBack(const std::string& path) {
    const GdalWatch watch;
    const GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    if (file == nullptr || file->GetLayerCount() == 0)
        return std::nullopt;
    std::int64_t features = 0;
    for ([[maybe_unused]] const auto& feature : *file->GetLayer(0))
        ++features;
    return watch.HasError() ? std::nullopt : std::optional(features);
}

/// The writers of text formats do not tell of a full disk; what they leave cannot be read.
std::string ReasonOfWriting(const std::string& path, const std::string& reason) {
    constexpr std::uintmax_t TOO_LITTLE = 1 << 16;
    std::error_code error;
    const fs::path folder = fs::absolute(path, error).parent_path();
    const fs::space_info space = fs::space(folder, error);
    return !error && space.available < TOO_LITTLE ? "the disk is full (" + reason + ")" : reason;
}

} // namespace

NewVector::NewVector(const std::string& path) : m_path(path), m_driver(DriverFor(path)) {
    if (m_driver == nullptr)
        throw UsageError(path + ": no vector format that can be written has this extension");
    m_files.emplace(Wide(path));
    if (!m_files->IsOpen())
        throw Failure(CGISDataSource::GetLastErrorText());
    m_dataset.reset(m_driver->Create(TemporaryPath().c_str(), 0, 0, 0, GDT_Unknown, nullptr));
}

std::string NewVector::TemporaryPath() const {
    return Narrow(m_files->GetTemporaryPath());
}

bool NewVector::IsGeoJson() const {
    return EQUAL(m_driver->GetDescription(), "GeoJSON");
}

CPLStringList NewVector::LayerOptions() const {
    CPLStringList options;
    if (IsGeoJson()) {
        options.SetNameValue("RFC7946", "YES");
        // A tenth of a micrometre on the ground.
        options.SetNameValue("COORDINATE_PRECISION", "12");
    }
    if (EQUAL(m_driver->GetDescription(), "ESRI Shapefile"))
        options.SetNameValue("ENCODING", "UTF-8");
    return options;
}

OGRLayer& NewVector::MakeLayer(const std::string& srs, OGRwkbGeometryType type) {
    auto reference = ParseReference(srs);
    const std::string name = fs::path(m_path).stem().string();
    OGRLayer* const layer =
        m_dataset ? m_dataset->CreateLayer(name.c_str(), reference ? &*reference : nullptr, type,
                                           LayerOptions().List())
                  : nullptr;
    if (layer == nullptr)
        throw Failure(m_path, m_watch.HasError() ? m_watch.Error() : "cannot be written");
    if (layer->GetGeomType() == wkbNone && type != wkbNone)
        throw Failure(m_path, std::string("files of the format ") + m_driver->GetDescription() +
                                  " hold no shapes");
    return *layer;
}

std::int64_t NewVector::Finish() {
    const bool isShapefile = m_dataset && EQUAL(m_dataset->GetDriverName(), "ESRI Shapefile");
    const GIntBig made = isShapefile ? m_dataset->GetLayer(0)->GetFeatureCount() : 0;
    // What is still in memory is written now; closing reports no result.
    m_dataset.reset();
    if (m_watch.HasError())
        throw Failure(m_path, ReasonOfWriting(m_path, m_watch.Error()));
    ForgetReasons();
    const std::optional<std::int64_t> features = ReadBack(TemporaryPath());
    if (!features)
        throw Failure(m_path,
                      ReasonOfWriting(m_path, LastReason("was written, but cannot be read")));
    if (isShapefile && *features != made)
        throw Failure(m_path, ReasonOfWriting(m_path, "was not written whole"));
    EndIfInterrupted();
    if (!m_files->Commit(SideFilesOf(m_path)))
        throw Failure(CGISDataSource::GetLastErrorText());
    return *features;
}

} // namespace zelto::host
