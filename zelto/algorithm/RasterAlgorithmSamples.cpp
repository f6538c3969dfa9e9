#include "zelto/algorithm/ImgSamplePixels.h"
#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Moments.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionRows.h"
#include "zelto/algorithm/internal/SampleReader.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include <cmath>
#include <new>
#include <optional>
#include <utility>

namespace {

using BandSamples = std::vector<std::unique_ptr<double[]>>;

/// All bands of the grid, whole; empty where a band cannot be read.
std::optional<BandSamples> ReadBands(const std::vector<CRasterBand*>& bands,
                                     const zelto::PixelWindow& window,
                                     const zelto::SampleGrid& grid) {
    BandSamples samples;
    for (std::size_t b = 0; b < bands.size(); ++b) {
        samples.push_back(zelto::AllocateSamples<double>(grid.samples));
        if (!samples.back())
            throw std::bad_alloc();
    }
    for (std::size_t b = 0; b < bands.size(); ++b) {
        const bool read = zelto::ReadSamples(bands[b]->GetGDALBand(), window, grid.width,
                                             grid.height, samples[b].get());
        bands[b]->FlushCache();
        if (!read)
            return std::nullopt;
    }
    return samples;
}

/// The values of a band that count as typical of a shape.
struct TypicalRange {
    double low = 0.0;
    double high = 0.0;

    bool Holds(double value) const { return !(value < low || value > high); }
};

/// Mean and deviation of all samples in the shape, no-data ones included, and two deviations to
/// either side. Without samples nothing is a number, and nothing is asked of it.
TypicalRange TypicalRangeOf(const double* samples, std::size_t width,
                            const zelto::RegionSpans& inside) {
    double sum = 0.0;
    double count = 0.0;
    inside.Visit(width, [&](std::size_t begin, std::size_t length) {
        for (std::size_t i = begin; i < begin + length; ++i)
            sum += samples[i];
        count += static_cast<double>(length);
    });
    const double mean = sum / count;
    double squares = 0.0;
    inside.Visit(width, [&](std::size_t begin, std::size_t length) {
        for (std::size_t i = begin; i < begin + length; ++i)
            squares += std::pow(samples[i] - mean, 2.0);
    });
    const double deviation = std::sqrt(squares / count);
    return {mean - 2 * deviation, mean + 2 * deviation};
}

/// Appends the samples that are typical in every band.
class SampleCollector {
  public:
    SampleCollector(const BandSamples& samples, zelto::NoDataRule noData,
                    std::vector<TypicalRange> ranges)
        : m_samples(samples), m_noData(noData), m_ranges(std::move(ranges)) {}

    void Collect(std::size_t position, CImgSamplePixels& result) const {
        std::vector<double> sample;
        sample.reserve(m_samples.size());
        for (std::size_t b = 0; b < m_samples.size(); ++b) {
            const double value = m_samples[b][position];
            if (m_noData.Holds(value) || !m_ranges[b].Holds(value))
                return;
            sample.push_back(value);
        }
        result.Add(std::move(sample));
    }

  private:
    const BandSamples& m_samples;
    zelto::NoDataRule m_noData;
    std::vector<TypicalRange> m_ranges;
};

} // namespace

bool CRasterAlgorithm::GetSamplePixelFromDrawShape(CRasterSource* source, CDrawShape* shape,
                                                   CImgSamplePixels* samples) {
    return zelto::NoThrow(false, [&] {
        if (!zelto::IsUsable(source))
            return false;
        if (shape == nullptr || samples == nullptr)
            return zelto::RefuseMissing("shape or container");
        const auto window = zelto::WindowInside(*source, shape->m_extent);
        if (!window)
            return zelto::Refuse(*source, zelto::NO_OVERLAP);
        const zelto::SampleGrid grid = zelto::ShapeGrid(window->width, window->height);
        if (grid.samples < 1)
            return zelto::Refuse(*source, zelto::NO_PIXELS);
        const std::vector<CRasterBand*> bands = zelto::BandsOf(*source);
        const auto values = ReadBands(bands, *window, grid);
        if (!values)
            return false;
        zelto::RegionSpans inside;
        inside.Find(*zelto::RowsOf(*shape, *source, *window, grid), 0, grid.height);
        const auto width = static_cast<std::size_t>(grid.width);
        std::vector<TypicalRange> ranges;
        for (const auto& band : *values)
            ranges.push_back(TypicalRangeOf(band.get(), width, inside));
        // One no-data value, the last band's, counts for all bands.
        const auto noData =
            bands.empty() ? zelto::NoDataRule() : zelto::NoDataRule::Of(*bands.back());
        const SampleCollector collector(*values, noData, std::move(ranges));
        inside.Visit(width, [&](std::size_t begin, std::size_t length) {
            for (std::size_t i = begin; i < begin + length; ++i)
                collector.Collect(i, *samples);
        });
        return true;
    });
}
