#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"

namespace {

/// What the summary says, in the units of the reference.
struct Summary {
    std::string geographic;
    std::string datum;
    std::string spheroid;
    std::string semiMajor;
    std::string semiMinor;
    std::string inverseFlattening;
    std::string angularUnit;
    std::string primeMeridian;
};

std::string SummaryValue(const OGRSpatialReference& reference, const char* keyword) {
    const char* value = reference.GetAttrValue(keyword);
    return value == nullptr ? "" : value;
}

std::string NameAndValue(const std::string& name, double value) {
    return name + "(" + CommonFun::double2string(value) + ")";
}

Summary Summarise(const OGRSpatialReference& reference) {
    Summary summary;
    summary.geographic = SummaryValue(reference, "GEOGCS");
    summary.datum = SummaryValue(reference, "DATUM");
    summary.spheroid = SummaryValue(reference, "SPHEROID");
    summary.semiMajor = CommonFun::double2string(reference.GetSemiMajor());
    summary.semiMinor = CommonFun::double2string(reference.GetSemiMinor());
    summary.inverseFlattening = CommonFun::double2string(reference.GetInvFlattening());
    // GDAL names unit and meridian of every reference, whether or not its text does.
    const char* name = "";
    const double unit = reference.GetAngularUnits(&name);
    summary.angularUnit = "Angular Unit: " + NameAndValue(name, unit);
    const double meridian = reference.GetPrimeMeridian(&name);
    summary.primeMeridian = "Prime Meridian: " + NameAndValue(name, meridian);
    return summary;
}

std::string JoinLines(std::initializer_list<std::string> lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

std::string DescribeGeographic(const Summary& summary) {
    return JoinLines({
        "Name: " + summary.geographic,
        "Datum: " + summary.datum,
        "  Spheroid: " + summary.spheroid,
        "    Semimajor Axis: " + summary.semiMajor,
        "    Semiminor Axis: " + summary.semiMinor,
        "    Inverse Flattening: " + summary.inverseFlattening,
        summary.angularUnit,
        summary.primeMeridian,
    });
}

std::string DescribeProjected(const OGRSpatialReference& reference, const Summary& summary) {
    const std::string name = SummaryValue(reference, "PROJCS");
    const std::string projection = SummaryValue(reference, "PROJCS|PROJECTION");
    return JoinLines({
        "Name: " + name,
        "  GCSName: " + summary.geographic,
        "  Datum: " + summary.datum,
        "    Spheroid: " + summary.spheroid,
        "      Semimajor Axis: " + summary.semiMajor,
        "      Semiminor Axis: " + summary.semiMinor,
        "      Inverse Flattening: " + summary.inverseFlattening,
        "  " + summary.angularUnit,
        "  " + summary.primeMeridian,
        "Projection: " + projection,
    });
}

} // namespace

std::string CCoordinateAlgorithm::GetCoordinateInfoString(const char* srs) {
    const auto reference = zelto::ParseSpatialReference(srs);
    if (!reference)
        return "";
    if (reference->IsGeographic())
        return DescribeGeographic(Summarise(*reference));
    if (reference->IsProjected())
        return DescribeProjected(*reference, Summarise(*reference));
    return "Unknown";
}
