#pragma once

#include "zelto/algorithm/ZonalStatistics.h"
#include "zelto/algorithm/internal/PreciseMoments.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace zelto {

/// The values of one band in one zone with their weights, summed up.
class ZoneValues {
  public:
    /// @param keeps whether the values themselves are needed, for quantiles
    explicit ZoneValues(bool keeps) : m_keeps(keeps) {}

    /// Values that count, of which each weighs the same.
    /// @param weight above 0
    void Add(std::span<const double> values, double weight);
    /// How many are in memory.
    std::size_t Kept() const { return m_values.size(); }

    /// What they amount to; all but the band's number. The values in memory go.
    /// @param shares of the quantiles
    CZonalStatistics::Band Finish(std::span<const double> shares);

  private:
    struct WeightedValue {
        double value;
        double weight;
    };

    void AddWeighted(double value, double weight);
    std::vector<double> Quantiles(std::span<const double> shares);

    bool m_keeps;
    PreciseMoments m_whole; ///< those that weigh 1
    // Those that weigh less, summed up one by one after West (1979).
    std::int64_t m_count = 0;
    double m_weight = 0.0;
    double m_sum = 0.0;
    double m_mean = 0.0;
    double m_squares = 0.0; ///< weighted, around the mean
    double m_minimum = 0.0;
    double m_maximum = 0.0;
    std::vector<WeightedValue> m_values;
};

} // namespace zelto
