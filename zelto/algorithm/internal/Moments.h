#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

class CRasterBand;

/// @file
/// Counting, summing and ranging the samples of a region. Rows of samples come in as spans whose
/// every position lies in the region; what remains to be decided per sample is no-data.

namespace zelto {

/// The no-data rule of a band: within 1e-8 of its no-data value, if it has one.
struct NoDataRule {
    bool exists = false;
    double value = 0.0;

    static NoDataRule Of(const CRasterBand& band);
    bool Holds(double sample) const { return exists && std::fabs(sample - value) < 1e-8; }
};

/// What one pass over a band finds out. The first accepted sample sets both ends of the range,
/// also when it is not a number, after which nothing moves them.
struct Moments {
    std::int64_t count = 0;
    double sum = 0.0;
    double minimum = 0.0;
    double maximum = 0.0;

    void Add(double sample) {
        if (count == 0)
            minimum = maximum = sample;
        if (sample < minimum)
            minimum = sample;
        if (sample > maximum)
            maximum = sample;
        sum += sample;
        ++count;
    }
};

/// Whether all samples of a band are whole and so small that no region's sum leaves the range
/// in which doubles have no gaps: bands of up to 16 bits.
bool HasSmallWholeNumbers(const CRasterBand& band);

/// Adds samples to moments in the order they stand. Where the band's type makes every partial
/// sum a whole number that a double holds exactly, the order cannot be observed and several
/// sums run side by side.
class MomentsAdder {
  public:
    /// For samples of `band` read as doubles.
    explicit MomentsAdder(const CRasterBand& band);

    void Add(Moments& moments, std::span<const double> samples) const;
    /// Adds one sample `times` over.
    void AddRepeated(Moments& moments, double sample, std::int64_t times) const;

  private:
    NoDataRule m_noData;
    bool m_wholeNumbers;
};

/// Range, sum and sum of squares for the operations whose range starts from the ends of the
/// floating-point type. The maximum starts from the smallest positive normal number, not from
/// the most negative one: a region of negative samples keeps it.
struct SeededMoments {
    static constexpr double LARGEST = 1.7976931348623157e308;
    static constexpr double SMALLEST_POSITIVE = 2.2250738585072014e-308;

    std::int64_t count = 0;
    double sum = 0.0;
    double sumOfSquares = 0.0;
    double minimum = LARGEST;
    double maximum = SMALLEST_POSITIVE;

    void Add(double sample) {
        if (sample < minimum)
            minimum = sample;
        if (sample > maximum)
            maximum = sample;
        sum += sample;
        sumOfSquares += sample * sample;
        ++count;
    }
    double Mean() const { return sum / static_cast<double>(count); }
    /// Population form, sqrt(sumOfSquares / count − mean²). Not a number when rounding leaves a
    /// negative difference, see CRasterAlgorithm.
    double StandardDeviation() const {
        const double mean = Mean();
        return std::sqrt(sumOfSquares / static_cast<double>(count) - mean * mean);
    }
};

} // namespace zelto
