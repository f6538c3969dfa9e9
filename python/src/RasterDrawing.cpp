#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/RasterAOI.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "python/src/Area.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Drawing.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"
#include "python/src/RasterLook.h"

#include <array>
#include <cmath>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

CBoundingBox CheckedBox(const std::array<double, 4>& sides) {
    const auto [left, top, right, bottom] = sides;
    const bool finite =
        std::isfinite(left) && std::isfinite(top) && std::isfinite(right) && std::isfinite(bottom);
    if (!finite || !(left < right) || !(bottom < top))
        throw py::value_error("a box is left, top, right, bottom with left < right and bottom < "
                              "top");
    return {left, top, right, bottom};
}

View CheckedView(py::array& out, int rowsAt, const std::array<double, 4>& box) {
    constexpr py::ssize_t LONGEST_SIDE = 65500;
    const auto rows = out.shape(rowsAt);
    const auto columns = out.shape(rowsAt + 1);
    if (rows < 1 || columns < 1 || rows > LONGEST_SIDE || columns > LONGEST_SIDE)
        throw py::value_error("a picture has 1 to 65500 rows and columns");
    return {CheckedBox(box), static_cast<int>(columns), static_cast<int>(rows)};
}

View CheckedPicture(py::array& out, const std::array<double, 4>& box) {
    if (out.ndim() != 3)
        throw py::value_error("a picture is rows x columns x 4");
    RequireShape(out, {out.shape(0), out.shape(1), 4});
    if (PixelTypeOf(out.dtype()) != PDT_Byte)
        throw py::type_error("a picture is of uint8");
    return CheckedView(out, 0, box);
}

namespace {

void FailWithoutPixels(bool drawn) {
    if (!drawn)
        throw host::Failure(host::LastReason("the box misses the raster, or its pixels cannot be "
                                             "read"));
}

/// What a drawing goes by beside the source.
struct Drawing {
    View view;
    const Look& look;
    CAOISource* area = nullptr;
    CallProgress& progress;
};

/// Three planes one after the other and, where there is an area, which pixels lie in it.
void DrawPlanes(CRasterSource& source, const Drawing& drawing, unsigned char* planes,
                unsigned char* inside) {
    const auto [box, w, h] = drawing.view;
    const std::size_t size = static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
    std::array<unsigned char*, 3> pointers = {planes, planes + size, planes + 2 * size};
    // The source adjusts the contrast of as many planes as bands are shown; a picture of a
    // single band has three alike.
    source.m_contrast = 0.0F;
    CBoundingBox ground = box;
    host::ForgetReasons();
    if (drawing.area == nullptr) {
        FailWithoutPixels(source.GetShowData(&ground, w, h, 3, pointers.data(), nullptr, true));
    } else {
        CRasterAOI area(&source, drawing.area);
        area.Initialize();
        FailWithoutPixels(
            source.GetMaskedShowData(&ground, w, h, 3, pointers.data(), &area, inside));
    }
    CRasterAlgorithm::AdjustContrast(pointers.data(), w, h, drawing.look.Contrast(), 3);
}

void DrawWhole(CRasterSource& source, const View& view, unsigned char* pixels) {
    CBoundingBox box = view.box;
    host::ForgetReasons();
    FailWithoutPixels(source.GetShowDataRedFirst(&box, view.width, view.height, pixels, true));
    // Palette and class colours have their transparency from the drawing already.
    source.m_hue = source.m_intensity = source.m_saturation = source.m_contrast = 0.0F;
    source.ApplyShowDataHISC(view.width, view.height, pixels);
}

/// Pixels outside the area are transparent, or black.
void DrawMasked(CRasterSource& source, const Drawing& drawing, bool blackOutside,
                unsigned char* pixels) {
    const std::size_t size = static_cast<std::size_t>(drawing.view.width) *
                             static_cast<std::size_t>(drawing.view.height);
    std::vector<unsigned char> planes(3 * size);
    std::vector<unsigned char> inside(size);
    DrawPlanes(source, drawing, planes.data(), inside.data());
    const auto opaque = static_cast<unsigned char>(
        std::lround(255.0 * (1.0 - static_cast<double>(drawing.look.Transparency()))));
    const unsigned char outside = blackOutside ? opaque : 0;
    for (std::size_t i = 0; i < size; ++i, pixels += 4) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            pixels[channel] = inside[i] != 0 ? planes[channel * size + i] : 0;
        pixels[3] = inside[i] != 0 ? opaque : outside;
    }
}

