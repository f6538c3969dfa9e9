#pragma once

#include "zelto/algorithm/internal/RegionRows.h"
#include "zelto/algorithm/internal/SampleReader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CRasterBand;

namespace zelto {

/// Sums of products of deviations, in the caller's bands × bands matrix: while adding, the lower
/// triangle (column ≤ row) holds the sums; Finish() makes the covariances of them.
class CovarianceSums {
  public:
    /// @param mean one per band; null means count as 0
    CovarianceSums(const std::vector<CRasterBand*>& bands, const double* mean, double* covariance);

    void Clear();
    /// Adds the pixels of `spans`, leaving out those that are no-data in any band. Every entry
    /// sums its products in the order of the pixels.
    /// @param samples per band, packed rows `width` wide
    void Add(std::span<const double* const> samples, std::size_t width, const RegionSpans& spans,
             std::int64_t& count);
    /// Adds `count` pixels from position `begin` on, all of them.
    void AddRun(std::span<const double* const> samples, std::size_t begin, std::size_t count);
    /// Divides by the number of pixels and fills the upper triangle; all 0 for no pixels.
    void Finish(std::int64_t count);

  private:
    struct NoDataBand {
        std::size_t band;
        double value;
    };

    bool IsValid(std::span<const double* const> samples, std::size_t position) const;
    void AddTile(std::span<const double* const> samples, std::size_t firstRow,
                 std::size_t firstColumn, std::size_t begin, std::size_t count);

    std::size_t m_bandCount;
    std::vector<double> m_mean;
    std::vector<NoDataBand> m_noDataBands;
    double* m_covariance;
};

} // namespace zelto
