#include "host/files/Reference.h"

#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"

#include <cpl_conv.h>

namespace zelto::host {

std::optional<OGRSpatialReference> ParseReference(const std::string& text) {
    OGRSpatialReference reference;
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const char* const options[] = {"ALLOW_NETWORK_ACCESS=NO", nullptr};
    if (text.empty() || IsPipeOrDevice(text) ||
        reference.SetFromUserInput(text.c_str(), options) != OGRERR_NONE)
        return std::nullopt;
    return reference;
}

std::string ReferenceAsWkt(const std::string& text) {
    const auto reference = ParseReference(text);
    if (!reference)
        return {};
    const char* const options[] = {"FORMAT=WKT1_GDAL", nullptr};
    char* wkt = nullptr;
    const bool written = reference->exportToWkt(&wkt, options) == OGRERR_NONE;
    std::string result = written && wkt != nullptr ? wkt : "";
    CPLFree(wkt);
    return result;
}

void RequireReference(const std::string& text) {
    RequireNoPipe(text);
    if (!CCoordinateAlgorithm::IsValidCoordinate(text.c_str()))
        throw Failure(text, "cannot be read as a spatial reference");
}

} // namespace zelto::host
