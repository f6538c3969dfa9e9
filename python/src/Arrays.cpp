#include "python/src/Arrays.h"

#include <algorithm>
#include <array>
#include <bit>
#include <map>
#include <pybind11/stl.h>
#include <string>

namespace py = pybind11;

namespace zelto::python {

namespace {

struct SampleType {
    PixelDataType type;
    const char* name; ///< NumPy's
    char kind;        ///< NumPy's character for whole numbers without and with a sign, and others
    int size;
};

constexpr std::array<SampleType, 7> TYPES = {{{PDT_Byte, "uint8", 'u', 1},
                                              {PDT_UInt16, "uint16", 'u', 2},
                                              {PDT_Int16, "int16", 'i', 2},
                                              {PDT_UInt32, "uint32", 'u', 4},
                                              {PDT_Int32, "int32", 'i', 4},
                                              {PDT_Float32, "float32", 'f', 4},
                                              {PDT_Float64, "float64", 'f', 8}}};

constexpr char FOREIGN_BYTE_ORDER = std::endian::native == std::endian::little ? '>' : '<';

/// The entry of a type; what is none of the seven is read as the last one, float64.
const SampleType& EntryOf(PixelDataType type) {
    return *std::find_if(TYPES.begin(), TYPES.end() - 1,
                         [&](const SampleType& known) { return known.type == type; });
}

const SampleType* EntryOf(const py::dtype& dtype) {
    if (dtype.byteorder() != FOREIGN_BYTE_ORDER)
        for (const SampleType& known : TYPES)
            if (dtype.kind() == known.kind && dtype.itemsize() == known.size)
                return &known;
    return nullptr;
}

std::string Printed(const std::vector<py::ssize_t>& shape) {
    return py::str(py::tuple(py::cast(shape)));
}

bool Holds(const SampleType& type, const SampleType& values) {
    if (type.kind == values.kind)
        return values.size <= type.size;
    return type.kind != 'u' && values.kind != 'f' && (values.kind == 'u' || type.kind == 'f') &&
           values.size < type.size;
}

} // namespace

py::object DtypeName(PixelDataType type) {
    for (const SampleType& known : TYPES)
        if (known.type == type)
            return py::str(known.name);
    return py::none();
}

PixelDataType PixelTypeOf(const py::dtype& dtype) {
    if (const SampleType* const entry = EntryOf(dtype))
        return entry->type;
    throw py::type_error("samples are uint8, uint16, int16, uint32, int32, float32 or float64, "
                         "in the machine's byte order");
}

py::dtype DtypeOf(PixelDataType type) {
    // Made once, and never given back: the interpreter may be gone when this library goes.
    static const auto* const DTYPES = [] {
        auto* const made = new std::map<PixelDataType, py::dtype>;
        for (const SampleType& known : TYPES)
            made->emplace(known.type, py::dtype(known.name));
        return made;
    }();
    return DTYPES->at(type);
}

py::dtype SampleDtype(const py::object& dtype) {
    const py::dtype found = py::dtype::from_args(dtype);
    if (EntryOf(found) != nullptr)
        return found;
    std::string names;
    for (const SampleType& known : TYPES)
        names += (names.empty() ? "" : ", ") + std::string(known.name);
    throw py::type_error("dtype is one of " + names + ", not " +
                         std::string(py::str(static_cast<const py::object&>(found))));
}

PixelDataType CommonType(const std::vector<PixelDataType>& types) {
    return std::find_if(TYPES.begin(), TYPES.end() - 1,
                        [&](const SampleType& common) {
                            return std::all_of(types.begin(), types.end(), [&](PixelDataType type) {
                                return Holds(common, EntryOf(type));
                            });
                        })
        ->type;
}

void RequireShape(const py::array& array, const std::vector<py::ssize_t>& shape) {
    const std::vector<py::ssize_t> found(array.shape(), array.shape() + array.ndim());
    if (found != shape)
        throw py::value_error("the array has the shape " + Printed(found) + ", not " +
                              Printed(shape));
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
