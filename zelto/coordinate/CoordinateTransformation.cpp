#include "zelto/coordinate/CoordinateTransformation.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/SpatialReference.h"

#include <cpl_conv.h>

#include <algorithm>
#include <new>
#include <vector>

namespace {

constexpr double RADIANS_PER_ARC_SECOND = 4.84813681109536e-6;
constexpr int PARAMETERS = 7;
constexpr int FIRST_ROTATION = 3;
constexpr int SCALE = 6;

/// @param text what the reference was read from
/// @return false, with the reason, for heights and for what has no place on the Earth
bool SetShiftToWgs84(OGRSpatialReference& reference, const char* text, const double* parameters) {
    double p[PARAMETERS] = {};
    if (parameters != nullptr)
        std::copy_n(parameters, PARAMETERS, p);
    if (reference.SetTOWGS84(p[0], p[1], p[2], p[3], p[4], p[5], p[6]) == OGRERR_NONE)
        return true;
    zelto::SetLastError(std::string(text) + ": cannot be shifted to WGS 84");
    return false;
}

bool HasHeightsOnly(const OGRSpatialReference& reference) {
    return reference.IsVertical() && !reference.IsCompound();
}

std::optional<OGRSpatialReference> Parse(const char* text) {
    auto reference = zelto::ParseSpatialReference(text);
    if (!reference)
        zelto::SetLastError(std::string(text == nullptr ? "" : text) +
                            ": cannot be read as a spatial reference");
    return reference;
}

} // namespace

CCoordinateTransformation*
CCoordinateTransformation::CreateCoordinateTransformation(const char* src, const char* dst,
                                                          double* sevenParams) {
    const auto source = Parse(src);
    const auto target = Parse(dst);
    if (!source || !target)
        return nullptr;
    CCoordinateTransformation* result = Connect(*source, *target);
    if (result == nullptr || sevenParams == nullptr)
        return result;
    std::copy_n(sevenParams, PARAMETERS, result->m_sevenParameters);
    for (int i = FIRST_ROTATION; i < SCALE; ++i)
        result->m_sevenParameters[i] *= RADIANS_PER_ARC_SECOND;
    return result;
}

CCoordinateTransformation*
CCoordinateTransformation::CreateCoordinateTransformation(const char* src, const char* dst,
                                                          double* srcToWgs84, double* dstToWgs84) {
    auto source = Parse(src);
    auto target = Parse(dst);
    if (!source || !target || !SetShiftToWgs84(*source, src, srcToWgs84) ||
        !SetShiftToWgs84(*target, dst, dstToWgs84))
        return nullptr;
    // Otherwise the registry's ways win over the given parameters.
    const CPLConfigOptionSetter preferOwn("OGR_CT_PREFER_OFFICIAL_SRS_DEF", "NO", false);
    return Connect(*source, *target);
}

CCoordinateTransformation* CCoordinateTransformation::Connect(const OGRSpatialReference& source,
                                                              const OGRSpatialReference& target) {
    // Between places and heights alone GDAL finds a way that leaves the places as they are.
    if (HasHeightsOnly(source) != HasHeightsOnly(target)) {
        zelto::SetLastError("places cannot be transformed to heights or back");
        return nullptr;
    }
    zelto::GdalWatch watch;
    OGRCoordinateTransformation* transformation =
        OGRCreateCoordinateTransformation(&source, &target);
    if (transformation == nullptr) {
        watch.Succeeded(false, "");
        return nullptr;
    }
    auto* result = new (std::nothrow) CCoordinateTransformation(transformation);
    if (result == nullptr)
        OGRCoordinateTransformation::DestroyCT(transformation);
    return result;
}

CCoordinateTransformation::~CCoordinateTransformation() {
    OGRCoordinateTransformation::DestroyCT(m_transformation);
}

bool CCoordinateTransformation::Transform(int count, double* x, double* y, double* z,
                                          int* success) {
    if (count <= 0)
        return count == 0;
    if (x == nullptr || y == nullptr)
        return false;
    try {
        std::vector<int> own;
        if (success == nullptr) {
            own.resize(static_cast<std::size_t>(count));
            success = own.data();
        }
        std::fill_n(success, count, 0);
        // The library answers false as soon as one point fails.
        return m_transformation->Transform(count, x, y, z, success) != 0 ||
               std::any_of(success, success + count, [](int flag) { return flag != 0; });
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void CCoordinateTransformation::DestroyCoordinateTransformation(
    CCoordinateTransformation* transformation) {
    delete transformation;
}
