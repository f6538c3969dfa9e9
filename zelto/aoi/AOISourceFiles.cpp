#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/internal/AoiHeader.h"
#include "zelto/aoi/internal/ShapeGeometry.h"
#include "zelto/aoi/internal/ShapeRecord.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/vector/internal/NewShapefile.h"

#include <ogrsf_frmts.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <new>

namespace {

constexpr const wchar_t* AOI_EXTENSION = L"aif";

/// The number of shapes a reader of the file goes by: the low half of the stored one.
std::int32_t LowHalf(std::int64_t count) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(count));
}

bool WriteShape(OGRLayer& layer, std::unique_ptr<OGRPolygon> polygon) {
    OGRFeature feature(layer.GetLayerDefn());
    return feature.SetGeometryDirectly(polygon.release()) == OGRERR_NONE &&
           layer.CreateFeature(&feature) == OGRERR_NONE;
}

/// Remembers why nothing came of the file.
void Tell(const std::wstring& path, const std::string& reason) {
    zelto::SetLastError(CommonFun::U2M(path) + ": " + reason);
}

} // namespace

GISError CAOISource::Open(const wchar_t* path, GISDataAccess access, bool /*allowWarp*/) {
    if (path == nullptr) {
        zelto::SetLastError("no path is given");
        return GIS_FAILED;
    }
    Close();
    const std::wstring before = m_filePath;
    const GISError error = zelto::NoThrow(GIS_FAILED, [&] { return OpenEmptied(path, access); });
    // A file that is opened is no temporary one, whatever was here before.
    if (m_filePath != before)
        m_temporary = false;
    if (error != GIS_SUCCESS)
        Close();
    return error;
}

GISError CAOISource::OpenEmptied(const wchar_t* path, GISDataAccess access) {
    if (CommonFun::GetExtensionName(path) == AOI_EXTENSION) {
        m_isVectorFile = false;
        return OpenAOIFile(path);
    }
    return OpenVectorFile(path, access);
}

GISError CAOISource::OpenAOIFile(const wchar_t* path) {
    m_filePath = path;
    m_fileName = L"AOI_" + CommonFun::GetFileName(m_filePath);
    std::ifstream stream;
    if (!zelto::OpenRegularFile(stream, CommonFun::U2M(m_filePath)))
        return GIS_FAILED;
    zelto::BinaryReader reader(stream);
    zelto::AoiHeader header;
    if (!zelto::ReadAoiHeader(reader, header) || !header.hasTag) {
        Tell(m_filePath, "is no file of areas of interest");
        return GIS_NOT_SUPPORTED;
    }
    SetSpatialReferenceWKT(header.wkt.c_str());
    const std::int32_t count = LowHalf(header.shapeCount);
    for (std::int32_t i = 0; i < count && reader.IsGood(); ++i)
        AddOwnShape(zelto::ReadShapeRecord(reader, zelto::ShapeRecordUse::AREA_OF_INTEREST));
    // The shapes before the end are there; that some are missing is the host's to tell.
    if (!reader.IsGood())
        Tell(m_filePath, "ends after " + std::to_string(m_drawShapes.size()) + " of " +
                             std::to_string(count) + " shapes");
    return GIS_SUCCESS;
}

GISError CAOISource::OpenVectorFile(const wchar_t* path, GISDataAccess access) {
    const GISError error = CVectorSource::Open(path, access, true);
    if (error != GIS_SUCCESS)
        return error;
    // Features that cannot be read end a layer as its last one does.
    zelto::GdalWatch watch;
    for (CVectorLayer* layer : m_layers) {
        const OGRGeometryUniquePtr geometries(layer->GetGeometries(nullptr));
        if (geometries == nullptr)
            return GIS_FAILED;
        AddPolygons(geometries.get());
    }
    if (!watch.Succeeded(true, CommonFun::U2M(m_filePath)))
        return GIS_FAILED;
    m_isVectorFile = true;
    return GIS_SUCCESS;
}

/// Marks a shape made from a file as one of this source's and takes it.
void CAOISource::AddOwnShape(std::unique_ptr<CDrawShape> shape) {
    if (shape == nullptr)
        return;
    shape->m_complete = true;
    shape->m_useMark = USE_MARK_AOI;
    if (!AddDrawShape(shape.get()))
        throw std::bad_alloc();
    static_cast<void>(shape.release());
}

GISError CAOISource::SaveAs(const wchar_t* path, VectorDataFormat format) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (path != nullptr && format == VDF_SHAPEFILE)
            return SaveAsShapeFile(path);
        if (path != nullptr && format == VDF_AOI)
            return SaveAsAOIFile(path);
        zelto::SetLastError("no path or no format of areas of interest is given");
        return GIS_FAILED;
    });
}

GISError CAOISource::SaveAsAOIFile(const wchar_t* path) {
    zelto::ReplacementFile file(path);
    if (!file.IsOpen()) {
        Tell(path, "cannot be created");
        return GIS_FAILED;
    }
    zelto::BinaryWriter writer(file.Stream());
    zelto::AoiHeader header;
    header.wkt = m_wkt;
    header.extent = m_extent;
    header.shapeCount = GetDrawShapeCount();
    zelto::WriteAoiHeader(writer, header);
    for (const CDrawShape* shape : m_drawShapes)
        zelto::WriteShapeRecord(writer, shape);
    if (!file.Commit()) {
        Tell(path, "cannot be written");
        return GIS_FAILED;
    }
    m_temporary = false;
    return GIS_SUCCESS;
}

GISError CAOISource::SaveAsShapeFile(const wchar_t* path) {
    if (zelto::ShapefileDriver() == nullptr) {
        Tell(path, "GDAL has no driver for shapefiles");
        return GIS_NOT_SUPPORTED;
    }
    const std::string name = CommonFun::U2M(path);
    zelto::GdalWatch watch;
    zelto::NewShapefile file(name);
    OGRLayer* layer = file.CreateLayer("MultiPolygon AOI", wkbMultiPolygon);
    const zelto::ShapePolygons polygons(m_drawShapes, m_resolution);
    const bool written =
        layer != nullptr &&
        std::all_of(m_drawShapes.begin(), m_drawShapes.end(), [&](const CDrawShape* shape) {
            return WriteShape(*layer, polygons.Make(*shape));
        });
    return watch.Succeeded(written && file.Commit(), name) ? GIS_SUCCESS : GIS_FAILED;
}
