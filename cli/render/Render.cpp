#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/render/Many.h"
#include "cli/render/Opacity.h"
#include "cli/render/Recipe.h"
#include "cli/render/Sheet.h"
#include "cli/render/Stretch.h"
#include "cli/render/System.h"
#include "cli/render/View.h"
#include "cli/support/Effect.h"
#include "cli/support/Failure.h"
#include "cli/support/FileOpacity.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Message.h"
#include "cli/support/Open.h"
#include "cli/support/Output.h"
#include "cli/support/Picture.h"
#include "cli/support/PyramidHint.h"
#include "cli/support/Region.h"
#include "cli/support/RenderRamps.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

namespace zelto::cli {

namespace {

struct RenderOptions {
    std::string file;
    PictureFile out;
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

void ChooseBands(CRasterSource& source, const std::string& text) {
    std::vector<int> bands = ParseBands("--bands", text, source.GetBandCount());
    if (bands.size() != 1 && bands.size() != 3)
        throw UsageError("--bands: give one band, or three for red, green and blue");
    source.SetShowBandNum(static_cast<int>(bands.size()), bands.data());
}

void ChooseRamp(CRasterSource& source, const std::string& name) {
    int first = source.GetRedBandNum();
    source.SetShowBandNum(1, &first);
    CColorRamp ramp = MakeRamp(name);
    source.SetColorRamp(&ramp);
    source.SetDisplayType(static_cast<DataDisplayType>(1));
}

/// The options that are display settings of the source. Those of another raster come first, so
/// that what is said on the command line holds.
void ApplySettings(CRasterSource& source, const RenderOptions& options) {
    ShowBandsByColor(source);
    if (!options.adjustFrom.empty()) {
        CRasterSource other;
        OpenForDisplay(other, options.adjustFrom, "");
        source.CopyDisplaySetting(&other);
    }
    if (!options.bands.empty())
        ChooseBands(source, options.bands);
    if (!options.ramp.empty())
        ChooseRamp(source, options.ramp);
    source.m_hue = options.hue;
    source.m_intensity = options.intensity;
    source.m_saturation = options.saturation;
    source.m_contrast = options.contrast;
    source.m_transparency = options.transparency;
}

/// Throws Failure where a drawing failed, or was done without the statistics of its bands, which
/// could not be taken: that picture would be another one.
void FailWithoutPixels(bool drawn, const std::string& path) {
    if (!drawn || !CGISDataSource::GetLastErrorText().empty())
        throw Failure(path, LastReason("its pixels cannot be read"));
}

Picture Draw(CRasterSource& source, const View& view, const std::string& path) {
    Picture picture(view.width, view.height);
    CBoundingBox box = view.box;
    FailWithoutPixels(
        source.GetShowData(&box, view.width, view.height, picture.pixels.data(), true), path);
    // Palette and class colours have their transparency from the drawing already.
    source.m_hue = source.m_intensity = source.m_saturation = source.m_contrast = 0.0F;
    source.ApplyShowDataHISC(view.width, view.height, picture.pixels.data());
    return picture;
}

/// Pixels outside the area are transparent or black, whatever is adjusted; pixels without data
/// inside it are black before the adjustments.
Picture DrawMasked(CRasterSource& source, CAOISource& aoi, const View& view,
                   const RenderOptions& options) {
    CRasterAOI area(&source, &aoi);
    area.Initialize();

    const std::size_t size = static_cast<std::size_t>(view.width) * view.height;
    std::vector<unsigned char> planes[3];
    unsigned char* pointers[3];
    for (int i = 0; i < 3; ++i) {
        planes[i].resize(size);
        pointers[i] = planes[i].data();
    }
    // The source adjusts the contrast of as many planes as bands are shown; a picture of a single
    // band has three alike.
    const float contrast = std::exchange(source.m_contrast, 0.0F);
    std::vector<unsigned char> inside(size);
    CBoundingBox box = view.box;
    FailWithoutPixels(
        source.GetMaskedShowData(&box, view.width, view.height, 3, pointers, &area, inside.data()),
        options.file);
    CRasterAlgorithm::AdjustContrast(pointers, view.width, view.height, contrast, 3);
    if (std::all_of(inside.begin(), inside.end(), [](unsigned char mark) { return mark == 0; }))
        Remark(options.aoi + ": no part of it lies in the picture");

    Picture picture(view.width, view.height);
    const auto opaque =
        static_cast<unsigned char>(std::lround(255.0 * (1.0 - source.m_transparency)));
    const unsigned char outside = options.outside == "black" ? opaque : 0;
    unsigned char* pixel = picture.pixels.data();
    for (std::size_t i = 0; i < size; ++i, pixel += 4) {
        for (int channel = 0; channel < 3; ++channel)
            pixel[channel] = inside[i] != 0 ? planes[2 - channel][i] : 0;
        pixel[3] = inside[i] != 0 ? opaque : outside;
    }
    return picture;
}

/// Each stretch that suits the shown bands gets a source of its own: some build on what an earlier
/// drawing left.
Picture DrawSheet(const View& view, const RenderOptions& options) {
    std::vector<SheetCell> cells;
    // What one picture reads of the file serves the others for as long as it is open.
    CRasterSource kept;
    OpenForDisplay(kept, options.file, "");
    for (const std::string& name : StretchesOfSheet()) {
        CRasterSource source;
        OpenForDisplay(source, options.file, options.srs);
        if (!options.srs.empty())
            OpenForDisplay(source, options.file, options.srs, &view);
        ApplySettings(source, options);
        if (!SuitsShownBands(source, name))
            continue;
        try {
            ApplyStretch(source, StretchOfSheet(options.stretch, name), {view.box}, options.file);
        } catch (const UnsuitedStretch& failure) {
            Remark(std::string(failure.what()) + "; the sheet leaves " + name + " out");
            continue;
        }
        cells.push_back({name, Draw(source, view, options.file)});
        ApplyOpacity(cells.back().picture, source, view, options.srs);
    }
    if (cells.empty())
        throw Failure(options.file, "no stretch suits its bands");
    return MakeSheet(cells);
}

void CheckRenderOptions(const RenderOptions& options) {
    CheckPictureFile(options.out);
    if (options.cropToAoi && !(options.view.box.empty() && options.view.center.empty()))
        throw UsageError("--crop-to-aoi, --box and --center contradict each other");
    if (options.outside != "transparent" && options.outside != "black")
        throw UsageError("--outside: transparent or black");
    if (options.contactSheet && !options.aoi.empty())
        throw UsageError("--contact-sheet and --aoi do not go together");
    if (options.contactSheet && !options.recipe.to.empty())
        throw UsageError("--save-recipe: a recipe is for one picture, not for a --contact-sheet");
    if (options.contactSheet)
        CheckStretchesOfSheet(options.stretch, !options.aoi.empty());
    else
        CheckStretch(options.stretch, !options.aoi.empty());
    if (!options.ramp.empty() && options.bands.find(',') != std::string::npos)
        throw UsageError("--ramp: it colours a single band; give one with --bands");
    for (const auto& [name, value] : {std::pair("--hue", options.hue),
                                      {"--intensity", options.intensity},
                                      {"--saturation", options.saturation},
                                      {"--contrast", options.contrast}})
        if (!(value >= -1.0F && value <= 1.0F))
            throw UsageError(std::string(name) + ": -1 to 1");
    if (!(options.transparency >= 0.0F && options.transparency <= 1.0F))
        throw UsageError("--transparency: 0 to 1");
    // Wrong usage is told first, whatever stands in the way.
    RequireFreePath(options.out.path, options.out.overwrite,
                    {options.file, options.aoi, options.adjustFrom, options.recipe.from});
    RequireFreePath(options.recipe.to, options.out.overwrite, {options.file, options.aoi});
}

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
    const auto area = MakeRegion({options.aoi, "", ""}, source);
    if (recipe == nullptr)
        ApplyStretch(source, options.stretch, {view.box, area.get()}, options.file);
    std::optional<CDisplayRecipe> made;
    if (!options.recipe.to.empty()) {
        made = TakeRecipe(source, view, options.srs, options.file);
        if (area != nullptr)
            made->SetMask(CDisplayRecipe::Mask{Wide(options.aoi), options.outside == "black"});
    }
    Picture picture = area != nullptr ? DrawMasked(source, *area, view, options)
                                      : Draw(source, view, options.file);
    ApplyOpacity(picture, source, view, options.srs);
    WritePicture(picture, options.out, PicturePlace{view.box, source.GetProjectionWKT()});
    if (made)
        WriteRecipe(*made, options.recipe.to);
}

/// The options with what a recipe says of them.
RenderOptions WithRecipe(RenderOptions options, const CDisplayRecipe& recipe) {
    if (recipe.GetView())
        options.srs = recipe.GetView()->srs;
    if (const auto& mask = recipe.GetMask()) {
        options.aoi = Narrow(mask->area);
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
        view.box = FormatNumber(its.box.GetLeft()) + "," + FormatNumber(its.box.GetTop()) + "," +
                   FormatNumber(its.box.GetRight()) + "," + FormatNumber(its.box.GetBottom());
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
        recipe = ReadRecipe(given.recipe.from);
    const RenderOptions options = recipe ? WithRecipe(given, *recipe) : given;
    CRasterSource source;
    OpenForDisplay(source, options.file, options.srs);
    const View view = ViewOf(source, recipe ? &*recipe : nullptr, options);
    if (!options.srs.empty())
        OpenForDisplay(source, options.file, options.srs, &view);
    if (recipe)
        ApplyRecipe(*recipe, source, options.file);
    else
        ApplySettings(source, options);
    if (options.contactSheet)
        WritePicture(DrawSheet(view, options), options.out);
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
            throw UsageError("render: OUT is required");
        if (!options.many.more.empty())
            throw UsageError("render: one image makes one picture; --into FOLDER takes several");
        Confirm(RenderOne(options));
        return;
    }
    if (!options.recipe.to.empty())
        throw UsageError("--save-recipe: a recipe is for one picture, not for those of --into");
    DrawMany({options.file, options.out.path}, options.many,
             [&](const std::string& image, const std::string& path) {
                 RenderOptions one = options;
                 one.file = image;
                 one.out.path = path;
                 return RenderOne(one);
             });
}

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
    render.add_option("--ramp", options.ramp, "colour ramp of a single band: " + RampNames());
    render.add_option("--hue", options.hue, "shift of the hue, -1 to 1");
    render.add_option("--intensity", options.intensity, "brighter or darker, -1 to 1");
    render.add_option("--saturation", options.saturation, "more or less colour, -1 to 1");
    render.add_option("--contrast", options.contrast, "more or less contrast, -1 to 1");
    render.add_option("--transparency", options.transparency, "0 opaque to 1 transparent");
    render.add_option("--adjust-from", options.adjustFrom,
                      "take the shown bands and the kind of display of another raster");
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
