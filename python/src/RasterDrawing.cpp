#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "host/picture/Drawing.h"
#include "host/picture/Recipe.h"
#include "python/src/Area.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Drawing.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"
#include "python/src/RasterLook.h"

#include <array>
#include <cmath>
#include <optional>
#include <pybind11/stl.h>
#include <utility>

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

constexpr auto ORDER = host::ChannelOrder::RedFirst;

/// What is to be drawn of a raster, from the arguments of a call.
class Drawing {
  public:
    Drawing(Raster& raster, const py::dict& settings, const View& view, std::string srs,
            const py::object& area, py::object callable)
        : m_raster(raster),
          m_turn(raster.Use()),
          m_look(settings),
          m_view(view),
          m_srs(std::move(srs)),
          m_area(AreaOrNone(area)),
          m_progress(std::move(callable)) {
        if (m_area != nullptr)
            m_area->Use(m_areaTurn);
    }

    /// Prepares a source and calls draw(source, area in its system, which may be null).
    template <typename Draw>
    void Run(Draw draw) {
        python::Run(m_progress, [&] {
            std::unique_ptr<CRasterSource> own;
            if (m_look.NeedsOwnSource() || !m_srs.empty() || m_raster.IsWritable())
                own = m_raster.OpenAgain(m_srs, &m_view);
            CRasterSource& source = own != nullptr ? *own : m_raster.Source();
            const KeptDisplay kept(source);
            CAOISource* const shapes =
                m_area != nullptr ? &m_area->In(source.GetProjectionWKT()) : nullptr;
            m_look.Apply(source, m_view.box, shapes, m_progress);
            draw(source, shapes);
            return true;
        });
    }

    void ApplyOpacity(const CRasterSource& source, unsigned char* pixels) {
        const auto openMask = [&](const std::string& path) {
            return m_raster.OpenLikewise(path, m_srs, &m_view);
        };
        host::ApplyOpacity(source, m_view, openMask, pixels);
    }

  private:
    Raster& m_raster;
    Turn m_turn;
    Look m_look;
    View m_view;
    std::string m_srs; ///< empty: the raster's own
    std::shared_ptr<Area> m_area;
    std::optional<Turn> m_areaTurn;
    CallProgress m_progress;
};

void Render(Raster& raster, py::array out, const std::array<double, 4>& box,
            const py::dict& settings, const std::string& srs, const py::object& area,
            bool isBlackOutside, py::object callable) {
    const View view = CheckedPicture(out, box);
    auto* const pixels = static_cast<unsigned char*>(Memory(out));
    Drawing drawing(raster, settings, view, srs, area, std::move(callable));
    drawing.Run([&](CRasterSource& source, CAOISource* shapes) {
        if (shapes == nullptr)
            host::DrawWhole(source, view, ORDER, pixels);
        else
            host::DrawMasked(source, *shapes, view, isBlackOutside, ORDER, pixels);
        drawing.ApplyOpacity(source, pixels);
    });
}

/// @param inside rows × columns, may be None without an area
void RenderPlanes(Raster& raster, py::array planes, py::object inside,
                  const std::array<double, 4>& box, const py::dict& settings,
                  const std::string& srs, const py::object& area, py::object callable) {
    if (planes.ndim() != 3 || PixelTypeOf(planes.dtype()) != PDT_Byte)
        throw py::value_error("planes are 3 x rows x columns of uint8");
    RequireShape(planes, {3, planes.shape(1), planes.shape(2)});
    const View view = CheckedView(planes, 1, box);
    unsigned char* mask = nullptr;
    if (!area.is_none()) {
        auto array = inside.cast<py::array_t<unsigned char>>();
        RequireShape(array, {view.height, view.width});
        mask = static_cast<unsigned char*>(Memory(array));
    }
    auto* const memory = static_cast<unsigned char*>(Memory(planes));
    Drawing drawing(raster, settings, view, srs, area, std::move(callable));
    drawing.Run([&](CRasterSource& source, CAOISource* shapes) {
        host::DrawPlanes(source, shapes, view, memory, mask);
    });
}

/// How render() would make a picture.
/// @param mask path of the file that the area is from, and whether the outside is black; or None
CDisplayRecipe TakeRecipe(Raster& raster, const std::array<double, 4>& box,
                          const std::array<int, 2>& size, const py::dict& settings,
                          const std::string& srs, const py::object& area, const py::object& mask,
                          py::object callable) {
    const View view = {CheckedBox(box), size[0], size[1]};
    const std::string shownIn = srs.empty() ? raster.Srs() : srs;
    std::optional<CDisplayRecipe::Mask> told;
    if (!mask.is_none()) {
        const auto [path, isBlackOutside] = mask.cast<std::pair<std::string, bool>>();
        told = CDisplayRecipe::Mask{WideText(path), isBlackOutside};
    }
    CDisplayRecipe recipe;
    Drawing drawing(raster, settings, view, srs, area, std::move(callable));
    drawing.Run([&](CRasterSource& source, CAOISource* /*shapes*/) {
        recipe = host::TakeRecipe(source, view, shownIn);
        recipe.SetMask(told);
    });
    return recipe;
}

/// Where the raster lies when it is shown in another reference system, and how many rows and
/// columns it then has.
py::tuple ShownExtent(Raster& raster, const std::string& srs) {
    const Turn turn = raster.Use();
    CBoundingBox extent;
    std::array<int, 2> size{};
    Run([&] {
        const auto source = raster.OpenAgain(srs, nullptr);
        extent = source->GetExtent();
        size = {source->GetHeight(), source->GetWidth()};
    });
    return py::make_tuple(extent.GetLeft(), extent.GetTop(), extent.GetRight(), extent.GetBottom(),
                          size[0], size[1]);
}

} // namespace

void BindDrawing(py::module_& module) {
    module.def("render", &Render, py::arg("raster"), py::arg("out"), py::arg("box"),
               py::arg("settings"), py::arg("srs"), py::arg("area"), py::arg("black_outside"),
               py::arg("progress"));
    module.def("render_planes", &RenderPlanes, py::arg("raster"), py::arg("planes"),
               py::arg("inside"), py::arg("box"), py::arg("settings"), py::arg("srs"),
               py::arg("area"), py::arg("progress"));
    module.def("take_recipe", &TakeRecipe, py::arg("raster"), py::arg("box"), py::arg("size"),
               py::arg("settings"), py::arg("srs"), py::arg("area"), py::arg("mask"),
               py::arg("progress"));
    module.def("shown_extent", &ShownExtent, py::arg("raster"), py::arg("srs"));
}

} // namespace zelto::python
