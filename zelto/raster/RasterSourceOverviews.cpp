#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/FilesAside.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/Operation.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"
#include "zelto/raster/internal/PyramidBuild.h"
#include "zelto/raster/internal/RasterLog.h"

#include <gdal_priv.h>

#include <algorithm>
#include <filesystem>

namespace {

/// A band of more pixels than this needs a pyramid.
constexpr std::int64_t PIXELS_THAT_NEED_OVERVIEWS = 65536;

/// The pyramid ends with the first level of at most this many pixels.
constexpr double SMALLEST_LEVEL = 4096.0;
constexpr double SMALLEST_LEVEL_PCIDSK = 65536.0;

/// Reduction factors 2, 4, 8 … for as long as the level above has too many pixels.
std::vector<int> OverviewLevels(GDALDataset& dataset, double smallestLevel) {
    // Not truncated between the levels.
    double pixels = static_cast<double>(dataset.GetRasterXSize()) * dataset.GetRasterYSize();
    std::vector<int> levels;
    for (int level = 2; pixels > smallestLevel; level *= 2) {
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

bool HasColorTable(GDALDataset& dataset) {
    GDALRasterBand* band = dataset.GetRasterBand(1);
    return band != nullptr && band->GetColorTable() != nullptr;
}

zelto::PyramidOrder MakeOrder(GDALDataset& dataset, RasterDataFormat format, const char* resampling,
                              int bandCount, const int* bandList) {
    zelto::PyramidOrder order;
    // Colours of a table cannot be averaged.
    order.resampling = HasColorTable(dataset) ? "NEAREST" : resampling;
    order.levels =
        OverviewLevels(dataset, format == RDF_PCIDSK ? SMALLEST_LEVEL_PCIDSK : SMALLEST_LEVEL);
    if (bandCount > 0)
        order.bands.assign(bandList, bandList + bandCount);
    return order;
}

std::string UnknownResampling(const char* resampling) {
    return resampling != nullptr
               ? "no resampling for pyramids is called \"" + std::string(resampling) + "\""
               : "no resampling is given";
}

/// The files that hold a pyramid whose index is inside the image's file, and which only a copy
/// brings back. Larger pixels than an ERDAS Imagine file holds are in a file of their own,
/// which a pyramid does not change.
std::vector<std::filesystem::path> FilesToCopy(GDALDataset& dataset) {
    if (!zelto::NeedsCopyToRebuild(dataset))
        return {};
    const std::filesystem::path path = dataset.GetDescription();
    return {path, std::filesystem::path(path).replace_extension("rrd"),
            std::filesystem::path(path).replace_extension("rde")};
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
    const zelto::OperationScope scope; // opening again must not forget why a build failed
    // What cannot be built must not close the file, nor cost it its pyramid.
    if (!zelto::IsPyramidResampling(resampling)) {
        zelto::SetLastError(CommonFun::U2M(m_filePath) + ": " + UnknownResampling(resampling));
        return GIS_FAILED;
    }
    if (m_format == RDF_PCIDSK || m_format == RDF_HFA)
        Reopen(GIS_UPDATE, false);
    GDALDataset* target = m_baseDataset != nullptr ? m_baseDataset : m_dataset;
    const bool isOwnIndex = (m_format == RDF_PCIDSK || m_format == RDF_HFA) && target != nullptr &&
                            target->GetAccess() == GA_Update && zelto::IsBuiltInside(*target);
    const GISError result =
        isOwnIndex ? BuildOverviewsAndReopen(target, resampling, bandCount, bandList, progress)
                   : BuildOverviews(target, resampling, bandCount, bandList, progress);
    // The view gets a pyramid of its own where the file's does not show through.
    if (m_baseDataset != nullptr)
        IsOverviewsValid();
    return result;
}

GISError CRasterSource::BuildOverviewsAndReopen(GDALDataset* dataset, const char* resampling,
                                                int bandCount, int* bandList,
                                                CDataProgress* progress) {
    const std::string path = dataset->GetDescription();
    if (!IsBandList(*dataset, bandCount, bandList))
        return BuildOverviews(dataset, resampling, bandCount, bandList, progress);
    const zelto::PyramidOrder order =
        MakeOrder(*dataset, m_format, resampling, bandCount, bandList);
    if (order.levels.empty())
        return BuildOverviews(dataset, resampling, bandCount, bandList, progress);
    const bool canRemove = zelto::CanRemovePyramid(*dataset);
    zelto::FileCopies former(path, FilesToCopy(*dataset));
    if (!former.Succeeded() && !canRemove) {
        zelto::SetLastError(path + ": there is no room to keep its pyramid while the new one is "
                                   "built");
        return GIS_FAILED;
    }
    const bool built =
        BuildOverviews(dataset, resampling, bandCount, bandList, progress) == GIS_SUCCESS;
    const zelto::BlockPlaces written = zelto::PlacesOfLevels(*dataset);
    zelto::GdalWatch watch;
    Close();
    const bool whole =
        built && watch.Succeeded(true, path) && zelto::IsPyramidInFile(path, order, written);
    if (!whole) {
        if (canRemove)
            zelto::RemovePyramidInside(path);
        former.Restore();
    }
    Reopen(GIS_UPDATE, false);
    return whole ? GIS_SUCCESS : GIS_FAILED;
}

GISError CRasterSource::BuildOverviews(GDALDataset* dataset, const char* resampling, int bandCount,
                                       int* bandList, CDataProgress* progress) {
    if (dataset == nullptr || !zelto::IsPyramidResampling(resampling) ||
        !IsBandList(*dataset, bandCount, bandList)) {
        zelto::SetLastError(CommonFun::U2M(m_filePath) +
                            (dataset == nullptr ? ": it is not open"
                                                : ": it has no such bands, or no such method"));
        return GIS_FAILED;
    }
    zelto::PyramidOrder order = MakeOrder(*dataset, m_format, resampling, bandCount, bandList);
    order.progress = progress;
    if (order.levels.empty()) {
        zelto::LogRaster(zelto::LOG_NOTICE, __LINE__, L"CRasterSource::BuildOverviews",
                         L"无须创建金字塔，因影像太小:" +
                             std::to_wstring(dataset->GetRasterXSize()) + L", " +
                             std::to_wstring(dataset->GetRasterYSize()));
        return GIS_SUCCESS;
    }
    TakeStatistics(); // samples are read from the pyramid where there is one
    const bool built = zelto::BuildPyramid(*dataset, order);
    // Former levels are gone, whether new ones came or not.
    for (CRasterBand* band : m_bands)
        if (dataset == m_dataset)
            band->FollowPyramid();
    return built ? GIS_SUCCESS : GIS_FAILED;
}

bool CRasterSource::IsOverviewsValid() {
    if (m_hasSubRasters || m_format == RDF_Unknown)
        return true;
    if (m_baseDataset != nullptr && LacksOverviews(*m_baseDataset))
        return false;
    for (const CRasterBand* band : m_bands) {
        if (!NeedsOverviews(band->GetWidth(), band->GetHeight(), band->GetOverviewCount()))
            continue;
        if (m_baseDataset == nullptr)
            return false;
        BuildOverviews(m_dataset, "AVERAGE", 0, nullptr, nullptr);
        return true;
    }
    return true;
}
