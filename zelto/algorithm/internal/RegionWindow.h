#pragma once

#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/PlatformTypes.h"

#include <cstdint>
#include <optional>

class CRasterSource;

/// @file
/// Which pixels an operation reads and into how many samples: pure arithmetic, nothing is read
/// here. Every operation has its own budget and its own way of counting; the differences are
/// part of the interface, because hosts rely on the numbers that come out.

namespace zelto {

/// Doubles that one band read may take (134,217,728 bytes) before a region is decimated or cut
/// in blocks.
inline constexpr int READ_BUDGET_SAMPLES = 16'777'216;

/// A rectangle of pixels to read: columns left … left + width − 1, rows top … top + height − 1.
struct PixelWindow {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelWindow&) const = default;
};

/// The grid of samples that a window is read into. Sample (i, j) stands for the image position
/// (i · step + left, j · step + top) of the window.
struct SampleGrid {
    double step = 1.0;
    int width = 0;
    int height = 0;
    /// Samples as the operation counts them; differs from width × height where that product
    /// does not fit the 32 bits the operation counts in.
    std::int64_t samples = 0;

    /// Whether a buffer of `samples` elements holds the grid.
    bool IsHeld() const { return samples == std::int64_t{width} * height; }
};

/// Low 32 bits of the product and of the difference, as signed numbers.
std::int32_t Product32(std::int32_t a, std::int32_t b);
std::int32_t Difference32(std::int32_t a, std::int32_t b);

/// Width and height of a rectangle whose right and bottom are the first column and row beyond.
PixelWindow WindowOf(const CRect& rect);

/// The part of `box` over the raster as a pixel window that lies inside the raster, or nothing
/// when they are disjoint.
std::optional<PixelWindow> WindowInside(CRasterSource& source, CBoundingBox box);

/// The same without limiting the pixels to the raster: the corner of a box at the raster's very
/// edge may reach one pixel beyond.
std::optional<PixelWindow> WindowUnder(CRasterSource& source, CBoundingBox box);

/// How the statistics of a raster AOI read a window of width × height pixels.
struct AoiStatisticsPlan {
    bool inBlocks = false; ///< too large to be read at once, and every pixel counts
    SampleGrid grid;       ///< when read at once
};

/// The pixels are counted in 32 bits; decimation starts above the budget of one band but then
/// aims at the bands' common budget.
AoiStatisticsPlan PlanAoiStatistics(int width, int height, int bandCount, bool approx);

/// Rows of each block but the last when a raster AOI is walked in blocks, at least 1.
int AoiStatisticsBlockRows(int width, int height);

/// How the covariance of a raster AOI reads; here the bands share the budget throughout.
struct CovariancePlan {
    bool inBlocks = false;
    int blockRows = 0; ///< when read in blocks
    SampleGrid grid;   ///< when read at once
};
CovariancePlan PlanAoiCovariance(int width, int height, int bandCount, bool approx);

/// Pixel by pixel up to `most` samples, decimated to that many beyond.
SampleGrid LimitedGrid(int width, int height, std::int64_t most);

/// Statistics, covariance and samples under a draw shape: 2^24 samples per band, however many
/// bands there are.
SampleGrid ShapeGrid(int width, int height);

/// Statistics of an AOI source or a box: always about 2^24 samples over all bands, so that small
/// windows are enlarged.
SampleGrid SharedBudgetGrid(int width, int height, int bandCount);

/// Histograms of a box: as the shared budget above 5,000,000 pixels (counted in 32 bits), pixel
/// by pixel up to there. Between that and the budget the window is enlarged.
SampleGrid HistogramGrid(int width, int height, int bandCount);

/// A whole band in about a megapixel: above 2^20 pixels the longer side becomes 1024 samples.
SampleGrid OverviewGrid(int width, int height);

} // namespace zelto
