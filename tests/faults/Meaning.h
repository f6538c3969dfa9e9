#pragma once

#include <string>

namespace zelto::test {

/// What a reader finds under a name, as text: size, place, pixels and levels of a raster, layers
/// and features of a vector file, the bytes of any other file. Empty where nothing is. Says
/// "damaged" where a reader would fail.
std::string MeaningOf(const std::string& path);

/// The pixels of a raster's own bands alone.
std::string PixelsOf(const std::string& path);

} // namespace zelto::test
