#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/baselib/internal/SpatialReference.h"
#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/FragileFiles.h"
#include "zelto/raster/internal/KnownStatistics.h"
#include "zelto/raster/internal/LastWindow.h"
#include "zelto/raster/internal/OpenedFile.h"
#include "zelto/raster/internal/PyramidBeside.h"
#include "zelto/raster/internal/PyramidFiles.h"
#include "zelto/raster/internal/RasterLog.h"
#include "zelto/raster/internal/WarpedGrid.h"

#include <gdal_priv.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace {

/// Deeper nesting of containers than this is taken for a loop. Real ones hold rasters directly.
constexpr std::size_t DEEPEST_NESTING = 4;

/// Containers with more sub-data-sets than this, those inside them counted too, are not opened as a
/// whole: each takes memory and a place among the open files, whatever the container holds.
constexpr int MOST_SUB_DATASETS = 1000;

/// Marks a path as being opened on this thread. A container may list any text as its
/// sub-data-sets, also itself; such a loop must end as a failed open.
class OpeningPath {
  public:
    explicit OpeningPath(const wchar_t* path) {
        const std::wstring name = path != nullptr ? path : L"";
        if (s_paths.empty())
            s_subDatasets = 0;
        m_entered = s_paths.size() < DEEPEST_NESTING &&
                    std::find(s_paths.begin(), s_paths.end(), name) == s_paths.end();
        if (m_entered)
            s_paths.push_back(name);
    }
    ~OpeningPath() {
        if (m_entered)
            s_paths.pop_back();
    }
    /// Whether so many more sub-data-sets may be opened within the path that was opened first; the
    /// reason is otherwise left.
    static bool Admits(int subDatasets, const std::wstring& path) {
        s_subDatasets += subDatasets;
        if (s_subDatasets > MOST_SUB_DATASETS)
            zelto::SetLastError(path, "has more than " + std::to_string(MOST_SUB_DATASETS) +
                                          " sub-data-sets");
        return s_subDatasets <= MOST_SUB_DATASETS;
    }
    OpeningPath(const OpeningPath&) = delete;
    OpeningPath& operator=(const OpeningPath&) = delete;

    /// Whether the path is open already; the reason is then left.
    bool IsLoop() const {
        if (!m_entered)
            zelto::SetLastError("a list of sub-data-sets leads back to itself or too deep");
        return !m_entered;
    }

  private:
    static thread_local std::vector<std::wstring> s_paths;
    static thread_local int s_subDatasets; ///< opened within the first of the paths
    bool m_entered = false;
};

thread_local std::vector<std::wstring> OpeningPath::s_paths;
thread_local int OpeningPath::s_subDatasets = 0;

/// @param reason GDAL's where nothing opens
GDALDataset* OpenRaster(const std::string& path, unsigned int accessFlag, std::string& reason) {
    if (!zelto::SurvivesOpening(path)) {
        reason = "its header promises more than it holds";
        return nullptr;
    }
    if (accessFlag == GDAL_OF_UPDATE && !zelto::SurvivesChange(path)) {
        reason = "its tags are damaged";
        return nullptr;
    }
    const zelto::GdalWatch watch;
    const auto before = zelto::FileState::Of(path);
    GDALDataset* dataset =
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR | accessFlag);
    if (dataset == nullptr) {
        reason = watch.HasError() ? watch.Error() : "it cannot be opened as a raster";
        return nullptr;
    }
    if (!zelto::SurvivesReading(*dataset, path)) {
        GDALClose(dataset);
        reason = "its tile cannot be read from the archive";
        return nullptr;
    }
    if (accessFlag == GDAL_OF_READONLY)
        zelto::NoteOpened(*dataset, before);
    zelto::HideForeignPyramid(*dataset);
    // The driver cannot be kept from the levels that the file itself names.
    if (zelto::SharesLevels(path))
        CPLError(CE_Warning, CPLE_AppDefined,
                 "%s: its pyramid is in a file that another image claims; build it anew",
                 path.c_str());
    return dataset;
}

/// Number of entries in the list of sub-data-sets: a name and a description for each.
int SubDatasetEntryCount(GDALDataset& dataset) {
    return CSLCount(dataset.GetMetadata("SUBDATASETS"));
}

/// @param number counted from 1; beyond the last one the name is empty
std::wstring SubDatasetName(GDALDataset& dataset, int number) {
    // Not every driver answers for a single item, so the value is looked up in the list.
    const std::string key = "SUBDATASET_" + std::to_string(number) + "_NAME";
    const char* name = CSLFetchNameValue(dataset.GetMetadata("SUBDATASETS"), key.c_str());
    return name != nullptr ? CommonFun::M2U(name) : std::wstring();
}

} // namespace

GDALDataset* CRasterSource::GDALOpenEx(const wchar_t* path, GISDataAccess access) {
    m_filePath = path != nullptr ? path : L"";
    m_fileName = CommonFun::GetFileNameWithExtension(m_filePath);
    m_format = GetDataFormat(m_filePath.c_str());
    if (m_dataset != nullptr)
        Close();
    if (m_format == RDF_ENVI)
        m_filePath = CommonFun::getEnviDataFilePath(m_filePath);
    if (!zelto::MayBeOpened(CommonFun::U2M(m_filePath)) || !OpenStoredPath(access))
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
        m_dataset = OpenRaster(path, GDAL_OF_UPDATE, reason);
    if (m_dataset != nullptr)
        obtained = GIS_UPDATE;
    else
        m_dataset = OpenRaster(path, GDAL_OF_READONLY, reason);
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
    if (SubDatasetEntryCount(*m_dataset) == 0)
        return {};
    std::wstring name = SubDatasetName(*m_dataset, 1);
    Close();
    return name;
}

template <typename Body>
GISError CRasterSource::Opening(const Body& body) {
    const GISError result = zelto::Operation(GIS_OPEN_FAILED, body);
    // Short of memory half-way.
    if (result == GIS_OPEN_FAILED && m_dataset != nullptr)
        Close();
    return result;
}

GISError CRasterSource::Open(const wchar_t* path, GISDataAccess access, bool allowWarp) {
    return Opening([&] {
        const OpeningPath opening(path);
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
        const OpeningPath opening(path);
        m_allowWarp = allowWarp;
        if (opening.IsLoop() || GDALOpenEx(path, access) == nullptr)
            return GIS_OPEN_FAILED;
        const std::wstring subDataset = CloseForFirstSubDataset();
        if (!IsOpened())
            return OpenSimple(subDataset.c_str(), access, true);
        return SetUpOpened(allowWarp, true);
    });
}

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
        const OpeningPath opening(path);
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

GISError CRasterSource::OpenAsDataset(const wchar_t* path, GISDataAccess access) {
    return Opening([&] {
        const OpeningPath opening(path);
        if (opening.IsLoop() || GDALOpenEx(path, access) == nullptr)
            return GIS_OPEN_FAILED;
        // There are two entries for each sub-data-set, so the second half of the numbers finds
        // none.
        const int entries = SubDatasetEntryCount(*m_dataset);
        if (!OpeningPath::Admits(entries / 2, m_filePath))
            return GIS_OPEN_FAILED;
        for (int number = 1; number <= entries; ++number) {
            const std::wstring name = SubDatasetName(*m_dataset, number);
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
    if (const CRasterBand* first = m_subRasters.front()->GetRasterBand(0))
        m_dataType = first->GetDataType();
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
