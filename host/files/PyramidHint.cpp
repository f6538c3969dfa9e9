#include "host/files/PyramidHint.h"

#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Message.h"

#include <cstdint>

namespace zelto::host {

namespace {

/// Smaller images are read in the time that a person does not notice.
constexpr std::int64_t LARGE = std::int64_t{4096} * 4096;

} // namespace

void HintAtPyramid(const CRasterSource& raster, const std::string& path) {
    static bool told = false;
    const CRasterBand* band = raster.GetRasterBand(0);
    const bool isLarge = std::int64_t{raster.GetWidth()} * raster.GetHeight() > LARGE;
    if (told || !isLarge || band == nullptr || band->GetOverviewCount() > 0 || !IsOnTerminal())
        return;
    told = true;
    Remark(path + " has no pyramid, so that all of it was read; `zelto pyramids build " + path +
           "` makes one");
}

} // namespace zelto::host
