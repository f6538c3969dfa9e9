#include "zelto/algorithm/internal/CovarianceSums.h"

#include "zelto/algorithm/internal/Moments.h"
#include "zelto/raster/RasterBand.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zelto {

namespace {

/// Rows and columns of the matrix that are summed together: as many sums as the processor keeps
/// in registers.
constexpr std::size_t TILE = 4;

/// Four bands of a tile. Places beyond the last band repeat it; their sums are dropped.
struct TileBands {
    std::array<const double*, TILE> samples;
    std::array<double, TILE> mean;

    TileBands(std::span<const double* const> allSamples, std::span<const double> allMeans,
              std::size_t first) {
        for (std::size_t k = 0; k < TILE; ++k) {
            const std::size_t band = std::min(first + k, allSamples.size() - 1);
            samples[k] = allSamples[band];
            mean[k] = allMeans[band];
        }
    }
};

using TileSums = std::array<std::array<double, TILE>, TILE>;

void AddProducts(TileSums& sums, const TileBands& rows, const TileBands& columns, std::size_t begin,
                 std::size_t count) {
    TileSums local = sums;
    for (std::size_t p = begin; p < begin + count; ++p) {
        std::array<double, TILE> deviations;
        for (std::size_t j = 0; j < TILE; ++j)
            deviations[j] = columns.samples[j][p] - columns.mean[j];
        for (std::size_t i = 0; i < TILE; ++i) {
            const double deviation = rows.samples[i][p] - rows.mean[i];
            for (std::size_t j = 0; j < TILE; ++j)
                local[i][j] += deviation * deviations[j];
        }
    }
    sums = local;
}

} // namespace

CovarianceSums::CovarianceSums(const std::vector<CRasterBand*>& bands, const double* mean,
                               double* covariance)
    : m_bandCount(bands.size()), m_mean(bands.size()), m_covariance(covariance) {
    if (mean != nullptr)
        std::copy_n(mean, bands.size(), m_mean.begin());
    for (std::size_t b = 0; b < bands.size(); ++b)
        if (bands[b]->IsHaveNoData())
            m_noDataBands.push_back({b, bands[b]->GetNoDataValue()});
}

void CovarianceSums::Clear() {
    std::fill_n(m_covariance, m_bandCount * m_bandCount, 0.0);
}

bool CovarianceSums::IsValid(std::span<const double* const> samples, std::size_t position) const {
    return std::none_of(m_noDataBands.begin(), m_noDataBands.end(), [&](const NoDataBand& noData) {
        return NoDataRule{true, noData.value}.Holds(samples[noData.band][position]);
    });
}

void CovarianceSums::Add(std::span<const double* const> samples, std::size_t width,
                         const RegionSpans& spans, std::int64_t& count) {
    spans.Visit(width, [&](std::size_t begin, std::size_t length) {
        const std::size_t end = begin + length;
        while (begin < end) {
            std::size_t runEnd = end;
            if (!m_noDataBands.empty()) {
                while (begin < end && !IsValid(samples, begin))
                    ++begin;
                runEnd = begin;
                while (runEnd < end && IsValid(samples, runEnd))
                    ++runEnd;
            }
            AddRun(samples, begin, runEnd - begin);
            count += static_cast<std::int64_t>(runEnd - begin);
            begin = runEnd;
        }
    });
}

void CovarianceSums::AddRun(std::span<const double* const> samples, std::size_t begin,
                            std::size_t count) {
    for (std::size_t row = 0; row < m_bandCount; row += TILE)
        for (std::size_t column = 0; column <= row; column += TILE)
            AddTile(samples, row, column, begin, count);
}

void CovarianceSums::AddTile(std::span<const double* const> samples, std::size_t firstRow,
                             std::size_t firstColumn, std::size_t begin, std::size_t count) {
    TileSums sums{};
    const auto forEachEntry = [&](auto visit) {
        for (std::size_t i = 0; i < TILE && firstRow + i < m_bandCount; ++i)
            for (std::size_t j = 0; j < TILE && firstColumn + j <= firstRow + i; ++j)
                visit(sums[i][j], m_covariance[(firstRow + i) * m_bandCount + firstColumn + j]);
    };
    forEachEntry([](double& sum, double& entry) { sum = entry; });
    AddProducts(sums, {samples, m_mean, firstRow}, {samples, m_mean, firstColumn}, begin, count);
    forEachEntry([](double& sum, double& entry) { entry = sum; });
}

void CovarianceSums::Finish(std::int64_t count) {
    for (std::size_t a = 0; a < m_bandCount; ++a) {
        for (std::size_t b = 0; b <= a; ++b) {
            double& entry = m_covariance[a * m_bandCount + b];
            entry = count > 0 ? entry / static_cast<double>(count) : 0.0;
            m_covariance[b * m_bandCount + a] = entry;
        }
    }
}

} // namespace zelto
