#pragma once

#include <pybind11/pybind11.h>

/// @file
/// What each source of the module adds to it.

namespace zelto::python {

void BindArguments(pybind11::module_& module);
void BindErrors(pybind11::module_& module);
void BindRaster(pybind11::module_& module);
void BindPixels(pybind11::module_& module);
void BindRecipe(pybind11::module_& module);
void BindDrawing(pybind11::module_& module);
void BindMaking(pybind11::module_& module);
void BindArea(pybind11::module_& module);
void BindStatistics(pybind11::module_& module);
void BindSamples(pybind11::module_& module);
void BindClassFiles(pybind11::module_& module);
void BindComposition(pybind11::module_& module);
void BindCoordinates(pybind11::module_& module);
void BindGeoGrid(pybind11::module_& module);
void BindZones(pybind11::module_& module);

} // namespace zelto::python
