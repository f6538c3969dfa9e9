#include "cli/render/Many.h"

#include "cli/ManyFiles.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <system_error>

namespace zelto::cli {

namespace {
/// Where the picture of each image goes: under its name, with the extension of the format.
std::vector<std::string> PathsOfPictures(const std::vector<std::string>& images,
                                         const ManyPictures& many) {
    std::error_code ignored;
    if (!std::filesystem::is_directory(many.folder, ignored))
        throw host::Failure(many.folder, "there is no such folder");
    std::vector<std::string> paths;
    std::map<std::string, std::string> imageOf;
    for (const std::string& image : images) {
        const std::string name = std::filesystem::path(image).stem().string() + "." + many.format;
        const auto [other, isNew] = imageOf.try_emplace(name, image);
        if (!isNew)
            throw host::UsageError("--into: the pictures of " + other->second + " and " + image +
                                   " would both be " + name);
        paths.push_back((std::filesystem::path(many.folder) / name).string());
    }
    return paths;
}

} // namespace

void AddManyOptions(CLI::App& render, ManyPictures& many) {
    render.add_option("MORE", many.more, "with --into: further raster files");
    auto* into = render.add_option(
        "--into", many.folder,
        "folder for pictures of several images: all of FILE, OUT and MORE are raster files");
    render.add_option("--format", many.format, "with --into: png, jpg or tif")
        ->check(CLI::IsMember({"png", "jpg", "tif"}))
        ->capture_default_str()
        ->needs(into);
    AddJobsOption(render, many.jobs)->needs(into);
}

void DrawMany(const std::vector<std::string>& firstTwo, const ManyPictures& many,
              const DrawOne& draw) {
    std::vector<std::string> images;
    std::copy_if(firstTwo.begin(), firstTwo.end(), std::back_inserter(images),
                 [](const std::string& image) { return !image.empty(); });
    images.insert(images.end(), many.more.begin(), many.more.end());
    const std::vector<std::string> paths = PathsOfPictures(images, many);
    std::vector<std::string> made(images.size());
    const auto failures =
        ForEachFile(images, many.jobs, [&](std::size_t image, CDataProgress& /*progress*/) {
            made[image] = draw(images[image], paths[image]);
        });
    for (const std::string& line : made)
        if (!line.empty())
            host::Confirm(line);
    TellFailures(failures);
}

} // namespace zelto::cli
