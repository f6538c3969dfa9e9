#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/CovarianceSums.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterSource.h"

namespace {

std::unique_ptr<zelto::RegionRows> RowsOfBlock(CRasterAOI* aoi, const CRect& block, double step) {
    const zelto::PixelWindow samples = zelto::WindowOf(block);
    if (aoi == nullptr)
        return zelto::AllRows(samples.width);
    return zelto::RowsOf(*aoi, samples, {step, samples.width, samples.height});
}

} // namespace

bool CRasterAlgorithm::ComputeCovarianceFromAOI(CRasterSource* source, CRasterAOI* aoi,
                                                const double* mean, double* covariance, bool approx,
                                                CDataProgress* progress) {
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        if (covariance == nullptr)
            return zelto::RefuseMissing("matrix");
        const CRect whole = {0, 0, source->GetWidth(), source->GetHeight()};
        const zelto::PixelWindow window = zelto::WindowOf(aoi != nullptr ? aoi->GetRect() : whole);
        const std::vector<CRasterBand*> bands = zelto::BandsOf(*source);
        // The rectangle of an area wholly off the raster has negative sides.
        if (window.width < 1 || window.height < 1)
            return zelto::Refuse(*source, zelto::NO_PIXELS);
        const zelto::CovariancePlan plan = zelto::PlanAoiCovariance(
            window.width, window.height, static_cast<int>(bands.size()), approx);
        zelto::CovarianceSums sums(bands, mean, covariance);
        sums.Clear();
        __int64 count = 0;
        const auto addBlock = [&](std::span<const double*> samples, int firstRow, int rows) {
            CRect block;
            SetRect(&block, window.left, window.top + firstRow, window.left + plan.grid.width,
                    window.top + firstRow + rows);
            return ComputeCovarianceFromAOIByBlock(source, samples.data(), &block, aoi, mean,
                                                   covariance, count, plan.grid.step, progress);
        };
        const int blockRows = plan.inBlocks ? plan.blockRows : plan.grid.height;
        const bool read = zelto::VisitBandStrips(bands, window, plan.grid, blockRows, addBlock);
        sums.Finish(count);
        return read;
    });
}

bool CRasterAlgorithm::ComputeCovarianceFromAOIByBlock(CRasterSource* source, const double** rows,
                                                       CRect* block, CRasterAOI* aoi,
                                                       const double* mean, double* covariance,
                                                       __int64& count, double step,
                                                       CDataProgress* /*progress*/) {
    const zelto::PixelWindow samples = zelto::WindowOf(*block);
    zelto::RegionSpans spans;
    spans.Find(*RowsOfBlock(aoi, *block, step), 0, samples.height);
    zelto::CovarianceSums sums(zelto::BandsOf(*source), mean, covariance);
    sums.Add({rows, static_cast<std::size_t>(source->GetBandCount())},
             static_cast<std::size_t>(samples.width), spans, count);
    return true;
}

bool CRasterAlgorithm::ComputeCovarianceFromDrawshape(CRasterSource* source, CDrawShape* shape,
                                                      const double* mean, double* covariance,
                                                      CDataProgress* progress) {
    if (shape == nullptr)
        return ComputeCovarianceFromAOI(source, nullptr, mean, covariance, true, progress);
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        if (covariance == nullptr)
            return zelto::RefuseMissing("matrix");
        const auto window = zelto::WindowInside(*source, shape->m_extent);
        if (!window)
            return zelto::Refuse(*source, zelto::NO_OVERLAP);
        const std::vector<CRasterBand*> bands = zelto::BandsOf(*source);
        const zelto::SampleGrid grid = zelto::ShapeGrid(window->width, window->height);
        if (grid.samples < 1)
            return zelto::Refuse(*source, zelto::NO_PIXELS);
        const auto region = zelto::RowsOf(*shape, *source, *window, grid);
        zelto::CovarianceSums sums(bands, mean, covariance);
        sums.Clear();
        __int64 count = 0;
        zelto::RegionSpans spans;
        const bool read = zelto::VisitBandStrips(
            bands, *window, grid, grid.height,
            [&](std::span<const double*> samples, int firstRow, int rows) {
                spans.Find(*region, firstRow, rows);
                sums.Add(samples, static_cast<std::size_t>(grid.width), spans, count);
                return true;
            });
        sums.Finish(count);
        return read;
    });
}
