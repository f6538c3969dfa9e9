#include "host/files/NewRaster.h"

#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/RasterChoice.h"
#include "host/files/RasterFiles.h"

#include <cpl_string.h>
#include <gdal_priv.h>

namespace zelto::host {

namespace fs = std::filesystem;

NewRaster::NewRaster(const std::string& path, const NewRasterLayout& layout)
    : m_path(path), m_files(Wide(path)) {
    RequireCreatable(layout.format, path);
    if (!m_files.IsOpen())
        throw Failure(CGISDataSource::GetLastErrorText());
    CPLStringList options;
    for (const std::string& option : layout.options)
        options.AddString(option.c_str());
    const GISError result =
        m_raster.CreateRaster(layout.format, m_files.GetTemporaryPath().c_str(), layout.width,
                              layout.height, layout.bands, layout.type, layout.geoTransform,
                              layout.wkt.empty() ? nullptr : layout.wkt.c_str(),
                              layout.options.empty() ? nullptr : options.List());
    if (result != GIS_SUCCESS || !m_watch.Succeeded(true, path))
        throw Failure(path, m_watch.HasError() ? m_watch.Error() : "cannot be created");
}

void NewRaster::Commit() {
    // Where the data set really is: a header's name stands for the data file beside it.
    fs::path made = Narrow(m_raster.GetFilePath());
    // Blocks still in memory are written now; closing reports no result.
    m_raster.Close();
    if (m_watch.HasError())
        throw Failure(m_path, m_watch.Error());
    // Data beside a header are made without an extension; they get the one that was asked for.
    const fs::path wanted = Narrow(m_files.GetTemporaryPath());
    if (!fs::exists(wanted)) {
        fs::rename(made, wanted);
        made = wanted;
    }
    CheckReadable(made);
    EndIfInterrupted();
    const fs::path old = fs::path(m_path).parent_path() / made.filename();
    if (!m_files.Commit(SideFilesOf(old)))
        throw Failure(CGISDataSource::GetLastErrorText());
}

/// What was written must open again. The driver does not tell whether a world file is complete.
void NewRaster::CheckReadable(const fs::path& made) const {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(made.c_str(), GDAL_OF_RASTER));
    if (!dataset)
        throw Failure(m_path, LastReason("was written, but cannot be read"));
    std::error_code ignored;
    double place[6] = {};
    if (fs::exists(fs::path(made).replace_extension("tfw"), ignored) &&
        GDALReadWorldFile(made.c_str(), "tfw", place) == FALSE)
        throw Failure(m_path, "its world file cannot be written");
}

} // namespace zelto::host
