#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/Commands.h"
#include "cli/options/SharedOptions.h"
#include "host/base/Message.h"
#include "host/base/Progress.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/files/PolygonBuild.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace zelto::cli {

namespace {

struct PolygonizeOptions {
    std::string image;
    std::string out;
    host::PolygonOptions polygons;
    bool overwrite = false;
};

bool HasFractions(PixelDataType type) {
    return type == PDT_Float32 || type == PDT_Float64;
}

void RunPolygonize(const PolygonizeOptions& options) {
    CRasterSource raster;
    host::OpenOrFail(raster, options.image, GIS_READONLY, true);
    host::RequireFreePath(options.out, options.overwrite, {options.image});
    host::TerminalProgress progress;
    const std::int64_t count =
        host::BuildPolygons(raster, options.image, options.out, options.polygons, progress);
    host::Confirm(options.out + ": " + std::to_string(count) +
                  (count == 1 ? " polygon" : " polygons"));
    if (HasFractions(raster.GetRasterBand(options.polygons.band - 1)->GetDataType()))
        host::Remark(options.image +
                     ": the values have fractions; areas and numbers are of their whole parts");
}

} // namespace

void AddPolygonize(CLI::App& program) {
    auto* polygonize =
        program.add_subcommand("polygonize", "a polygon for every area of equal pixels");
    auto options = std::make_shared<PolygonizeOptions>();
    polygonize->add_option("IMAGE", options->image, "raster file")->required();
    polygonize
        ->add_option("OUT", options->out,
                     "vector file to write, its format told by the extension: .shp, .gpkg, "
                     ".geojson …")
        ->required();
    polygonize->add_option("--band", options->polygons.band, "band to take, 1 when not given");
    auto* mask = polygonize->add_option("--mask", options->polygons.mask,
                                        "band whose zeros make no polygons");
    polygonize
        ->add_flag("--nodata", options->polygons.keepNoData, "make polygons of no-data areas too")
        ->excludes(mask);
    polygonize->add_option("--field", options->polygons.field,
                           "name of the field that receives the pixel value");
    polygonize->add_flag("--eight", options->polygons.eight,
                         "pixels that touch at a corner belong together");
    AddOverwriteOption(*polygonize, options->overwrite);
    polygonize->callback([options] { RunPolygonize(*options); });
}

} // namespace zelto::cli
