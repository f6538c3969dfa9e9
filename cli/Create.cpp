#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/GdalUse.h"
#include "cli/support/NewRaster.h"
#include "cli/support/Open.h"
#include "cli/support/Output.h"
#include "cli/support/RasterChoice.h"
#include "cli/support/Strips.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>

namespace zelto::cli {

namespace {

struct CreateOptions {
    std::string path;
    std::string like;
    std::string size;
    std::string box;
    std::string srs;
    std::string type;
    std::string format;
    int bands = 0;
    std::optional<double> noData;
    std::optional<double> fill;
    bool overwrite = false;
    std::vector<std::string> creation;
};

/// The new raster's layout with room for its geotransform.
struct Layout {
    NewRasterLayout raster;
    std::array<double, 6> geoTransform = {};
};

/// Size, place, reference, bands and type of another file.
void TakeFrom(const std::string& path, Layout& layout) {
    CRasterSource model;
    OpenOrFail(model, path);
    layout.raster.width = model.GetWidth();
    layout.raster.height = model.GetHeight();
    layout.raster.bands = model.GetBandCount();
    layout.raster.type = model.GetRasterDataType();
    layout.raster.wkt = model.GetProjectionWKT();
    // Asked this way, the answer says whether the file lacks a geotransform.
    if (!model.GetGeoTransform(layout.geoTransform.data(), true))
        layout.raster.geoTransform = layout.geoTransform.data();
}

/// WxH; a comma between the sides is understood as well.
void SetSize(std::string text, Layout& layout) {
    std::replace(text.begin(), text.end(), 'x', ',');
    const std::vector<double> size = ParseNumbers("--size", text, 2);
    for (const double side : size)
        if (!(side >= 1 && side <= std::numeric_limits<int>::max()) || side != std::floor(side))
            throw UsageError("--size: the sides are whole numbers of pixels from 1 on");
    layout.raster.width = static_cast<int>(size[0]);
    layout.raster.height = static_cast<int>(size[1]);
}

void SetBox(const std::string& text, Layout& layout) {
    const CBoundingBox box = ParseBox("--box", text);
    if (!(box.GetLeft() < box.GetRight() && box.GetBottom() < box.GetTop()))
        throw UsageError("--box: left must be below right and bottom below top");
    if (!std::isfinite(box.GetWidth()) || !std::isfinite(box.GetHeight()))
        throw UsageError("--box: the numbers are finite");
    layout.geoTransform = {
        box.GetLeft(), box.GetWidth() / layout.raster.width, 0.0, box.GetTop(), 0.0, 0.0};
    layout.geoTransform[5] = -box.GetHeight() / layout.raster.height;
    layout.raster.geoTransform = layout.geoTransform.data();
}

void Resolve(const CreateOptions& options, Layout& layout) {
    layout.raster.format = ChooseFormat(options.format, options.path);
    CheckCreationOptions(options.creation, layout.raster.format);
    layout.raster.options = options.creation;
    if (!options.like.empty())
        TakeFrom(options.like, layout);
    if (!options.size.empty())
        SetSize(options.size, layout);
    if (layout.raster.width < 1)
        throw UsageError("give --size or --like");
    if (!options.box.empty())
        SetBox(options.box, layout);
    if (!options.srs.empty()) {
        if (!CCoordinateAlgorithm::IsValidCoordinate(options.srs.c_str()))
            throw Failure(options.srs, "not a reference system");
        layout.raster.wkt = options.srs;
    }
    if (options.bands > 0)
        layout.raster.bands = options.bands;
    if (!options.type.empty())
        layout.raster.type = ParsePixelType(options.type);
}

void Create(const CreateOptions& options) {
    const GdalUse use;
    RequireFreePath(options.path, options.overwrite, {options.like});
    Layout layout;
    Resolve(options, layout);
    NewRaster made(options.path, layout.raster);
    if (options.noData && !made.Raster().SetAllBandNoDataValue(*options.noData, true))
        throw Failure(options.path, "the format cannot store a no-data value");
    if (options.fill)
        FillRaster(made.Raster(), *options.fill, options.path);
    made.Commit();
}

} // namespace

void AddCreate(CLI::App& program) {
    auto* create = program.add_subcommand("create", "make a raster file");
    auto options = std::make_shared<CreateOptions>();
    create->add_option("OUT", options->path, "the file to make")->required();
    create->add_option("--size", options->size, "WxH: columns and rows");
    create->add_option("--like", options->like,
                       "take size, place, reference, bands and type from this file");
    create->add_option("--bands", options->bands, "number of bands (1)")
        ->check(CLI::PositiveNumber);
    create->add_option("--type", options->type, "pixel type, Byte … Float64 (Byte)");
    create->add_option("--format", options->format, "format, where the extension does not tell");
    create->add_option("--box", options->box, "left,top,right,bottom in ground units");
    create->add_option("--srs", options->srs, "reference system");
    create->add_option("--no-data", options->noData, "no-data value of all bands");
    create->add_option("--fill", options->fill, "value of all pixels");
    AddOverwriteOption(*create, options->overwrite);
    create->add_option("--co", options->creation, "KEY=VALUE for the GeoTIFF writer");
    create->callback([options] { Create(*options); });
}

} // namespace zelto::cli
