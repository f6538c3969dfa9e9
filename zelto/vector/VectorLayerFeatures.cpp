#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/vector/VectorLayer.h"
#include "zelto/vector/internal/NewShapefile.h"

#include <cpl_error.h>
#include <ogrsf_frmts.h>

#include <memory>
#include <new>

namespace {

/// Whether the envelopes share at least a point; everything meets a null box.
bool Meets(const OGRGeometry& geometry, const CBoundingBox* box) {
    if (box == nullptr)
        return true;
    OGREnvelope envelope;
    geometry.getEnvelope(&envelope);
    return envelope.MinX <= box->m_right && box->m_bottom <= envelope.MaxY &&
           box->m_left <= envelope.MaxX && envelope.MinY <= box->m_top;
}

void AddMeeting(const OGRGeometry& geometry, const CBoundingBox* box,
                OGRGeometryCollection& collection) {
    const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
    if (type <= wkbPolygon) {
        if (Meets(geometry, box))
            collection.addGeometry(&geometry);
    } else if (type <= wkbGeometryCollection) {
        for (const OGRGeometry* member : *geometry.toGeometryCollection())
            if (Meets(*member, box))
                collection.addGeometry(member);
    }
}

/// Creates the fields of one layer in another; what the format cannot hold is left out.
/// @return for each field its number in the other layer, −1 for one left out
std::vector<int> CopyFields(OGRLayer& from, OGRLayer& to) {
    const OGRFeatureDefn& fields = *from.GetLayerDefn();
    std::vector<int> numbers;
    // A field left out is no failure of the file.
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    for (int i = 0; i < fields.GetFieldCount(); ++i) {
        OGRFieldDefn copy(fields.GetFieldDefn(i));
        const bool created = to.CreateField(&copy) == OGRERR_NONE;
        numbers.push_back(created ? to.GetLayerDefn()->GetFieldCount() - 1 : -1);
    }
    return numbers;
}

/// Copies the feature with the identifier into a layer with these fields. Numbers and not names
/// tell which is which: the format shortens names.
bool CopyFeature(OGRLayer& from, GIntBig identifier, OGRLayer& to,
                 const std::vector<int>& fieldNumbers, const std::string& file) {
    zelto::GdalWatch watch;
    const OGRFeatureUniquePtr feature(from.GetFeature(identifier));
    if (feature == nullptr) {
        zelto::SetLastError(file + ": the layer has no feature " + std::to_string(identifier));
        return false;
    }
    OGRFeature copy(to.GetLayerDefn());
    return watch.Succeeded(copy.SetFrom(feature.get(), fieldNumbers.data(), TRUE) == OGRERR_NONE &&
                               to.CreateFeature(&copy) == OGRERR_NONE,
                           file);
}

} // namespace

OGRGeometry* CVectorLayer::GetGeometries(CBoundingBox* box) {
    try {
        auto collection = std::make_unique<OGRGeometryCollection>();
        if (m_layer == nullptr)
            return collection.release();
        zelto::GdalWatch watch;
        m_layer->ResetReading();
        for (const OGRFeatureUniquePtr& feature : *m_layer)
            if (const OGRGeometry* geometry = feature->GetGeometryRef())
                AddMeeting(*geometry, box, *collection);
        // A layer that is damaged simply ends; what was read up to there is given.
        watch.Succeeded(true, CommonFun::U2M(m_layerName));
        return collection.release();
    } catch (const std::bad_alloc&) {
        zelto::SetLastError(CommonFun::U2M(m_layerName) + ": too large for the memory");
        return nullptr;
    }
}

bool CVectorLayer::CreateField(const wchar_t* name, VectorFieldType type) {
    if (m_layer == nullptr || name == nullptr)
        return false;
    OGRFieldDefn field(CommonFun::U2M(name).c_str(), static_cast<OGRFieldType>(type));
    zelto::GdalWatch watch;
    return watch.Succeeded(m_layer->CreateField(&field, TRUE) == OGRERR_NONE,
                           CommonFun::U2M(m_layerName));
}

bool CVectorLayer::GetLayerFieldName(std::vector<std::string>& names) {
    return zelto::NoThrow(false, [&] {
        if (m_layer == nullptr)
            return true;
        const OGRFeatureDefn& fields = *m_layer->GetLayerDefn();
        for (int i = 0; i < fields.GetFieldCount(); ++i)
            names.emplace_back(fields.GetFieldDefn(i)->GetNameRef());
        return true;
    });
}

bool CVectorLayer::SaveSelectedGeometrys(std::string path, std::vector<int> indices) {
    return zelto::NoThrow(false, [&] {
        GDALAllRegister();
        CPLSetConfigOption("GDAL_FILENAME_IS_UTF8", "NO");
        if (m_layer == nullptr)
            return false;
        zelto::NewShapefile file(path);
        OGRLayer* layer = file.CreateLayer("polygon", wkbPolygon);
        if (layer == nullptr)
            return false;
        const std::vector<int> fieldNumbers = CopyFields(*m_layer, *layer);
        for (int index : indices)
            if (!CopyFeature(*m_layer, index, *layer, fieldNumbers, path))
                return false;
        return file.Commit();
    });
}
