#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BlockLimit.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "python/src/Arguments.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"

#include <gdal_priv.h>

#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

GDALRIOResampleAlg ResamplingCalled(const py::object& name) {
    static const std::array<std::pair<const char*, GDALRIOResampleAlg>, 7> KNOWN = {
        {{"nearest", GRIORA_NearestNeighbour},
         {"bilinear", GRIORA_Bilinear},
         {"cubic", GRIORA_Cubic},
         {"cubicspline", GRIORA_CubicSpline},
         {"lanczos", GRIORA_Lanczos},
         {"average", GRIORA_Average},
         {"mode", GRIORA_Mode}}};
    if (!py::isinstance<py::str>(name))
        throw py::type_error("resampling is a str");
    for (const auto& [known, algorithm] : KNOWN)
        if (PyUnicode_CompareWithASCIIString(name.ptr(), known) == 0)
            return algorithm;
    throw py::value_error("resampling is nearest, bilinear, cubic, cubicspline, lanczos, average "
                          "or mode");
}

/// What a read goes by and fills.
struct Reading {
    std::vector<int> bands; ///< from 1
    Window window;
    GDALRIOResampleAlg resampling;
    py::array out; ///< bands × rows × columns, or rows × columns of one
    Shape shape;   ///< rows and columns
};

PixelDataType TypeOfBands(Raster& raster, const std::vector<int>& bands) {
    std::vector<PixelDataType> types;
    for (const int band : bands)
        types.push_back(raster.Band(band).GetDataType());
    return CommonType(types);
}

/// @param names of the bands' types; None: what is read as float64
py::dtype CommonDtype(const std::vector<std::optional<std::string>>& names) {
    std::vector<PixelDataType> types;
    for (const auto& name : names)
        types.push_back(PixelTypeOf(py::dtype(name.value_or("float64"))));
    return DtypeOf(CommonType(types));
}

/// An array of the caller's that is to be filled.
py::array GivenArray(const py::object& out, const py::object& dtype,
                     const std::vector<py::ssize_t>& shape) {
    if (!py::isinstance<py::array>(out))
        throw py::type_error("out is an array");
    auto array = py::reinterpret_borrow<py::array>(out);
    if (!dtype.is_none() && !array.dtype().equal(py::dtype::from_args(dtype)))
        throw py::value_error("dtype is that of out");
    SampleDtype(array.dtype());
    RequireShape(array, shape);
    return array;
}

Reading ReadingOf(Raster& raster, const py::object& bands, const py::object& window,
                  const py::object& shape, const py::object& dtype, const py::object& resampling,
                  const py::object& out) {
    const CRasterSource& source = raster.Source();
    Reading reading{BandNumbers(bands, source.GetBandCount()),
                    WindowWithin(window, source.GetWidth(), source.GetHeight()),
                    ResamplingCalled(resampling),
                    {},
                    {}};
    reading.shape = shape.is_none() ? Shape{reading.window[3], reading.window[2]} : ShapeOf(shape);
    std::vector<py::ssize_t> wanted(reading.shape.begin(), reading.shape.end());
    if (!IsOneBand(bands))
        wanted.insert(wanted.begin(), static_cast<py::ssize_t>(reading.bands.size()));
    if (!out.is_none())
        reading.out = GivenArray(out, dtype, wanted);
    else
        reading.out = py::array(dtype.is_none() ? DtypeOf(TypeOfBands(raster, reading.bands))
                                                : SampleDtype(dtype),
                                std::move(wanted));
    return reading;
}

/// Reads straight into an array, all bands in one call.
py::array Read(Raster& raster, const py::object& bands, const py::object& window,
               const py::object& shape, const py::object& dtype, const py::object& resampling,
               const py::object& out, py::object callable) {
    const Turn turn = raster.Use();
    CRasterSource& source = raster.Source();
    Reading reading = ReadingOf(raster, bands, window, shape, dtype, resampling, out);
    const Window& place = reading.window;
    const PixelDataType type = PixelTypeOf(reading.out.dtype());
    void* const memory = Memory(reading.out);
    CallProgress progress(std::move(callable));
    GDALRasterIOExtraArg extra;
    INIT_RASTERIO_EXTRA_ARG(extra);
    extra.eResampleAlg = reading.resampling;
    extra.pfnProgress = GDALProgressFuncEx;
    extra.pProgressData = static_cast<CDataProgress*>(&progress);
    const std::string reason = Run(progress, [&] {
        for (const int band : reading.bands)
            if (!CanHoldBlocks(*source.GetGDALDataset()->GetRasterBand(band)))
                return std::string("its blocks are too large to be read");
        const GdalWatch watch;
        const CPLErr answer = source.GetGDALDataset()->RasterIO(
            GF_Read, place[0], place[1], place[2], place[3], memory, reading.shape[1],
            reading.shape[0], static_cast<GDALDataType>(type),
            static_cast<int>(reading.bands.size()), reading.bands.data(), 0, 0, 0, &extra);
        if (answer == CE_None)
            return std::string();
        return watch.HasError() ? watch.Error() : std::string("its pixels cannot be read");
    });
    if (!reason.empty())
        throw host::Failure(raster.Path(), reason);
    return reading.out;
}

void Write(Raster& raster, const py::array& samples, const py::object& bands,
           const py::object& window) {
    const Turn turn = raster.Use();
    if (!raster.IsWritable())
        throw py::value_error("the raster is open for reading");
    const CRasterSource& source = raster.Source();
    const std::vector<int> numbers = BandNumbers(bands, source.GetBandCount());
    const Window place = WindowWithin(window, source.GetWidth(), source.GetHeight());
    RequireShape(samples, {static_cast<py::ssize_t>(numbers.size()), place[3], place[2]});
    const PixelDataType type = PixelTypeOf(samples.dtype());
    const auto planeSize = static_cast<std::size_t>(samples.strides(0));
    // WriteBlock() takes what RasterIO() takes and changes nothing there.
    auto* const memory = static_cast<char*>(const_cast<void*>(samples.data()));
    const bool written = Run([&] {
        host::ForgetReasons();
        for (std::size_t b = 0; b < numbers.size(); ++b)
            if (raster.Band(numbers[b])
                    .WriteBlock(place[0], place[1], place[2], place[3], memory + b * planeSize,
                                place[2], place[3], type, 0, 0) != GIS_SUCCESS)
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
    module.def("sample_dtype", &SampleDtype, py::arg("dtype"));
    module.def("common_dtype", &CommonDtype, py::arg("names"));
    module.def("read", &Read, py::arg("raster"), py::arg("bands"), py::arg("window"),
               py::arg("shape"), py::arg("dtype"), py::arg("resampling"), py::arg("out"),
               py::arg("progress"));
    module.def("write", &Write, py::arg("raster"), py::arg("samples"), py::arg("bands"),
               py::arg("window"));
    module.def("values_at", &ValuesAt, py::arg("raster"), py::arg("xs"), py::arg("ys"));
}

} // namespace zelto::python
