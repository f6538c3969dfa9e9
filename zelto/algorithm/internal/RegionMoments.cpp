#include "zelto/algorithm/internal/RegionMoments.h"

#include "zelto/raster/RasterBand.h"

namespace zelto {

namespace {

/// A band while it is being read.
struct BandPass {
    CRasterBand* band;
    MomentsAdder adder;
    Moments moments{};
    bool failed = false;
};

void AddStrip(BandPass& pass, std::size_t band, const WindowStrips& strips, int firstRow,
              std::size_t width, const RegionSpans& spans, double* samples) {
    if (pass.failed)
        return;
    pass.failed = !strips.Read(band, firstRow, samples);
    if (!pass.failed)
        spans.Visit(width, [&](std::size_t begin, std::size_t count) {
            pass.adder.Add(pass.moments, {samples + begin, count});
        });
}

} // namespace

std::optional<std::vector<Moments>> AccumulateMoments(const std::vector<CRasterBand*>& bands,
                                                      const PixelWindow& window,
                                                      const SampleGrid& grid, RegionRows& region) {
    if (grid.width < 1 || grid.height < 1)
        return std::vector<Moments>(bands.size());
    WindowStrips strips(bands, window, grid, grid.height);
    const auto samples = AllocateSamples<double>(strips.Capacity());
    if (!samples)
        return std::nullopt;
    std::vector<BandPass> passes;
    passes.reserve(bands.size());
    for (CRasterBand* band : bands)
        passes.push_back({band, MomentsAdder(*band)});
    RegionSpans spans;
    for (int row = 0; row < grid.height; row = strips.NextRow(row)) {
        spans.Find(region, row, strips.RowsFrom(row));
        strips.Prepare(row);
        for (std::size_t b = 0; b < passes.size(); ++b)
            AddStrip(passes[b], b, strips, row, static_cast<std::size_t>(grid.width), spans,
                     samples.get());
    }
    std::vector<Moments> moments;
    for (const BandPass& pass : passes) {
        pass.band->FlushCache();
        moments.push_back(pass.failed ? Moments() : pass.moments);
    }
    return moments;
}

std::int64_t WriteMoments(const std::vector<Moments>& moments, const MomentArrays& arrays) {
    double minimum = 0.0;
    double maximum = 0.0;
    for (std::size_t b = 0; b < moments.size(); ++b) {
        if (moments[b].count > 0) {
            minimum = moments[b].minimum;
            maximum = moments[b].maximum;
            if (arrays.mean != nullptr)
                arrays.mean[b] = moments[b].sum / static_cast<double>(moments[b].count);
        }
        if (arrays.minimum != nullptr)
            arrays.minimum[b] = minimum;
        if (arrays.maximum != nullptr)
            arrays.maximum[b] = maximum;
    }
    return moments.empty() ? 0 : moments.back().count;
}

} // namespace zelto
