#pragma once

#include "zelto/raster/internal/CachedRegion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace zelto {

/// Minimum, maximum, mean and population deviation of samples, accumulated as doubles in their
/// order.
class SampleStatistics {
  public:
    /// Leaves out samples near to `*noData` or `*excluded` (either may be null). NaN is near to
    /// nothing and counts.
    SampleStatistics(const double* noData, const double* excluded)
        : m_noData(noData), m_excluded(excluded) {}

    template <typename Sample>
    void Add(const Sample* samples, std::size_t count) {
        if constexpr (std::is_integral_v<Sample> && sizeof(Sample) <= 2) {
            if (AddWholeNumbers(samples, count))
                return;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const auto sample = static_cast<double>(samples[i]);
            if (!IsLeftOut(sample))
                AddOne(sample);
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
    bool IsLeftOut(double sample) const {
        return (m_noData != nullptr && IsNearNoData(sample, *m_noData)) ||
               (m_excluded != nullptr && IsNearNoData(sample, *m_excluded));
    }

    /// So many samples of 16 bits have a sum of 32 bits, and those of 8 bits such squares.
    static constexpr std::size_t RUN = std::size_t{1} << 14;

    /// Sum and squares of at most RUN samples, in the narrowest types that hold them, of which a
    /// processor adds up the most at a time.
    template <typename Sample>
    static auto SumsOfRun(const Sample* samples, std::size_t count) {
        using Squares = std::conditional_t<sizeof(Sample) == 1, std::uint32_t, std::uint64_t>;
        std::int32_t sum = 0;
        Squares squares = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const int sample = samples[i];
            const auto magnitude = static_cast<std::uint32_t>(sample < 0 ? -sample : sample);
            sum += sample;
            squares += magnitude * magnitude;
        }
        return std::pair(sum, squares);
    }

    /// Sums of whole numbers below 2^53 are exact in any order, so that integers, several at a
    /// time, come to what doubles one by one come to.
    /// @return false, with nothing added, where that does not hold or samples are left out
    template <typename Sample>
    bool AddWholeNumbers(const Sample* samples, std::size_t count) {
        constexpr std::uint64_t EXACT = std::uint64_t{1} << 53;
        constexpr std::size_t MAX_COUNT = std::size_t{1} << 31; // the squares fit their sum
        if (m_noData != nullptr || m_excluded != nullptr || m_count != 0 || count == 0 ||
            count > MAX_COUNT)
            return false;
        std::int64_t sum = 0;
        std::uint64_t squares = 0;
        Sample low = samples[0];
        Sample high = samples[0];
        for (std::size_t first = 0; first < count; first += RUN) {
            const Sample* const run = samples + first;
            const std::size_t length = std::min(RUN, count - first);
            const auto [runSum, runSquares] = SumsOfRun(run, length);
            sum += runSum;
            squares += runSquares;
            for (std::size_t i = 0; i < length; ++i) {
                low = std::min(low, run[i]);
                high = std::max(high, run[i]);
            }
        }
        if (squares >= EXACT)
            return false;
        m_count = count;
        m_min = low;
        m_max = high;
        m_sum = static_cast<double>(sum);
        m_sumOfSquares = static_cast<double>(squares);
        return true;
    }

    void AddOne(double sample) {
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

    const double* m_noData;
    const double* m_excluded;
    std::size_t m_count = 0;
    double m_min = 0.0;
    double m_max = 0.0;
    double m_sum = 0.0;
    double m_sumOfSquares = 0.0;
};

} // namespace zelto
