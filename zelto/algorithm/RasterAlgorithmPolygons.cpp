#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/SampleReader.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/geometry/internal/GeosMemory.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/vector/VectorLayer.h"

#include <gdal_alg.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <utility>

namespace {

constexpr const wchar_t* POLYGONIZE_TITLE = L"栅格矢量化";
constexpr int PROGRESS_TOTAL = 100;

constexpr const char* IMAGE_FIELDS[] = {"Image", "IMAGE_NAME"};
constexpr int IMAGE_FIELD_WIDTH = 320;

/// Hands progress on to the host. GDAL counts half a row too many at the end of a polygonization;
/// hosts are not told of more than the whole.
int CPL_STDCALL TellPolygonizing(double complete, const char* message, void* progress) {
    return GDALProgressFuncEx(std::min(complete, 1.0), message, progress);
}

/// Makes an empty shapefile in place of whatever data source is at `path`.
GDALDatasetUniquePtr ReplaceShapefile(const std::string& path) {
    GDALAllRegister();
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (driver == nullptr)
        return nullptr;
    {
        // A missing file is nothing to report.
        CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
        driver->Delete(path.c_str());
        if (GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR)))
            return nullptr;
    }
    return GDALDatasetUniquePtr(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
}

bool AddImageFields(OGRLayer& layer) {
    for (const char* name : IMAGE_FIELDS) {
        OGRFieldDefn field(name, OFTString);
        // Widths beyond the format's limit are cut with a warning.
        field.SetWidth(IMAGE_FIELD_WIDTH);
        if (layer.CreateField(&field) != OGRERR_NONE)
            return false;
    }
    return true;
}

/// @return false when the feature cannot be written. One whose geometry the layer cannot hold is
///         left out, which is told and no failure.
bool AddImageFeature(OGRLayer& layer, const OGRGeometry& geometry, const std::string& name,
                     const std::string& file) {
    const OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer.GetLayerDefn()));
    zelto::GdalWatch watch;
    if (!feature || feature->SetGeometry(&geometry) != OGRERR_NONE)
        return watch.Succeeded(false, file);
    for (const char* field : IMAGE_FIELDS)
        feature->SetField(field, name.c_str());
    const OGRErr answer = layer.CreateFeature(feature.get());
    return watch.Succeeded(answer == OGRERR_NONE, file) ||
           answer == OGRERR_UNSUPPORTED_GEOMETRY_TYPE;
}

bool AddImageFeatures(OGRLayer& layer, const std::vector<OGRGeometry*>& polygons,
                      const std::vector<std::wstring>& names, const std::string& file) {
    for (std::size_t i = 0; i < polygons.size(); ++i) {
        const std::string name = i < names.size() ? CommonFun::U2M(names[i]) : std::string();
        if (polygons[i] != nullptr && !AddImageFeature(layer, *polygons[i], name, file))
            return false;
    }
    return true;
}

/// Closes the file, which reports what could not be written by a message alone.
bool Close(GDALDatasetUniquePtr dataset, const std::string& file) {
    zelto::GdalWatch watch;
    dataset.reset();
    return watch.Succeeded(true, file);
}

/// A named polygon of a coordinate file.
struct NamedPolygon {
    std::wstring name;
    OGRGeometryUniquePtr geometry;
};

OGRGeometryUniquePtr MakePolygon(const std::vector<double>& coordinates) {
    OGRGeometryUniquePtr geometry(OGRGeometryFactory::createGeometry(wkbPolygon));
    OGRLinearRing ring;
    for (std::size_t i = 0; i + 1 < coordinates.size(); i += 2)
        ring.addPoint(coordinates[i], coordinates[i + 1]);
    ring.closeRings();
    geometry->toPolygon()->addRing(&ring);
    return geometry;
}

/// Reads "name x y x y … end", once per polygon. Tokens are parted by white space; a number is
/// what its text starts with, and an x without its y is dropped.
std::vector<NamedPolygon> ReadPolygons(std::istream& stream) {
    std::vector<NamedPolygon> polygons;
    std::string name;
    while (stream >> name) {
        std::vector<double> coordinates;
        std::string token;
        bool ended = false;
        while (!ended && stream >> token) {
            ended = token == "end";
            if (!ended)
                coordinates.push_back(CPLAtof(token.c_str()));
        }
        if (ended)
            polygons.push_back({CommonFun::M2U(name), MakePolygon(coordinates)});
    }
    return polygons;
}

