#include "zelto/display/ComposedRaster.h"
#include "zelto/raster/RasterBand.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Drawing.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"
#include "python/src/RasterLook.h"

#include <array>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

/// Bands of three rasters as one picture. Each colour has a source of its own, also where two
/// come from one file: the stretch is the source's.
class Composition {
  public:
    /// @param colors path and band, from 1, of red, green and blue
    explicit Composition(const std::vector<std::pair<std::string, int>>& colors) {
        if (colors.size() != 3)
            throw py::value_error("a composition takes three colours");
        Run([&] {
            for (std::size_t k = 0; k < 3; ++k)
                m_sources[k] = OpenSource({colors[k].first, false, true, ""});
        });
        std::array<CRasterBand*, 3> bands{};
        for (std::size_t k = 0; k < 3; ++k) {
            int index = colors[k].second - 1;
            bands[k] = m_sources[k]->GetRasterBand(index);
            if (bands[k] == nullptr)
                throw py::index_error(colors[k].first + ": bands are numbered from 1 to " +
                                      std::to_string(m_sources[k]->GetBandCount()));
            m_sources[k]->SetShowBandNum(1, &index);
        }
        host::ForgetReasons();
        if (m_composed.CreateRaster(m_sources[0].get(), bands[0], m_sources[1].get(), bands[1],
                                    m_sources[2].get(), bands[2]) != GIS_SUCCESS)
            throw host::Failure(host::LastReason("the three rasters have no ground in common"));
    }

    py::dict Describe() {
        const CBoundingBox extent = m_composed.GetExtent();
        py::dict facts;
        facts["width"] = m_composed.GetWidth();
        facts["height"] = m_composed.GetHeight();
        facts["wkt"] = Text(m_composed.GetProjectionWKT());
        facts["extent"] = std::array<double, 4>{extent.GetLeft(), extent.GetTop(),
                                                extent.GetRight(), extent.GetBottom()};
        return facts;
    }

    void Render(py::array out, const std::array<double, 4>& box, const py::dict& settings,
                py::object callable) {
        const Turn turn(m_taken, "composition");
        const View view = CheckedPicture(out, box);
        auto* const pixels = static_cast<unsigned char*>(Memory(out));
        const Look look(settings);
        CallProgress progress(std::move(callable));
        Run(progress, [&] {
            for (const auto& source : m_sources)
                look.Apply(*source, view.box, nullptr, progress);
            CBoundingBox ground = view.box;
            host::ForgetReasons();
            if (!m_composed.GetShowDataRedFirst(&ground, view.width, view.height, pixels, true))
                throw host::Failure(
                    host::LastReason("the box misses the rasters, or their pixels cannot be read"));
            return true;
        });
    }

  private:
    std::array<std::unique_ptr<CRasterSource>, 3> m_sources;
    CComposedRaster m_composed; ///< borrows the sources, gone before them
    bool m_taken = false;
};

} // namespace

void BindComposition(py::module_& module) {
    py::class_<Composition>(module, "Composition")
        .def(py::init<const std::vector<std::pair<std::string, int>>&>(), py::arg("colors"))
        .def("describe", &Composition::Describe)
        .def("render", &Composition::Render, py::arg("out"), py::arg("box"), py::arg("settings"),
             py::arg("progress"));
}

} // namespace zelto::python
