#include "cli/render/Options.h"

#include "host/base/Failure.h"
#include "host/files/Output.h"
#include "host/picture/RenderRamps.h"

#include <CLI/CLI.hpp>

#include <utility>

namespace zelto::cli {

void AddViewOptions(CLI::App& render, RenderOptions& options) {
    render.add_option("--box", options.view.box,
                      "ground rectangle left,top,right,bottom; default: the whole image");
    render.add_option("--center", options.view.center, "x,y in the middle of the picture");
    render
        .add_option("--scale", options.view.scale,
                    "with --center: ground units per pixel; default: the image's own")
        ->check(CLI::PositiveNumber);
    render.add_option("--size", options.view.size,
                      "WxH, or one side as 1024x or x768; default: at most 1024 pixels");
    render.add_option("--srs", options.srs, "reference system to show the image in");
    auto* aoi = render.add_option("--aoi", options.aoi,
                                  "area of interest (.aif or any vector file) to show");
    render
        .add_option("--outside", options.outside, "what is outside the area: transparent or black")
        ->capture_default_str();
    render
        .add_flag("--crop-to-aoi", options.cropToAoi,
                  "draw no more than the rectangle around the area, in whole pixels of the image")
        ->needs(aoi);
}

void AddColorOptions(CLI::App& render, RenderOptions& options) {
    render.add_option("--bands", options.bands,
                      "band numbers for red,green,blue, or one band; default: those that the file "
                      "calls so, else its order, 3,2,1 for four bands");
    render.add_option("--ramp", options.ramp, "colour ramp of a single band: " + host::RampNames());
    render.add_option("--hue", options.hue, "shift of the hue, -1 to 1");
    render.add_option("--intensity", options.intensity, "brighter or darker, -1 to 1");
    render.add_option("--saturation", options.saturation, "more or less colour, -1 to 1");
    render.add_option("--contrast", options.contrast, "more or less contrast, -1 to 1");
    render.add_option("--transparency", options.transparency, "0 opaque to 1 transparent");
    render.add_option("--adjust-from", options.adjustFrom,
                      "take the shown bands and the kind of display of another raster");
}

void CheckRenderOptions(const RenderOptions& options) {
    host::CheckPictureFile(options.out);
    if (options.cropToAoi && !(options.view.box.empty() && options.view.center.empty()))
        throw host::UsageError("--crop-to-aoi, --box and --center contradict each other");
    if (options.outside != "transparent" && options.outside != "black")
        throw host::UsageError("--outside: transparent or black");
    if (options.contactSheet && !options.aoi.empty())
        throw host::UsageError("--contact-sheet and --aoi do not go together");
    if (options.contactSheet && !options.recipe.to.empty())
        throw host::UsageError(
            "--save-recipe: a recipe is for one picture, not for a --contact-sheet");
    if (options.contactSheet)
        CheckStretchesOfSheet(options.stretch, !options.aoi.empty());
    else
        CheckStretch(options.stretch, !options.aoi.empty());
    if (!options.ramp.empty() && options.bands.find(',') != std::string::npos)
        throw host::UsageError("--ramp: it colours a single band; give one with --bands");
    for (const auto& [name, value] : {std::pair("--hue", options.hue),
                                      {"--intensity", options.intensity},
                                      {"--saturation", options.saturation},
                                      {"--contrast", options.contrast}})
        if (!(value >= -1.0F && value <= 1.0F))
            throw host::UsageError(std::string(name) + ": -1 to 1");
    if (!(options.transparency >= 0.0F && options.transparency <= 1.0F))
        throw host::UsageError("--transparency: 0 to 1");
    // Wrong usage is told first, whatever stands in the way.
    host::RequireFreePath(options.out.path, options.out.overwrite,
                          {options.file, options.aoi, options.adjustFrom, options.recipe.from});
    host::RequireFreePath(options.recipe.to, options.out.overwrite, {options.file, options.aoi});
}

} // namespace zelto::cli
