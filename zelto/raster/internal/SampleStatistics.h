#pragma once

#include "zelto/raster/internal/CachedRegion.h"

#include <cmath>
#include <cstddef>

namespace zelto {

/// Minimum, maximum, mean and population deviation of samples, accumulated in their order.
class SampleStatistics {
  public:
    /// Adds `count` samples, leaving out those near to `*noData` or `*excluded` (either may be
    /// null). NaN is near to nothing and counts.
    void Add(const double* samples, std::size_t count, const double* noData,
             const double* excluded) {
        for (std::size_t i = 0; i < count; ++i) {
            const double sample = samples[i];
            if ((noData != nullptr && IsNearNoData(sample, *noData)) ||
                (excluded != nullptr && IsNearNoData(sample, *excluded)))
                continue;
            Add(sample);
        }
    }

    /// Writes the four results; without a counted sample nothing is written.
    void Report(double& min, double& max, double& mean, double& stdDev) const {
        if (m_count == 0)
            return;
        const auto count = static_cast<double>(m_count);
        min = m_min;
        max = m_max;
        mean = m_sum / count;
        const double variance = m_sumOfSquares / count - mean * mean;
        // Rounding makes the variance of equal samples negative at times.
        stdDev = variance < 0.0 ? 0.0 : std::sqrt(variance);
    }

  private:
    void Add(double sample) {
        if (m_count == 0) {
            m_min = sample;
            m_max = sample;
        } else {
            if (sample < m_min)
                m_min = sample;
            if (sample > m_max)
                m_max = sample;
        }
        ++m_count;
        m_sum += sample;
        m_sumOfSquares += sample * sample;
    }

    std::size_t m_count = 0;
    double m_min = 0.0;
    double m_max = 0.0;
    double m_sum = 0.0;
    double m_sumOfSquares = 0.0;
};

} // namespace zelto
