#include "python/src/Arrays.h"

#include <array>
#include <utility>

namespace py = pybind11;

namespace zelto::python {

namespace {

constexpr std::array<std::pair<PixelDataType, const char*>, 7> TYPES = {{{PDT_Byte, "uint8"},
                                                                         {PDT_UInt16, "uint16"},
                                                                         {PDT_Int16, "int16"},
                                                                         {PDT_UInt32, "uint32"},
                                                                         {PDT_Int32, "int32"},
                                                                         {PDT_Float32, "float32"},
                                                                         {PDT_Float64, "float64"}}};

} // namespace

py::object DtypeName(PixelDataType type) {
    for (const auto& [known, name] : TYPES)
        if (known == type)
            return py::str(name);
    return py::none();
}

PixelDataType PixelTypeOf(const py::array& array) {
    for (const auto& [type, name] : TYPES)
        if (array.dtype().equal(py::dtype(name)))
            return type;
    throw py::type_error("samples are uint8, uint16, int16, uint32, int32, float32 or float64, "
                         "in the machine's byte order");
}

void RequireShape(const py::array& array, const std::vector<py::ssize_t>& shape) {
    const bool fits =
        std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()) == shape;
    if (!fits)
        throw py::value_error("the array has another shape than is asked for");
    const int flags = array.flags();
    const int wanted =
        py::detail::npy_api::NPY_ARRAY_C_CONTIGUOUS_ | py::detail::npy_api::NPY_ARRAY_ALIGNED_;
    if ((flags & wanted) != wanted)
        throw py::value_error("the array is not packed row by row");
}

void* Memory(py::array& array) {
    if (!array.writeable())
        throw py::value_error("the array is read-only");
    return array.mutable_data();
}

} // namespace zelto::python
