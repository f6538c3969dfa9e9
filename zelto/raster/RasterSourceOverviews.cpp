#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/RasterLog.h"

#include <gdal_priv.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

namespace {

/// A band of more pixels than this needs a pyramid.
constexpr std::int64_t PIXELS_THAT_NEED_OVERVIEWS = 65536;

/// The pyramid ends with the first level of at most this many pixels.
constexpr double SMALLEST_LEVEL = 4096.0;
constexpr double SMALLEST_LEVEL_PCIDSK = 65536.0;
constexpr std::size_t MOST_LEVELS = 64;

/// Reduction factors 2, 4, 8 … for as long as the level above has too many pixels.
std::vector<int> OverviewLevels(GDALDataset& dataset, double smallestLevel) {
    // Not truncated between the levels.
    double pixels = static_cast<double>(dataset.GetRasterXSize()) * dataset.GetRasterYSize();
    std::vector<int> levels;
    for (int level = 2; pixels > smallestLevel && levels.size() < MOST_LEVELS; level *= 2) {
        levels.push_back(level);
        pixels /= 4.0;
    }
    return levels;
}

/// GDAL trusts the band numbers; wrong ones must not reach it.
bool IsBandList(GDALDataset& dataset, int bandCount, const int* bandList) {
    if (bandCount == 0)
        return true;
    return bandCount > 0 && bandList != nullptr &&
           std::all_of(bandList, bandList + bandCount,
                       [&](int band) { return band >= 1 && band <= dataset.GetRasterCount(); });
}

bool HasOverviews(GDALDataset& dataset) {
    GDALRasterBand* band = dataset.GetRasterBand(1);
    return band != nullptr && band->GetOverviewCount() > 0;
}

bool HasColorTable(GDALDataset& dataset) {
    GDALRasterBand* band = dataset.GetRasterBand(1);
    return band != nullptr && band->GetColorTable() != nullptr;
}

std::filesystem::path SideFile(GDALDataset& dataset, const char* extension) {
    return std::filesystem::path(dataset.GetDescription()).replace_extension(extension);
}

/// Whether the pyramid is part of the image file and not a file beside it.
bool HasInternalOverviews(GDALDataset& dataset) {
    std::error_code ignored;
    return HasOverviews(dataset) && !std::filesystem::exists(SideFile(dataset, "rrd"), ignored) &&
           !std::filesystem::exists(std::string(dataset.GetDescription()) + ".ovr", ignored);
}

/// The host's progress, and whether the host has cancelled: a build inside the file ends early
/// then, but GDAL reports it as done.
struct WatchedProgress {
    CDataProgress* progress;
    bool cancelled = false;
};

int WatchProgress(double complete, const char* message, void* progressData) {
    auto& watched = *static_cast<WatchedProgress*>(progressData);
    const int goOn = GDALProgressFuncEx(complete, message, watched.progress);
    watched.cancelled = watched.cancelled || goOn == 0;
    return goOn;
}

/// GDAL's pyramid build; zero levels remove what there is.
bool Build(GDALDataset& dataset, const char* resampling, std::vector<int> levels, int bandCount,
           int* bandList, CDataProgress* progress) {
    WatchedProgress watched{progress};
    const CPLErr result = dataset.BuildOverviews(
        resampling, static_cast<int>(levels.size()), levels.empty() ? nullptr : levels.data(),
        bandCount, bandList, progress != nullptr ? WatchProgress : GDALProgressFuncNone, &watched);
    dataset.FlushCache();
    return result == CE_None && !watched.cancelled;
}

void RemoveOverviews(GDALDataset& dataset) {
    // Some drivers report an error although they can build anew.
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    Build(dataset, "NEAREST", {}, 0, nullptr, nullptr);
}

bool NeedsOverviews(std::int64_t width, std::int64_t height, int overviewCount) {
    return overviewCount == 0 && width * height > PIXELS_THAT_NEED_OVERVIEWS;
}

/// Whether a band of the file behind a warped view lacks its pyramid.
bool LacksOverviews(GDALDataset& dataset) {
    for (int number = 1; number <= dataset.GetRasterCount(); ++number) {
        GDALRasterBand* band = dataset.GetRasterBand(number);
        if (band != nullptr &&
            NeedsOverviews(band->GetXSize(), band->GetYSize(), band->GetOverviewCount()))
            return true;
    }
    return false;
}

} // namespace

