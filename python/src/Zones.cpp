#include "zelto/algorithm/ZonalStatistics.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"

#include <ogr_geometry.h>

#include <memory>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

struct GeometryDeleter {
    void operator()(OGRGeometry* geometry) const { OGRGeometryFactory::destroyGeometry(geometry); }
};
using Geometry = std::unique_ptr<OGRGeometry, GeometryDeleter>;

/// @param text GeoJSON
Geometry GeometryOf(const std::string& text) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    Geometry geometry(OGRGeometryFactory::createFromGeoJson(text.c_str()));
    if (geometry == nullptr)
        throw py::value_error("a zone is no GeoJSON geometry");
    return geometry;
}

py::list ResultOf(const CZonalStatistics& statistics, int zone) {
    py::list bands;
    for (const CZonalStatistics::Band& band : statistics.GetZone(zone))
        bands.append(py::make_tuple(band.index + 1, band.count, band.weight, band.minimum,
                                    band.maximum, band.sum, band.mean, band.standardDeviation,
                                    py::tuple(py::cast(band.quantiles))));
    return bands;
}

/// Per zone a list of bands.
/// @param zones GeoJSON geometries in the raster's reference system
py::list ZonalStatistics(Raster& raster, const std::vector<std::string>& zones,
                         const std::vector<int>& bands, bool coverage,
                         const std::vector<double>& quantiles, py::object callable) {
    const Turn turn = raster.Use();
    CZonalStatistics statistics(&raster.Source());
    std::vector<int> indices;
    for (const int band : bands) {
        raster.Band(band);
        indices.push_back(band - 1);
    }
    if (!indices.empty())
        statistics.SetBands(indices);
    statistics.SetWeights(coverage ? CZonalStatistics::Weights::Coverage
                                   : CZonalStatistics::Weights::Center);
    if (!statistics.SetQuantiles(quantiles))
        throw py::value_error("quantiles: 0 to 1");
    for (const std::string& zone : zones) {
        const Geometry geometry = GeometryOf(zone);
        if (!statistics.AddZone(geometry.get()))
            throw py::value_error("a zone is a polygon, several, or a collection of these");
    }
    CallProgress progress(std::move(callable));
    const GISError error = Run(progress, [&] {
        host::ForgetReasons();
        return statistics.Compute(&progress);
    });
    if (error != GIS_SUCCESS)
        Fail(raster.Path(), "cannot be measured");
    py::list found;
    for (int zone = 0; zone < statistics.GetZoneCount(); ++zone)
        found.append(ResultOf(statistics, zone));
    return found;
}

} // namespace

void BindZones(py::module_& module) {
    module.def("zonal_statistics", &ZonalStatistics, py::arg("raster"), py::arg("zones"),
               py::arg("bands"), py::arg("coverage"), py::arg("quantiles"), py::arg("progress"));
}

} // namespace zelto::python
