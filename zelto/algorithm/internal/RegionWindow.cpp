#include "zelto/algorithm/internal/RegionWindow.h"

#include "zelto/baselib/internal/Truncate.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>
#include <cmath>

namespace zelto {

namespace {

constexpr double ONE_IN_READ_BUDGET = 5.9604644775390625e-08; // 2^-24
constexpr int HISTOGRAM_PIXELS_READ_WHOLE = 5'000'000;
constexpr std::int64_t OVERVIEW_PIXELS_READ_WHOLE = 1'048'576;
constexpr double ONE_IN_OVERVIEW_SIDE = 0.0009765625; // 1 / 1024

/// Each band's share of the common budget. A raster without bands reads nothing; it must only
/// not divide by zero on the way there.
int SharedBudget(int bandCount) {
    return READ_BUDGET_SAMPLES / std::max(bandCount, 1);
}

SampleGrid PixelByPixel(int width, int height, std::int64_t samples) {
    return {1.0, width, height, samples};
}

SampleGrid Decimated(int width, int height, double step) {
    SampleGrid grid;
    grid.step = step;
    grid.width = TruncateToInt32(width / step);
    grid.height = TruncateToInt32(height / step);
    grid.samples = Product32(grid.width, grid.height);
    return grid;
}

bool ExceedsBudget(std::int64_t samples) {
    return samples > READ_BUDGET_SAMPLES;
}

} // namespace

std::int32_t Product32(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

std::int32_t Difference32(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

PixelWindow WindowOf(const CRect& rect) {
    return {rect.left, rect.top, Difference32(rect.right, rect.left),
            Difference32(rect.bottom, rect.top)};
}

std::optional<PixelWindow> WindowInside(CRasterSource& source, CBoundingBox box) {
    CBoundingBox extent = source.GetExtent();
    if (!box.Intersect(&extent))
        return std::nullopt;
    CRect rect = source.GroundToImage(&box);
    rect.left = std::max(rect.left, 0);
    rect.top = std::max(rect.top, 0);
    rect.right = std::min(rect.right, source.GetWidth());
    rect.bottom = std::min(rect.bottom, source.GetHeight());
    return WindowOf(rect);
}

std::optional<PixelWindow> WindowUnder(CRasterSource& source, CBoundingBox box) {
    CBoundingBox extent = source.GetExtent();
    if (!box.Intersect(&extent))
        return std::nullopt;
    return WindowOf(source.GroundToImage(&box));
}

AoiStatisticsPlan PlanAoiStatistics(int width, int height, int bandCount, bool approx) {
    AoiStatisticsPlan plan;
    const int pixels = Product32(width, height);
    const bool exceeds = ExceedsBudget(pixels);
    plan.inBlocks = exceeds && !approx;
    if (!exceeds || plan.inBlocks)
        plan.grid = PixelByPixel(width, height, pixels);
    else
        plan.grid = Decimated(width, height,
                              std::sqrt(static_cast<double>(pixels) / SharedBudget(bandCount)));
    return plan;
}

int AoiStatisticsBlockRows(int width, int height) {
    return std::max(std::min(READ_BUDGET_SAMPLES / width, height), 1);
}

CovariancePlan PlanAoiCovariance(int width, int height, int bandCount, bool approx) {
    CovariancePlan plan;
    const std::int64_t pixels = std::int64_t{width} * height;
    const int budget = SharedBudget(bandCount);
    plan.grid = PixelByPixel(width, height, pixels);
    plan.inBlocks = !approx && pixels > budget;
    if (plan.inBlocks)
        plan.blockRows =
            std::max(std::min(READ_BUDGET_SAMPLES / width / std::max(bandCount, 1), height), 1);
    else if (pixels > budget)
        plan.grid = Decimated(width, height, std::sqrt(static_cast<double>(pixels) / budget));
    return plan;
}

SampleGrid LimitedGrid(int width, int height, std::int64_t most) {
    const std::int64_t pixels = std::int64_t{width} * height;
    if (pixels <= most)
        return PixelByPixel(width, height, pixels);
    return Decimated(width, height,
                     std::sqrt(static_cast<double>(pixels) / static_cast<double>(most)));
}

SampleGrid ShapeGrid(int width, int height) {
    const std::int64_t pixels = std::int64_t{width} * height;
    if (!ExceedsBudget(pixels))
        return PixelByPixel(width, height, pixels);
    return Decimated(width, height, std::sqrt(static_cast<double>(pixels) * ONE_IN_READ_BUDGET));
}

SampleGrid SharedBudgetGrid(int width, int height, int bandCount) {
    const double pixels = static_cast<double>(std::int64_t{width} * height);
    return Decimated(width, height, std::sqrt(pixels / SharedBudget(bandCount)));
}

SampleGrid HistogramGrid(int width, int height, int bandCount) {
    const int pixels = Product32(width, height);
    if (pixels > HISTOGRAM_PIXELS_READ_WHOLE)
        return SharedBudgetGrid(width, height, bandCount);
    return PixelByPixel(width, height, pixels);
}

SampleGrid OverviewGrid(int width, int height) {
    double step = 1.0;
    if (std::int64_t{width} * height > OVERVIEW_PIXELS_READ_WHOLE)
        step = std::max(width, height) * ONE_IN_OVERVIEW_SIDE;
    return Decimated(width, height, step);
}

} // namespace zelto
