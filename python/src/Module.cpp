#include "zelto/datasource/GISDataSource.h"

#include "python/src/Bind.h"

namespace zelto::python {

namespace {

/// GDAL stays for the life of the process, also between two rasters: other modules of the
/// interpreter may use it.
void HoldGdal() {
    CGISDataSource::UseNoInstallationFolder();
    CGISDataSource::RegisterGDAL();
}

} // namespace

PYBIND11_MODULE(_engine, module) {
    module.doc() = "The compiled half of the package zelto; use that.";
    HoldGdal();
    BindErrors(module);
    BindArguments(module);
    BindRaster(module);
    BindPixels(module);
    BindRecipe(module);
    BindDrawing(module);
    BindMaking(module);
    BindArea(module);
    BindStatistics(module);
    BindSamples(module);
    BindClassFiles(module);
    BindComposition(module);
    BindCoordinates(module);
    BindGeoGrid(module);
    BindZones(module);
}

} // namespace zelto::python
