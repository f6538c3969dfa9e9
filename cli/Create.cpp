#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "cli/Commands.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Text.h"
#include "host/files/NewRaster.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/files/RasterChoice.h"
#include "host/files/Strips.h"

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
    host::NewRasterLayout raster;
    std::array<double, 6> geoTransform = {};
};

/// Size, place, reference, bands and type of another file.
void TakeFrom(const std::string& path, Layout& layout) {
    CRasterSource model;
    host::OpenOrFail(model, path);
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
    const std::vector<double> size = host::ParseNumbers("--size", text, 2);
    for (const double side : size)
        if (!(side >= 1 && side <= std::numeric_limits<int>::max()) || side != std::floor(side))
            throw host::UsageError("--size: the sides are whole numbers of pixels from 1 on");
    layout.raster.width = static_cast<int>(size[0]);
    layout.raster.height = static_cast<int>(size[1]);
}

void SetBox(const std::string& text, Layout& layout) {
    const CBoundingBox box = host::ParseBox("--box", text);
    if (!(box.GetLeft() < box.GetRight() && box.GetBottom() < box.GetTop()))
        throw host::UsageError("--box: left must be below right and bottom below top");
    if (!std::isfinite(box.GetWidth()) || !std::isfinite(box.GetHeight()))
        throw host::UsageError("--box: the numbers are finite");
    layout.geoTransform = {
        box.GetLeft(), box.GetWidth() / layout.raster.width, 0.0, box.GetTop(), 0.0, 0.0};
    layout.geoTransform[5] = -box.GetHeight() / layout.raster.height;
    layout.raster.geoTransform = layout.geoTransform.data();
}

void Resolve(const CreateOptions& options, Layout& layout) {
    layout.raster.format = host::ChooseFormat(options.format, options.path);
    host::CheckCreationOptions(options.creation, layout.raster.format);
    layout.raster.options = options.creation;
    if (!options.like.empty())
        TakeFrom(options.like, layout);
    if (!options.size.empty())
        SetSize(options.size, layout);
    if (layout.raster.width < 1)
        throw host::UsageError("give --size or --like");
    if (!options.box.empty())
        SetBox(options.box, layout);
    if (!options.srs.empty()) {
        if (!CCoordinateAlgorithm::IsValidCoordinate(options.srs.c_str()))
            throw host::Failure(options.srs, "not a reference system");
        layout.raster.wkt = options.srs;
    }
    if (options.bands > 0)
        layout.raster.bands = options.bands;
    if (!options.type.empty())
        layout.raster.type = host::ParsePixelType(options.type);
}

void Create(const CreateOptions& options) {
    const host::GdalUse use;
    host::RequireFreePath(options.path, options.overwrite, {options.like});
    Layout layout;
    Resolve(options, layout);
    host::NewRaster made(options.path, layout.raster);
    if (options.noData && !made.Raster().SetAllBandNoDataValue(*options.noData, true))
        throw host::Failure(options.path, "the format cannot store a no-data value");
    if (options.fill)
        host::FillRaster(made.Raster(), *options.fill, options.path);
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
