#include "zelto/aoi/AOISource.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/SpatialReference.h"

#include <ogr_geometry.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cstdio>

CAOISource::CAOISource() {
    m_dataSourceType = DS_AOI;
    m_fileName = L"AOI000001";
}

CAOISource::~CAOISource() {
    CAOISource::Close();
    if (m_temporary && !m_filePath.empty())
        std::remove(CommonFun::U2M(m_filePath).c_str());
}

void CAOISource::Close() {
    CVectorSource::Close();
    for (CDrawShape* shape : m_drawShapes)
        delete shape;
    m_drawShapes.clear();
    delete m_geometry;
    m_geometry = nullptr;
}

void CAOISource::SetVisible(bool visible) {
    CVectorSource::SetVisible(visible);
    for (CDrawShape* shape : m_drawShapes)
        shape->m_visible = visible;
}

void CAOISource::CopyDisplaySetting(CGISDataSource* /*other*/) {}

bool CAOISource::AddDrawShape(CDrawShape* shape) {
    if (shape == nullptr || !shape->m_complete || shape->m_shapeKind < SHAPE_RECTANGLE)
        return false;
    if (!zelto::NoThrow(false, [&] {
            m_drawShapes.push_back(shape);
            return true;
        }))
        return false;
    if (m_drawShapes.size() == 1)
        m_extent = shape->m_extent;
    else
        m_extent.Combine(&shape->m_extent);
    return true;
}

void CAOISource::RebuildExtent() {
    if (m_drawShapes.empty())
        return;
    m_extent = m_drawShapes.front()->m_extent;
    for (CDrawShape* shape : m_drawShapes)
        m_extent.Combine(&shape->m_extent);
}

bool CAOISource::RemoveDrawShape(CDrawShape* shape) {
    const auto found = std::find(m_drawShapes.begin(), m_drawShapes.end(), shape);
    if (shape == nullptr || found == m_drawShapes.end())
        return false;
    m_drawShapes.erase(found);
    RebuildExtent();
    delete shape;
    return true;
}

void CAOISource::RemoveAllSelectedDrawShapes() {
    const auto kept =
        std::stable_partition(m_drawShapes.begin(), m_drawShapes.end(),
                              [](const CDrawShape* shape) { return !shape->m_selected; });
    if (kept == m_drawShapes.end())
        return;
    std::for_each(kept, m_drawShapes.end(), [](CDrawShape* shape) { delete shape; });
    m_drawShapes.erase(kept, m_drawShapes.end());
    RebuildExtent();
}

CDrawShape* CAOISource::GetDrawShape(int index) const {
    return index >= 0 && index < GetDrawShapeCount() ? m_drawShapes[static_cast<std::size_t>(index)]
                                                     : nullptr;
}

void CAOISource::RecomputeExtent() {
    for (CDrawShape* shape : m_drawShapes)
        shape->RecomputeExtent();
    RebuildExtent();
}

void CAOISource::SetTempFilePath(const wchar_t* path) {
    if (path == nullptr)
        return;
    m_filePath = path;
    m_fileName = CommonFun::GetFileName(m_filePath);
    m_temporary = true;
}

void CAOISource::SetSpatialReferenceWKT(const char* wkt) {
    if (wkt == nullptr)
        return;
    m_wkt = wkt;
    if (m_spatialReference != nullptr)
        zelto::LoadSpatialReference(*m_spatialReference, wkt);
}
