#include "python/src/Arguments.h"

#include "python/src/Bind.h"

#include <numeric>
#include <pybind11/stl.h>
#include <string>

namespace py = pybind11;

namespace zelto::python {

namespace {

[[noreturn]] void ThrowNoWholeNumber(const char* name) {
    throw py::type_error(std::string(name) + " is a whole number");
}

/// A str or bytes can be walked through and is yet no list of numbers.
bool IsText(const py::handle& value) {
    return py::isinstance<py::str>(value) || py::isinstance<py::bytes>(value);
}

/// `Count` whole numbers of anything that can be walked through.
/// @param rule what they are, for the message
template <std::size_t Count>
std::array<int, Count> WholeNumbers(const char* name, const py::object& values, int least,
                                    const char* rule) {
    if (IsText(values))
        throw py::value_error(rule);
    const py::tuple items(values);
    if (items.size() != Count)
        throw py::value_error(rule);
    std::array<int, Count> numbers{};
    for (std::size_t i = 0; i < Count; ++i)
        numbers[i] = WholeNumber(name, items[i], least);
    return numbers;
}

} // namespace

int WholeNumber(const char* name, const py::handle& value, int least, int most) {
    if (PyBool_Check(value.ptr()) != 0)
        ThrowNoWholeNumber(name);
    const auto number = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!number) {
        PyErr_Clear();
        ThrowNoWholeNumber(name);
    }
    int overflow = 0;
    const long found = PyLong_AsLongAndOverflow(number.ptr(), &overflow);
    if (overflow != 0 || found < least || found > most)
        throw py::value_error(std::string(name) + " is " + std::to_string(least) + " to " +
                              std::to_string(most) + ", not " + std::string(py::str(number)));
    return static_cast<int>(found);
}

bool IsOneBand(const py::object& bands) {
    return !bands.is_none() && !py::isinstance<py::iterable>(bands);
}

std::vector<int> BandNumbers(const py::object& bands, int count) {
    std::vector<int> numbers;
    if (bands.is_none()) {
        numbers.resize(static_cast<std::size_t>(count));
        std::iota(numbers.begin(), numbers.end(), 1);
        return numbers;
    }
    if (IsText(bands))
        throw py::type_error("bands are whole numbers");
    const auto add = [&](const py::handle& band) {
        numbers.push_back(WholeNumber("a band", band, -LARGEST_INT));
    };
    if (IsOneBand(bands))
        add(bands);
    else
        for (const py::handle band : bands)
            add(band);
    if (numbers.empty())
        throw py::value_error("no bands");
    for (const int number : numbers)
        if (number < 1 || number > count)
            throw py::index_error("bands are numbered from 1 to " + std::to_string(count) +
                                  ", there is no " + std::to_string(number));
    return numbers;
}

Window WindowWithin(const py::object& window, int width, int height) {
    if (window.is_none())
        return {0, 0, width, height};
    const Window sides =
        WholeNumbers<4>("window", window, 0, "window is column, row, columns, rows");
    const auto [column, row, columns, rows] = sides;
    if (columns < 1 || rows < 1 || columns > width - column || rows > height - row)
        throw py::value_error("the window does not lie in the " + std::to_string(width) +
                              " columns and " + std::to_string(height) + " rows");
    return sides;
}

Shape ShapeOf(const py::object& shape) {
    return WholeNumbers<2>("shape", shape, 1, "shape is rows, columns");
}

void BindArguments(py::module_& module) {
    module.def("whole", &WholeNumber, py::arg("name"), py::arg("value"), py::arg("least") = 0,
               py::arg("most") = LARGEST_INT);
    module.def("band_numbers", &BandNumbers, py::arg("bands"), py::arg("count"));
    module.def("window_within", &WindowWithin, py::arg("window"), py::arg("width"),
               py::arg("height"));
}

} // namespace zelto::python
