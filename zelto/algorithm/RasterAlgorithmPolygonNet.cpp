#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/NamedPolygons.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/vector/internal/NewShapefile.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogrsf_frmts.h>

#include <fstream>
#include <memory>

namespace {

constexpr const char* IMAGE_FIELDS[] = {"Image", "IMAGE_NAME"};
constexpr int IMAGE_FIELD_WIDTH = 320;

/// A shapefile is replaced by its name; other data at the path stays what it is.
bool IsOtherData(const std::string& path) {
    if (EQUAL(CPLGetExtension(path.c_str()), "shp"))
        return false;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    return GDALDatasetUniquePtr(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR)) != nullptr;
}

bool AddImageFields(OGRLayer& layer, const std::string& file) {
    zelto::GdalWatch watch;
    for (const char* name : IMAGE_FIELDS) {
        OGRFieldDefn field(name, OFTString);
        // Widths beyond the format's limit are cut with a warning.
        field.SetWidth(IMAGE_FIELD_WIDTH);
        if (!watch.Succeeded(layer.CreateField(&field) == OGRERR_NONE, file))
            return false;
    }
    return true;
}

/// @return false when the feature cannot be written. One whose geometry the layer cannot hold is
///         left out, which is told and no failure.
bool AddImageFeature(OGRLayer& layer, const OGRGeometry& geometry, const std::string& name,
                     const std::string& file) {
    const OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer.GetLayerDefn()));
    // One left out must not count against the file.
    const CPLErrorHandlerPusher apart(CPLQuietErrorHandler);
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

} // namespace

bool CRasterAlgorithm::SavePolygonNet(const wchar_t* path, std::vector<OGRGeometry*> polygons,
                                      std::vector<std::wstring> names) {
    return zelto::NoThrow(false, [&] {
        if (path == nullptr)
            return zelto::RefuseMissing("path");
        const std::string file = CommonFun::U2M(path);
        GDALAllRegister();
        if (IsOtherData(file)) {
            zelto::SetLastError(file + ": there is vector data of another format");
            return false;
        }
        zelto::NewShapefile net(file);
        OGRLayer* const layer = net.CreateLayer("polygon", wkbUnknown);
        return layer != nullptr && AddImageFields(*layer, file) &&
               AddImageFeatures(*layer, polygons, names, file) && net.Commit();
    });
}

bool CRasterAlgorithm::SaveGemetryFromTxt(std::string path) {
    return zelto::NoThrow(false, [&] {
        std::ifstream stream;
        if (!zelto::OpenRegularFile(stream, path))
            return false;
        const std::vector<zelto::NamedPolygon> polygons = zelto::ReadNamedPolygons(stream);
        if (stream.bad()) {
            zelto::SetLastError(path + ": cannot be read to its end");
            return false;
        }
        std::vector<OGRGeometry*> geometries;
        std::vector<std::wstring> names;
        for (const zelto::NamedPolygon& polygon : polygons) {
            geometries.push_back(polygon.geometry.get());
            names.push_back(polygon.name);
        }
        const std::wstring stem = CommonFun::GetFilePahWithoutExtension(CommonFun::M2U(path));
        return SavePolygonNet((stem + L".shp").c_str(), geometries, names);
    });
}
