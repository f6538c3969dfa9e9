#include "zelto/vector/VectorLayer.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/SpatialReference.h"

#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

namespace {

CBoundingBox ExtentOf(OGRLayer& layer) {
    OGREnvelope envelope;
    if (layer.GetExtent(&envelope, TRUE) != OGRERR_NONE)
        return {};
    return {envelope.MinX, envelope.MaxY, envelope.MaxX, envelope.MinY};
}

CClassifyDisplayTable* CopyOf(const CClassifyDisplayTable* table) {
    return table != nullptr ? new CClassifyDisplayTable(*table) : nullptr;
}

} // namespace

CVectorLayer::CVectorLayer(OGRLayer* layer)
    : m_layer(layer), m_spatialReference(new OGRSpatialReference) {
    if (layer == nullptr)
        return;
    m_layerName = CommonFun::M2U(layer->GetName());
    m_extent = ExtentOf(*layer);
    if (const OGRSpatialReference* reference = layer->GetSpatialRef())
        m_wkt = zelto::ExportToWkt(*reference);
    zelto::LoadSpatialReference(*m_spatialReference, m_wkt.c_str());
}

CVectorLayer::CVectorLayer(const CVectorLayer& other)
    : m_style(other.m_style),
      m_label(other.m_label),
      m_classifyTable(CopyOf(other.m_classifyTable)),
      m_classifyFieldNum(other.m_classifyFieldNum),
      m_layer(other.m_layer),
      m_layerName(other.m_layerName),
      m_extent(other.m_extent),
      m_spatialReference(other.m_spatialReference->Clone()),
      m_wkt(other.m_wkt) {}

CVectorLayer& CVectorLayer::operator=(const CVectorLayer& other) {
    if (this == &other)
        return *this;
    m_style = other.m_style;
    m_label = other.m_label;
    SetClassifyDisplayTable(other.m_classifyTable);
    m_classifyFieldNum = other.m_classifyFieldNum;
    m_layer = other.m_layer;
    m_layerName = other.m_layerName;
    m_extent = other.m_extent;
    *m_spatialReference = *other.m_spatialReference;
    m_wkt = other.m_wkt;
    return *this;
}

CVectorLayer::~CVectorLayer() {
    delete m_classifyTable;
    m_spatialReference->Release();
}

void CVectorLayer::SetClassifyDisplayTable(CClassifyDisplayTable* table) {
    CClassifyDisplayTable* copy = CopyOf(table);
    delete m_classifyTable;
    m_classifyTable = copy;
}

void CVectorLayer::SetClassifyFieldNum(int number) {
    m_classifyFieldNum = number;
    m_style.m_classifyFieldNum = number;
}

void CVectorLayer::SetDisplayType(int type) {
    if (type == 0 || type == 1)
        m_style.m_displayType = static_cast<unsigned char>(type);
}

void CVectorLayer::SetClassesNum(int count) {
    m_style.m_classesNum = count;
}
