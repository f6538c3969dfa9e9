#include "zelto/coordinate/CoordinateAlgorithm.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/baselib/internal/SpatialReference.h"

#include <cstring>
#include <fstream>
#include <new>

namespace {

bool Contains(const char* text, const char* keyword) {
    return std::strstr(text, keyword) != nullptr;
}

/// Value of a node of the parsed reference, or of the text itself where the reference knows
/// the node under another name, as it does for vertical systems of projection files.
std::string NodeValue(const OGRSpatialReference& reference, const char* text, const char* keyword) {
    if (const char* value = reference.GetAttrValue(keyword, 0))
        return value;
    return zelto::ReadNodeValue(text, keyword);
}

// GDAL names a unit of every reference, whether or not its text does.

std::string LinearUnit(const OGRSpatialReference& reference) {
    const char* name = "";
    reference.GetLinearUnits(&name);
    return name;
}

std::string AngularUnit(const OGRSpatialReference& reference) {
    const char* name = "";
    reference.GetAngularUnits(&name);
    return name;
}

} // namespace

bool CCoordinateAlgorithm::IsValidCoordinate(const char* srs) {
    return zelto::ParseSpatialReference(srs).has_value();
}

bool CCoordinateAlgorithm::IsSameCoordinate(const char* srsA, const char* srsB) {
    const auto a = zelto::ParseSpatialReference(srsA);
    const auto b = zelto::ParseSpatialReference(srsB);
    return a && b && zelto::IsSameReference(*a, *b);
}

bool CCoordinateAlgorithm::IsProjected(const char* srs) {
    const auto reference = zelto::ParseSpatialReference(srs);
    return reference && reference->IsProjected();
}

bool CCoordinateAlgorithm::IsGeographic(const char* srs) {
    const auto reference = zelto::ParseSpatialReference(srs);
    return reference && reference->IsGeographic();
}

std::string CCoordinateAlgorithm::GetCoordinateName(const char* srs) {
    const auto reference = zelto::ParseSpatialReference(srs);
    if (!reference)
        return "";
    for (const char* keyword : {"PROJCS", "GEOGCS", "VERTCS"}) {
        if (Contains(srs, keyword))
            return NodeValue(*reference, srs, keyword);
    }
    return "Unknow";
}

std::string CCoordinateAlgorithm::GetDatum(const char* srs) {
    const auto reference = zelto::ParseSpatialReference(srs);
    if (!reference)
        return "";
    if (Contains(srs, "GEOGCS"))
        return NodeValue(*reference, srs, "DATUM");
    if (!Contains(srs, "VERTCS"))
        return "";
    if (Contains(srs, "VDATUM"))
        return NodeValue(*reference, srs, "VDATUM");
    return Contains(srs, "DATUM") ? NodeValue(*reference, srs, "DATUM") : "";
}

std::string CCoordinateAlgorithm::GetUnit(const char* wkt) {
    OGRSpatialReference reference;
    if (wkt == nullptr || reference.importFromWkt(wkt) != OGRERR_NONE)
        return "";
    if (Contains(wkt, "PROJCS"))
        return LinearUnit(reference);
    if (Contains(wkt, "GEOGCS"))
        return AngularUnit(reference);
    return Contains(wkt, "VERTCS") ? LinearUnit(reference) : "";
}

std::string CCoordinateAlgorithm::CopyGeogCSFrom(const char* srs) {
    const auto reference = zelto::ParseSpatialReference(srs);
    OGRSpatialReference geographic;
    zelto::GdalWatch watch;
    if (!reference || geographic.CopyGeogCSFrom(&*reference) != OGRERR_NONE) {
        watch.Succeeded(false, srs == nullptr ? "" : srs);
        return "";
    }
    return zelto::ExportToWkt(geographic);
}

std::string CCoordinateAlgorithm::GetWKTFromPrjFile(const wchar_t* path) {
    if (path == nullptr)
        return "";
    const std::string name = CommonFun::U2M(path);
    std::ifstream file;
    if (!zelto::OpenRegularFile(file, name))
        return "";
    try {
        std::string line;
        std::getline(file, line);
        // The line end of the desktop platform, where text files are written.
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        return line;
    } catch (const std::bad_alloc&) {
        zelto::SetLastError(name + ": its first line is too long for the memory");
        return "";
    }
}
