#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/internal/AoiHeader.h"
#include "zelto/aoi/internal/ShapeGeometry.h"
#include "zelto/aoi/internal/ShapeRecord.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/vector/internal/NewShapefile.h"

#include <ogrsf_frmts.h>

#include <fstream>
#include <memory>
#include <new>

namespace {

constexpr const wchar_t* AOI_EXTENSION = L"aif";

/// The number of shapes a reader of the file goes by: the low half of the stored one.
std::int32_t LowHalf(std::int64_t count) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(count));
}

bool WriteShape(OGRLayer& layer, const CDrawShape& shape, double resolution) {
    OGRFeature feature(layer.GetLayerDefn());
    return feature.SetGeometryDirectly(zelto::MakePolygon(shape, resolution)) == OGRERR_NONE &&
           layer.CreateFeature(&feature) == OGRERR_NONE;
}

} // namespace

GISError CAOISource::Open(const wchar_t* path, GISDataAccess access, bool /*allowWarp*/) {
    if (path == nullptr)
        return GIS_FAILED;
    Close();
    if (CommonFun::GetExtensionName(path) == AOI_EXTENSION) {
        m_isVectorFile = false;
        return OpenAOIFile(path);
    }
    return OpenVectorFile(path, access);
}

GISError CAOISource::OpenAOIFile(const wchar_t* path) {
    m_filePath = path;
    m_fileName = L"AOI_" + CommonFun::GetFileName(m_filePath);
    std::ifstream stream(CommonFun::U2M(m_filePath), std::ios::binary);
    if (!stream)
        return GIS_FAILED;
    zelto::BinaryReader reader(stream);
    zelto::AoiHeader header;
    if (!zelto::ReadAoiHeader(reader, header) || !header.hasTag)
        return GIS_NOT_SUPPORTED;
    SetSpatialReferenceWKT(header.wkt.c_str());
    const std::int32_t count = LowHalf(header.shapeCount);
    try {
        for (std::int32_t i = 0; i < count && reader.IsGood(); ++i)
            AddOwnShape(zelto::ReadShapeRecord(reader, zelto::ShapeRecordUse::AREA_OF_INTEREST));
    } catch (const std::bad_alloc&) {
        return GIS_FAILED;
    }
    return GIS_SUCCESS;
}

GISError CAOISource::OpenVectorFile(const wchar_t* path, GISDataAccess access) {
    const GISError error = CVectorSource::Open(path, access, true);
    if (error != GIS_SUCCESS)
        return error;
    for (CVectorLayer* layer : m_layers) {
        const OGRGeometryUniquePtr geometries(layer->GetGeometries(nullptr));
        AddPolygons(geometries.get());
    }
    m_isVectorFile = true;
    return GIS_SUCCESS;
}

/// Marks a shape made from a file as one of this source's and takes it.
void CAOISource::AddOwnShape(std::unique_ptr<CDrawShape> shape) {
    if (shape == nullptr)
        return;
    shape->m_complete = true;
    shape->m_useMark = USE_MARK_AOI;
    if (AddDrawShape(shape.get()))
        static_cast<void>(shape.release());
}

GISError CAOISource::SaveAs(const wchar_t* path, VectorDataFormat format) {
    if (path == nullptr)
        return GIS_FAILED;
    switch (format) {
    case VDF_SHAPEFILE:
        return SaveAsShapeFile(path);
    case VDF_AOI:
        return SaveAsAOIFile(path);
    }
    return GIS_FAILED;
}

GISError CAOISource::SaveAsAOIFile(const wchar_t* path) {
    zelto::ReplacementFile file(path);
    if (!file.IsOpen())
        return GIS_FAILED;
    zelto::BinaryWriter writer(file.Stream());
    zelto::AoiHeader header;
    header.wkt = m_wkt;
    header.extent = m_extent;
    header.shapeCount = GetDrawShapeCount();
    zelto::WriteAoiHeader(writer, header);
    for (const CDrawShape* shape : m_drawShapes)
        zelto::WriteShapeRecord(writer, shape);
    if (!file.Commit())
        return GIS_FAILED;
    m_temporary = false;
    return GIS_SUCCESS;
}

GISError CAOISource::SaveAsShapeFile(const wchar_t* path) {
    if (zelto::ShapefileDriver() == nullptr)
        return GIS_NOT_SUPPORTED;
    zelto::NewShapefile file(CommonFun::U2M(path));
    OGRLayer* layer = file.CreateLayer("MultiPolygon AOI", wkbMultiPolygon);
    if (layer == nullptr)
        return GIS_FAILED;
    for (const CDrawShape* shape : m_drawShapes)
        if (!WriteShape(*layer, *shape, m_resolution))
            return GIS_FAILED;
    return file.Commit() ? GIS_SUCCESS : GIS_FAILED;
}
