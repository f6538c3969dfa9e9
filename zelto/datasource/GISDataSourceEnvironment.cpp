#include "zelto/datasource/GISDataSource.h"
#include "zelto/datasource/internal/GdalLog.h"
#include "zelto/datasource/internal/HostModule.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <system_error>

namespace {

/// Live data sources plus explicit registrations.
int g_registrationCount = 0;

} // namespace

void CGISDataSource::RegisterGDAL() {
    const bool first = g_registrationCount < 1;
    ++g_registrationCount;
    if (!first)
        return;
    SetGDALConfigOption();
    zelto::InstallGdalLog();
    GDALAllRegister();
    OGRRegisterAll();
}

void CGISDataSource::DestroyGDAL() {
    --g_registrationCount;
    if (g_registrationCount >= 1)
        return;
    OGRCleanupAll();
    GDALDestroyDriverManager();
    zelto::RemoveGdalLog();
}

void CGISDataSource::SetGDALConfigOption() {
    const std::string installation = zelto::InstallationFolder();
    const std::string data = installation + "/data";
    const std::string logs = installation + "/logs";
    std::error_code ignored;
    std::filesystem::create_directory(logs, ignored);

    CPLSetConfigOption("GDAL_DATA", data.c_str());
    CPLSetConfigOption("CPL_LOG_ERRORS", "ON");
    CPLSetConfigOption("CPL_TIMESTAMP", "ON");
    CPLSetConfigOption("CPL_LOG", (logs + "/gdal.log").c_str());
    CPLSetConfigOption("HFA_USE_RRD", "YES");
    CPLSetConfigOption("USE_RRD", "YES");
    CPLSetConfigOption("GDAL_FILENAME_IS_UTF8", "NO");
    CPLSetConfigOption("SHAPE_ENCODING", "");
    CPLSetConfigOption("GDAL_CACHEMAX", "256");

    // A program installed without a data folder of its own still finds GDAL's support files.
    if (!std::filesystem::exists(data, ignored))
        CPLPushFinderLocation(ZELTO_GDAL_DATADIR);
}
