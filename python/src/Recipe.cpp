#include "host/picture/Recipe.h"

#include "zelto/baselib/CommonFun.h"

#include "host/files/Open.h"
#include "python/src/Bind.h"
#include "python/src/Call.h"
#include "python/src/Errors.h"

namespace py = pybind11;

namespace zelto::python {

namespace {

CDisplayRecipe FromJson(const std::string& text) {
    CDisplayRecipe recipe;
    host::ForgetReasons();
    if (!recipe.SetJson(text))
        throw py::value_error(host::LastReason("it is no recipe"));
    return recipe;
}

CDisplayRecipe ReadFile(const std::string& path) {
    return Run([&] { return host::ReadRecipe(path); });
}

void WriteFile(const CDisplayRecipe& recipe, const std::string& path) {
    return Run([&] { host::WriteRecipe(recipe, path); });
}

py::str Json(const CDisplayRecipe& recipe) {
    host::ForgetReasons();
    const std::string text = recipe.GetJson();
    if (text.empty())
        Fail("", "the recipe cannot be told as JSON");
    return Text(text);
}

/// Left, top, right, bottom, width, height and reference system; or None.
py::object ViewOf(const CDisplayRecipe& recipe) {
    const auto& view = recipe.GetView();
    if (!view)
        return py::none();
    return py::make_tuple(view->box.GetLeft(), view->box.GetTop(), view->box.GetRight(),
                          view->box.GetBottom(), view->width, view->height, Text(view->srs));
}

/// Path of the area's file and whether the outside is black; or None.
py::object MaskOf(const CDisplayRecipe& recipe) {
    const auto& mask = recipe.GetMask();
    if (!mask)
        return py::none();
    return py::make_tuple(Text(CommonFun::U2M(mask->area)), mask->isBlack);
}

CDisplayRecipe WithoutPlace(CDisplayRecipe recipe) {
    recipe.SetView(std::nullopt);
    recipe.SetMask(std::nullopt);
    return recipe;
}

} // namespace

void BindRecipe(py::module_& module) {
    py::class_<CDisplayRecipe>(module, "Recipe")
        .def(py::init(&FromJson), py::arg("json"))
        .def_static("read", &ReadFile, py::arg("path"))
        .def("write", &WriteFile, py::arg("path"))
        .def("json", &Json)
        .def("view", &ViewOf)
        .def("mask", &MaskOf)
        .def("without_place", &WithoutPlace);
}

} // namespace zelto::python
