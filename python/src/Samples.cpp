#include "zelto/algorithm/ImgSamplePixels.h"
#include "zelto/algorithm/RasterAlgorithm.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "host/files/PolygonBuild.h"
#include "python/src/Area.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"

#include <cpl_error.h>

#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

/// Rows of band values.
py::array_t<double> Table(const CImgSamplePixels& pixels, int bandCount) {
    py::array_t<double> table(
        std::vector<py::ssize_t>{pixels.GetSampleSize(), static_cast<py::ssize_t>(bandCount)});
    double* out = table.mutable_data();
    for (int i = 0; i < pixels.GetSampleSize(); ++i)
        for (int b = 0; b < bandCount; ++b)
            *out++ = pixels.Get(i, b);
    return table;
}

/// The typical pixels under every shape of an area, a table each; None for shapes beside the
/// raster.
py::list SamplePixels(Raster& raster, Area& area, py::object callable) {
    const Turn turn = raster.Use();
    const Turn areaTurn = area.Use();
    CRasterSource& source = raster.Source();
    CAOISource& shapes = area.In(source.GetProjectionWKT());
    CallProgress progress(std::move(callable));
    py::list tables;
    const int count = shapes.GetDrawShapeCount();
    for (int i = 0; i < count; ++i) {
        CImgSamplePixels pixels(0.0);
        const bool collected = Run(progress, [&] {
            progress.BeginProgress(L"", count);
            if (!progress.StepProgress(i, L""))
                return false;
            host::ForgetReasons();
            return CRasterAlgorithm::GetSamplePixelFromDrawShape(&source, shapes.GetDrawShape(i),
                                                                 &pixels);
        });
        CBoundingBox extent = source.GetExtent();
        // The engine's false also stands for shapes that hold no pixel.
        if (!collected && shapes.GetDrawShape(i)->m_extent.IsIntersect(&extent) &&
            CPLGetLastErrorType() == CE_Failure)
            Fail(raster.Path(), "cannot be read");
        tables.append(collected ? py::object(Table(pixels, source.GetBandCount()))
                                : py::object(py::none()));
    }
    return tables;
}

std::int64_t Polygonize(Raster& raster, const std::string& out, int band, int mask, bool keepNoData,
                        const std::string& field, bool eight, py::object callable) {
    const Turn turn = raster.Use();
    WideText(out);
    raster.Band(band);
    if (mask != 0)
        raster.Band(mask);
    CallProgress progress(std::move(callable));
    return Run(progress, [&] {
        return static_cast<std::int64_t>(host::BuildPolygons(
            raster.Source(), raster.Path(), out, {band, mask, field, eight, keepNoData}, progress));
    });
}

} // namespace

void BindSamples(py::module_& module) {
    module.def("sample_pixels", &SamplePixels, py::arg("raster"), py::arg("area"),
               py::arg("progress"));
    module.def("polygonize", &Polygonize, py::arg("raster"), py::arg("out"), py::arg("band"),
               py::arg("mask"), py::arg("keep_nodata"), py::arg("field"), py::arg("eight"),
               py::arg("progress"));
}

} // namespace zelto::python
