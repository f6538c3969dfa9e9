#pragma once

#include "zelto/algorithm/internal/Moments.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zelto {

/// Count, range, mean and deviation without the cancellation that sums of squares suffer from:
/// every batch is measured around its own mean, and batches are merged by the update of Chan,
/// Golub and LeVeque (1983). The order of the samples within a batch is not kept.
class PreciseMoments {
  public:
    /// A batch of finite samples.
    void Add(std::span<const double> samples);

    std::int64_t Count() const { return m_count; }
    double Sum() const { return m_sum; }
    double Minimum() const { return m_minimum; }
    double Maximum() const { return m_maximum; }
    /// Sum over count; not a number without samples.
    double Mean() const { return m_sum / static_cast<double>(m_count); }
    /// Population form; not a number without samples.
    double StandardDeviation() const;
    /// Sum of the squared deviations from the mean.
    double Squares() const { return m_squares; }

  private:
    std::int64_t m_count = 0;
    double m_sum = 0.0;
    double m_minimum = 0.0;
    double m_maximum = 0.0;
    double m_mean = 0.0;
    double m_squares = 0.0; ///< sum of squared deviations from the mean
};

/// The values of a band that count in a report: finite and not no-data.
class ValueFilter {
  public:
    explicit ValueFilter(const CRasterBand& band);

    bool Holds(double sample) const { return std::isfinite(sample) && !m_noData.Holds(sample); }
    /// Whether every sample counts, whatever it is.
    bool HoldsAll() const { return m_holdsAll; }
    /// The samples that count, in order; valid until the next call
    /// and as long as `samples`.
    std::span<const double> Select(std::span<const double> samples);

  private:
    NoDataRule m_noData;
    bool m_holdsAll;
    std::vector<double> m_selected;
};

} // namespace zelto
