#include "cli/support/PyramidBuild.h"

#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/support/Failure.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Open.h"
#include "cli/support/Text.h"

#include <optional>

namespace zelto::cli {

void BuildPyramid(const std::string& path, const std::string& resampling, std::vector<int> bands,
                  CDataProgress& progress) {
    std::optional<ChangeInPlace> change; // until the file is closed
    CRasterSource source;
    OpenOrFail(source, path, GIS_UPDATE);
    for (const int band : bands)
        if (source.GetRasterBand(band - 1) == nullptr)
            throw UsageError("bands are numbered from 1 to " +
                             std::to_string(source.GetBandCount()));
    change.emplace();
    progress.BeginProgress(Wide(path).c_str(), 100);
    const auto build = [&] {
        ForgetReasons();
        return source.BuildOverviews(resampling.c_str(), static_cast<int>(bands.size()),
                                     bands.data(), &progress) == GIS_SUCCESS;
    };
    if (build())
        return;
    std::string reason = LastReason("its pyramid cannot be built");
    // GDAL cannot read some GeoTIFFs any more once it has removed the levels inside; opened
    // again, it can.
    const bool again = !Interrupted() && source.GetRasterBand(0) != nullptr &&
                       source.Reopen(GIS_UPDATE, false) == GIS_SUCCESS &&
                       source.GetRasterBand(0)->GetOverviewCount() == 0;
    if (again) {
        if (build())
            return;
        reason = LastReason("its pyramid cannot be built");
    }
    throw Failure(path, Interrupted() ? "interrupted" : reason);
}

} // namespace zelto::cli
