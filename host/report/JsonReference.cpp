#include "host/report/JsonReference.h"

#include "host/files/Reference.h"

#include <cstdlib>

namespace zelto::host {

Json JsonEpsg(const std::string& wkt) {
    const auto reference = ParseReference(wkt);
    const char* const authority = reference ? reference->GetAuthorityName(nullptr) : nullptr;
    const char* const code = reference ? reference->GetAuthorityCode(nullptr) : nullptr;
    if (authority == nullptr || code == nullptr || !EQUAL(authority, "EPSG"))
        return {};
    const int number = std::atoi(code);
    return number > 0 ? Json(number) : Json();
}

Json JsonReference(const std::string& name, const std::string& wkt) {
    return {{"coordinateName", name}, {"epsg", JsonEpsg(wkt)}, {"wkt", wkt}};
}

} // namespace zelto::host
