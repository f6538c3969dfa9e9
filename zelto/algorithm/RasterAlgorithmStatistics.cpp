#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/RegionMoments.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/aoi/RasterAOI.h"
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
    bool done = false;
    for (int b = 0; b < source.GetBandCount(); ++b)
        done = ComputeWholeBand(*source.GetRasterBand(b), static_cast<std::size_t>(b), arrays,
                                approx, progress);
    return done;
}

} // namespace

bool CRasterAlgorithm::ComputeStaticsFromAOI(CRasterSource* source, CRasterAOI* aoi, __int64& count,
                                             double* min, double* max, double* mean,
                                             double* covariance, bool approx,
                                             CDataProgress* progress) {
    if (source == nullptr)
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
        return finish(ComputeStaticsFormAOIByBlock(source, aoi, count, min, max, mean, progress),
                      false);
    if (plan.grid.samples < 1 || !plan.grid.IsHeld())
        return false;
    const auto region = zelto::RowsOf(*aoi, window, plan.grid);
    const auto moments =
        zelto::AccumulateMoments(zelto::BandsOf(*source), window, plan.grid, *region);
    if (!moments)
        return false;
    count = zelto::WriteMoments(*moments, {min, max, mean});
    // Hosts take the outputs and not the answer, which says false even now.
    return finish(false, approx);
}

bool CRasterAlgorithm::ComputeStaticsFromDrawshape(CRasterSource* source, CDrawShape* shape,
                                                   __int64& count, double* min, double* max,
                                                   double* mean, double* covariance,
                                                   CDataProgress* progress) {
    if (source == nullptr)
        return false;
    if (shape == nullptr)
        return ComputeStaticsFromAOI(source, nullptr, count, min, max, mean, covariance, true,
                                     progress);
    const auto window = zelto::WindowInside(*source, shape->m_extent);
    if (!window)
        return false;
    const zelto::SampleGrid grid = zelto::ShapeGrid(window->width, window->height);
    if (grid.samples < 1)
        return false;
    const auto region = zelto::RowsOf(*shape, *source, *window, grid);
    const auto moments = zelto::AccumulateMoments(zelto::BandsOf(*source), *window, grid, *region);
    if (!moments)
        return false;
    count = zelto::WriteMoments(*moments, {min, max, mean});
    if (covariance != nullptr)
        return ComputeCovarianceFromDrawshape(source, shape, mean, covariance, progress);
    return true;
}
