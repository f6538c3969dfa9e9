#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/vector/VectorLayer.h"

#include "cli/Commands.h"
#include "cli/support/Failure.h"
#include "cli/support/Message.h"
#include "cli/support/NewVector.h"
#include "cli/support/Open.h"
#include "cli/support/Printable.h"
#include "cli/support/Progress.h"
#include "cli/support/Text.h"

#include <CLI/CLI.hpp>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <iostream>
#include <memory>

namespace zelto::cli {

namespace {

struct Options {
    std::string image;
    std::string out;
    int band = 1;
    int mask = 0;
    std::string field = "value";
    bool eight = false;
    bool keepNoData = false;
};

CRasterBand& BandNumbered(const CRasterSource& raster, int number, const char* option) {
    CRasterBand* const band = raster.GetRasterBand(number - 1);
    if (band == nullptr)
        throw UsageError(std::string(option) + ": bands are numbered from 1 to " +
                         std::to_string(raster.GetBandCount()));
    return *band;
}

bool HasFractions(PixelDataType type) {
    return type == PDT_Float32 || type == PDT_Float64;
}

OGRLayer& MakeLayer(NewVector& file, const CRasterSource& raster, PixelDataType type,
                    const std::string& field) {
    OGRLayer& layer = file.MakeLayer(raster.GetProjectionWKT(), wkbPolygon);
    OGRFieldDefn definition(field.c_str(), type == PDT_UInt32 ? OFTInteger64 : OFTInteger);
    if (layer.CreateField(&definition) != OGRERR_NONE)
        throw Failure(file.Path(), LastReason("cannot have a field '" + field + "'"));
    return layer;
}

/// The pixels that have data, as GDAL tells them; null where all have.
std::unique_ptr<CRasterBand> DataMask(const CRasterBand& band) {
    if (!band.IsHaveNoData())
        return nullptr;
    return std::make_unique<CRasterBand>(false, band.GetGDALBand()->GetMaskBand());
}

/// Asked of the finished file: not every format can count while it is written.
GIntBig CountFeatures(const std::string& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    return dataset && dataset->GetLayerCount() > 0 ? dataset->GetLayer(0)->GetFeatureCount() : 0;
}

void Run(const Options& options) {
    CRasterSource raster;
    OpenOrFail(raster, options.image, GIS_READONLY, true);
    CRasterBand& band = BandNumbered(raster, options.band, "--band");
    std::unique_ptr<CRasterBand> dataMask;
    CRasterBand* mask = nullptr;
    if (options.mask != 0) {
        mask = &BandNumbered(raster, options.mask, "--mask");
    } else if (!options.keepNoData) {
        dataMask = DataMask(band);
        mask = dataMask.get();
    }
    NewVector file(options.out);
    OGRLayer& ogrLayer = MakeLayer(file, raster, band.GetDataType(), options.field);
    CVectorLayer layer(&ogrLayer);
    char eight[] = "8CONNECTED=8";
    char* gdalOptions[] = {options.eight ? eight : nullptr, nullptr};
    TerminalProgress progress;
    // Databases would otherwise secure every polygon on the disk by itself.
    const bool inTransaction = ogrLayer.StartTransaction() == OGRERR_NONE;
    ForgetReasons();
    if (CRasterAlgorithm::RasterPolygonize(&band, mask, &layer, 0, gdalOptions, &progress, L"") !=
        GIS_SUCCESS)
        throw Failure(options.image,
                      Interrupted() ? "interrupted" : LastReason("cannot be polygonized"));
    if (inTransaction && ogrLayer.CommitTransaction() != OGRERR_NONE)
        throw Failure(options.out, LastReason("cannot be written"));
    file.Finish();
    const GIntBig count = CountFeatures(options.out);
    std::cout << Printable(options.out) << ": " << count
              << (count == 1 ? " polygon\n" : " polygons\n");
    if (HasFractions(band.GetDataType()))
        Tell(options.image +
             ": the values have fractions; areas and numbers are of their whole parts");
}

} // namespace

void AddPolygonize(CLI::App& program) {
    auto* polygonize =
        program.add_subcommand("polygonize", "a polygon for every area of equal pixels");
    auto options = std::make_shared<Options>();
    polygonize->add_option("IMAGE", options->image, "raster file")->required();
    polygonize
        ->add_option("OUT", options->out,
                     "vector file to write, its format told by the extension: .shp, .gpkg, "
                     ".geojson …")
        ->required();
    polygonize->add_option("--band", options->band, "band to take, 1 when not given");
    auto* mask =
        polygonize->add_option("--mask", options->mask, "band whose zeros make no polygons");
    polygonize->add_flag("--nodata", options->keepNoData, "make polygons of no-data areas too")
        ->excludes(mask);
    polygonize->add_option("--field", options->field,
                           "name of the field that receives the pixel value");
    polygonize->add_flag("--eight", options->eight,
                         "pixels that touch at a corner belong together");
    polygonize->footer("An existing file is replaced when the new one is complete.");
    polygonize->callback([options] { Run(*options); });
}

} // namespace zelto::cli