/// Prepares a source and calls draw(source, area in its system).
template <typename Draw>
void WithSource(Raster& raster, const Look& look, const View& view, const std::string& srs,
                Area* area, CallProgress& progress, Draw draw) {
    Run(progress, [&] {
        std::unique_ptr<CRasterSource> own;
        if (look.NeedsOwnSource())
            own = OpenSource({raster.Path(), false, true, srs});
        CRasterSource& source = own != nullptr ? *own : raster.DisplaySource(srs);
        const KeptDisplay kept(source);
        CAOISource* const shapes = area != nullptr ? &area->In(source.GetProjectionWKT()) : nullptr;
        look.Apply(source, view.box, shapes, progress);
        draw(source, shapes);
        return true;
    });
}

void Render(Raster& raster, py::array out, const std::array<double, 4>& box,
            const py::dict& settings, const std::string& srs, const py::object& area,
            bool blackOutside, py::object callable) {
    const Turn turn = raster.Use();
    const View view = CheckedPicture(out, box);
    auto* const pixels = static_cast<unsigned char*>(Memory(out));
    const Look look(settings);
    const auto shapes = AreaOrNone(area);
    std::optional<Turn> areaTurn;
    if (shapes != nullptr)
        shapes->Use(areaTurn);
    CallProgress progress(std::move(callable));
    WithSource(raster, look, view, srs, shapes.get(), progress,
               [&](CRasterSource& source, CAOISource* inside) {
                   if (inside == nullptr)
                       DrawWhole(source, view, pixels);
                   else
                       DrawMasked(source, {view, look, inside, progress}, blackOutside, pixels);
               });
}

/// @param inside rows × columns, may be None without an area
void RenderPlanes(Raster& raster, py::array planes, py::object inside,
                  const std::array<double, 4>& box, const py::dict& settings,
                  const std::string& srs, const py::object& area, py::object callable) {
    const Turn turn = raster.Use();
    if (planes.ndim() != 3 || PixelTypeOf(planes.dtype()) != PDT_Byte)
        throw py::value_error("planes are 3 x rows x columns of uint8");
    RequireShape(planes, {3, planes.shape(1), planes.shape(2)});
    const View view = CheckedView(planes, 1, box);
    const auto shapes = AreaOrNone(area);
    std::optional<Turn> areaTurn;
    unsigned char* mask = nullptr;
    if (shapes != nullptr) {
        shapes->Use(areaTurn);
        auto array = inside.cast<py::array_t<unsigned char>>();
        RequireShape(array, {view.height, view.width});
        mask = static_cast<unsigned char*>(Memory(array));
    }
    auto* const memory = static_cast<unsigned char*>(Memory(planes));
    const Look look(settings);
    CallProgress progress(std::move(callable));
    WithSource(raster, look, view, srs, shapes.get(), progress,
               [&](CRasterSource& source, CAOISource* drawn) {
                   DrawPlanes(source, {view, look, drawn, progress}, memory, mask);
               });
}

/// Where the raster lies when it is shown in another reference system, and how many rows and
/// columns it then has.
py::tuple ShownExtent(Raster& raster, const std::string& srs) {
    const Turn turn = raster.Use();
    CBoundingBox extent;
    std::array<int, 2> size{};
    std::string wkt;
    Run([&] {
        const CRasterSource& source = raster.DisplaySource(srs);
        extent = source.GetExtent();
        size = {source.GetHeight(), source.GetWidth()};
        wkt = source.GetProjectionWKT();
    });
    return py::make_tuple(extent.GetLeft(), extent.GetTop(), extent.GetRight(), extent.GetBottom(),
                          size[0], size[1], Text(wkt));
}

} // namespace

void BindDrawing(py::module_& module) {
    module.def("render", &Render, py::arg("raster"), py::arg("out"), py::arg("box"),
               py::arg("settings"), py::arg("srs"), py::arg("area"), py::arg("black_outside"),
               py::arg("progress"));
    module.def("render_planes", &RenderPlanes, py::arg("raster"), py::arg("planes"),
               py::arg("inside"), py::arg("box"), py::arg("settings"), py::arg("srs"),
               py::arg("area"), py::arg("progress"));
    module.def("shown_extent", &ShownExtent, py::arg("raster"), py::arg("srs"));
}

} // namespace zelto::python
