#include "host/files/RasterCopy.h"

#include "zelto/raster/RasterBand.h"

#include "host/base/Failure.h"
#include "host/base/GdalUse.h"
#include "host/base/Text.h"
#include "host/files/CopyFacts.h"
#include "host/files/NewRaster.h"
#include "host/files/Open.h"
#include "host/files/Output.h"
#include "host/files/RasterChoice.h"
#include "host/files/Strips.h"

#include <cpl_conv.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <numeric>

namespace zelto::host {

namespace {

CRect PixelWindow(const std::string& text) {
    const std::vector<double> numbers = ParseNumbers("--window", text, 4);
    for (const double number : numbers)
        if (number != std::trunc(number) || std::fabs(number) > std::numeric_limits<int>::max())
            throw UsageError("--window: pixels are counted in whole numbers");
    if (numbers[2] < 1 || numbers[3] < 1)
        throw UsageError("--window: it has at least one column and one row");
    return {static_cast<int>(numbers[0]), static_cast<int>(numbers[1]),
            static_cast<int>(std::min(numbers[0] + numbers[2], 2147483647.0)),
            static_cast<int>(std::min(numbers[1] + numbers[3], 2147483647.0))};
}

/// The part of the image that the options ask for, cut to the image.
CRect ChooseWindow(const CopyOptions& options, CRasterSource& source) {
    const CRect image = {0, 0, source.GetWidth(), source.GetHeight()};
    CRect wanted = image;
    if (!options.window.empty()) {
        wanted = PixelWindow(options.window);
    } else if (!options.box.empty()) {
        CBoundingBox box = ParseBox("--box", options.box);
        wanted = source.GroundToImage(&box);
    }
    CRect window;
    if (!IntersectRect(&window, &wanted, &image))
        throw Failure(options.from, "the part asked for lies outside the image");
    return window;
}

CopySelection Select(const CopyOptions& options, CRasterSource& source) {
    CopySelection selection;
    selection.bands.resize(static_cast<std::size_t>(source.GetBandCount()));
    std::iota(selection.bands.begin(), selection.bands.end(), 0);
    if (!options.bands.empty())
        selection.bands = ParseBands("--bands", options.bands, source.GetBandCount());
    selection.window = ChooseWindow(options, source);
    selection.type = options.type.empty() ? source.GetRasterBand(selection.bands[0])->GetDataType()
                                          : ParsePixelType(options.type);
    return selection;
}

/// The file's own geotransform, moved to the window's corner; false where it has none.
bool WindowGeoTransform(const CRasterSource& source, const CRect& window, double* geoTransform) {
    // Asked this way, the answer says whether the file lacks a geotransform.
    if (source.GetGeoTransform(geoTransform, true))
        return false;
    geoTransform[0] += window.left * geoTransform[1] + window.top * geoTransform[2];
    geoTransform[3] += window.left * geoTransform[4] + window.top * geoTransform[5];
    return true;
}

void CopyPixels(CRasterSource& source, const CopySelection& selection, CRasterSource& made,
                const CopyOptions& options, CDataProgress& progress) {
    const auto sampleSize = static_cast<std::size_t>(
        GDALGetDataTypeSizeBytes(static_cast<GDALDataType>(selection.type)));
    RowRange rows;
    rows.first = selection.window.top;
    rows.count = selection.Height();
    rows.bytesPerRow =
        static_cast<std::size_t>(selection.Width()) * selection.bands.size() * sampleSize;
    rows.blockHeight = std::max(source.GetRasterBand(selection.bands[0])->GetBlockYSize(), 1);
    std::vector<std::byte> samples;
    ForEachStrip(rows, L"copying", options.to, progress, [&](int first, int count) {
        const std::size_t plane = static_cast<std::size_t>(selection.Width()) *
                                  static_cast<std::size_t>(count) * sampleSize;
        samples.resize(plane * selection.bands.size());
        for (std::size_t i = 0; i < selection.bands.size(); ++i) {
            ForgetReasons();
            CRasterBand& band = *source.GetRasterBand(selection.bands[i]);
            if (band.ReadBlock(selection.window.left, first, selection.Width(), count,
                               samples.data() + i * plane, selection.Width(), count, selection.type,
                               0, 0) != GIS_SUCCESS)
                throw Failure(options.from, LastReason("cannot be read"));
        }
        WriteRows(made, first - selection.window.top, count, samples.data(), selection.type,
                  options.to);
    });
}

} // namespace

std::vector<std::string> CopyRaster(const CopyOptions& options, CDataProgress& progress) {
    const GdalUse use;
    if (!options.window.empty() && !options.box.empty())
        throw UsageError("--window and --box both choose the part to copy; give one");
    RequireFreePath(options.to, options.overwrite, {options.from});
    NewRasterLayout layout;
    layout.format = ChooseFormat(options.format, options.to);
    CheckCreationOptions(options.creation, layout.format);
    CRasterSource source;
    OpenOrFail(source, options.from);
    const CopySelection selection = Select(options, source);
    std::array<double, 6> geoTransform = {};
    if (WindowGeoTransform(source, selection.window, geoTransform.data()))
        layout.geoTransform = geoTransform.data();
    layout.width = selection.Width();
    layout.height = selection.Height();
    layout.bands = static_cast<int>(selection.bands.size());
    layout.type = selection.type;
    layout.wkt = source.GetProjectionWKT();
    layout.options = options.creation;
    if (layout.format == RDF_GTiff)
        layout.options = ColorOptions(source, selection, options.creation);
    // One file rather than two.
    const CPLConfigOptionSetter maskInside("GDAL_TIFF_INTERNAL_MASK", "YES", true);
    NewRaster made(options.to, layout);
    std::vector<std::string> lost = CopyFacts(source, selection, made.Raster());
    if (!CopyMask(source, selection, made.Raster(), options.from, options.to))
        lost.emplace_back("a mask");
    CopyPixels(source, selection, made.Raster(), options, progress);
    made.Commit();
    return lost;
}

} // namespace zelto::host
