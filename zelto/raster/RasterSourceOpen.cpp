#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/KnownStatistics.h"
#include "zelto/raster/internal/LastWindow.h"
#include "zelto/raster/internal/OpenedFile.h"
#include "zelto/raster/internal/Opening.h"
#include "zelto/raster/internal/OpeningPath.h"
#include "zelto/raster/internal/RasterDataset.h"

#include <gdal_priv.h>

GDALDataset* CRasterSource::GDALOpenEx(const wchar_t* path, GISDataAccess access) {
    m_filePath = path != nullptr ? path : L"";
    m_fileName = CommonFun::GetFileNameWithExtension(m_filePath);
    m_format = GetDataFormat(m_filePath.c_str());
    if (m_dataset != nullptr)
        Close();
    if (m_format == RDF_ENVI)
        m_filePath = CommonFun::getEnviDataFilePath(m_filePath);
    const std::string name = CommonFun::U2M(m_filePath);
    if (!zelto::MayBeOpened(name) || !OpenStoredPath(access))
        return nullptr;
    m_description = CommonFun::M2U(m_dataset->GetDescription());
    if (m_forDisplay)
        ReadAssistantFile();
    return m_dataset;
}

bool CRasterSource::OpenStoredPath(GISDataAccess access) {
    CNewFileSet::Restore(m_filePath);
    const std::string path = CommonFun::U2M(m_filePath);
    std::string reason;
    GISDataAccess obtained = GIS_READONLY;
    if (access == GIS_UPDATE)
        m_dataset = zelto::OpenRaster(path, GDAL_OF_UPDATE, reason);
    if (m_dataset != nullptr)
        obtained = GIS_UPDATE;
    else
        m_dataset = zelto::OpenRaster(path, GDAL_OF_READONLY, reason);
    if (m_dataset == nullptr) {
        zelto::SetLastError(reason);
        zelto::NameFileOfLastError(m_filePath);
        return false;
    }
    m_access = obtained;
    return true;
}

void CRasterSource::ReadAssistantFile() {
    const std::wstring path = CommonFun::GetFileDirectory(m_filePath, true) +
                              CommonFun::GetFileName(m_filePath) + L".acf";
    CClassifiedAssistantFile file;
    // Most images have none, which is no reason to tell.
    if (!CommonFun::IsFileExist(path) || !file.ReadClassifiedAssistantFile(path))
        return;
    delete m_classifyTable;
    m_classifyTable = file.CreateClassifyDisplayTable();
    m_displayType = DISPLAY_CLASSIFIED;
}

GISError CRasterSource::SetUpOpened(bool allowWarp, bool lightBands) {
    const GISError result = GetRasterInfo(allowWarp, lightBands);
    if (m_forDisplay)
        InitShowBandInfo();
    return result;
}

std::wstring CRasterSource::CloseForFirstSubDataset() {
    if (zelto::SubDatasetEntryCount(*m_dataset) == 0)
        return {};
    std::wstring name = zelto::SubDatasetName(*m_dataset, 1);
    Close();
    return name;
}

GISError CRasterSource::Open(const wchar_t* path, GISDataAccess access, bool allowWarp) {
    return Opening([&] {
        const zelto::OpeningPath opening(path);
        m_allowWarp = allowWarp;
        if (opening.IsLoop() || GDALOpenEx(path, access) == nullptr)
            return GIS_OPEN_FAILED;
        const std::wstring subDataset = CloseForFirstSubDataset();
        if (!IsOpened())
            return Open(subDataset.c_str(), access, true);
        return SetUpOpened(allowWarp, false);
    });
}

GISError CRasterSource::OpenSimple(const wchar_t* path, GISDataAccess access, bool allowWarp) {
    return Opening([&] {
        const zelto::OpeningPath opening(path);
        m_allowWarp = allowWarp;
        if (opening.IsLoop() || GDALOpenEx(path, access) == nullptr)
            return GIS_OPEN_FAILED;
        const std::wstring subDataset = CloseForFirstSubDataset();
        if (!IsOpened())
            return OpenSimple(subDataset.c_str(), access, true);
        return SetUpOpened(allowWarp, true);
    });
}

GISError CRasterSource::Reopen(GISDataAccess access, bool lightBands) {
    return Opening([&] {
        if (IsOpened())
            Close();
        const GISDataAccess recorded = m_access;
        if (!OpenStoredPath(access))
            return GIS_OPEN_FAILED;
        const GISError result = GetRasterInfo(m_allowWarp, lightBands);
        // The access of the first opening stays on record.
        m_access = recorded;
        return result;
    });
}

void CRasterSource::Close() {
    DeleteOwnBands();
    for (CRasterSource* sub : m_subRasters)
        delete sub;
    m_subRasters.clear();

    // A warped view holds the file as well: the file's count must sink before the view, which
    // then closes it.
    const zelto::GdalWatch watch;
    const GDALDataset* const file = m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    if (const auto closed = zelto::NoteClosed(file)) {
        zelto::ForgetLastWindow(*closed);
        zelto::ForgetStatistics(*closed);
    }
    if (m_baseDataset != nullptr)
        GDALReleaseDataset(m_baseDataset);
    m_baseDataset = nullptr;
    if (m_dataset != nullptr)
        GDALClose(m_dataset);
    m_dataset = nullptr;
    // What is written only now may fail now. The reason of an earlier failure is left alone
    // otherwise: a source may be closed because of it.
    if (watch.HasError())
        zelto::SetLastError(m_filePath, watch.Error());

    delete m_colorRamp;
    m_colorRamp = nullptr;
    delete m_classifyTable;
    m_classifyTable = nullptr;
    DeleteRGBCache();
    ClearRGBShowHisDensity();
}

void CRasterSource::DeleteOwnBands() {
    // Merged bands belong to the sub-rasters they came from.
    for (const CRasterSource* sub : m_subRasters)
        for (CRasterBand* band : sub->m_bands)
            std::erase(m_bands, band);
    for (CRasterBand* band : m_bands)
        delete band;
    m_bands.clear();
}
