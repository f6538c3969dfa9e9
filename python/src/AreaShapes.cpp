#include "zelto/aoi/DrawEllipse.h"
#include "zelto/aoi/DrawLine.h"
#include "zelto/aoi/DrawMultiLine.h"
#include "zelto/aoi/DrawPoint.h"
#include "zelto/aoi/DrawPolygon.h"

#include "python/src/Area.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

template <typename Shape>
std::unique_ptr<CDrawShape> ThroughVertices(const std::vector<double>& numbers, std::size_t least) {
    if (numbers.size() % 2 != 0 || numbers.size() < 2 * least)
        throw py::value_error("the shape takes at least " + std::to_string(least) +
                              " pairs of x and y");
    auto shape = std::make_unique<Shape>();
    for (std::size_t i = 0; i < numbers.size(); i += 2)
        shape->AddVertex({numbers[i], numbers[i + 1]});
    shape->m_complete = true;
    return shape;
}

template <typename Shape>
std::unique_ptr<CDrawShape> Inscribed(const std::vector<double>& sides) {
    const bool valid = sides.size() == 4 && sides[0] < sides[2] && sides[3] < sides[1];
    if (!valid)
        throw py::value_error("left, top, right and bottom with left < right and bottom < top");
    auto shape = std::make_unique<Shape>();
    shape->AddVertex({sides[0], sides[1]});
    shape->AddVertex({sides[2], sides[3]});
    return shape;
}

constexpr std::array<const char*, 7> KINDS = {"other",     "point",   "line",   "multiline",
                                              "rectangle", "ellipse", "polygon"};

} // namespace

std::unique_ptr<CDrawShape> MakeShape(const std::string& kind, const std::vector<double>& numbers) {
    const bool finite = std::all_of(numbers.begin(), numbers.end(),
                                    [](double number) { return std::isfinite(number); });
    if (!finite)
        throw py::value_error("coordinates are finite numbers");
    if (kind == "point")
        return ThroughVertices<CDrawPoint>(numbers, 1);
    if (kind == "line")
        return ThroughVertices<CDrawLine>(numbers, 2);
    if (kind == "multiline")
        return ThroughVertices<CDrawMultiLine>(numbers, 2);
    if (kind == "polygon")
        return ThroughVertices<CDrawPolygon>(numbers, 3);
    if (kind == "rectangle")
        return Inscribed<CDrawRectangle>(numbers);
    if (kind == "ellipse")
        return Inscribed<CDrawEllipse>(numbers);
    throw py::value_error("'" + kind + "' is no kind of shape");
}

py::tuple ShapeAsTuple(const CDrawShape& shape) {
    const std::size_t kind = shape.m_shapeKind >= 1 && shape.m_shapeKind <= 6
                                 ? static_cast<std::size_t>(shape.m_shapeKind)
                                 : 0;
    std::vector<double> numbers;
    if (const auto* box = dynamic_cast<const CDrawRectangle*>(&shape)) {
        numbers = {box->m_topLeft.x, box->m_topLeft.y, box->m_topLeft.x + box->m_width,
                   box->m_topLeft.y - box->m_height};
    } else {
        for (const CPoint2D& vertex : shape.m_vertices) {
            numbers.push_back(vertex.x);
            numbers.push_back(vertex.y);
        }
    }
    return py::make_tuple(KINDS[kind], numbers);
}

} // namespace zelto::python
