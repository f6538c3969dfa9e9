#pragma once

#include "cli/render/Many.h"
#include "cli/render/Recipe.h"
#include "cli/render/Stretch.h"
#include "cli/render/View.h"
#include "host/picture/Picture.h"

#include <string>

namespace CLI {
class App;
}

namespace zelto::cli {

/// What `render` is told; empty texts were not given.
struct RenderOptions {
    std::string file;
    host::PictureFile out;
    ViewOptions view;
    std::string bands;
    StretchOptions stretch;
    std::string ramp;
    float hue = 0.0F;
    float intensity = 0.0F;
    float saturation = 0.0F;
    float contrast = 0.0F;
    float transparency = 0.0F;
    std::string adjustFrom;
    std::string aoi;
    std::string outside = "transparent";
    bool cropToAoi = false;
    std::string srs;
    bool contactSheet = false;
    RecipeOptions recipe;
    ManyPictures many;
};

/// Adds the options of view, area and colours.
void AddViewOptions(CLI::App& render, RenderOptions& options);
void AddColorOptions(CLI::App& render, RenderOptions& options);

/// Throws UsageError for what cannot be or contradicts itself, and Failure where a file stands in
/// the way.
void CheckRenderOptions(const RenderOptions& options);

} // namespace zelto::cli
