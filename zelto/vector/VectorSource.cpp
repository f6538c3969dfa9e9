#include "zelto/vector/VectorSource.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/vector/internal/NewShapefile.h"

#include <gdal_priv.h>
#include <ogr_spatialref.h>
#include <ogrsf_frmts.h>

#include <new>

CVectorSource::CVectorSource() {
    m_dataSourceType = DS_VECTOR;
}

CVectorSource& CVectorSource::operator=(const CVectorSource& other) {
    if (this != &other)
        CGISDataSource::operator=(other);
    return *this;
}

CVectorSource::~CVectorSource() {
    CVectorSource::Close();
}

GISError CVectorSource::Open(CDatasetOpenInfo info) {
    return Open(info.m_fileName.c_str(), info.m_access, true);
}

GISError CVectorSource::Open(const wchar_t* path, GISDataAccess access, bool /*allowWarp*/) {
    if (path == nullptr)
        return GIS_FAILED;
    Close();
    m_filePath = path;
    m_fileName = CommonFun::GetFileNameWithExtension(m_filePath);
    CNewFileSet::Restore(m_filePath);
    const std::string name = CommonFun::U2M(m_filePath);
    if (!zelto::MayBeOpened(name))
        return GIS_FAILED;
    const unsigned int flags = GDAL_OF_VECTOR | (access == GIS_UPDATE ? GDAL_OF_UPDATE : 0U);
    const zelto::GdalWatch watch;
    m_dataset = GDALDataset::Open(name.c_str(), flags);
    if (m_dataset == nullptr) {
        const char* reason = CommonFun::IsFileExist(m_filePath)
                                 ? "not recognised as a supported file"
                                 : "No such file or directory";
        zelto::SetLastError(name + ": " + (watch.HasError() ? watch.Error() : reason));
        return GIS_FAILED;
    }
    m_driver = m_dataset->GetDriver();
    m_access = access;
    m_description = CommonFun::M2U(m_dataset->GetDescription());
    try {
        ReadLayers();
    } catch (const std::bad_alloc&) {
        Close();
        zelto::SetLastError(name + ": too large for the memory");
        return GIS_FAILED;
    }
    return GIS_SUCCESS;
}

void CVectorSource::ReadLayers() {
    for (OGRLayer* layer : m_dataset->GetLayers())
        if (layer != nullptr)
            m_layers.push_back(new CVectorLayer(layer));
    m_layerCount = static_cast<std::int32_t>(m_layers.size());
    m_extent = CBoundingBox();
    m_wkt.clear();
    if (!m_layers.empty()) {
        m_extent = m_layers.front()->GetExtent();
        m_wkt = m_layers.front()->GetSpatialReferenceWKT();
    }
    for (const CVectorLayer* layer : m_layers) {
        CBoundingBox extent = layer->GetExtent();
        m_extent.Combine(&extent);
    }
    zelto::LoadSpatialReference(*m_spatialReference, m_wkt.c_str());
}

void CVectorSource::Close() {
    for (CVectorLayer* layer : m_layers)
        delete layer;
    m_layers.clear();
    if (m_dataset == nullptr)
        return;
    // What is still in memory is written now; GDAL gives no other answer than its messages.
    zelto::GdalWatch watch;
    GDALClose(GDALDataset::ToHandle(m_dataset));
    m_dataset = nullptr;
    watch.Succeeded(true, CommonFun::U2M(m_filePath));
}

void CVectorSource::SetVisible(bool visible) {
    CGISDataSource::SetVisible(visible);
}

bool CVectorSource::IsVisible() {
    return CGISDataSource::IsVisible();
}

void CVectorSource::CopyDisplaySetting(CGISDataSource* /*other*/) {}

bool CVectorSource::IsOpened() {
    return m_dataset != nullptr;
}

GISError CVectorSource::CreateDataSource(VectorDataFormat format, const wchar_t* path,
                                         const char* wkt) {
    if (path == nullptr)
        return GIS_FAILED;
    if (format == VDF_SHAPEFILE)
        m_driver = zelto::ShapefileDriver();
    if (m_driver == nullptr || !zelto::CanCreateVector(*m_driver))
        return GIS_NOT_SUPPORTED;
    // Sources derived from this one hold more than a data set, which stays unless one is open.
    if (IsOpened())
        Close();
    m_filePath = path;
    m_fileName = CommonFun::GetFileNameWithExtension(m_filePath);
    const std::string narrowPath = CommonFun::U2M(m_filePath);
    zelto::DeleteVectorQuietly(*m_driver, narrowPath);
    zelto::GdalWatch watch;
    m_dataset = m_driver->Create(narrowPath.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    if (!watch.Succeeded(m_dataset != nullptr, narrowPath)) {
        GDALClose(GDALDataset::ToHandle(m_dataset));
        m_dataset = nullptr;
        return GIS_FAILED;
    }
    if (wkt != nullptr)
        m_wkt = wkt;
    return GIS_SUCCESS;
}

CVectorLayer* CVectorSource::CreateLayer(const wchar_t* name, const char* wkt,
                                         VectorGeometryType type) {
    if (m_dataset == nullptr || name == nullptr)
        return nullptr;
    auto reference = zelto::ParseSpatialReference(wkt);
    zelto::GdalWatch watch;
    OGRLayer* layer =
        m_dataset->CreateLayer(CommonFun::U2M(name).c_str(), reference ? &*reference : nullptr,
                               static_cast<OGRwkbGeometryType>(type), nullptr);
    if (layer == nullptr) {
        watch.Succeeded(false, CommonFun::U2M(m_filePath));
        return nullptr;
    }
    // The count stays: it tells what the file held when it was opened.
    m_layers.push_back(new CVectorLayer(layer));
    return m_layers.back();
}

CVectorLayer* CVectorSource::GetVectorLayer(int index) const {
    if (index < 0 || index >= m_layerCount || static_cast<std::size_t>(index) >= m_layers.size())
        return nullptr;
    return m_layers[static_cast<std::size_t>(index)];
}
