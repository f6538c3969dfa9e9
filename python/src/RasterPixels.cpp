#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BlockLimit.h"

#include "cli/support/Failure.h"
#include "cli/support/Open.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"

#include <gdal_priv.h>

#include <array>
#include <cmath>
#include <limits>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

/// Columns and rows of a raster: first column, first row, number of columns and of rows.
using Window = std::array<int, 4>;

void RequireInside(const CRasterSource& source, const Window& window) {
    const auto [column, row, columns, rows] = window;
    const bool inside = column >= 0 && row >= 0 && columns > 0 && rows > 0 &&
                        columns <= source.GetWidth() - column && rows <= source.GetHeight() - row;
    if (!inside)
        throw py::value_error("the window does not lie in the raster");
}

GDALRIOResampleAlg ResamplingCalled(const std::string& name) {
    static const std::array<std::pair<const char*, GDALRIOResampleAlg>, 7> KNOWN = {
        {{"nearest", GRIORA_NearestNeighbour},
         {"bilinear", GRIORA_Bilinear},
         {"cubic", GRIORA_Cubic},
         {"cubicspline", GRIORA_CubicSpline},
         {"lanczos", GRIORA_Lanczos},
         {"average", GRIORA_Average},
         {"mode", GRIORA_Mode}}};
    for (const auto& [known, algorithm] : KNOWN)
        if (name == known)
            return algorithm;
    throw py::value_error("resampling is nearest, bilinear, cubic, cubicspline, lanczos, average "
                          "or mode");
}

/// Checked arguments of a read or write: bands from 1, an array of bands × rows × columns.
void RequireBands(Raster& raster, const std::vector<int>& bands) {
    if (bands.empty())
        throw py::value_error("no bands");
    for (const int band : bands)
        raster.Band(band);
}

/// Reads straight into the array, all bands in one call.
void Read(Raster& raster, py::array out, std::vector<int> bands, const Window& window,
          const std::string& resampling, py::object callable) {
    const Turn turn = raster.Use();
    CRasterSource& source = raster.Source();
    RequireBands(raster, bands);
    RequireInside(source, window);
    if (out.ndim() != 3 || out.shape(1) < 1 || out.shape(2) < 1 || out.shape(1) > INT_MAX ||
        out.shape(2) > INT_MAX)
        throw py::value_error("the array is not bands x rows x columns");
    RequireShape(out, {static_cast<py::ssize_t>(bands.size()), out.shape(1), out.shape(2)});
    const PixelDataType type = PixelTypeOf(out);
    const auto rows = static_cast<int>(out.shape(1));
    const auto columns = static_cast<int>(out.shape(2));
    void* const memory = Memory(out);
    CallProgress progress(std::move(callable));
    GDALRasterIOExtraArg extra;
    INIT_RASTERIO_EXTRA_ARG(extra);
    extra.eResampleAlg = ResamplingCalled(resampling);
    extra.pfnProgress = GDALProgressFuncEx;
    extra.pProgressData = static_cast<CDataProgress*>(&progress);
    const std::string reason = Run(progress, [&] {
        for (const int band : bands)
            if (!CanHoldBlocks(*source.GetGDALDataset()->GetRasterBand(band)))
                return std::string("its blocks are too large to be read");
        const GdalWatch watch;
        const CPLErr answer = source.GetGDALDataset()->RasterIO(
            GF_Read, window[0], window[1], window[2], window[3], memory, columns, rows,
            static_cast<GDALDataType>(type), static_cast<int>(bands.size()), bands.data(), 0, 0, 0,
            &extra);
        if (answer == CE_None)
            return std::string();
        return watch.HasError() ? watch.Error() : std::string("its pixels cannot be read");
    });
    if (!reason.empty())
        throw cli::Failure(raster.Path(), reason);
}

void Write(Raster& raster, const py::array& samples, const std::vector<int>& bands,
           const Window& window) {
    const Turn turn = raster.Use();
    if (!raster.IsWritable())
        throw py::value_error("the raster is open for reading");
    RequireBands(raster, bands);
    RequireInside(raster.Source(), window);
    RequireShape(samples, {static_cast<py::ssize_t>(bands.size()), window[3], window[2]});
    const PixelDataType type = PixelTypeOf(samples);
    const auto planeSize = static_cast<std::size_t>(samples.strides(0));
    // WriteBlock() takes what RasterIO() takes and changes nothing there.
    auto* const memory = static_cast<char*>(const_cast<void*>(samples.data()));
    const bool written = Run([&] {
        cli::ForgetReasons();
        for (std::size_t b = 0; b < bands.size(); ++b)
            if (raster.Band(bands[b]).WriteBlock(window[0], window[1], window[2], window[3],
                                                 memory + b * planeSize, window[2], window[3], type,
                                                 0, 0) != GIS_SUCCESS)
                return false;
        return true;
    });
    if (!written)
        Fail(raster.Path(), "cannot be written");
}

/// Values of all bands at ground points, points × bands; not a number beside the raster.
py::array_t<double> ValuesAt(Raster& raster, const Doubles& xs, const Doubles& ys) {
    const Turn turn = raster.Use();
    if (xs.ndim() != 1 || ys.ndim() != 1 || xs.size() != ys.size())
        throw py::value_error("x and y are two rows of as many numbers");
    CRasterSource& source = raster.Source();
    const auto bandCount = static_cast<std::size_t>(source.GetBandCount());
    py::array_t<double> values(
        std::vector<py::ssize_t>{xs.size(), static_cast<py::ssize_t>(bandCount)});
    const double* const x = xs.data();
    const double* const y = ys.data();
    double* const out = values.mutable_data();
    const auto count = static_cast<std::size_t>(xs.size());
    CallProgress progress{py::none()};
    progress.BeginProgress(L"", static_cast<int>(std::min<std::size_t>(count, INT_MAX)));
    const bool read = Run(progress, [&] {
        for (std::size_t i = 0; i < count; ++i) {
            double column = 0.0;
            double row = 0.0;
            source.GroundToImage(x[i], y[i], column, row);
            const bool inside =
                column >= 0 && row >= 0 && column < source.GetWidth() && row < source.GetHeight();
            double* const slots = out + i * bandCount;
            std::fill_n(slots, bandCount, std::numeric_limits<double>::quiet_NaN());
            if (inside && source.GetPixel(slots, static_cast<int>(column), static_cast<int>(row),
                                          PDT_Float64) != GIS_SUCCESS)
                return false;
            if (i % 1024 == 0 && !progress.StepProgress(0, L""))
                return false;
        }
        return true;
    });
    if (!read)
        Fail(raster.Path(), "its pixels cannot be read");
    return values;
}

} // namespace

void BindPixels(py::module_& module) {
    module.def("read", &Read, py::arg("raster"), py::arg("out"), py::arg("bands"),
               py::arg("window"), py::arg("resampling"), py::arg("progress"));
    module.def("write", &Write, py::arg("raster"), py::arg("samples"), py::arg("bands"),
               py::arg("window"));
    module.def("values_at", &ValuesAt, py::arg("raster"), py::arg("xs"), py::arg("ys"));
}

} // namespace zelto::python
