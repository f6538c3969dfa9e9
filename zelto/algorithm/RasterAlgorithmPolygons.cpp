#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/SampleReader.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/geometry/internal/GeosMemory.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/internal/BandCall.h"
#include "zelto/vector/VectorLayer.h"

#include <gdal_alg.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <memory>

namespace {

constexpr const wchar_t* POLYGONIZE_TITLE = L"栅格矢量化";
constexpr int POLYGON_STEPS = 100;

/// Hands progress on to the host. GDAL counts half a row too many at the end of a polygonization;
/// hosts are not told of more than the whole.
int CPL_STDCALL TellPolygonizing(double complete, const char* message, void* progress) {
    return GDALProgressFuncEx(std::min(complete, 1.0), message, progress);
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
                                    POLYGON_STEPS);
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
