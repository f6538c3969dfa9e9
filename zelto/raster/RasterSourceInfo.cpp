#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/RasterLog.h"
#include "zelto/raster/internal/StatisticsOnDemand.h"
#include "zelto/raster/internal/WarpedGrid.h"

#include <gdal_priv.h>
#include <gdalwarper.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

namespace {

/// Greatest error of a warped view's positions, in pixels.
constexpr double WARP_TOLERANCE = 0.2;

bool IsNorthUp(const double* geoTransform) {
    return !(geoTransform[1] < 0.0) && geoTransform[2] == 0.0 && geoTransform[4] == 0.0 &&
           !(geoTransform[5] > 0.0);
}

void ForceNorthUp(double* geoTransform) {
    geoTransform[1] = std::fabs(geoTransform[1]);
    geoTransform[2] = 0.0;
    geoTransform[4] = 0.0;
    geoTransform[5] = -std::fabs(geoTransform[5]);
}

} // namespace

GISError CRasterSource::GetRasterInfo(bool allowWarp, bool lightBands) {
    bool hasGeoTransform = ReadGrid();
    while (!CanBeShownAsIs(hasGeoTransform)) {
        if (!allowWarp) {
            ForceNorthUp(m_geoTransform);
            break;
        }
        const std::string wkt = m_dataset->GetProjectionRef();
        if (!UseWarpedView(wkt, wkt)) {
            zelto::LogRaster(zelto::LOG_NOTICE, __LINE__, L"CRasterSource::GetRasterInfo",
                             m_filePath + L" Warped VRT Creation failed.");
            break;
        }
        lightBands = false;
        hasGeoTransform = ReadGrid();
    }
    // Without georeferencing, y counts upwards from the bottom edge, so that the extent is
    // north-up all the same.
    if (!hasGeoTransform) {
        const double pixels[6] = {0.0, 1.0, 0.0, static_cast<double>(m_height), 0.0, -1.0};
        std::copy_n(pixels, 6, m_geoTransform);
    }
    if (m_forDisplay && !allowWarp)
        ForceNorthUp(m_geoTransform);
    InvertGeoTransform();
    m_extent = GetExtentInit();
    ReadReference();
    ReadBands(lightBands);
    if (m_bandCount > 0)
        return GIS_SUCCESS;
    zelto::SetLastError(m_filePath, "it holds no raster bands");
    return GIS_NOT_SUPPORTED;
}

bool CRasterSource::ReadGrid() {
    m_width = m_dataset->GetRasterXSize();
    m_height = m_dataset->GetRasterYSize();
    return m_dataset->GetGeoTransform(m_geoTransform) == CE_None;
}

bool CRasterSource::CanBeShownAsIs(bool hasGeoTransform) const {
    const bool gridFits = m_forDisplay || !hasGeoTransform || IsNorthUp(m_geoTransform);
    return gridFits && m_dataset->GetGCPCount() == 0;
}

bool CRasterSource::UseWarpedView(const std::string& sourceWkt, const std::string& targetWkt,
                                  const zelto::ViewGrid* grid) {
    // One view per file: a view of a view would lose the file behind it.
    if (m_baseDataset != nullptr) {
        zelto::SetLastError(m_filePath, "a second north-up view over its warped view is needed");
        return false;
    }
    zelto::GdalWatch watch;
    GDALDatasetH view =
        grid != nullptr
            ? GDALDataset::ToHandle(zelto::WarpToGrid(*m_dataset, sourceWkt, targetWkt, *grid))
            : GDALAutoCreateWarpedVRT(m_dataset, sourceWkt.c_str(), targetWkt.c_str(),
                                      GRA_NearestNeighbour, WARP_TOLERANCE, nullptr);
    // Single positions beyond the target's reach are errors to GDAL but fail no view.
    if (view == nullptr)
        return watch.Succeeded(false, CommonFun::U2M(m_filePath));
    // Pixels that are far from square may leave no room for one of the view's, or overflow its
    // size.
    if (GDALGetRasterXSize(view) < 1 || GDALGetRasterYSize(view) < 1) {
        zelto::SetLastError(m_filePath, "its warped view would have no columns or no rows");
        GDALClose(view);
        return false;
    }
    // The count that opening gave the file is this source's reference to it; the view has
    // taken its own.
    m_baseDataset = m_dataset;
    m_dataset = GDALDataset::FromHandle(view);
    return true;
}

void CRasterSource::InvertGeoTransform() {
    if (GDALInvGeoTransform(m_geoTransform, m_inverseGeoTransform) == 0)
        std::fill_n(m_inverseGeoTransform, 6, 0.0);
}

void CRasterSource::ReadReference() {
    m_wkt = m_dataset->GetProjectionRef();
    if (m_spatialReference == nullptr)
        return;
    if (m_wkt.empty())
        m_spatialReference->Clear();
    else
        zelto::LoadSpatialReference(*m_spatialReference, m_wkt.c_str());
}

std::unique_ptr<CRasterBand>
CRasterSource::MakeBand(GDALRasterBand* band, bool light,
                        const std::shared_ptr<zelto::StatisticsOnDemand>& onDemand) const {
    try {
        if (onDemand)
            return std::unique_ptr<CRasterBand>(new CRasterBand(band, light, onDemand));
        if (light)
            return std::make_unique<CRasterBand>(false, band);
        return std::make_unique<CRasterBand>(band, m_forDisplay, false);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void CRasterSource::ReadBands(bool lightBands) {
    m_noDataValues.clear();
    // What is written later must not change what is found, so a source open for writing looks now.
    std::shared_ptr<zelto::StatisticsOnDemand> onDemand;
    if (m_access == GIS_READONLY && !m_sampleAtOpening)
        onDemand = std::make_shared<zelto::StatisticsOnDemand>();
    const int count = m_dataset->GetRasterCount();
    for (int number = 1; number <= count; ++number) {
        GDALRasterBand* band = m_dataset->GetRasterBand(number);
        if (band == nullptr)
            continue;
        if (number == 1)
            m_dataType = static_cast<PixelDataType>(band->GetRasterDataType());
        std::unique_ptr<CRasterBand> made = MakeBand(band, lightBands, onDemand);
        if (!made) {
            zelto::SetLastError(m_filePath, "not enough memory for band " + std::to_string(number));
            continue;
        }
        made->SetStretchType(m_stretchType);
        m_noDataValues.push_back(made->GetNoDataValue());
        m_bands.push_back(made.get());
        made.release();
    }
    m_bandCount = static_cast<int>(m_bands.size());
}

void CRasterSource::InitShowBandInfo() {
    if (m_bandCount <= 0)
        return;
    if (m_bandCount == 1)
        m_showBands = {0};
    else if (m_bandCount == 2)
        m_showBands = {0, 0, 0};
    else if (m_bandCount == 4)
        // Such images store blue, green, red, near infrared.
        m_showBands = {2, 1, 0};
    else
        m_showBands = {0, 1, 2};
    m_showBandCount = static_cast<int>(m_showBands.size());
}
