#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/RasterLog.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>

bool CRasterSource::GetGeoTransform(double* geoTransform, bool fromFile) const {
    if (geoTransform == nullptr)
        return false;
    GDALDataset* file = m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    if (fromFile && file != nullptr)
        // Callers ask this way whether the file lacks a geotransform.
        return file->GetGeoTransform(geoTransform) != CE_None;
    std::copy_n(m_geoTransform, 6, geoTransform);
    return true;
}

GISError CRasterSource::SetGeoTransform(double* geoTransform, bool writeToFile) {
    if (geoTransform == nullptr)
        return GIS_FAILED;
    std::copy_n(geoTransform, 6, m_geoTransform);
    InvertGeoTransform();
    m_extent = GetExtentInit();
    if (!writeToFile || m_dataset == nullptr)
        return GIS_SUCCESS;
    return WriteGeoTransform(*m_dataset, geoTransform);
}

GISError CRasterSource::SetBaseGeoTransform(double* geoTransform) {
    GDALDataset* file = m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    if (file == nullptr || geoTransform == nullptr)
        return GIS_FAILED;
    return WriteGeoTransform(*file, geoTransform);
}

GISError CRasterSource::WriteGeoTransform(GDALDataset& dataset, double* geoTransform) {
    zelto::GdalWatch watch;
    const CPLErr result = dataset.SetGeoTransform(geoTransform);
    dataset.FlushCache();
    return watch.Succeeded(result, dataset.GetDescription()) ? GIS_SUCCESS : GIS_FAILED;
}

int CRasterSource::GetGCPCount(bool fromBase) const {
    GDALDataset* dataset = fromBase && m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    return dataset != nullptr ? dataset->GetGCPCount() : 0;
}

GISError CRasterSource::ClearGCP(bool onBase) {
    GDALDataset* dataset = onBase && m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    if (dataset == nullptr)
        return GIS_FAILED;
    zelto::GdalWatch watch;
    const CPLErr result = dataset->SetGCPs(0, nullptr, "");
    dataset->FlushCache();
    return watch.Succeeded(result, dataset->GetDescription()) ? GIS_SUCCESS : GIS_FAILED;
}

GISError CRasterSource::SetProjection(const char* wkt) {
    const std::string text = wkt != nullptr ? wkt : "";
    // A file that cannot hold it does not keep the source from having it.
    if (m_dataset != nullptr) {
        zelto::GdalWatch watch;
        if (!watch.Succeeded(m_dataset->SetProjection(text.c_str()), m_dataset->GetDescription()))
            zelto::LogRaster(zelto::LOG_NOTICE, __LINE__, L"CRasterSource::SetProjection",
                             CommonFun::M2U(zelto::LastError()));
    }
    m_wkt = text;
    if (m_spatialReference != nullptr)
        zelto::LoadSpatialReference(*m_spatialReference, m_wkt.c_str());
    return GIS_SUCCESS;
}

bool CRasterSource::SetAllBandNoDataValue(double value, bool writeToFile) {
    bool allSet = true;
    for (CRasterBand* band : m_bands)
        if (!band->SetNoDataValue(value, writeToFile))
            allSet = false;
    return allSet;
}

bool CRasterSource::ClearAllBandNoDataValue(bool /*writeToFile*/) {
    for (CRasterBand* band : m_bands)
        band->ClearNoDataValue(false);
    return true;
}
