#include "zelto/coordinate/GeoGrid.h"

#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Call.h"

#include <climits>
#include <memory>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

/// A polynomial from ground points to image positions.
class Grid {
  public:
    explicit Grid(unsigned int order) : m_order(order), m_grid(1, 1, 1.0, 1.0, order) {
        if (order < 1 || order > 3)
            throw py::value_error("order is 1, 2 or 3");
    }

    void Fit(const Doubles& x, const Doubles& y, const Doubles& columns, const Doubles& rows) {
        const Turn turn(m_taken, "grid");
        const auto count = Count(x);
        if (Count(y) != count || Count(columns) != count || Count(rows) != count)
            throw py::value_error("x, y, columns and rows are as many numbers each");
        // The fit centres its points in place.
        std::vector<double> points[4];
        const Doubles* given[4] = {&x, &y, &columns, &rows};
        for (int i = 0; i < 4; ++i)
            points[i].assign(given[i]->data(), given[i]->data() + count);
        const bool fitted = Run([&] {
            return m_grid.ComputeCoef(count, points[0].data(), points[1].data(), points[2].data(),
                                      points[3].data());
        });
        if (!fitted)
            throw py::value_error("at least " + std::to_string(CGeoGrid::EnoughNum(m_order)) +
                                  " finite points that determine the polynomial");
    }

    py::tuple Positions(const Doubles& x, const Doubles& y) const {
        const Turn turn(m_taken, "grid");
        const int count = Count(x);
        if (Count(y) != count)
            throw py::value_error("x and y are as many numbers");
        if (m_grid.GetCoefficients() == nullptr)
            throw py::value_error("the grid has not been fitted");
        py::array_t<double> columns(count);
        py::array_t<double> rows(count);
        const double* const xs = x.data();
        const double* const ys = y.data();
        double* const columnsOut = columns.mutable_data();
        double* const rowsOut = rows.mutable_data();
        Run([&] { m_grid.GetPos(count, xs, ys, columnsOut, rowsOut); });
        return py::make_tuple(columns, rows);
    }

    /// The terms of the column and of the row, and what is taken off and added to.
    py::object Coefficients() const {
        const double* const coefficients = m_grid.GetCoefficients();
        if (coefficients == nullptr)
            return py::none();
        const auto count = static_cast<py::ssize_t>(CGeoGrid::EnoughNum(m_order));
        const CPoint2D from = m_grid.GetInputCentre();
        const CPoint2D to = m_grid.GetOutputCentre();
        return py::make_tuple(py::array_t<double>(count, coefficients),
                              py::array_t<double>(count, coefficients + count),
                              py::make_tuple(from.x, from.y), py::make_tuple(to.x, to.y));
    }

  private:
    static int Count(const Doubles& numbers) {
        if (numbers.ndim() != 1 || numbers.size() > INT_MAX)
            throw py::value_error("points are rows of numbers");
        return static_cast<int>(numbers.size());
    }

    unsigned int m_order;
    CGeoGrid m_grid;
    mutable bool m_taken = false;
};

} // namespace

void BindGeoGrid(py::module_& module) {
    py::class_<Grid>(module, "Grid")
        .def(py::init<unsigned int>(), py::arg("order"))
        .def("fit", &Grid::Fit, py::arg("x"), py::arg("y"), py::arg("columns"), py::arg("rows"))
        .def("positions", &Grid::Positions, py::arg("x"), py::arg("y"))
        .def("coefficients", &Grid::Coefficients);
}

} // namespace zelto::python
