#include "cli/zonal/Zones.h"

#include "zelto/algorithm/ZonalStatistics.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Interrupts.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Reference.h"

#include <cpl_string.h>
#include <ogr_spatialref.h>

namespace zelto::cli {

namespace {

using OgrTransformation = std::unique_ptr<OGRCoordinateTransformation>;

/// From the layer's reference system to the raster's; null where they are the same, or one has
/// none.
OgrTransformation ToRaster(const OGRLayer& layer, const CRasterSource& raster,
                           const std::string& path) {
    const OGRSpatialReference* its = const_cast<OGRLayer&>(layer).GetSpatialRef();
    const auto target = host::ParseReference(raster.GetProjectionWKT());
    if (its == nullptr || its->IsEmpty() || !target)
        return nullptr;
    OGRSpatialReference from(*its);
    from.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (from.IsSame(&*target) != 0)
        return nullptr;
    host::ForgetReasons();
    OgrTransformation transformation(OGRCreateCoordinateTransformation(&from, &*target));
    if (transformation == nullptr)
        throw host::Failure(
            path, host::LastReason("cannot be transformed to the image's reference system"));
    return transformation;
}

std::string NameOf(const Zone& zone) {
    return "feature " + zone.id;
}

} // namespace

Zones::Zones(const ZoneOptions& options) : m_path(options.file) {
    host::OpenOrFail(m_source, m_path);
    m_layer = FindLayer(options.layer);
    const int idField = options.idField.empty() ? -1 : FieldNumber("--id-field", options.idField);
    if (idField >= 0)
        m_idName = options.idField;
    std::vector<int> included;
    const CPLStringList names(
        CSLTokenizeString2(options.includeFields.c_str(), ",",
                           CSLT_HONOURSTRINGS | CSLT_STRIPLEADSPACES | CSLT_STRIPENDSPACES));
    for (int i = 0; i < names.size(); ++i) {
        included.push_back(FieldNumber("--include-fields", names[i]));
        m_fieldNames.emplace_back(names[i]);
    }
    m_layer->ResetReading();
    while (OGRFeature* feature = m_layer->GetNextFeature()) {
        host::EndIfInterrupted();
        Zone zone;
        zone.feature.reset(feature);
        zone.id =
            idField >= 0 ? feature->GetFieldAsString(idField) : std::to_string(feature->GetFID());
        for (const int field : included)
            zone.fields.emplace_back(feature->GetFieldAsString(field));
        m_zones.push_back(std::move(zone));
    }
}

OGRLayer* Zones::FindLayer(const std::string& name) const {
    std::string known;
    for (int i = 0; i < m_source.GetLayerCount(); ++i) {
        OGRLayer* const layer = m_source.GetVectorLayer(i)->GetOGRLayer();
        if (name.empty() || name == layer->GetName())
            return layer;
        known += (known.empty() ? "" : ", ") + std::string(layer->GetName());
    }
    if (name.empty())
        throw host::Failure(m_path, "it has no layer");
    throw host::UsageError("--layer: '" + name + "' is none of " + known);
}

int Zones::FieldNumber(const char* option, const std::string& name) const {
    const OGRFeatureDefn& definition = *m_layer->GetLayerDefn();
    const int number = definition.GetFieldIndex(name.c_str());
    if (number >= 0)
        return number;
    std::string known;
    for (int i = 0; i < definition.GetFieldCount(); ++i)
        known +=
            (known.empty() ? "" : ", ") + std::string(definition.GetFieldDefn(i)->GetNameRef());
    throw host::UsageError(std::string(option) + ": '" + name + "' is none of the fields " + known);
}

void Zones::AddTo(CZonalStatistics& statistics, const CRasterSource& raster) const {
    const OgrTransformation transformation = ToRaster(*m_layer, raster, m_path);
    for (const Zone& zone : m_zones) {
        host::EndIfInterrupted();
        const OGRGeometry* const its = zone.feature->GetGeometryRef();
        std::unique_ptr<OGRGeometry> geometry(its != nullptr ? its->clone() : nullptr);
        host::ForgetReasons();
        if (geometry && transformation && geometry->transform(transformation.get()) != OGRERR_NONE)
            throw host::Failure(m_path,
                                NameOf(zone) + ": " +
                                    host::LastReason("it has no place in the image's system"));
        if (!statistics.AddZone(geometry.get()))
            throw host::Failure(m_path,
                                NameOf(zone) + ": " + host::LastReason("it cannot be measured"));
    }
}

} // namespace zelto::cli
