#include "python/src/Errors.h"

#include "zelto/baselib/CommonFun.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "python/src/Bind.h"

#include <new>

namespace py = pybind11;

namespace zelto::python {

namespace {

/// The exception that users catch is the package's; it takes file and reason.
void Raise(const host::Failure& failure) {
    const py::object type = py::module_::import("zelto._errors").attr("Error");
    const std::string reason = host::WithoutName(failure.File(), failure.what());
    const py::object error = failure.File().empty() ? type(py::none(), Text(reason))
                                                    : type(Text(failure.File()), Text(reason));
    PyErr_SetObject(type.ptr(), error.ptr());
}

} // namespace

void Fail(const std::string& file, const std::string& otherwise) {
    throw host::Failure(file, host::LastReason(otherwise));
}

py::str Text(const std::string& text) {
    PyObject* const decoded =
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
    if (decoded == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

std::wstring WideText(const std::string& text) {
    if (text.find('\0') != std::string::npos)
        throw py::value_error("embedded null character");
    return CommonFun::M2U(text);
}

void BindErrors(py::module_& /*module*/) {
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const host::Failure& failure) {
            Raise(failure);
        } catch (const host::UsageError& error) {
            PyErr_SetString(PyExc_ValueError, error.what());
        }
    });
}

} // namespace zelto::python
