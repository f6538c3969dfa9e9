#pragma once

#include <array>
#include <limits>
#include <pybind11/pybind11.h>
#include <vector>

/// @file
/// What Python calls hand over, checked before the engine is entered.

namespace zelto::python {

constexpr int LARGEST_INT = std::numeric_limits<int>::max();

/// Columns and rows of a raster: first column, first row, number of columns and of rows.
using Window = std::array<int, 4>;
/// Rows and columns.
using Shape = std::array<int, 2>;

/// A whole number from `least` to `most`: an int or what NumPy has in its place. Throws TypeError
/// for anything else, truth values included, and ValueError for one that is out of range.
/// @param name for the message
int WholeNumber(const char* name, const pybind11::handle& value, int least = 0,
                int most = LARGEST_INT);

/// Bands by their numbers from 1: one, several, or None for all. Throws IndexError for one that
/// is not there, ValueError for none, TypeError for what is no number.
std::vector<int> BandNumbers(const pybind11::object& bands, int count);

/// Whether BandNumbers() takes a value as one band, and not as a list of them or as all.
bool IsOneBand(const pybind11::object& bands);

/// A window of a raster, or None for all of it. Throws ValueError unless it lies inside.
Window WindowWithin(const pybind11::object& window, int width, int height);

/// The shape of a result. Throws ValueError unless there are two sides of at least 1.
Shape ShapeOf(const pybind11::object& shape);

} // namespace zelto::python
