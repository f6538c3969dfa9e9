#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "host/files/PyramidBuild.h"
#include "host/files/RasterChoice.h"
#include "host/picture/Picture.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"

#include <cpl_string.h>
#include <gdal_priv.h>

#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

using Color = std::array<unsigned char, 4>;

PixelDataType TypeCalled(const std::string& dtype) {
    return PixelTypeOf(py::dtype(dtype));
}

std::shared_ptr<Raster> Create(const std::string& path, int width, int height, int bands,
                               const std::string& dtype,
                               std::optional<std::array<double, 6>> geoTransform,
                               const std::string& wkt, const std::string& format,
                               const std::vector<std::string>& options) {
    if (width < 1 || height < 1 || bands < 1)
        throw py::value_error("a raster has at least one column, row and band");
    const PixelDataType type = TypeCalled(dtype);
    const std::wstring wide = WideText(path);
    auto source = std::make_unique<CRasterSource>();
    auto files = Run([&] {
        const RasterDataFormat chosen = host::ChooseFormat(format, path);
        host::CheckCreationOptions(options, chosen);
        host::RequireCreatable(chosen, path);
        host::ForgetReasons();
        auto made = std::make_unique<CNewFileSet>(wide);
        if (!made->IsOpen())
            throw host::Failure(path, host::LastReason("cannot be created"));
        CPLStringList list;
        for (const std::string& option : options)
            list.AddString(option.c_str());
        if (source->CreateRaster(chosen, made->GetTemporaryPath().c_str(), width, height, bands,
                                 type, geoTransform ? geoTransform->data() : nullptr,
                                 wkt.empty() ? nullptr : wkt.c_str(),
                                 options.empty() ? nullptr : list.List()) != GIS_SUCCESS)
            throw host::Failure(path, host::LastReason("cannot be created"));
        return made;
    });
    return std::make_shared<Raster>(RasterOrigin{path, true, false, ""}, std::move(files),
                                    std::move(source));
}

void RequireWritable(const Raster& raster) {
    if (!raster.IsWritable())
        throw py::value_error("the raster is open for reading");
}

void SetNoData(Raster& raster, std::optional<double> value) {
    const Turn turn = raster.Use();
    RequireWritable(raster);
    const bool done = Run([&] {
        host::ForgetReasons();
        if (value)
            return raster.Source().SetAllBandNoDataValue(*value, true);
        for (int b = 0; b < raster.Source().GetBandCount(); ++b) {
            CRasterBand& band = *raster.Source().GetRasterBand(b);
            if (band.GetGDALBand()->DeleteNoDataValue() != CE_None)
                return false;
            band.ClearNoDataValue(false);
        }
        return true;
    });
    if (!done)
        Fail(raster.Path(), "its no-data value cannot be set");
}

void SetColors(Raster& raster, int number, const std::vector<Color>& colors) {
    const Turn turn = raster.Use();
    RequireWritable(raster);
    CRasterBand& band = raster.Band(number);
    GDALColorTable table;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const GDALColorEntry entry = {colors[i][0], colors[i][1], colors[i][2], colors[i][3]};
        table.SetColorEntry(static_cast<int>(i), &entry);
    }
    const GISError error = Run([&] {
        host::ForgetReasons();
        return band.SetColorTable(&table);
    });
    if (error != GIS_SUCCESS)
        Fail(raster.Path(), "its colour table cannot be set");
}

void SetPlace(Raster& raster, std::optional<std::array<double, 6>> geoTransform,
              const std::optional<std::string>& wkt) {
    const Turn turn = raster.Use();
    RequireWritable(raster);
    const bool done = Run([&] {
        host::ForgetReasons();
        if (geoTransform &&
            raster.Source().SetGeoTransform(geoTransform->data(), true) != GIS_SUCCESS)
            return false;
        return !wkt || (raster.Source().SetProjection(wkt->c_str()) == GIS_SUCCESS &&
                        CGISDataSource::GetLastErrorText().empty());
    });
    if (!done)
        Fail(raster.Path(), "it cannot be placed");
}

void BuildPyramid(const std::string& path, const std::string& resampling,
                  const std::vector<int>& bands, py::object callable) {
    WideText(path);
    CallProgress progress(std::move(callable));
    progress.BeginProgress(L"", 100);
    std::exception_ptr failed;
    const bool done = Run(progress, [&] {
        try {
            host::BuildPyramid(path, resampling, bands, progress);
            return true;
        } catch (const host::Failure&) {
            failed = std::current_exception();
            return false;
        }
    });
    if (!done)
        std::rethrow_exception(failed);
}

/// Writes an array of rows × columns × (red, green, blue, alpha) as a picture.
void SavePicture(const std::string& path, const py::array& pixels,
                 std::optional<std::array<double, 4>> box, const std::string& wkt) {
    WideText(path);
    if (pixels.ndim() != 3)
        throw py::value_error("a picture is rows x columns x 4");
    RequireShape(pixels, {pixels.shape(0), pixels.shape(1), 4});
    if (PixelTypeOf(pixels.dtype()) != PDT_Byte)
        throw py::type_error("a picture is of uint8");
    constexpr py::ssize_t LONGEST_SIDE = 65500;
    const auto rows = pixels.shape(0);
    const auto columns = pixels.shape(1);
    if (rows < 1 || columns < 1 || rows > LONGEST_SIDE || columns > LONGEST_SIDE)
        throw py::value_error("a picture has 1 to 65500 rows and columns");
    const auto* const from = static_cast<const unsigned char*>(pixels.data());
    Run([&] {
        host::Picture picture(static_cast<int>(columns), static_cast<int>(rows));
        for (std::size_t i = 0; i < picture.pixels.size(); i += 4) {
            picture.pixels[i] = from[i + 2];
            picture.pixels[i + 1] = from[i + 1];
            picture.pixels[i + 2] = from[i];
            picture.pixels[i + 3] = from[i + 3];
        }
        std::optional<host::PicturePlace> place;
        if (box)
            place = host::PicturePlace{{(*box)[0], (*box)[1], (*box)[2], (*box)[3]}, wkt};
        host::ForgetReasons();
        host::WritePicture(picture, {path, 0}, place);
    });
}

} // namespace

void BindMaking(py::module_& module) {
    module.def("create", &Create, py::arg("path"), py::arg("width"), py::arg("height"),
               py::arg("bands"), py::arg("dtype"), py::arg("geotransform"), py::arg("wkt"),
               py::arg("format"), py::arg("options"));
    module.def("set_nodata", &SetNoData, py::arg("raster"), py::arg("value"));
    module.def("set_colors", &SetColors, py::arg("raster"), py::arg("band"), py::arg("colors"));
    module.def("set_place", &SetPlace, py::arg("raster"), py::arg("geotransform"), py::arg("wkt"));
    module.def("build_pyramid", &BuildPyramid, py::arg("path"), py::arg("resampling"),
               py::arg("bands"), py::arg("progress"));
    module.def("save_picture", &SavePicture, py::arg("path"), py::arg("pixels"), py::arg("box"),
               py::arg("wkt"));
}

} // namespace zelto::python