/// The members of `collection` merged in order; null for an empty one and for members that
/// cannot be merged.
OGRGeometryUniquePtr MergeMembers(const OGRMultiPolygon& collection) {
    if (collection.IsEmpty())
        return nullptr;
    OGRGeometryUniquePtr merged(collection.getGeometryRef(0)->clone());
    for (int i = 1; merged && i < collection.getNumGeometries(); ++i)
        merged.reset(merged->Union(collection.getGeometryRef(i)));
    return merged;
}

} // namespace

GISError CRasterAlgorithm::RasterPolygonize(CRasterBand* source, CRasterBand* mask,
                                            CVectorLayer* layer, int fieldIndex, char** options,
                                            CDataProgress* progress, std::wstring title) {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (progress != nullptr)
            progress->BeginProgress(title.empty() ? POLYGONIZE_TITLE : title.c_str(),
                                    PROGRESS_TOTAL);
        GDALRasterBand* const pixels = source != nullptr ? source->GetGDALBand() : nullptr;
        GDALRasterBand* const shown = mask != nullptr ? mask->GetGDALBand() : nullptr;
        OGRLayer* const target = layer != nullptr ? layer->GetOGRLayer() : nullptr;
        // A mask that is gone is not the same as none.
        if (pixels == nullptr || target == nullptr || (mask != nullptr && shown == nullptr)) {
            zelto::RefuseMissing("open band, mask or layer");
            return GIS_FAILED;
        }
        zelto::GdalWatch watch;
        const CPLErr answer = GDALPolygonize(
            GDALRasterBand::ToHandle(pixels), GDALRasterBand::ToHandle(shown),
            OGRLayer::ToHandle(target), fieldIndex, options, TellPolygonizing, progress);
        return watch.Succeeded(answer, zelto::FileOf(*pixels)) ? GIS_SUCCESS : GIS_FAILED;
    });
}

bool CRasterAlgorithm::SavePolygonNet(const wchar_t* path, std::vector<OGRGeometry*> polygons,
                                      std::vector<std::wstring> names) {
    return zelto::NoThrow(false, [&] {
        if (path == nullptr)
            return zelto::RefuseMissing("path");
        const std::string file = CommonFun::U2M(path);
        zelto::GdalWatch creation;
        GDALDatasetUniquePtr dataset = ReplaceShapefile(file);
        OGRLayer* const layer =
            dataset ? dataset->CreateLayer("polygon", nullptr, wkbUnknown, nullptr) : nullptr;
        if (!creation.Succeeded(layer != nullptr && AddImageFields(*layer), file))
            return false;
        return AddImageFeatures(*layer, polygons, names, file) && Close(std::move(dataset), file);
    });
}

bool CRasterAlgorithm::SaveGemetryFromTxt(std::string path) {
    return zelto::NoThrow(false, [&] {
        std::ifstream stream;
        if (!zelto::OpenRegularFile(stream, path))
            return false;
        const std::vector<NamedPolygon> polygons = ReadPolygons(stream);
        if (stream.bad()) {
            zelto::SetLastError(path + ": cannot be read to its end");
            return false;
        }
        std::vector<OGRGeometry*> geometries;
        std::vector<std::wstring> names;
        for (const NamedPolygon& polygon : polygons) {
            geometries.push_back(polygon.geometry.get());
            names.push_back(polygon.name);
        }
        const std::wstring stem = CommonFun::GetFilePahWithoutExtension(CommonFun::M2U(path));
        return SavePolygonNet((stem + L".shp").c_str(), geometries, names);
    });
}

OGRGeometry* CRasterAlgorithm::IntersectionPro(OGRGeometry* a, OGRGeometry* b) {
    using Geometry = OGRGeometry*;
    return zelto::NoThrow(Geometry(nullptr), [&]() -> Geometry {
        const auto type = a != nullptr ? wkbFlatten(a->getGeometryType()) : wkbUnknown;
        if (b == nullptr || (type != wkbPolygon && type != wkbMultiPolygon)) {
            zelto::RefuseMissing("polygon or geometry to cut it with");
            return nullptr;
        }
        zelto::RequireGeosMemory(*a);
        zelto::RequireGeosMemory(*b);
        zelto::GdalWatch watch;
        OGRGeometryUniquePtr merged;
        if (type == wkbMultiPolygon)
            merged = MergeMembers(*a->toMultiPolygon());
        const OGRGeometry* const area = type == wkbPolygon ? a : merged.get();
        OGRGeometryUniquePtr common(area != nullptr ? area->Intersection(b) : nullptr);
        return watch.Succeeded(common != nullptr, "") ? common.release() : nullptr;
    });
}
