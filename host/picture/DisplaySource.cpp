#include "host/picture/DisplaySource.h"

#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zelto::host {

namespace {

/// A grid of square or oblong pixels, north up.
struct Grid {
    std::array<double, 6> geoTransform = {};
    int width = 0;
    int height = 0;
};

/// A length in pixels of which each is one of the picture's, or an odd part or multiple of it.
struct PixelLength {
    double length = 0.0;
    double step = 0.0; ///< of the picture's pixel: where the grid may begin
};

/// As coarse as the picture but no coarser than the file, whose statistics are taken from this
/// grid; finer than the file only where that is no more to read.
/// @param shown length of a pixel of the picture
/// @param own length of a pixel of the file
PixelLength Choose(double shown, double own, bool mayBeFiner) {
    double parts = 1.0; // odd: the middle of the picture's pixel is that of a part
    while (shown / parts > own * 1.5)
        parts += 2.0;
    double times = 1.0;
    while (!mayBeFiner && shown * times < own * 0.75)
        times += 1.0;
    return {shown / parts * times, shown * times};
}

/// The pixels from `start` on that reach from `first` to `last`, beginning a whole number of steps
/// away.
/// @return number of pixels; 0 when there are too many
int Reach(double& start, double first, double last, const PixelLength& pixel) {
    start += std::floor((first - start) / pixel.step) * pixel.step;
    const double count = std::ceil((last - start) / pixel.length - 1e-6);
    return count >= 1.0 && count < std::numeric_limits<int>::max() ? static_cast<int>(count) : 0;
}

/// A grid over the whole image on which the pixels of the picture lie. Width 0 where there is none.
Grid GridOf(const CRasterSource& source, const View& view) {
    constexpr double MOST_PIXELS = 64.0 * 1024 * 1024;
    const CBoundingBox extent = source.GetExtent();
    const double shownX = view.box.GetWidth() / view.width;
    const double shownY = view.box.GetHeight() / view.height;
    const double pixels = extent.GetWidth() / shownX * (extent.GetHeight() / shownY);
    const bool mayBeFiner = pixels <= MOST_PIXELS;
    const PixelLength x = Choose(shownX, std::fabs(source.GetXResolution()), mayBeFiner);
    const PixelLength y = Choose(shownY, std::fabs(source.GetYResolution()), mayBeFiner);
    double left = view.box.GetLeft();
    double fromTop = -view.box.GetTop();
    Grid grid;
    grid.width = Reach(left, extent.GetLeft(), extent.GetRight(), x);
    grid.height = Reach(fromTop, -extent.GetTop(), -extent.GetBottom(), y);
    if (grid.height == 0)
        grid.width = 0;
    // A drawing looks up the corners of its pixels, which rounding must not take to the next one.
    constexpr double HAIR = 0.01;
    grid.geoTransform = {left - HAIR * x.length,     x.length, 0.0,
                         -fromTop + HAIR * y.length, 0.0,      -y.length};
    return grid;
}

} // namespace

void OpenForDisplay(CRasterSource& source, const std::string& path, const std::string& srs,
                    const View* view) {
    if (srs.empty()) {
        source.SetForDisplay(true);
        OpenOrFail(source, path, GIS_READONLY, true);
        return;
    }
    const Grid grid = view != nullptr ? GridOf(source, *view) : Grid();
    source.SetForDisplay(true);
    ForgetReasons();
    const GISError error =
        grid.width > 0 ? source.OpenWarpedToGrid(Wide(path).c_str(), GIS_READONLY, srs.c_str(),
                                                 grid.geoTransform.data(), grid.width, grid.height)
                       : source.OpenAndWarped(Wide(path).c_str(), GIS_READONLY, srs.c_str());
    if (error != GIS_SUCCESS)
        throw Failure(path, ReasonForFailure(path, error));
}

std::unique_ptr<CRasterSource> OpenForPicture(const std::string& path, const std::string& srs,
                                              const View& view) {
    auto source = std::make_unique<CRasterSource>();
    OpenForDisplay(*source, path, srs);
    if (!srs.empty())
        OpenForDisplay(*source, path, srs, &view);
    return source;
}

void ShowBandsByColor(CRasterSource& source) {
    std::array<int, 3> bands = {-1, -1, -1};
    GDALDataset* const dataset = source.GetGDALDataset();
    const int count = dataset != nullptr ? dataset->GetRasterCount() : 0;
    for (int i = count - 1; i >= 0; --i) {
        const int color = dataset->GetRasterBand(i + 1)->GetColorInterpretation() - GCI_RedBand;
        if (color >= 0 && color < 3)
            bands[static_cast<std::size_t>(color)] = i;
    }
    if (bands[0] >= 0 && bands[1] >= 0 && bands[2] >= 0 && count == source.GetBandCount())
        source.SetShowBandNum(3, bands.data());
}

} // namespace zelto::host
