#include "host/files/PyramidBuild.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Text.h"
#include "host/files/ChangedRaster.h"
#include "host/files/Open.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <filesystem>
#include <optional>
#include <system_error>

namespace zelto::host {

namespace {

bool EndsWithExtension(const std::string& path, const char* extension) {
    return EQUAL(CPLGetExtension(path.c_str()), extension);
}

/// Whether the names of a new pyramid belong to another image's.
bool AreNamesTaken(const std::string& path, const CPLStringList& ownFiles) {
    for (const char* const extension : {"aux", "rrd"}) {
        const std::string beside = CPLResetExtension(path.c_str(), extension);
        std::error_code ignored;
        if (std::filesystem::exists(beside, ignored) && ownFiles.FindString(beside.c_str()) < 0)
            return true;
    }
    return false;
}

/// Whether the pyramid of a GeoTIFF is part of its file, which GDAL removes before it builds anew,
/// so that a copy saves it. A copy elsewhere would not see another image's pyramid beside.
bool IsBuiltInCopy(CRasterSource& raster, const std::string& path) {
    GDALDataset& dataset = *raster.GetGDALDataset();
    if (!EQUAL(dataset.GetDriverName(), "GTiff") || raster.GetRasterBand(0) == nullptr ||
        raster.GetRasterBand(0)->GetOverviewCount() == 0)
        return false;
    const CPLStringList files(dataset.GetFileList());
    for (int i = 0; i < files.Count(); ++i)
        if (EndsWithExtension(files[i], "ovr") || EndsWithExtension(files[i], "rrd"))
            return false;
    return !AreNamesTaken(path, files);
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
    // again, it can. Not one that it has left broken.
    GdalWatch watch;
    return !Interrupted() && source.GetRasterBand(0) != nullptr &&
           source.Reopen(GIS_UPDATE, false) == GIS_SUCCESS && !watch.HasError() &&
           source.GetRasterBand(0)->GetOverviewCount() == 0 && build();
}

} // namespace

void BuildPyramid(const std::string& path, const std::string& resampling,
                  const std::vector<int>& bands, CDataProgress& progress) {
    bool isCopied = false;
    {
        CRasterSource source;
        OpenOrFail(source, path, GIS_UPDATE);
        RequireBands(source, bands);
        isCopied = IsBuiltInCopy(source, path);
    }
    progress.BeginProgress(Wide(path).c_str(), 100);
    std::optional<ChangedRaster> copy;
    std::optional<ChangeInPlace> change;
    if (isCopied)
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

} // namespace zelto::host
