#pragma once

#include "zelto/algorithm/internal/ExactSum.h"

#include <cstdint>
#include <limits>
#include <span>

class CRasterBand;

namespace zelto {

/// How a band's numbers are summed without rounding; the results are the same, the cost is not.
enum class ExactWay {
    SmallWhole, ///< up to 16 bits: sums of a batch fit into 64 bits
    Whole,      ///< 32 bits: squares of a batch fit into 128 bits
    Single,     ///< single precision: a product of two is a double
    Double,
};
ExactWay ExactWayOf(const CRasterBand& band);

/// Adds the products of two bands' values, pair by pair.
void AddProducts(ExactSum& sum, std::span<const double> a, ExactWay wayOfA,
                 std::span<const double> b, ExactWay wayOfB);
void AddValues(ExactSum& sum, std::span<const double> values, ExactWay way);

/// Count, range, and the sums of a band's values and of their squares, without rounding.
class ExactMoments {
  public:
    explicit ExactMoments(const CRasterBand& band) : m_way(ExactWayOf(band)) {}

    /// A batch of finite values.
    void Add(std::span<const double> values);

    std::int64_t Count() const { return m_count; }
    /// Not a number without values; as Maximum().
    double Minimum() const { return m_minimum; }
    double Maximum() const { return m_maximum; }
    const ExactSum& Sum() const { return m_sum; }
    const ExactSum& Squares() const { return m_squares; }

  private:
    ExactWay m_way;
    std::int64_t m_count = 0;
    double m_minimum = std::numeric_limits<double>::quiet_NaN();
    double m_maximum = std::numeric_limits<double>::quiet_NaN();
    ExactSum m_sum;
    ExactSum m_squares;
};

} // namespace zelto
