#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/datasource/GISDataSource.h"

#include <ogr_spatialref.h>

namespace {

std::wstring Wide(const char* text) {
    return text != nullptr ? CommonFun::M2U(text) : std::wstring();
}

std::wstring NodeValue(const OGRSpatialReference& reference, const char* node) {
    return Wide(reference.GetAttrValue(node));
}

/// "NAME (KIND/SPHEROID)" of a reference; the name is what stands behind an equals sign.
std::wstring ReadableName(const OGRSpatialReference& reference, const char* nameNode,
                          const char* kindNode) {
    return CommonFun::GetAfterEqualString(NodeValue(reference, nameNode)) + L" (" +
           NodeValue(reference, kindNode) + L"/" + NodeValue(reference, "SPHEROID") + L")";
}

/// @param factor units in radians or metres
std::wstring UnitText(const char* name, double factor, bool withFactor) {
    CPLString text;
    if (withFactor)
        text.Printf("%s(%.18lf)", name, factor);
    else
        text.Printf("%s", name);
    return CommonFun::M2U(text);
}

} // namespace

bool CGISDataSource::IsGeographic() const {
    return m_spatialReference != nullptr && m_spatialReference->IsGeographic() != 0;
}

bool CGISDataSource::IsProjected() const {
    return m_spatialReference != nullptr && m_spatialReference->IsProjected() != 0;
}

std::wstring CGISDataSource::GetCoordinateName() const {
    if (IsGeographic())
        return NodeValue(*m_spatialReference, "GEOGCS");
    if (IsProjected())
        return NodeValue(*m_spatialReference, "PROJCS");
    return {};
}

void CGISDataSource::InitCoordinateName() {
    std::wstring name;
    if (m_spatialReference != nullptr) {
        zelto::LoadSpatialReference(*m_spatialReference, m_wkt.c_str());
        if (IsGeographic())
            name = ReadableName(*m_spatialReference, "GEOGCS", "DATUM");
        else if (IsProjected())
            name = ReadableName(*m_spatialReference, "PROJCS", "PROJECTION");
    }
    m_coordinateName = name;
}

std::wstring CGISDataSource::GetDatumName() const {
    if (m_spatialReference == nullptr)
        return {};
    return NodeValue(*m_spatialReference, "DATUM");
}

std::wstring CGISDataSource::GetAngularUnits(bool withFactor) const {
    if (!IsGeographic())
        return {};
    const char* name = "";
    const double factor = m_spatialReference->GetAngularUnits(&name);
    return UnitText(name, factor, withFactor);
}

std::wstring CGISDataSource::GetLinearUnits(bool withFactor) const {
    if (!IsProjected())
        return {};
    const char* name = "";
    const double factor = m_spatialReference->GetLinearUnits(&name);
    return UnitText(name, factor, withFactor);
}

std::wstring CGISDataSource::GetUnitName(bool withFactor) const {
    if (IsGeographic())
        return GetAngularUnits(withFactor);
    if (IsProjected())
        return GetLinearUnits(withFactor);
    return {};
}
