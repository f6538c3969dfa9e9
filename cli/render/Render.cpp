#include "zelto/aoi/AOISource.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/PyramidHint.h"
#include "cli/options/Effect.h"
#include "cli/options/SharedOptions.h"
#include "cli/render/Drawing.h"
#include "cli/render/Many.h"
#include "cli/render/Options.h"
#include "cli/render/Recipe.h"
#include "cli/render/Stretch.h"
#include "cli/render/View.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/base/Text.h"
#include "host/files/Output.h"
#include "host/files/Region.h"
#include "host/picture/DisplaySource.h"
#include "host/picture/Picture.h"
#include "host/picture/Recipe.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

namespace zelto::cli {

namespace {

/// Whether drawing needs all of an image without a pyramid: the statistics of a sample, which
/// only 8-bit values shown as they are do without, or a view of most of it.
bool ReadsWhole(const CRasterSource& source, const View& view, const RenderOptions& options) {
    const CBoundingBox extent = source.GetExtent();
    const bool isMost =
        view.box.GetWidth() * view.box.GetHeight() * 2 >= extent.GetWidth() * extent.GetHeight();
    return isMost || options.contactSheet || !ShowsBytesAsTheyAre(options.stretch) ||
           source.GetRasterDataType() != PDT_Byte;
}

/// Draws the picture and writes it, and how it was made where that is wanted.
/// @param recipe says all but the view; null: the options do
void DrawPicture(CRasterSource& source, const View& view, const CDisplayRecipe* recipe,
                 const RenderOptions& options) {
    const auto area = host::MakeRegion({options.aoi, "", ""}, source);
    if (recipe == nullptr)
        ApplyStretch(source, options.stretch, {view.box, area.get()}, options.file);
    std::optional<CDisplayRecipe> made;
    if (!options.recipe.to.empty()) {
        made = host::TakeRecipe(source, view, options.srs);
        if (area != nullptr)
            made->SetMask(
                CDisplayRecipe::Mask{host::Wide(options.aoi), options.outside == "black"});
    }
    host::WritePicture(Draw(source, area.get(), view, options), options.out,
                       host::PicturePlace{view.box, source.GetProjectionWKT()});
    if (made)
        host::WriteRecipe(*made, options.recipe.to);
}

/// The options with what a recipe says of them.
RenderOptions WithRecipe(RenderOptions options, const CDisplayRecipe& recipe) {
    if (recipe.GetView())
        options.srs = recipe.GetView()->srs;
    if (const auto& mask = recipe.GetMask()) {
        options.aoi = host::Narrow(mask->area);
        options.outside = mask->isBlack ? "black" : "transparent";
    }
    return options;
}

View ViewOf(const CRasterSource& source, const CDisplayRecipe* recipe,
            const RenderOptions& options) {
    ViewOptions view = options.view;
    if (recipe != nullptr && recipe->GetView() && view.box.empty() && view.center.empty()) {
        const CDisplayRecipe::View& its = *recipe->GetView();
        if (view.size.empty() && view.scale == 0.0)
            return {its.box, its.width, its.height};
        view.box = host::FormatNumber(its.box.GetLeft()) + "," +
                   host::FormatNumber(its.box.GetTop()) + "," +
                   host::FormatNumber(its.box.GetRight()) + "," +
                   host::FormatNumber(its.box.GetBottom());
    }
    if (options.contactSheet && view.size.empty())
        view.size = "320x";
    return options.cropToAoi ? ChooseCrop(source, options.aoi, view) : ChooseView(source, view);
}

/// Draws one image.
/// @return what was made, in a line
std::string RenderOne(const RenderOptions& given) {
    CheckRenderOptions(given);
    std::optional<CDisplayRecipe> recipe;
    if (!given.recipe.from.empty())
        recipe = host::ReadRecipe(given.recipe.from);
    const RenderOptions options = recipe ? WithRecipe(given, *recipe) : given;
    CRasterSource source;
    host::OpenForDisplay(source, options.file, options.srs);
    const View view = ViewOf(source, recipe ? &*recipe : nullptr, options);
    if (!options.srs.empty())
        host::OpenForDisplay(source, options.file, options.srs, &view);
    if (recipe)
        host::ApplyRecipe(*recipe, source);
    else
        ApplySettings(source, options);
    if (options.contactSheet)
        host::WritePicture(DrawSheet(view, options), options.out);
    else
        DrawPicture(source, view, recipe ? &*recipe : nullptr, options);
    if (options.many.folder.empty() && ReadsWhole(source, view, options))
        HintAtPyramid(source, options.file);
    return options.out.path + ": " + std::to_string(view.width) + " x " +
           std::to_string(view.height) + (options.contactSheet ? " pixels a picture" : " pixels");
}

void RunRender(const RenderOptions& options) {
    if (options.many.folder.empty()) {
        if (options.out.path.empty())
            throw host::UsageError("render: OUT is required");
        if (!options.many.more.empty())
            throw host::UsageError(
                "render: one image makes one picture; --into FOLDER takes several");
        host::Confirm(RenderOne(options));
        return;
    }
    if (!options.recipe.to.empty())
        throw host::UsageError(
            "--save-recipe: a recipe is for one picture, not for those of --into");
    DrawMany({options.file, options.out.path}, options.many,
             [&](const std::string& image, const std::string& path) {
                 RenderOptions one = options;
                 one.file = image;
                 one.out.path = path;
                 return RenderOne(one);
             });
}

} // namespace

void AddRender(CLI::App& program) {
    auto* render = program.add_subcommand("render", "draw a raster as a picture");
    auto options = std::make_shared<RenderOptions>();
    render->add_option("FILE", options->file, "raster file")->required();
    render->add_option("OUT", options->out.path, "picture: .png, .jpg or .tif (georeferenced)");
    AddViewOptions(*render, *options);
    AddColorOptions(*render, *options);
    AddStretchOptions(*render, options->stretch);
    render->add_flag("--contact-sheet", options->contactSheet,
                     "one labelled sheet of all stretches that suit the bands; --size is that of "
                     "one picture");
    AddPictureOptions(*render, options->out);
    AddManyOptions(*render, options->many);
    AddRecipeOptions(*render, options->recipe);
    render->footer(
        "Stretches: none shows 8-bit values as they are, others from minimum to maximum;\n"
        "table: minimum to maximum through a gamma curve; linear: minimum to maximum;\n"
        "stddev: two standard deviations around the mean; equalize: equal shares of the\n"
        "histogram of the whole range; custom-equalize: of that from --low (0) to --high (the\n"
        "maximum, 255 for 8-bit bands); autolevels: cuts --threshold off both ends; zoom002,\n"
        "zoom: by the bounds; wallis: to a model's mean and deviation per colour, for three\n"
        "bands; percent: between two percentiles; auto: none for 8-bit values, palettes and\n"
        "classes, percent for all others.\n"
        "Example: zelto render --bands 4,3,2 --size 800x scene.tif picture.png");
    render->callback([options, render] {
        RequireEffect(*render, "--outside", !options->aoi.empty(), "--aoi");
        RunRender(*options);
    });
}

} // namespace zelto::cli
