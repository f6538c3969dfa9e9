#pragma once

#include <pybind11/pybind11.h>
#include <string>

namespace zelto::python {

/// Throws what becomes a zelto.Error: the engine's reason of the last failure, else GDAL's, else
/// `otherwise`.
[[noreturn]] void Fail(const std::string& file, const std::string& otherwise);

/// Text of the engine as a Python string. Bytes that are no UTF-8, which file names may hold,
/// become what os.fsdecode() makes of them.
pybind11::str Text(const std::string& text);

/// A path or another text as the engine's wide string. Throws ValueError for one with a zero
/// inside, which would end it early.
/// @param text in the file system's encoding
std::wstring WideText(const std::string& text);

} // namespace zelto::python
