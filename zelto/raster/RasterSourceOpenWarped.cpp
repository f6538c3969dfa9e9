#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/Opening.h"
#include "zelto/raster/internal/OpeningPath.h"
#include "zelto/raster/internal/RasterLog.h"
#include "zelto/raster/internal/WarpedGrid.h"

#include <gdal_priv.h>

#include <algorithm>

GISError CRasterSource::OpenAndWarped(const wchar_t* path, GISDataAccess access,
                                      const char* targetSrs) {
    return OpenInReference(path, access, targetSrs, nullptr);
}

GISError CRasterSource::OpenWarpedToGrid(const wchar_t* path, GISDataAccess access,
                                         const char* targetSrs, const double* geoTransform,
                                         int width, int height) {
    if (geoTransform == nullptr || width < 1 || height < 1) {
        zelto::SetLastError("the grid of a view has no geotransform or no pixels");
        return GIS_OPEN_FAILED;
    }
    zelto::ViewGrid grid;
    std::copy_n(geoTransform, grid.geoTransform.size(), grid.geoTransform.begin());
    grid.width = width;
    grid.height = height;
    return OpenInReference(path, access, targetSrs, &grid);
}

GISError CRasterSource::OpenInReference(const wchar_t* path, GISDataAccess access,
                                        const char* targetSrs, const zelto::ViewGrid* grid) {
    return Opening([&] {
        const zelto::OpeningPath opening(path);
        m_allowWarp = true;
        if (opening.IsLoop() || GDALOpenEx(path, access) == nullptr)
            return GIS_OPEN_FAILED;
        const std::wstring subDataset = CloseForFirstSubDataset();
        if (!IsOpened())
            return OpenInReference(subDataset.c_str(), access, targetSrs, grid);
        if (!ShowInReference(targetSrs, grid)) {
            zelto::LogRaster(zelto::LOG_FAILURE, __LINE__, L"CRasterSource::OpenAndWarped",
                             m_filePath + L" Warped VRT Creation failed.");
            Close();
            return GIS_OPEN_FAILED;
        }
        return SetUpOpened(true, false);
    });
}

bool CRasterSource::ShowInReference(const char* targetSrs, const zelto::ViewGrid* grid) {
    // An empty text names no reference to go to.
    if (targetSrs == nullptr || *targetSrs == '\0')
        return true;
    const auto target = zelto::ParseSpatialReference(targetSrs);
    if (!target) {
        zelto::SetLastError(m_filePath, std::string("'") + targetSrs +
                                            "', which it is to be shown in, is no reference "
                                            "system");
        return false;
    }
    OGRSpatialReference source;
    zelto::LoadSpatialReference(source, m_dataset->GetProjectionRef());
    if (zelto::IsSameReference(source, *target))
        return true;
    return UseWarpedView(zelto::ExportToWkt(source), zelto::ExportToWkt(*target), grid);
}
