#include "zelto/raster/internal/WarpedGrid.h"

#include <cpl_string.h>
#include <gdal_alg.h>
#include <gdal_priv.h>
#include <gdalwarper.h>

#include <algorithm>
#include <memory>

namespace zelto {

namespace {

/// Greatest error of a position, in pixels of the view.
constexpr double TOLERANCE = 0.125;

/// A value that no raster has.
constexpr double NO_VALUE = -1.0e10;

struct DestroyTransformer {
    void operator()(void* transformer) const { GDALDestroyTransformer(transformer); }
};
using Transformer = std::unique_ptr<void, DestroyTransformer>;

struct DestroyWarpOptions {
    void operator()(GDALWarpOptions* options) const { GDALDestroyWarpOptions(options); }
};
using WarpOptions = std::unique_ptr<GDALWarpOptions, DestroyWarpOptions>;

/// From positions in the view to positions in the raster.
Transformer MakeTransformer(GDALDataset& raster, const std::string& source,
                            const std::string& target, const ViewGrid& grid) {
    CPLStringList options;
    if (!source.empty())
        options.SetNameValue("SRC_SRS", source.c_str());
    options.SetNameValue("DST_SRS", target.c_str());
    Transformer exact(
        GDALCreateGenImgProjTransformer2(GDALDataset::ToHandle(&raster), nullptr, options.List()));
    if (exact)
        GDALSetGenImgProjTransformerDstGeoTransform(exact.get(), grid.geoTransform.data());
    return exact;
}

/// All bands, with their no-data values on both sides.
WarpOptions MakeOptions(GDALDataset& raster) {
    WarpOptions options(GDALCreateWarpOptions());
    const int count = raster.GetRasterCount();
    options->hSrcDS = GDALDataset::ToHandle(&raster);
    options->eResampleAlg = GRA_NearestNeighbour;
    options->nBandCount = count;
    options->panSrcBands = static_cast<int*>(CPLMalloc(sizeof(int) * count));
    options->panDstBands = static_cast<int*>(CPLMalloc(sizeof(int) * count));
    bool hasNoData = false;
    for (int i = 0; i < count; ++i) {
        options->panSrcBands[i] = options->panDstBands[i] = i + 1;
        int has = FALSE;
        raster.GetRasterBand(i + 1)->GetNoDataValue(&has);
        hasNoData = hasNoData || has != FALSE;
    }
    if (!hasNoData)
        return options;
    // Bands without one among others that have one keep all their values.
    GDALWarpInitSrcNoDataReal(options.get(), NO_VALUE);
    GDALWarpInitDstNoDataReal(options.get(), 0.0);
    for (int i = 0; i < count; ++i) {
        int has = FALSE;
        const double value = raster.GetRasterBand(i + 1)->GetNoDataValue(&has);
        if (has != FALSE)
            options->padfSrcNoDataReal[i] = options->padfDstNoDataReal[i] = value;
    }
    options->papszWarpOptions = CSLSetNameValue(options->papszWarpOptions, "INIT_DEST", "NO_DATA");
    return options;
}

} // namespace

GDALDataset* WarpToGrid(GDALDataset& raster, const std::string& source, const std::string& target,
                        const ViewGrid& grid) {
    Transformer exact = MakeTransformer(raster, source, target, grid);
    if (!exact)
        return nullptr;
    WarpOptions options = MakeOptions(raster);
    void* const quick =
        GDALCreateApproxTransformer(GDALGenImgProjTransform, exact.get(), TOLERANCE);
    if (quick == nullptr)
        return nullptr;
    GDALApproxTransformerOwnsSubtransformer(quick, TRUE);
    static_cast<void>(exact.release());
    options->pfnTransformer = GDALApproxTransform;
    options->pTransformerArg = quick;
    double geoTransform[6];
    std::copy(grid.geoTransform.begin(), grid.geoTransform.end(), geoTransform);
    GDALDatasetH view = GDALCreateWarpedVRT(GDALDataset::ToHandle(&raster), grid.width, grid.height,
                                            geoTransform, options.get());
    if (view == nullptr) {
        GDALDestroyTransformer(quick);
        return nullptr;
    }
    GDALSetProjection(view, target.c_str());
    return GDALDataset::FromHandle(view);
}

} // namespace zelto
