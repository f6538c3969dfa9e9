#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/Opening.h"
#include "zelto/raster/internal/OpeningPath.h"
#include "zelto/raster/internal/RasterDataset.h"

#include <gdal_priv.h>

#include <algorithm>
#include <memory>

GISError CRasterSource::OpenAsDataset(const wchar_t* path, GISDataAccess access) {
    return Opening([&] {
        const zelto::OpeningPath opening(path);
        if (opening.IsLoop() || GDALOpenEx(path, access) == nullptr)
            return GIS_OPEN_FAILED;
        // There are two entries for each sub-data-set, so the second half of the numbers finds
        // none.
        const int entries = zelto::SubDatasetEntryCount(*m_dataset);
        if (!zelto::OpeningPath::Admits(entries / 2, m_filePath))
            return GIS_OPEN_FAILED;
        for (int number = 1; number <= entries; ++number) {
            const std::wstring name = zelto::SubDatasetName(*m_dataset, number);
            if (name.empty())
                continue;
            auto sub = std::make_unique<CRasterSource>();
            sub->SetForDisplay(m_forDisplay);
            sub->SetSampleAtOpening(m_sampleAtOpening);
            if (sub->OpenAsDataset(name.c_str(), access) == GIS_SUCCESS)
                AddSubRaster(std::move(sub));
        }
        // A container need not have bands of its own.
        SetUpOpened(true, false);
        return GIS_SUCCESS;
    });
}

GISError CRasterSource::Open(CDatasetOpenInfo info) {
    return Opening([&] {
        if (info.GetSubFileCount() == 0)
            return Open(info.m_fileName.c_str(), info.m_access, true);
        if (GDALOpenEx(info.m_fileName.c_str(), info.m_access) == nullptr)
            return GIS_OPEN_FAILED;
        GetRasterInfo(true, false);
        return OpenSubFiles(info);
    });
}

GISError CRasterSource::OpenSubFiles(const CDatasetOpenInfo& info) {
    GISError result = GIS_FAILED;
    for (const std::wstring& name : info.m_subFileNames) {
        auto sub = std::make_unique<CRasterSource>();
        sub->SetForDisplay(m_forDisplay);
        sub->SetSampleAtOpening(m_sampleAtOpening);
        if (sub->Open(name.c_str(), info.m_access, true) != GIS_SUCCESS)
            continue;
        AddSubRaster(std::move(sub));
        result = GIS_SUCCESS;
    }
    if (info.m_mergeBands && !m_subRasters.empty())
        MergeSubRasters();
    if (m_forDisplay)
        InitShowBandInfo();
    return result;
}

void CRasterSource::AddSubRaster(std::unique_ptr<CRasterSource> sub) {
    m_subRasters.push_back(sub.get());
    m_hasSubRasters = true;
    sub.release();
}

void CRasterSource::MergeSubRasters() {
    for (const CRasterSource* sub : m_subRasters)
        m_bands.insert(m_bands.end(), sub->m_bands.begin(), sub->m_bands.end());
    m_dataType = m_subRasters.front()->GetRasterBand(0)->GetDataType(); // none opens without bands
    m_bandCount = static_cast<int>(m_bands.size());

    const CRasterSource& last = *m_subRasters.back();
    m_width = last.m_width;
    m_height = last.m_height;
    m_extent = last.m_extent;
    std::copy_n(last.m_geoTransform, 6, m_geoTransform);
    m_geoTransform[2] = 0.0;
    m_geoTransform[4] = 0.0;
    InvertGeoTransform();
}
