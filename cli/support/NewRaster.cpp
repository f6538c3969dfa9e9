#include "cli/support/NewRaster.h"

#include "cli/support/Failure.h"
#include "cli/support/FolderBeside.h"
#include "cli/support/Open.h"
#include "cli/support/RasterChoice.h"
#include "cli/support/Text.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <system_error>

namespace zelto::cli {

namespace fs = std::filesystem;

NewRaster::NewRaster(const std::string& path, const NewRasterLayout& layout) : m_path(path) {
    RequireCreatable(layout.format, path);
    m_folder = MakeFolderBeside(path);
    const fs::path file = m_folder / fs::path(path).filename();
    CPLStringList options;
    for (const std::string& option : layout.options)
        options.AddString(option.c_str());
    CPLErrorReset();
    const GISError result = m_raster.CreateRaster(
        layout.format, Wide(file.string()).c_str(), layout.width, layout.height, layout.bands,
        layout.type, layout.geoTransform, layout.wkt.empty() ? nullptr : layout.wkt.c_str(),
        layout.options.empty() ? nullptr : options.List());
    if (result == GIS_SUCCESS)
        return;
    const std::string reason = LastGdalMessage("cannot be created");
    m_raster.Close();
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
    throw Failure(path, reason);
}

NewRaster::~NewRaster() {
    m_raster.Close();
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

void NewRaster::Commit() {
    GDALDriver* driver = m_raster.GetGDALDataset()->GetDriver();
    // Where the data set really is: a header's name stands for the data file beside it.
    const std::string made = Narrow(m_raster.GetFilePath());
    const fs::path final = fs::path(m_path).parent_path() / fs::path(made).filename();
    CPLErrorReset();
    m_raster.Close();
    if (CPLGetLastErrorType() == CE_Failure)
        throw Failure(m_path, LastGdalMessage("cannot be written"));
    if (GDALDriver::QuietDelete(final.c_str()) != CE_None)
        throw Failure(m_path, LastGdalMessage("the old file cannot be removed"));
    if (driver->Rename(final.c_str(), made.c_str()) != CE_None)
        throw Failure(m_path, LastGdalMessage("cannot be put in place"));
    MoveLeftOvers(final.parent_path());
}

/// World files and the like, which the driver does not count among the data set's own.
void NewRaster::MoveLeftOvers(const fs::path& folder) const {
    for (const auto& entry : fs::directory_iterator(m_folder))
        fs::rename(entry.path(), folder / entry.path().filename());
}

} // namespace zelto::cli
