#include "cli/RenderStretch.h"

#include "zelto/geometry/Point2D.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "cli/support/Failure.h"
#include "cli/support/Open.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zelto::cli {

namespace {

constexpr int TABLE_SIZE = 256;

template <typename Use>
void ForEachShownBand(CRasterSource& source, Use use) {
    for (const int index : source.GetShowBandArray())
        if (CRasterBand* band = source.GetRasterBand(index))
            use(*band);
}

void RequireRange(const StretchOptions& options) {
    if (options.low && options.high && *options.low >= *options.high)
        throw UsageError("--low must be less than --high");
}

/// The table of a gamma curve, with the points it was made from.
void ApplyTable(CRasterSource& source, double gamma) {
    std::array<unsigned char, TABLE_SIZE> table;
    std::vector<CPoint2D> curve;
    for (int i = 0; i < TABLE_SIZE; ++i) {
        const double value = 255.0 * std::pow(i / 255.0, 1.0 / gamma);
        table[static_cast<std::size_t>(i)] = static_cast<unsigned char>(std::lround(value));
        if (i % 51 == 0)
            curve.emplace_back(i, value);
    }
    ForEachShownBand(source, [&](CRasterBand& band) {
        band.SetEnhancedData(table.data(), HistogramLineCurve, curve.data(),
                             static_cast<int>(curve.size()));
    });
}

/// The zoom stretches take their bounds in display values; 8-bit bands take those of
/// StretchZoomLinear002 as they are.
void ApplyZoom(CRasterSource& source, const StretchOptions& options) {
    ForEachShownBand(source, [&](CRasterBand& band) {
        const bool raw = options.type == StretchZoomLinear002 && band.GetDataType() == PDT_Byte;
        // The band's own bounds are asked for only where they are needed: they take a sample.
        const double low = options.low ? *options.low : raw ? band.GetStdDevLowerBound() : 0.0;
        const double high = options.high ? *options.high : raw ? band.GetStdDevUpperBound() : 255.0;
        band.SetStretchData(options.type, 0.0, 0.0, low, high, 0.0, 0.0);
    });
}

/// Equalises by the histogram between two bounds instead of the whole range. The engine finds a
/// value's bucket from the value itself, so the picture is even where the bounds begin at zero.
void ApplyCustomEqualization(CRasterSource& source, const StretchOptions& options,
                             const std::string& path) {
    ForEachShownBand(source, [&](CRasterBand& band) {
        const bool isByte = band.GetDataType() == PDT_Byte;
        const double high = options.high ? *options.high : isByte ? 255.0 : band.GetMaximum();
        const double low = options.low ? *options.low : high > 0.0 ? 0.0 : band.GetMinimum();
        std::array<int, TABLE_SIZE> counts{};
        if (!band.GetHistogram(low, high, TABLE_SIZE, counts.data(), false, true, nullptr) ||
            !band.SetCustomHistogram(low, high, TABLE_SIZE, counts.data()))
            throw Failure(path, LastReason("the histogram between the bounds cannot be computed"));
    });
}

/// The Wallis models start from the statistics of the displayed values, which a first drawing
/// of the whole image gives.
void ApplyWallis(CRasterSource& source, int model, const std::string& path) {
    constexpr int SIDE = 512;
    const int longest = std::max(source.GetWidth(), source.GetHeight());
    const double factor = std::min(1.0, static_cast<double>(SIDE) / longest);
    const int w = std::max(1, static_cast<int>(source.GetWidth() * factor));
    const int h = std::max(1, static_cast<int>(source.GetHeight() * factor));
    std::vector<unsigned char> image(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 4);
    CBoundingBox box = source.GetExtent();
    if (!source.GetShowData(&box, w, h, image.data(), false) || !source.ReadWallisColorModel(model))
        throw Failure(path, LastReason("its pixels cannot be read"));
}

} // namespace

const std::vector<std::string>& StretchNames() {
    static const std::vector<std::string> names = {
        "none",       "table",   "linear", "stddev", "equalize",
        "autolevels", "zoom002", "wallis", "zoom",   "custom-equalize"};
    return names;
}

StretchType ParseStretch(const std::string& name) {
    const auto& names = StretchNames();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found != names.end())
        return static_cast<StretchType>(found - names.begin());
    std::string known;
    for (const std::string& each : names)
        known += (known.empty() ? "" : ", ") + each;
    throw UsageError("--stretch: '" + name + "' is none of " + known);
}

bool SuitsShownBands(const CRasterSource& source, StretchType type) {
    return type != StretchWallis || source.GetShowBandCount() == 3;
}

void ApplyStretch(CRasterSource& source, const StretchOptions& options, const std::string& path) {
    RequireRange(options);
    if (!SuitsShownBands(source, options.type))
        throw UsageError("--stretch wallis: it takes three bands, and one is shown");
    source.SetStretchType(options.type);
    switch (options.type) {
    case StretchEnhanceTable:
        ApplyTable(source, options.gamma);
        break;
    case StretchHistEqualize:
        source.EnableHistogramEqualize();
        break;
    case StretchAutoLevels:
        source.EnableHistogramEqualize();
        source.SetAutoLevelThresold(options.threshold);
        break;
    case StretchZoomLinear:
    case StretchZoomLinear002:
        ApplyZoom(source, options);
        break;
    case StretchWallis:
        ApplyWallis(source, options.wallisModel, path);
        break;
    case StretchCustomHistEqualize:
        ApplyCustomEqualization(source, options, path);
        break;
    default:
        break;
    }
}

} // namespace zelto::cli
