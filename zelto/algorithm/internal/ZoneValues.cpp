#include "zelto/algorithm/internal/ZoneValues.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelto {

void ZoneValues::Add(std::span<const double> values, double weight) {
    if (weight == 1.0)
        m_whole.Add(values);
    else
        for (const double value : values)
            AddWeighted(value, weight);
    if (m_keeps)
        for (const double value : values)
            m_values.push_back({value, weight});
}

void ZoneValues::AddWeighted(double value, double weight) {
    m_minimum = m_count == 0 ? value : std::min(m_minimum, value);
    m_maximum = m_count == 0 ? value : std::max(m_maximum, value);
    ++m_count;
    const double before = m_weight;
    m_weight += weight;
    m_sum += weight * value;
    const double step = (value - m_mean) * weight / m_weight;
    m_squares += before * (value - m_mean) * step;
    m_mean += step;
}

CZonalStatistics::Band ZoneValues::Finish(std::span<const double> shares) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    const auto whole = static_cast<double>(m_whole.Count());
    CZonalStatistics::Band band;
    band.count = m_whole.Count() + m_count;
    band.weight = whole + m_weight;
    band.sum = m_whole.Sum() + m_sum;
    band.minimum = band.maximum = band.mean = band.standardDeviation = none;
    if (band.count > 0) {
        const bool both = m_count > 0 && m_whole.Count() > 0;
        const double apart = both ? m_mean - m_whole.Mean() : 0.0;
        const double squares =
            m_whole.Squares() + m_squares + apart * apart * whole * m_weight / band.weight;
        band.minimum = both          ? std::min(m_minimum, m_whole.Minimum())
                       : m_count > 0 ? m_minimum
                                     : m_whole.Minimum();
        band.maximum = both          ? std::max(m_maximum, m_whole.Maximum())
                       : m_count > 0 ? m_maximum
                                     : m_whole.Maximum();
        band.mean = band.sum / band.weight;
        band.standardDeviation = std::sqrt(squares / band.weight);
    }
    band.quantiles = Quantiles(shares);
    std::vector<WeightedValue>().swap(m_values);
    return band;
}

std::vector<double> ZoneValues::Quantiles(std::span<const double> shares) {
    if (m_values.empty())
        return std::vector<double>(shares.size(), std::numeric_limits<double>::quiet_NaN());
    std::sort(m_values.begin(), m_values.end(), [](const WeightedValue& a, const WeightedValue& b) {
        return a.value != b.value ? a.value < b.value : a.weight < b.weight;
    });
    // The places S(k) of the values, on a scale that ends at (n − 1) × the sum of the weights.
    const auto steps = static_cast<double>(m_values.size() - 1);
    std::vector<double> places;
    places.reserve(m_values.size());
    double lighter = 0.0;
    for (std::size_t k = 0; k < m_values.size(); ++k) {
        places.push_back(static_cast<double>(k) * m_values[k].weight + steps * lighter);
        lighter += m_values[k].weight;
    }
    std::vector<double> quantiles;
    for (const double share : shares) {
        const double place = share * steps * lighter;
        const auto above = static_cast<std::size_t>(
            std::upper_bound(places.begin(), places.end(), place) - places.begin());
        // The first place is 0: there is always one below.
        const std::size_t below = above - 1;
        if (above == places.size()) {
            quantiles.push_back(m_values[below].value);
            continue;
        }
        const double low = m_values[below].value;
        const double part = (place - places[below]) / (places[above] - places[below]);
        quantiles.push_back(low + (m_values[above].value - low) * part);
    }
    return quantiles;
}

} // namespace zelto
