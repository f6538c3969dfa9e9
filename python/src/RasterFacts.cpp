#include "host/report/RasterFacts.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"

#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"

#include <gdal_priv.h>

#include <array>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

py::list ColorsOf(GDALColorTable* table) {
    py::list colors;
    for (int i = 0; table != nullptr && i < table->GetColorEntryCount(); ++i) {
        GDALColorEntry entry{};
        table->GetColorEntryAsRGB(i, &entry);
        colors.append(py::make_tuple(entry.c1, entry.c2, entry.c3, entry.c4));
    }
    return colors;
}

py::dict BandFacts(const CRasterBand& band) {
    py::list overviews;
    for (int i = 0; i < band.GetOverviewCount(); ++i)
        overviews.append(
            py::make_tuple(band.GetOverview(i)->GetHeight(), band.GetOverview(i)->GetWidth()));
    py::dict facts;
    facts["dtype"] = DtypeName(band.GetDataType());
    facts["type_name"] = Text(CommonFun::U2M(band.GetDataTypeName()));
    facts["block"] = py::make_tuple(band.GetBlockYSize(), band.GetBlockXSize());
    facts["nodata"] = band.IsHaveNoData() ? py::object(py::float_(band.GetNoDataValue()))
                                          : py::object(py::none());
    facts["colors"] = ColorsOf(band.IsHaveColorTable() ? band.GetColorTable() : nullptr);
    facts["overviews"] = overviews;
    return facts;
}

py::list ClassesOf(const CClassifyDisplayTable* table) {
    py::list classes;
    for (int i = 0; table != nullptr && i < table->GetItemCount(); ++i) {
        const CClassifyDisplayItem& item = *table->GetItem(i);
        const CRgbaColor& color = item.m_color;
        classes.append(
            py::make_tuple(item.m_low, item.m_high,
                           py::make_tuple(color.red, color.green, color.blue, color.alpha),
                           Text(CommonFun::U2M(item.m_name))));
    }
    return classes;
}

/// What costs no pixel.
py::dict Describe(Raster& raster) {
    const Turn turn = raster.Use();
    CRasterSource& source = raster.Source();
    std::array<double, 6> geoTransform{};
    source.GetGeoTransform(geoTransform.data(), false);
    std::array<double, 6> inverse{};
    std::copy_n(source.GetInverseGeoTransform(), 6, inverse.begin());
    std::array<double, 6> own{};
    const CBoundingBox extent = source.GetExtent();
    py::list bands;
    for (int b = 0; b < source.GetBandCount(); ++b)
        bands.append(BandFacts(*source.GetRasterBand(b)));
    GDALDataset* const dataset = source.GetGDALDataset();
    py::dict facts;
    facts["width"] = source.GetWidth();
    facts["height"] = source.GetHeight();
    facts["driver"] = Text(dataset != nullptr ? dataset->GetDriverName() : "");
    facts["geotransform"] = geoTransform;
    facts["inverse"] = inverse;
    facts["placed"] = dataset != nullptr && !source.GetGeoTransform(own.data(), true);
    facts["extent"] = std::array<double, 4>{extent.GetLeft(), extent.GetTop(), extent.GetRight(),
                                            extent.GetBottom()};
    facts["wkt"] = Text(source.GetProjectionWKT());
    facts["control_points"] = source.GetGCPCount(true);
    facts["bands"] = bands;
    facts["classes"] = ClassesOf(source.GetClassifyDisplayTable());
    return facts;
}

py::list Subdatasets(const std::string& path) {
    WideText(path);
    CallProgress progress{py::none()};
    const host::RasterFacts facts =
        Run(progress, [&] { return host::DescribeRaster(path, {}, progress); });
    py::list found;
    for (const host::SubdatasetFacts& subdataset : facts.subdatasets)
        found.append(py::make_tuple(Text(subdataset.name), Text(subdataset.description)));
    return found;
}

/// What a display takes from its sample: minimum, maximum, mean, deviation, and the bounds of the
/// standard-deviation stretch.
std::array<double, 6> Sampled(Raster& raster, int number) {
    const Turn turn = raster.Use();
    const CRasterBand& band = raster.Band(number);
    return Run([&] {
        return std::array<double, 6>{
            band.GetMinimum(),           band.GetMaximum(),          band.GetMean(),
            band.GetStandardDeviation(), band.GetStdDevLowerBound(), band.GetStdDevUpperBound()};
    });
}

std::shared_ptr<Raster> OpenRaster(const std::string& path, bool update, bool warp,
                                   const std::string& srs) {
    return std::make_shared<Raster>(RasterOrigin{path, update, warp, srs});
}

} // namespace

void BindRaster(py::module_& module) {
    py::class_<Raster, std::shared_ptr<Raster>>(module, "Raster")
        .def_property_readonly("closed", &Raster::IsClosed)
        .def_property_readonly("writable", &Raster::IsWritable)
        .def("describe", &Describe)
        .def("sampled", &Sampled, py::arg("band"))
        .def("reopen", &Raster::Reopen)
        .def("close", &Raster::Close)
        .def("discard", &Raster::Discard);
    module.def("open_raster", &OpenRaster, py::arg("path"), py::arg("update"), py::arg("warp"),
               py::arg("srs"));
    module.def("subdatasets", &Subdatasets, py::arg("path"));
}

} // namespace zelto::python
