#include "zelto/coordinate/Reproject.h"

#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/coordinate/GeoGrid.h"
#include "zelto/raster/RasterSource.h"

#include <memory>
#include <new>

CReproject* CReproject::Create(CGISDataSource* source, const char* targetSrs, double* srcParams,
                               double* dstParams) {
    if (source == nullptr)
        return nullptr;
    std::unique_ptr<CReproject> result(new (std::nothrow) CReproject());
    if (!result)
        return nullptr;
    const std::string sourceWkt = source->GetSpatialReferenceWKT();
    result->m_source = source;
    result->m_sourceToTarget = CCoordinateTransformation::CreateCoordinateTransformation(
        sourceWkt.c_str(), targetSrs, srcParams);
    result->m_targetToSource = CCoordinateTransformation::CreateCoordinateTransformation(
        targetSrs, sourceWkt.c_str(), dstParams);
    return result->m_sourceToTarget == nullptr ? nullptr : result.release();
}

CReproject::~CReproject() {
    CCoordinateTransformation::DestroyCoordinateTransformation(m_targetToSource);
    CCoordinateTransformation::DestroyCoordinateTransformation(m_sourceToTarget);
    delete m_grid;
}

const CRasterSource* CReproject::GetAffineRaster() const {
    const auto* raster = dynamic_cast<const CRasterSource*>(m_source);
    return raster != nullptr && raster->GetGeoreferencingKind() == 1 ? raster : nullptr;
}

bool CReproject::CoorTransform(double* x, double* y, int count, std::string src, std::string dst,
                               double* srcToWgs84, double* dstToWgs84) {
    const bool ownWay = srcToWgs84 != nullptr || dstToWgs84 != nullptr;
    CCoordinateTransformation* transformation =
        ownWay ? CCoordinateTransformation::CreateCoordinateTransformation(src.c_str(), dst.c_str(),
                                                                           srcToWgs84, dstToWgs84)
               : CCoordinateTransformation::CreateCoordinateTransformation(src.c_str(), dst.c_str(),
                                                                           nullptr);
    const bool done =
        transformation != nullptr && transformation->Transform(count, x, y, nullptr, nullptr);
    CCoordinateTransformation::DestroyCoordinateTransformation(transformation);
    return done;
}
