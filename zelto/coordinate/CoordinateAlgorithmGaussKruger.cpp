#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"

#include <cstdint>

namespace {

/// Name of the geographic system as it stands in a WKT text; as the reference knows it for
/// texts of other forms. Parsing replaces some names, "GCS_Xian_1980" by "Xian 1980" for one.
std::string GeographicName(const OGRSpatialReference& reference, const char* text) {
    std::string name = zelto::ReadNodeValue(text, "GEOGCS");
    if (name.empty()) {
        const char* known = reference.GetAttrValue("GEOGCS");
        name = known == nullptr ? "" : known;
    }
    const std::size_t prefix = name.find("GCS_");
    return prefix == std::string::npos ? name : name.substr(prefix + 4);
}

struct Zone {
    double centralMeridian = 0.0;
    std::string suffix; ///< what the name of a system in this zone ends in
};

/// Names keep room for three characters of the meridian.
constexpr std::size_t MERIDIAN_CHARACTERS = 3;

std::string MeridianText(std::int64_t meridian) {
    return std::to_string(meridian).substr(0, MERIDIAN_CHARACTERS);
}

Zone FindZone(int zone, int zoneWidth) {
    const std::int64_t number = zone;
    if (zoneWidth == 6) {
        const std::int64_t meridian = number * 6 - 3;
        return {static_cast<double>(meridian), "_GK_CM_" + MeridianText(meridian) + "E"};
    }
    if (zoneWidth == 3) {
        const std::int64_t meridian = number * 3;
        return {static_cast<double>(meridian), "_3_Degree_GK_CM_" + MeridianText(meridian) + "E"};
    }
    return {};
}

} // namespace

std::string CCoordinateAlgorithm::NewChinaProjCS(const char* srs, int zone, int zoneWidth) {
    auto reference = zelto::ParseSpatialReference(srs);
    if (!reference)
        return "";
    const Zone place = FindZone(zone, zoneWidth);
    reference->SetProjCS((GeographicName(*reference, srs) + place.suffix).c_str());
    reference->SetProjection("Gauss_Kruger");
    reference->SetLinearUnits("Meter", 1.0);
    reference->SetProjParm("latitude_of_origin", 0.0);
    reference->SetProjParm("central_meridian", place.centralMeridian);
    reference->SetProjParm("scale_factor", 1.0);
    reference->SetProjParm("false_easting", 500000.0);
    reference->SetProjParm("false_northing", 0.0);
    return zelto::ReplaceNodeValue(zelto::ExportToWkt(*reference), "PROJECTION", "Gauss_Kruger");
}
