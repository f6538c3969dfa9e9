#include "host/files/ChangedRaster.h"

#include "zelto/datasource/GISDataSource.h"
#include "zelto/raster/RasterFiles.h"

#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/RasterFiles.h"

#include <gdal_priv.h>

#include <filesystem>

namespace zelto::host {

namespace fs = std::filesystem;

namespace {

/// Whether a copy elsewhere would be the same raster.
bool CanBeCopied(const std::string& path) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored))
        return false;
    GDALDriver* const driver = GDALDriver::FromHandle(
        GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, nullptr, nullptr));
    return driver != nullptr && !EQUAL(driver->GetDescription(), "VRT");
}

} // namespace

ChangedRaster::ChangedRaster(const std::string& path) : m_path(path), m_changed(path) {
    if (CanBeCopied(path))
        m_files.emplace(Wide(path));
    if (m_files && m_files->IsOpen())
        Copy();
    else
        m_inPlace.emplace();
}

void ChangedRaster::Copy() {
    ForgetReasons();
    if (CRasterFiles::Copy(Wide(m_path).c_str(), m_files->GetTemporaryPath().c_str(), false) !=
        GIS_SUCCESS)
        throw Fail("cannot be copied");
    m_changed = Narrow(m_files->GetTemporaryPath());
}

Failure ChangedRaster::Fail(const std::string& otherwise) const {
    std::string reason = LastReason(otherwise);
    const std::size_t at = m_changed != m_path ? reason.find(m_changed) : std::string::npos;
    if (at != std::string::npos)
        reason.replace(at, m_changed.size(), m_path);
    return {m_path, reason};
}

void ChangedRaster::Commit() {
    if (m_inPlace)
        return;
    EndIfInterrupted();
    if (!m_files->Commit(SideFilesOf(m_path)))
        throw Failure(CGISDataSource::GetLastErrorText());
}

} // namespace zelto::host
