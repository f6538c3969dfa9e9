#include "zelto/display/ComposedRaster.h"
#include "zelto/raster/RasterBand.h"

#include "cli/Commands.h"
#include "cli/PyramidHint.h"
#include "cli/options/SharedOptions.h"
#include "cli/render/Stretch.h"
#include "cli/render/View.h"
#include "host/base/Failure.h"
#include "host/base/Message.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/picture/DisplaySource.h"
#include "host/picture/Drawing.h"
#include "host/picture/Picture.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace zelto::cli {

namespace {

struct ComposeOptions {
    std::vector<std::string> colors; ///< FILE:BAND for red, green, blue
    host::PictureFile out;
    ViewOptions view;
    StretchOptions stretch;
};

/// One colour: a source of its own, also where two colours come from one file, because the
/// stretch is the source's.
struct ColorSource {
    std::string path;
    CRasterSource source;
    CRasterBand* band = nullptr;
};

void OpenColor(ColorSource& color, const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon + 1 == text.size() ||
        text.find_first_not_of("0123456789", colon + 1) != std::string::npos)
        throw host::UsageError("'" + text + "': give each colour as FILE:BAND, as scene.tif:4");
    color.path = text.substr(0, colon);
    color.source.SetForDisplay(true);
    host::OpenOrFail(color.source, color.path, GIS_READONLY, true);
    int band = -1;
    try {
        band = std::stoi(text.substr(colon + 1)) - 1;
    } catch (const std::out_of_range&) {
        band = -1;
    }
    color.band = color.source.GetRasterBand(band);
    if (color.band == nullptr)
        throw host::UsageError("'" + text + "': bands are numbered from 1 to " +
                               std::to_string(color.source.GetBandCount()));
    color.source.SetShowBandNum(1, &band);
}

void RunCompose(const ComposeOptions& options) {
    host::CheckPictureFile(options.out);
    ColorSource colors[3];
    for (std::size_t k = 0; k < 3; ++k) {
        OpenColor(colors[k], options.colors[k]);
        host::RequireFreePath(options.out.path, options.out.overwrite, {colors[k].path});
        ApplyStretch(colors[k].source, options.stretch, {}, colors[k].path);
    }
    CComposedRaster composed;
    if (composed.CreateRaster(&colors[0].source, colors[0].band, &colors[1].source, colors[1].band,
                              &colors[2].source, colors[2].band) != GIS_SUCCESS)
        throw host::Failure(colors[0].path + ", " + colors[1].path + ", " + colors[2].path,
                            "the three have no ground in common");
    const View view = ChooseView(composed, options.view);
    host::Picture picture(view.width, view.height);
    CBoundingBox box = view.box;
    if (!composed.GetShowData(&box, view.width, view.height, picture.pixels.data(), true))
        throw host::Failure(options.out.path,
                            "the box misses the images, or their pixels cannot be read");
    if (!CGISDataSource::GetLastErrorText().empty()) // drawn without statistics of its bands
        throw host::Failure(CGISDataSource::GetLastErrorText());
    const auto openMask = [&](const std::string& path) {
        return host::OpenForPicture(path, "", view);
    };
    for (ColorSource& color : colors)
        host::ApplyOpacity(color.source, view, openMask, picture.pixels.data());
    host::WritePicture(picture, options.out,
                       host::PicturePlace{view.box, composed.GetProjectionWKT()});
    host::Confirm(options.out.path + ": " + std::to_string(view.width) + " x " +
                  std::to_string(view.height) + " pixels");
    for (const ColorSource& color : colors)
        HintAtPyramid(color.source, color.path);
}

} // namespace

void AddCompose(CLI::App& program) {
    auto* compose = program.add_subcommand("compose", "draw bands of three rasters as one picture");
    auto options = std::make_shared<ComposeOptions>();
    options->colors.resize(3);
    compose->add_option("RED", options->colors[0], "FILE:BAND of the red colour")->required();
    compose->add_option("GREEN", options->colors[1], "FILE:BAND of the green colour")->required();
    compose->add_option("BLUE", options->colors[2], "FILE:BAND of the blue colour")->required();
    compose->add_option("OUT", options->out.path, "picture: .png, .jpg or .tif (georeferenced)")
        ->required();
    compose->add_option("--box", options->view.box,
                        "left,top,right,bottom; default: what the three have in common");
    compose->add_option("--size", options->view.size,
                        "WxH, or one side as 1024x or x768; default: at most 1024 pixels");
    compose
        ->add_option("--stretch", options->stretch.name, "as zelto render; each band has its own")
        ->capture_default_str();
    AddPictureOptions(*compose, options->out);
    compose->footer("The rasters may differ in grid and resolution, but must lie in one reference\n"
                    "system. The picture has the resolution of the red one and the system of the\n"
                    "blue one.\n"
                    "Example: zelto compose nir.tif:1 red.tif:1 scene.tif:2 picture.png");
    compose->callback([options] {
        CheckStretch(options->stretch, false);
        if (options->stretch.name == "wallis")
            throw host::UsageError("--stretch wallis is for the three bands of one raster");
        RunCompose(*options);
    });
}

} // namespace zelto::cli