GISError CRasterSource::BuildOverviews(const char* resampling, int bandCount, int* bandList,
                                       CDataProgress* progress) {
    if (m_format == RDF_PCIDSK)
        RemovePcidskSideFiles();
    if (m_format == RDF_PCIDSK || m_format == RDF_HFA)
        Reopen(GIS_UPDATE, false);
    GDALDataset* target = m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    const GISError result = BuildOverviews(target, resampling, bandCount, bandList, progress);
    // The view gets a pyramid of its own where the file's does not show through.
    if (m_baseDataset != nullptr)
        IsOverviewsValid();
    return result;
}

GISError CRasterSource::BuildOverviews(GDALDataset* dataset, const char* resampling, int bandCount,
                                       int* bandList, CDataProgress* progress) {
    if (dataset == nullptr || resampling == nullptr || !IsBandList(*dataset, bandCount, bandList))
        return GIS_FAILED;
    // Colours of a table cannot be averaged.
    const char* method = HasColorTable(*dataset) ? "NEAREST" : resampling;
    const std::vector<int> levels =
        OverviewLevels(*dataset, m_format == RDF_PCIDSK ? SMALLEST_LEVEL_PCIDSK : SMALLEST_LEVEL);
    if (levels.empty()) {
        zelto::LogRaster(zelto::LOG_NOTICE, __LINE__, L"CRasterSource::BuildOverviews",
                         L"无须创建金字塔，因影像太小:" +
                             std::to_wstring(dataset->GetRasterXSize()) + L", " +
                             std::to_wstring(dataset->GetRasterYSize()));
        return GIS_SUCCESS;
    }
    // A pyramid inside the file can be replaced, but not joined by one beside it.
    std::optional<CPLConfigOptionSetter> insideTheFile;
    if (HasInternalOverviews(*dataset))
        insideTheFile.emplace("USE_RRD", "NO", false);
    RemoveOverviews(*dataset);
    if (Build(*dataset, method, levels, bandCount, bandList, progress))
        return GIS_SUCCESS;
    // An unfinished pyramid would be shown as if it were whole.
    RemoveOverviews(*dataset);
    return GIS_FAILED;
}

void CRasterSource::RemovePcidskSideFiles() {
    GDALDataset* file = m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    if (file == nullptr || !HasOverviews(*file) ||
        OverviewLevels(*file, SMALLEST_LEVEL_PCIDSK).empty())
        return;
    // The driver can neither remove nor replace a pyramid that stands beside the file.
    const std::filesystem::path pyramid = SideFile(*file, "rrd");
    const std::filesystem::path index = SideFile(*file, "aux");
    std::error_code ignored;
    if (!std::filesystem::exists(pyramid, ignored))
        return;
    Close();
    std::filesystem::remove(pyramid, ignored);
    std::filesystem::remove(index, ignored);
}

bool CRasterSource::IsOverviewsValid() {
    if (m_hasSubRasters || m_format == RDF_Unknown)
        return true;
    if (m_baseDataset != nullptr && LacksOverviews(*m_baseDataset))
        return false;
    for (const CRasterBand* band : m_bands) {
        if (!NeedsOverviews(band->GetWidth(), band->GetHeight(), band->GetOverviewCount()))
            continue;
        if (m_baseDataset == nullptr || m_dataset == nullptr)
            return false;
        BuildOverviews(m_dataset, "AVERAGE", 0, nullptr, nullptr);
        return true;
    }
    return true;
}
