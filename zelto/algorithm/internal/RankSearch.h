#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace zelto {

/// Finds the value at one place of the sorted samples by reading the samples several times.
/// Every pass cuts the interval that holds the value into 65,536 parts and keeps one of them,
/// until all samples in it are equal: one pass for 8- and 16-bit samples, a few for others.
class RankSearch {
  public:
    /// @param rank place in the sorted samples, 0 ≤ rank < number of samples
    RankSearch(std::int64_t rank, double minimum, double maximum);

    bool IsFound() const { return m_low == m_high; }
    double Value() const { return m_low; }

    /// One pass: start, all finite samples, end.
    void BeginPass();
    void Add(std::span<const double> samples);
    /// @return false when the samples were not those that the rank was counted in, which leaves
    ///         nothing to be found
    bool EndPass();

  private:
    /// The samples of one part of the interval.
    struct Bin {
        std::int64_t count = 0;
        double low = std::numeric_limits<double>::infinity();
        double high = -std::numeric_limits<double>::infinity();
    };

    std::size_t BinOf(double sample) const;

    std::int64_t m_rank; ///< among the samples of the interval
    double m_low;        ///< interval's ends, both themselves samples
    double m_high;
    std::vector<Bin> m_bins;
};

} // namespace zelto
