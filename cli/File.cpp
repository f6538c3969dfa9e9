#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/FolderBeside.h"
#include "cli/support/GdalUse.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Open.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>
#include <cpl_conv.h>
#include <gdal_priv.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace zelto::cli {

namespace {

namespace fs = std::filesystem;

struct Options {
    std::vector<std::string> paths;
    std::string from;
    std::string to;
    bool overwrite = false;
};

/// The path of an image's world file. GDAL's driver writes it, but does not count it among the
/// image's own files when the image is georeferenced itself.
fs::path WorldFile(const std::string& path) {
    return fs::path(path).replace_extension("tfw");
}

bool IsGTiff(GDALDriver& driver) {
    return EQUAL(driver.GetDescription(), "GTiff");
}

/// The driver of a raster that exists. The engine's own renaming asks the destination, which
/// a new name cannot answer.
GDALDriver& DriverOf(const std::string& path) {
    RequireNoPipe(path);
    ForgetReasons();
    GDALDriver* driver = GDALDriver::FromHandle(
        GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, nullptr, nullptr));
    if (driver == nullptr)
        throw Failure(path, ReasonForFailure(path, GIS_OPEN_FAILED));
    return *driver;
}

void Remove(const Options& options) {
    const GdalUse use;
    for (const std::string& path : options.paths) {
        DriverOf(path); // tells why, where there is none
        const ChangeInPlace change;
        if (CRasterSource::DeleteFileW(Wide(path).c_str()) != GIS_SUCCESS)
            throw Failure(path, LastReason("cannot be removed"));
    }
}

/// A path inside the destination where that is a folder.
std::string Destination(const Options& options) {
    std::error_code ignored;
    if (fs::is_directory(options.to, ignored))
        return (fs::path(options.to) / fs::path(options.from).filename()).string();
    return options.to;
}

/// Moves a file by its driver, with all that belongs to it; one that no driver knows alone.
bool MoveFile(GDALDriver* driver, const std::string& from, const std::string& to) {
    std::error_code error;
    if (driver == nullptr) {
        fs::rename(from, to, error);
        return !error;
    }
    if (driver->Rename(to.c_str(), from.c_str()) != CE_None)
        return false;
    if (IsGTiff(*driver) && fs::exists(WorldFile(from), error))
        CPLMoveFile(WorldFile(to).c_str(), WorldFile(from).c_str());
    return true;
}

/// What stands under a new name: kept in a hidden folder until the work is done, and put back
/// when it fails.
class SetAside {
  public:
    /// Throws Failure when something is there and may not, or cannot, be set aside.
    SetAside(const std::string& path, bool overwrite) : m_path(path) {
        std::error_code ignored;
        if (!fs::exists(path, ignored))
            return;
        if (!overwrite)
            throw Failure(path, "it exists; --overwrite replaces it");
        RequireNoPipe(path);
        m_driver = GDALDriver::FromHandle(
            GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, nullptr, nullptr));
        m_folder = MakeFolderBeside(path);
        m_kept = (m_folder / fs::path(path).filename()).string();
        ForgetReasons();
        if (!MoveFile(m_driver, path, m_kept)) {
            fs::remove(m_folder, ignored);
            throw Failure(path, LastReason("cannot be replaced"));
        }
    }
    ~SetAside() {
        if (m_folder.empty())
            return;
        std::error_code ignored;
        // What cannot be put back stays in the folder.
        if (m_done || MoveFile(m_driver, m_kept, m_path))
            fs::remove_all(m_folder, ignored);
    }
    SetAside(const SetAside&) = delete;
    SetAside& operator=(const SetAside&) = delete;

    /// The new file has taken the place.
    void Forget() { m_done = true; }

  private:
    std::string m_path;
    std::string m_kept;
    fs::path m_folder;
    GDALDriver* m_driver = nullptr;
    bool m_done = false;
};

/// Checks origin and destination, then calls `work` with driver, origin and destination.
template <typename Work>
void Transfer(const Options& options, Work work) {
    const GdalUse use;
    GDALDriver& driver = DriverOf(options.from);
    const std::string to = Destination(options);
    std::error_code ignored;
    if (fs::equivalent(options.from, to, ignored))
        throw Failure(to, "origin and destination are the same file");
    const ChangeInPlace change;
    SetAside old(to, options.overwrite);
    ForgetReasons();
    if (!work(driver, options.from, to))
        throw Failure(options.from, LastReason("cannot be moved or copied"));
    old.Forget();
}

void Move(const Options& options) {
    Transfer(options, [](GDALDriver& driver, const std::string& from, const std::string& to) {
        if (MoveFile(&driver, from, to))
            return true;
        std::error_code ignored;
        if (fs::exists(from, ignored)) // another file system, without room for all of it
            fs::remove(to, ignored);
        return false;
    });
}

void Copy(const Options& options) {
    Transfer(options, [](GDALDriver& driver, const std::string& from, const std::string& to) {
        std::error_code ignored;
        if (driver.CopyFiles(to.c_str(), from.c_str()) != CE_None) {
            fs::remove(to, ignored); // as far as it was written
            return false;
        }
        if (IsGTiff(driver))
            fs::copy_file(WorldFile(from), WorldFile(to), fs::copy_options::overwrite_existing,
                          ignored);
        return true;
    });
}

void AddTransferOptions(CLI::App& command, const std::shared_ptr<Options>& options) {
    command.add_option("FROM", options->from, "a raster")->required();
    command.add_option("TO", options->to, "its new name, or a folder")->required();
    command.add_flag("--overwrite", options->overwrite, "replace what has the new name");
}

} // namespace

void AddFile(CLI::App& program) {
    auto* file = program.add_subcommand(
        "file", "remove, move and copy rasters with the files that belong to them");
    file->require_subcommand(1);
    auto options = std::make_shared<Options>();

    auto* rm = file->add_subcommand("rm", "remove rasters");
    rm->add_option("FILE", options->paths)->required();
    rm->callback([options] { Remove(*options); });

    auto* mv = file->add_subcommand("mv", "move or rename a raster");
    AddTransferOptions(*mv, options);
    mv->callback([options] { Move(*options); });

    auto* cp = file->add_subcommand("cp", "copy a raster");
    AddTransferOptions(*cp, options);
    cp->callback([options] { Copy(*options); });
}

} // namespace zelto::cli
