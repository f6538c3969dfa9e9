#include "cli/PyramidHint.h"

#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Message.h"
#include "host/report/RasterFacts.h"

#include <cstdint>

namespace zelto::cli {

namespace {

/// Smaller images are read in the time that a person does not notice.
constexpr std::int64_t LARGE = std::int64_t{4096} * 4096;

void Hint(const std::string& path, int width, int height, bool hasPyramid) {
    static bool told = false;
    if (told || hasPyramid || std::int64_t{width} * height <= LARGE || !host::IsOnTerminal())
        return;
    told = true;
    host::Remark(path + " has no pyramid, so that all of it was read; `zelto pyramids build " +
                 path + "` makes one");
}

} // namespace

void HintAtPyramid(const CRasterSource& raster, const std::string& path) {
    if (const CRasterBand* band = raster.GetRasterBand(0))
        Hint(path, raster.GetWidth(), raster.GetHeight(), band->GetOverviewCount() > 0);
}

void HintAtPyramid(const host::RasterFacts& facts) {
    if (!facts.bands.empty())
        Hint(facts.path, facts.width, facts.height, !facts.bands.front().overviews.empty());
}

} // namespace zelto::cli
