#include "cli/support/Reference.h"

namespace zelto::cli {

std::optional<OGRSpatialReference> ParseReference(const std::string& text) {
    OGRSpatialReference reference;
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const char* const options[] = {"ALLOW_NETWORK_ACCESS=NO", nullptr};
    if (text.empty() || reference.SetFromUserInput(text.c_str(), options) != OGRERR_NONE)
        return std::nullopt;
    return reference;
}

} // namespace zelto::cli
