#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace {

/// Texts of other beginnings are looked up in the projection library's database; they are the
/// target "reference"'s.
bool IsWellKnown(const std::string& text) {
    constexpr const char* ROOTS[] = {"GEOGCS[", "PROJCS[",   "VERTCS[",
                                     "GEOCCS[", "LOCAL_CS[", "COMPD_CS["};
    return std::any_of(std::begin(ROOTS), std::end(ROOTS),
                       [&](const char* root) { return text.rfind(root, 0) == 0; });
}

void AskAll(const char* wkt) {
    CCoordinateAlgorithm::GetCoordinateInfoString(wkt);
    CCoordinateAlgorithm::GetCoordinateName(wkt);
    CCoordinateAlgorithm::GetDatum(wkt);
    CCoordinateAlgorithm::GetUnit(wkt);
    CCoordinateAlgorithm::CopyGeogCSFrom(wkt);
    CCoordinateAlgorithm::NewChinaProjCS(wkt, 39, 3);
}

} // namespace

// A well-known text of a spatial reference: its tree of nodes; sometimes every question about it,
// which the projection library answers from its database.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    const std::string text(data, data + size);
    const char* wkt = text.c_str();
    for (const char* keyword : {"PROJCS", "GEOGCS", "VDATUM"})
        zelto::ReadNodeValue(wkt, keyword);
    if (IsWellKnown(text) && zelto::fuzz::IsChosen(data, size, 1024))
        AskAll(wkt);
    return 0;
}
