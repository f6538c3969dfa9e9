#include "zelto/raster/internal/PyramidRun.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/LastError.h"

#include <gdal_priv.h>

#include <numeric>

namespace zelto {

namespace {

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

/// Whether the last pixel of a level can be read, and with it the block that was written last.
bool EndsReadably(GDALRasterBand& level) {
    double value[2] = {0.0, 0.0}; // also for complex samples
    return level.RasterIO(GF_Read, level.GetXSize() - 1, level.GetYSize() - 1, 1, 1, value, 1, 1,
                          GDT_CFloat64, 0, 0, nullptr) == CE_None;
}

/// What is wrong with the levels of a band; null for nothing.
const char* FlawOfLevels(GDALRasterBand* band, int count) {
    const char* const incomplete = "its pyramid is not complete";
    if (band == nullptr || band->GetOverviewCount() < count)
        return incomplete;
    // A removal that fails on its way can leave some, which then stand between the new ones.
    if (band->GetOverviewCount() > count)
        return "levels of its former pyramid are still there";
    for (int i = 0; i < count; ++i) {
        GDALRasterBand* level = band->GetOverview(i);
        if (level == nullptr || !EndsReadably(*level))
            return incomplete;
    }
    return nullptr;
}

/// Levels inside a GeoTIFF are data sets of their own. What says where their blocks are would wait
/// until the file is closed, which reports no result.
void FlushLevels(GDALDataset& dataset) {
    for (int number = 1; number <= dataset.GetRasterCount(); ++number) {
        GDALRasterBand& band = *dataset.GetRasterBand(number);
        for (int i = 0; i < band.GetOverviewCount(); ++i) {
            GDALRasterBand* level = band.GetOverview(i);
            if (level != nullptr && level->GetDataset() != nullptr)
                level->GetDataset()->FlushCache();
        }
    }
}

} // namespace

bool RunPyramidBuild(GDALDataset& dataset, const PyramidOrder& order, const std::string& file) {
    WatchedProgress watched{order.progress};
    std::vector<int> levels = order.levels;
    std::vector<int> bands = order.bands;
    GdalWatch watch;
    const CPLErr result = dataset.BuildOverviews(
        order.resampling.c_str(), static_cast<int>(levels.size()), levels.data(),
        static_cast<int>(bands.size()), bands.empty() ? nullptr : bands.data(),
        order.progress != nullptr ? WatchProgress : GDALProgressFuncNone, &watched);
    FlushLevels(dataset);
    dataset.FlushCache();
    if (watched.cancelled) {
        SetLastError(file + ": the build of its pyramid was cancelled");
        return false;
    }
    return watch.Succeeded(result, file);
}

bool IsPyramidWhole(GDALDataset& dataset, const PyramidOrder& order, const std::string& file) {
    std::vector<int> bands = order.bands;
    if (bands.empty()) {
        bands.resize(static_cast<std::size_t>(dataset.GetRasterCount()));
        std::iota(bands.begin(), bands.end(), 1);
    }
    GdalWatch watch;
    const char* flaw = nullptr;
    for (std::size_t i = 0; i < bands.size() && flaw == nullptr; ++i)
        flaw = FlawOfLevels(dataset.GetRasterBand(bands[i]), static_cast<int>(order.levels.size()));
    if (flaw != nullptr && !watch.HasError()) {
        SetLastError(file + ": " + flaw);
        return false;
    }
    return watch.Succeeded(flaw == nullptr, file);
}

} // namespace zelto
