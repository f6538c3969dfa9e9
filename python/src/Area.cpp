#include "python/src/Area.h"

#include "host/base/Failure.h"
#include "host/files/AoiFile.h"
#include "host/files/Open.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"

#include <array>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

Area::Area(const std::string& path) : Area() {
    WideText(path);
    Run([&] { host::OpenAoiOrFail(*m_source, path); });
}

CAOISource& Area::In(const std::string& wkt) {
    if (wkt.empty() || m_source->GetSpatialReferenceWKT().empty())
        return *m_source;
    if (m_transformed != nullptr && m_transformedTo == wkt)
        return *m_transformed;
    auto copy = CopyOf(*m_source);
    host::ForgetReasons();
    if (copy == nullptr || copy->TransformTo(wkt.c_str()) != GIS_SUCCESS)
        throw host::Failure(
            host::LastReason("the area cannot be transformed to the raster's system"));
    m_transformed = std::move(copy);
    m_transformedTo = wkt;
    return *m_transformed;
}

std::shared_ptr<Area> AreaOrNone(const py::object& argument) {
    return argument.is_none() ? nullptr : argument.cast<std::shared_ptr<Area>>();
}

std::unique_ptr<CAOISource> CopyOf(const CAOISource& area) {
    auto copy = std::make_unique<CAOISource>();
    for (int i = 0; i < area.GetDrawShapeCount(); ++i) {
        std::unique_ptr<CDrawShape> shape(CDrawShape::CreateCopy(area.GetDrawShape(i)));
        if (!copy->AddDrawShape(shape.get()))
            return nullptr;
        static_cast<void>(shape.release());
    }
    copy->SetSpatialReferenceWKT(area.GetSpatialReferenceWKT().c_str());
    return copy;
}

namespace {

/// Appends shapes given as kind and numbers.
void AddShapes(Area& area, const std::vector<std::pair<std::string, std::vector<double>>>& shapes) {
    const Turn turn = area.Use();
    area.Changed();
    for (const auto& [kind, numbers] : shapes) {
        auto shape = MakeShape(kind, numbers);
        if (!area.Source().AddDrawShape(shape.get()))
            throw py::value_error("an area is made of polygons, rectangles and ellipses");
        static_cast<void>(shape.release());
    }
}

py::list ShapesOf(Area& area) {
    const Turn turn = area.Use();
    py::list shapes;
    for (int i = 0; i < area.Source().GetDrawShapeCount(); ++i)
        shapes.append(ShapeAsTuple(*area.Source().GetDrawShape(i)));
    return shapes;
}

std::array<double, 4> ExtentOf(Area& area) {
    const Turn turn = area.Use();
    const CBoundingBox extent = area.Source().GetExtent();
    return {extent.GetLeft(), extent.GetTop(), extent.GetRight(), extent.GetBottom()};
}

/// Calls test(x, y) for every point and gathers the answers; ends early when interrupted.
/// @param test may be called by several threads at once
template <typename Test>
py::array_t<bool> TestPoints(const Doubles& xs, const Doubles& ys, Test test) {
    if (xs.ndim() != 1 || ys.ndim() != 1 || xs.size() != ys.size())
        throw py::value_error("x and y are two rows of as many numbers");
    constexpr py::ssize_t STEP = 1 << 18;
    constexpr py::ssize_t ALONE = 1 << 12;
    py::array_t<bool> inside(xs.size());
    const double* const x = xs.data();
    const double* const y = ys.data();
    bool* const out = inside.mutable_data();
    const py::ssize_t count = xs.size();
    CallProgress progress{py::none()};
    Run(progress, [&] {
        for (py::ssize_t first = 0; first < count; first += STEP) {
            const py::ssize_t end = std::min(first + STEP, count);
#pragma omp parallel for if (end - first > ALONE)
            for (py::ssize_t i = first; i < end; ++i)
                out[i] = test(x[i], y[i]);
            if (!progress.StepProgress(0, L""))
                return false;
        }
        return true;
    });
    return inside;
}

py::array_t<bool> Contains(Area& area, const Doubles& xs, const Doubles& ys) {
    const Turn turn = area.Use();
    CAOISource& source = area.Source();
    return TestPoints(xs, ys, [&](double x, double y) {
        return source.TopoRelationWithPoint(x, y) == TOPO_CONTAIN;
    });
}

py::array_t<bool> ShapeContains(const std::string& kind, const std::vector<double>& numbers,
                                const Doubles& xs, const Doubles& ys, double tolerance) {
    const auto shape = MakeShape(kind, numbers);
    return TestPoints(xs, ys, [&](double x, double y) {
        return shape->TopoRelationWithPoint({x, y}, tolerance, 1) != TOPO_DISJOINT;
    });
}

int CountShapes(Area& area) {
    const Turn turn = area.Use();
    return area.Source().GetDrawShapeCount();
}

py::str GetWkt(Area& area) {
    const Turn turn = area.Use();
    return Text(area.Source().GetSpatialReferenceWKT());
}

void SetWkt(Area& area, const std::string& wkt) {
    const Turn turn = area.Use();
    area.Changed();
    area.Source().SetSpatialReferenceWKT(wkt.c_str());
}

void Save(Area& area, const std::string& path, double tolerance) {
    const Turn turn = area.Use();
    WideText(path);
    Run([&] {
        host::RequireAoiFormat(path);
        host::SaveAoiOrFail(area.Source(), path, tolerance);
    });
}

void Transform(Area& area, const std::string& srs) {
    const Turn turn = area.Use();
    area.Changed();
    const GISError error = Run([&] {
        host::ForgetReasons();
        return area.Source().TransformTo(srs.c_str());
    });
    if (error != GIS_SUCCESS)
        throw host::Failure(host::LastReason("the area cannot be transformed"));
}

} // namespace

void BindArea(py::module_& module) {
    py::class_<Area, std::shared_ptr<Area>>(module, "Area")
        .def(py::init<>())
        .def(py::init<const std::string&>(), py::arg("path"))
        .def("add", &AddShapes, py::arg("shapes"))
        .def("shapes", &ShapesOf)
        .def("extent", &ExtentOf)
        .def("contains", &Contains, py::arg("xs"), py::arg("ys"))
        .def("save", &Save, py::arg("path"), py::arg("tolerance"))
        .def("transform", &Transform, py::arg("srs"))
        .def_property_readonly("count", &CountShapes)
        .def_property("wkt", &GetWkt, &SetWkt);
    module.def("shape_contains", &ShapeContains, py::arg("kind"), py::arg("numbers"), py::arg("xs"),
               py::arg("ys"), py::arg("tolerance"));
}

} // namespace zelto::python
