#pragma once

#include "zelto/datasource/Enumerations.h"

#include <string>
#include <vector>

namespace zelto::host {

/// The pixel type called `name`, whatever the case: Byte, UInt16 … Float64. Throws UsageError.
PixelDataType ParsePixelType(const std::string& name);

/// The format of a new file: the one called `name`, by GDAL's name or by an extension, or, where
/// `name` is empty, the one that the path's extension names. Throws UsageError where neither
/// tells.
RasterDataFormat ChooseFormat(const std::string& name, const std::string& path);

/// Throws Failure where GDAL cannot make files of the format.
void RequireCreatable(RasterDataFormat format, const std::string& path);

/// Throws UsageError for creation options that are not KEY=VALUE or are meant for a format that
/// takes none.
void CheckCreationOptions(const std::vector<std::string>& options, RasterDataFormat format);

} // namespace zelto::host
