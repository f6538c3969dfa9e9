#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/vector/VectorLayer.h"

#include <gdal_alg.h>
#include <ogrsf_frmts.h>

#include <fstream>
#include <memory>
#include <tuple>

namespace {

constexpr const wchar_t* POLYGONIZE_TITLE = L"栅格矢量化";
constexpr int PROGRESS_TOTAL = 100;

constexpr const char* IMAGE_FIELDS[] = {"Image", "IMAGE_NAME"};
constexpr int IMAGE_FIELD_WIDTH = 320;

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

void AddImageFields(OGRLayer& layer) {
    for (const char* name : IMAGE_FIELDS) {
        OGRFieldDefn field(name, OFTString);
        field.SetWidth(IMAGE_FIELD_WIDTH);
        // Widths beyond the format's limit are cut with a warning, which is all that can fail.
        std::ignore = layer.CreateField(&field);
    }
}

void AddImageFeature(OGRLayer& layer, const OGRGeometry& geometry, const std::string& name) {
    const OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer.GetLayerDefn()));
    if (!feature)
        return;
    for (const char* field : IMAGE_FIELDS)
        feature->SetField(field, name.c_str());
    std::ignore = feature->SetGeometry(&geometry);
    // A geometry the layer cannot hold is left out.
    std::ignore = layer.CreateFeature(feature.get());
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
    if (progress != nullptr)
        progress->BeginProgress(title.empty() ? POLYGONIZE_TITLE : title.c_str(), PROGRESS_TOTAL);
    if (source == nullptr || layer == nullptr)
        return GIS_FAILED;
    const CPLErr result =
        GDALPolygonize(GDALRasterBand::ToHandle(source->GetGDALBand()),
                       GDALRasterBand::ToHandle(mask != nullptr ? mask->GetGDALBand() : nullptr),
                       OGRLayer::ToHandle(layer->GetOGRLayer()), fieldIndex, options,
                       GDALProgressFuncEx, progress);
    return result == CE_None ? GIS_SUCCESS : GIS_FAILED;
}

bool CRasterAlgorithm::SavePolygonNet(const wchar_t* path, std::vector<OGRGeometry*> polygons,
                                      std::vector<std::wstring> names) {
    if (path == nullptr)
        return false;
    const GDALDatasetUniquePtr dataset = ReplaceShapefile(CommonFun::U2M(path));
    if (!dataset)
        return false;
    OGRLayer* const layer = dataset->CreateLayer("polygon", nullptr, wkbUnknown, nullptr);
    if (layer == nullptr)
        return false;
    AddImageFields(*layer);
    for (std::size_t i = 0; i < polygons.size(); ++i)
        if (polygons[i] != nullptr)
            AddImageFeature(*layer, *polygons[i],
                            i < names.size() ? CommonFun::U2M(names[i]) : std::string());
    return true;
}

bool CRasterAlgorithm::SaveGemetryFromTxt(std::string path) {
    std::ifstream stream(path);
    if (!stream)
        return false;
    const std::vector<NamedPolygon> polygons = ReadPolygons(stream);
    std::vector<OGRGeometry*> geometries;
    std::vector<std::wstring> names;
    for (const NamedPolygon& polygon : polygons) {
        geometries.push_back(polygon.geometry.get());
        names.push_back(polygon.name);
    }
    const std::wstring stem = CommonFun::GetFilePahWithoutExtension(CommonFun::M2U(path));
    return SavePolygonNet((stem + L".shp").c_str(), geometries, names);
}

OGRGeometry* CRasterAlgorithm::IntersectionPro(OGRGeometry* a, OGRGeometry* b) {
    if (a == nullptr || b == nullptr)
        return nullptr;
    switch (wkbFlatten(a->getGeometryType())) {
    case wkbPolygon:
        return a->Intersection(b);
    case wkbMultiPolygon: {
        const OGRGeometryUniquePtr merged = MergeMembers(*a->toMultiPolygon());
        return merged ? merged->Intersection(b) : nullptr;
    }
    default:
        return nullptr;
    }
}
