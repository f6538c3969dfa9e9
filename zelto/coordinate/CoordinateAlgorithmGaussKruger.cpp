#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"

#include <array>
#include <cstdint>
#include <utility>

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

/// A system alone, without heights: the horizontal part of a compound one, two dimensions of
/// three. Nothing for kinds that have no geographic system: geocentric, vertical and local ones.
std::optional<OGRSpatialReference> HorizontalPart(OGRSpatialReference reference) {
    if (!reference.IsGeographic() && !reference.IsProjected())
        return std::nullopt;
    if (reference.StripVertical() != OGRERR_NONE || reference.DemoteTo2D(nullptr) != OGRERR_NONE)
        return std::nullopt;
    return reference;
}

/// A zone's system, still on the geographic system that GDAL gives to a new one.
bool SetZone(OGRSpatialReference& system, const std::string& name, double centralMeridian) {
    constexpr std::pair<const char*, double> NATIONAL[] = {
        {"scale_factor", 1.0}, {"false_easting", 500000.0}, {"false_northing", 0.0}};
    bool done = system.SetProjCS(name.c_str()) == OGRERR_NONE &&
                system.SetProjection("Gauss_Kruger") == OGRERR_NONE &&
                system.SetLinearUnits("Meter", 1.0) == OGRERR_NONE &&
                system.SetProjParm("latitude_of_origin", 0.0) == OGRERR_NONE &&
                system.SetProjParm("central_meridian", centralMeridian) == OGRERR_NONE;
    for (const auto& [parameter, value] : NATIONAL)
        done = done && system.SetProjParm(parameter, value) == OGRERR_NONE;
    return done;
}

/// Datum, ellipsoid, prime meridian and unit as well as the parameters of the datum shift.
bool HasGeographicSystemOf(const OGRSpatialReference& system, const OGRSpatialReference& base) {
    std::array<double, 7> shift{};
    std::array<double, 7> expected{};
    const OGRErr found = system.GetTOWGS84(shift.data(), static_cast<int>(shift.size()));
    return found == base.GetTOWGS84(expected.data(), static_cast<int>(expected.size())) &&
           shift == expected && system.IsSameGeogCS(&base) != 0;
}

std::string Refuse(const char* text, const char* reason) {
    zelto::SetLastError(std::string(text == nullptr ? "" : text) + ": " + reason);
    return "";
}

} // namespace

std::string CCoordinateAlgorithm::NewChinaProjCS(const char* srs, int zone, int zoneWidth) {
    const auto reference = zelto::ParseSpatialReference(srs);
    if (!reference)
        return Refuse(srs, "cannot be read as a spatial reference");
    const auto base = HorizontalPart(*reference);
    if (!base)
        return Refuse(srs, "has no geographic system to build on");
    const Zone place = FindZone(zone, zoneWidth);
    const std::string name = GeographicName(*reference, srs) + place.suffix;
    const zelto::GdalWatch watch;
    OGRSpatialReference system;
    // The geographic system comes last: setting the projection of one that carries shift
    // parameters would put WGS 84 in its place, with a success. What came of it decides; grids of
    // a datum that are not installed are an error message, but none of the system.
    const bool done = SetZone(system, name, place.centralMeridian) &&
                      system.CopyGeogCSFrom(&*base) == OGRERR_NONE &&
                      HasGeographicSystemOf(system, *base);
    if (!done)
        return Refuse(srs, watch.HasError() ? watch.Error().c_str()
                                            : "its geographic system cannot be copied");
    std::string wkt =
        zelto::ReplaceNodeValue(zelto::ExportToWkt(system), "PROJECTION", "Gauss_Kruger");
    return wkt.empty() ? Refuse(srs, "cannot be written as WKT") : wkt;
}
