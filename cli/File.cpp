#include "zelto/raster/RasterFiles.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Interrupts.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

#include <CLI/CLI.hpp>
#include <gdal_priv.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace zelto::cli {

namespace {

namespace fs = std::filesystem;

struct FileOptions {
    std::vector<std::string> paths;
    std::string from;
    std::string to;
    bool overwrite = false;
};

/// Throws Failure with the reason where no driver recognises a raster.
void RequireRaster(const std::string& path) {
    host::RequireNoPipe(path);
    host::ForgetReasons();
    if (GDALIdentifyDriverEx(path.c_str(), GDAL_OF_RASTER, nullptr, nullptr) == nullptr)
        throw host::Failure(path, host::ReasonForFailure(path, GIS_OPEN_FAILED));
}

void Remove(const FileOptions& options) {
    const host::GdalUse use;
    for (const std::string& path : options.paths) {
        RequireRaster(path);
        const host::ChangeInPlace change;
        if (CRasterSource::DeleteFileW(host::Wide(path).c_str()) != GIS_SUCCESS)
            throw host::Failure(path, host::LastReason("cannot be removed"));
    }
}

/// A path inside the destination where that is a folder.
std::string Destination(const FileOptions& options) {
    std::error_code ignored;
    if (fs::is_directory(options.to, ignored))
        return (fs::path(options.to) / fs::path(options.from).filename()).string();
    return options.to;
}

using Operation = GISError (*)(const wchar_t* from, const wchar_t* to, bool overwrite);

void Transfer(const FileOptions& options, Operation operation) {
    const host::GdalUse use;
    RequireRaster(options.from);
    const std::string to = Destination(options);
    std::error_code ignored;
    const bool exists = fs::exists(to, ignored);
    if (exists && !options.overwrite && !fs::equivalent(options.from, to, ignored))
        throw host::Failure(to, "it exists; --overwrite replaces it");
    if (exists)
        host::RequireNoPipe(to);
    host::ForgetReasons();
    const GISError result =
        operation(host::Wide(options.from).c_str(), host::Wide(to).c_str(), options.overwrite);
    if (result != GIS_SUCCESS)
        throw host::Failure(host::LastReason(options.from + ": cannot be moved or copied"));
}

void AddTransferOptions(CLI::App& command, const std::shared_ptr<FileOptions>& options) {
    command.add_option("FROM", options->from, "a raster")->required();
    command.add_option("TO", options->to, "its new name, or a folder")->required();
    command.add_flag("--overwrite", options->overwrite, "replace what has the new name");
}

} // namespace

void AddFile(CLI::App& program) {
    auto* file = program.add_subcommand(
        "file", "remove, move and copy rasters with the files that belong to them");
    file->require_subcommand(1);
    auto options = std::make_shared<FileOptions>();

    auto* rm = file->add_subcommand("rm", "remove rasters");
    rm->add_option("FILE", options->paths)->required();
    rm->callback([options] { Remove(*options); });

    auto* mv = file->add_subcommand("mv", "move or rename a raster");
    AddTransferOptions(*mv, options);
    mv->callback([options] { Transfer(*options, CRasterFiles::Move); });

    auto* cp = file->add_subcommand("cp", "copy a raster");
    AddTransferOptions(*cp, options);
    cp->callback([options] { Transfer(*options, CRasterFiles::Copy); });
}

} // namespace zelto::cli
