#include "cli/support/PyramidBuild.h"

#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/support/ChangedRaster.h"
#include "cli/support/Failure.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Open.h"
#include "cli/support/Text.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <optional>

namespace zelto::cli {

namespace {

/// Whether the pyramid of a GeoTIFF is part of its file: GDAL removes it before it builds anew.
bool HasLevelsInside(CRasterSource& raster) {
    GDALDataset& dataset = *raster.GetGDALDataset();
    if (!EQUAL(dataset.GetDriverName(), "GTiff") || raster.GetRasterBand(0) == nullptr ||
        raster.GetRasterBand(0)->GetOverviewCount() == 0)
        return false;
    const CPLStringList files(dataset.GetFileList());
    for (int i = 0; i < files.Count(); ++i) {
        const char* const extension = CPLGetExtension(files[i]);
        if (EQUAL(extension, "ovr") || EQUAL(extension, "rrd"))
            return false;
    }
    return true;
}

void RequireBands(const CRasterSource& source, const std::vector<int>& bands) {
    for (const int band : bands)
        if (source.GetRasterBand(band - 1) == nullptr)
            throw UsageError("bands are numbered from 1 to " +
                             std::to_string(source.GetBandCount()));
}

/// @param path the file, or a copy that takes its place
/// @param reason gets that of the first failure
/// @return false where the file cannot have a pyramid or the user has asked to stop
bool Build(const std::string& path, const std::string& resampling, std::vector<int> bands,
           CDataProgress& progress, std::string& reason) {
    CRasterSource source;
    OpenOrFail(source, path, GIS_UPDATE);
    const auto build = [&] {
        ForgetReasons();
        return source.BuildOverviews(resampling.c_str(), static_cast<int>(bands.size()),
                                     bands.data(), &progress) == GIS_SUCCESS;
    };
    if (build())
        return true;
    reason = LastReason(reason);
    // GDAL cannot read some GeoTIFFs any more once it has removed the levels inside; opened
    // again, it can.
    return !Interrupted() && source.GetRasterBand(0) != nullptr &&
           source.Reopen(GIS_UPDATE, false) == GIS_SUCCESS &&
           source.GetRasterBand(0)->GetOverviewCount() == 0 && build();
}

} // namespace

void BuildPyramid(const std::string& path, const std::string& resampling,
                  const std::vector<int>& bands, CDataProgress& progress) {
    bool isInside = false;
    {
        CRasterSource source;
        OpenOrFail(source, path, GIS_UPDATE);
        RequireBands(source, bands);
        isInside = HasLevelsInside(source);
    }
    progress.BeginProgress(Wide(path).c_str(), 100);
    std::optional<ChangedRaster> copy;
    std::optional<ChangeInPlace> change;
    if (isInside)
        copy.emplace(path);
    else
        change.emplace();
    std::string reason = "its pyramid cannot be built";
    if (!Build(copy ? copy->Path() : path, resampling, bands, progress, reason)) {
        if (Interrupted())
            throw Failure(path, "interrupted");
        throw copy ? copy->Fail(reason) : Failure(path, LastReason(reason));
    }
    if (copy)
        copy->Commit();
}

} // namespace zelto::cli
