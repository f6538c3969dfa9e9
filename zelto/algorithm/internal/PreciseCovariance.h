#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CRasterBand;

namespace zelto {

/// Covariance in one pass without the cancellation that sums of products suffer from where means
/// are large: every batch is measured around its own means, and batches are merged by the update
/// of Chan, Golub and LeVeque (1983), as PreciseMoments does.
class PreciseCovariance {
  public:
    explicit PreciseCovariance(const std::vector<CRasterBand*>& bands);

    /// Adds `count` pixels.
    /// @param samples per band, finite
    void Add(std::span<const double* const> samples, std::size_t count);

    std::int64_t Count() const { return m_count; }
    /// The matrix in the population form, bands × bands, row by row; all 0 without pixels.
    std::vector<double> Matrix() const;

  private:
    const std::vector<CRasterBand*>& m_bands;
    std::int64_t m_count = 0;
    std::vector<double> m_origins; ///< the first pixel, which large means are near to
    std::vector<double> m_offsets; ///< of the means from the origins
    std::vector<double> m_sums;    ///< products of deviations from the means, lower triangle
    std::vector<double> m_batchOffsets;
    std::vector<double> m_batchMeans;
    std::vector<double> m_batchSums;
};

} // namespace zelto
