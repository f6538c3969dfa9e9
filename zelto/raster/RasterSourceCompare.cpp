#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/raster/RasterSource.h"

#include <array>
#include <cmath>
#include <string_view>

namespace {

bool IsSameName(const char* a, const char* b) {
    if (a == nullptr || b == nullptr)
        return a == b;
    return EQUAL(a, b);
}

/// A numeric element of a node, `fallback` when the reference has none.
double Number(const OGRSpatialReference& reference, const char* node, int element,
              const char* fallback) {
    const char* text = reference.GetAttrValue(node, element);
    return CPLAtof(text != nullptr ? text : fallback);
}

bool IsSameDatumShift(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    std::array<double, 7> shiftA = {};
    std::array<double, 7> shiftB = {};
    // A reference without a shift leaves the zeros.
    a.GetTOWGS84(shiftA.data(), 7);
    b.GetTOWGS84(shiftB.data(), 7);
    for (std::size_t i = 0; i < shiftA.size(); ++i)
        if (std::fabs(shiftA[i] - shiftB[i]) > 1e-5)
            return false;
    return true;
}

bool IsSameSpheroid(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    const char* const none = "0.0";
    return std::fabs(Number(a, "SPHEROID", 1, none) - Number(b, "SPHEROID", 1, none)) <= 0.01 &&
           std::fabs(Number(a, "SPHEROID", 2, none) - Number(b, "SPHEROID", 2, none)) <= 0.0001;
}

bool IsSameGeographicPart(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    if (!IsSameName(a.GetAttrValue("DATUM"), b.GetAttrValue("DATUM")) || !IsSameDatumShift(a, b))
        return false;
    if (Number(a, "PRIMEM", 1, "0.0") != Number(b, "PRIMEM", 1, "0.0"))
        return false;
    const char* const degree = "0.0174532925199433";
    if (std::fabs(Number(a, "GEOGCS|UNIT", 1, degree) - Number(b, "GEOGCS|UNIT", 1, degree)) > 1e-8)
        return false;
    return IsSameSpheroid(a, b);
}

/// Two names of the same projection count as one.
const char* ProjectionName(const OGRSpatialReference& reference) {
    const char* name = reference.GetAttrValue("PROJECTION");
    return IsSameName(name, "Gauss_Kruger") ? "Transverse_Mercator" : name;
}

/// Whether every projection parameter of `a` has the same value in `b`.
bool HasParametersOf(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    const OGR_SRSNode* system = a.GetAttrNode("PROJCS");
    for (int i = 0; system != nullptr && i < system->GetChildCount(); ++i) {
        const OGR_SRSNode* node = system->GetChild(i);
        if (!EQUAL(node->GetValue(), "PARAMETER") || node->GetChildCount() < 2)
            continue;
        const char* name = node->GetChild(0)->GetValue();
        if (a.GetProjParm(name) != b.GetProjParm(name))
            return false;
    }
    return true;
}

bool IsSameProjection(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    return IsSameName(ProjectionName(a), ProjectionName(b)) && HasParametersOf(a, b) &&
           HasParametersOf(b, a);
}

/// Local systems have linear units as well; geographic ones answer 1.
bool HasSameLinearUnits(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    const double ratio = b.GetLinearUnits() / a.GetLinearUnits();
    return ratio > 0.9999999999 && ratio < 1.000000001;
}

/// Geographic, projected and local systems are never the same as one of another kind.
bool IsSameKind(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    return a.IsEmpty() == b.IsEmpty() && (a.IsGeographic() != 0) == (b.IsGeographic() != 0) &&
           (a.IsProjected() != 0) == (b.IsProjected() != 0) &&
           (a.IsLocal() != 0) == (b.IsLocal() != 0);
}

/// Whether a system of positions counts heights above the ellipsoid, and not by a system of their
/// own.
bool HasEllipsoidalHeights(const OGRSpatialReference& reference) {
    return (reference.IsGeographic() != 0 || reference.IsProjected() != 0) &&
           reference.IsVertical() == 0 && reference.GetAxesCount() == 3;
}

/// @param needsBoth whether heights and none are different
bool IsSameVertically(const OGRSpatialReference& a, const OGRSpatialReference& b, bool needsBoth) {
    if (a.IsVertical() != 0 && b.IsVertical() != 0)
        return a.IsSameVertCS(&b) != 0;
    return !needsBoth || (a.IsVertical() == 0 && b.IsVertical() == 0 &&
                          HasEllipsoidalHeights(a) == HasEllipsoidalHeights(b));
}

/// The system without heights above the ellipsoid: with them, GDAL gives it other nodes than those
/// that are compared here.
OGRSpatialReference InPlane(const OGRSpatialReference& reference) {
    OGRSpatialReference plane(reference);
    if (HasEllipsoidalHeights(reference))
        plane.DemoteTo2D(nullptr);
    return plane;
}

/// Whether GDAL knows no nodes of a system that could be compared here, as for one around another
/// pole.
bool HasOtherNodes(const OGRSpatialReference& reference) {
    const OGR_SRSNode* root = reference.GetRoot();
    return root != nullptr && std::string_view(root->GetValue()).ends_with("CRS");
}

bool IsSameInPlane(const OGRSpatialReference& a, const OGRSpatialReference& b) {
    if (HasOtherNodes(a) || HasOtherNodes(b))
        return zelto::IsSameReference(a, b);
    return IsSameGeographicPart(a, b) && (a.IsProjected() == 0 || IsSameProjection(a, b)) &&
           HasSameLinearUnits(a, b);
}

} // namespace

bool CRasterSource::IsSameSpatialReference(CRasterSource* other) {
    if (other == nullptr || m_spatialReference == nullptr || other->m_spatialReference == nullptr)
        return false;
    return zelto::IsSameReference(*m_spatialReference, *other->m_spatialReference);
}

bool CRasterSource::IsSameSpatialReference(CRasterSource* a, CRasterSource* b,
                                           bool compareVertical) {
    if (a == nullptr || b == nullptr)
        return false;
    if (CommonFun::StrIsSame(a->m_wkt, b->m_wkt))
        return true;
    if (a->m_spatialReference == nullptr || b->m_spatialReference == nullptr)
        return false;
    const OGRSpatialReference& first = *a->m_spatialReference;
    const OGRSpatialReference& second = *b->m_spatialReference;
    return IsSameKind(first, second) && IsSameInPlane(InPlane(first), InPlane(second)) &&
           IsSameVertically(first, second, compareVertical);
}
