#include "zelto/datasource/GISDataSource.h"
#include "zelto/datasource/internal/GdalLog.h"
#include "zelto/datasource/internal/HostModule.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>

namespace {

/// Live data sources plus explicit registrations, counted by several threads at once.
struct Registrations {
    std::mutex mutex;
    int count = 0;
};

/// Outlives the last source, which a host may keep in a static object.
Registrations& TheRegistrations() {
    static auto* const registrations = new Registrations; // NOLINT(cppcoreguidelines-owning-memory)
    return *registrations;
}

/// What the host has asked for; none: the installation folder's "logs".
std::optional<std::string>& HostsLogFolder() {
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory)
    static auto* const folder = new std::optional<std::string>;
    return *folder;
}

/// Path of GDAL's log; empty for none.
std::string LogPath(const std::string& installation) {
    if (const auto& folder = HostsLogFolder())
        return folder->empty() ? std::string() : *folder + "/gdal.log";
    const std::string logs = installation + "/logs";
    std::error_code ignored;
    // Without the folder the log cannot be opened, and nothing is written.
    if (!zelto::IsSystemFolder(installation))
        std::filesystem::create_directory(logs, ignored);
    return logs + "/gdal.log";
}

bool g_hasInstallationFolder = true;

/// What is found or written in the installation folder.
void UseInstallationFolder(const std::string& installation) {
    const std::string data = installation + "/data";
    const std::string log = LogPath(installation);

    CPLSetConfigOption("GDAL_DATA", data.c_str());
    CPLSetConfigOption("CPL_LOG_ERRORS", "ON");
    CPLSetConfigOption("CPL_TIMESTAMP", "ON");
    CPLSetConfigOption("CPL_LOG", log.c_str());

    std::error_code ignored;
    // A program installed without a data folder of its own still finds GDAL's support files.
    if (!std::filesystem::exists(data, ignored))
        CPLPushFinderLocation(ZELTO_GDAL_DATADIR);
}

} // namespace

void CGISDataSource::SetLogFolder(const char* folder) {
    if (folder != nullptr)
        HostsLogFolder() = folder;
    else
        HostsLogFolder().reset();
}

void CGISDataSource::RegisterGDAL() {
    // A thread that is not the first one waits until the first has set everything up.
    Registrations& registrations = TheRegistrations();
    const std::lock_guard lock(registrations.mutex);
    const bool first = registrations.count < 1;
    ++registrations.count;
    if (!first)
        return;
    SetGDALConfigOption();
    zelto::InstallGdalLog(HostsLogFolder().value_or(std::string()));
    GDALAllRegister();
    OGRRegisterAll();
    // GDAL gives up the lock of its block cache when it is torn down, and makes another one only
    // here; without it threads would break the cache.
    GDALSetCacheMax64(GDALGetCacheMax64());
}

void CGISDataSource::DestroyGDAL() {
    Registrations& registrations = TheRegistrations();
    const std::lock_guard lock(registrations.mutex);
    --registrations.count;
    if (registrations.count >= 1)
        return;
    OGRCleanupAll();
    GDALDestroyDriverManager();
    zelto::RemoveGdalLog();
}

void CGISDataSource::UseNoInstallationFolder() {
    g_hasInstallationFolder = false;
}

void CGISDataSource::SetGDALConfigOption() {
    if (g_hasInstallationFolder)
        UseInstallationFolder(zelto::InstallationFolder());
    CPLSetConfigOption("HFA_USE_RRD", "YES");
    CPLSetConfigOption("USE_RRD", "YES");
    CPLSetConfigOption("GDAL_FILENAME_IS_UTF8", "NO");
    CPLSetConfigOption("SHAPE_ENCODING", "");
    CPLSetConfigOption("GDAL_CACHEMAX", "256");
}
