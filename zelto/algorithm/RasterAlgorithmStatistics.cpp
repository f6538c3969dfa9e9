#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionMoments.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

namespace {

/// Statistics of one whole band, cached or by GDAL, as the requested arrays decide.
bool ComputeWholeBand(CRasterBand& band, std::size_t index, const zelto::MomentArrays& arrays,
                      bool approx, CDataProgress* progress) {
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    bool done = false;
    if (arrays.mean != nullptr) {
        double deviation = 0.0;
        done = band.ComputeStatics(&minimum, &maximum, &mean, &deviation, approx, progress);
        arrays.mean[index] = mean;
    } else {
        done = band.ComputeMinMax(&minimum, &maximum, approx);
    }
    if (arrays.minimum != nullptr)
        arrays.minimum[index] = minimum;
    if (arrays.maximum != nullptr)
        arrays.maximum[index] = maximum;
    return done;
}

/// @return the success of the last band
bool ComputeWholeRaster(CRasterSource& source, const zelto::MomentArrays& arrays, bool approx,
                        CDataProgress* progress) {
    if (source.GetBandCount() < 1)
        return zelto::Refuse(source, "the raster has no bands");
    const std::string file = CommonFun::U2M(source.GetFilePath());
    bool done = false;
    for (int b = 0; b < source.GetBandCount(); ++b) {
        zelto::GdalWatch watch;
        const bool answer = ComputeWholeBand(*source.GetRasterBand(b), static_cast<std::size_t>(b),
                                             arrays, approx, progress);
        done = watch.Succeeded(answer, file);
    }
    return done;
}

} // namespace

bool CRasterAlgorithm::ComputeStaticsFromAOI(CRasterSource* source, CRasterAOI* aoi, __int64& count,
                                             double* min, double* max, double* mean,
                                             double* covariance, bool approx,
                                             CDataProgress* progress) {
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        const auto finish = [&](bool result, bool approximateCovariance) {
            if (covariance == nullptr)
                return result;
            return ComputeCovarianceFromAOI(source, aoi, mean, covariance, approximateCovariance,
                                            progress);
        };
        if (aoi == nullptr) {
            const bool done = ComputeWholeRaster(*source, {min, max, mean}, approx, progress);
            count = __int64{source->GetWidth()} * source->GetHeight();
            return finish(done, approx);
        }
        const zelto::PixelWindow window = zelto::WindowOf(aoi->GetRect());
        const auto plan =
            zelto::PlanAoiStatistics(window.width, window.height, source->GetBandCount(), approx);
        if (plan.inBlocks)
            return finish(
                ComputeStaticsFormAOIByBlock(source, aoi, count, min, max, mean, progress), false);
        if (!plan.grid.IsHeld())
            return zelto::Refuse(*source, zelto::TOO_MANY_PIXELS);
        if (plan.grid.samples < 1)
            return zelto::Refuse(*source, zelto::NO_PIXELS);
        const auto region = zelto::RowsOf(*aoi, window, plan.grid);
        const auto moments =
            zelto::AccumulateMoments(zelto::BandsOf(*source), window, plan.grid, *region);
        if (!moments)
            return zelto::Refuse(*source, zelto::NO_MEMORY);
        count = zelto::WriteMoments(*moments, {min, max, mean});
        // Hosts take the outputs and not the answer, which says false even now.
        return finish(false, approx);
    });
}

bool CRasterAlgorithm::ComputeStaticsFromDrawshape(CRasterSource* source, CDrawShape* shape,
                                                   __int64& count, double* min, double* max,
                                                   double* mean, double* covariance,
                                                   CDataProgress* progress) {
    if (shape == nullptr)
        return ComputeStaticsFromAOI(source, nullptr, count, min, max, mean, covariance, true,
                                     progress);
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        const auto window = zelto::WindowInside(*source, shape->m_extent);
        if (!window)
            return zelto::Refuse(*source, zelto::NO_OVERLAP);
        const zelto::SampleGrid grid = zelto::ShapeGrid(window->width, window->height);
        if (grid.samples < 1)
            return zelto::Refuse(*source, zelto::NO_PIXELS);
        const auto region = zelto::RowsOf(*shape, *source, *window, grid);
        const auto moments =
            zelto::AccumulateMoments(zelto::BandsOf(*source), *window, grid, *region);
        if (!moments)
            return zelto::Refuse(*source, zelto::NO_MEMORY);
        count = zelto::WriteMoments(*moments, {min, max, mean});
        if (covariance != nullptr)
            return ComputeCovarianceFromDrawshape(source, shape, mean, covariance, progress);
        return true;
    });
}
