#include "zelto/algorithm/internal/PreciseMoments.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zelto {

namespace {

constexpr std::size_t LANES = 4;

/// Sum and range of a batch, several samples at a time.
struct Batch {
    std::array<double, LANES> sums{};
    std::array<double, LANES> minima;
    std::array<double, LANES> maxima;

    explicit Batch(std::span<const double> samples) {
        minima.fill(samples.front());
        maxima.fill(samples.front());
        const std::size_t whole = samples.size() - samples.size() % LANES;
        for (std::size_t i = 0; i < whole; i += LANES)
            for (std::size_t k = 0; k < LANES; ++k)
                AddTo(k, samples[i + k]);
        for (std::size_t i = whole; i < samples.size(); ++i)
            AddTo(0, samples[i]);
    }

    void AddTo(std::size_t k, double sample) {
        sums[k] += sample;
        minima[k] = sample < minima[k] ? sample : minima[k];
        maxima[k] = sample > maxima[k] ? sample : maxima[k];
    }
};

double Total(const std::array<double, LANES>& sums) {
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

double SquaresAround(double mean, std::span<const double> samples) {
    std::array<double, LANES> sums{};
    const std::size_t whole = samples.size() - samples.size() % LANES;
    for (std::size_t i = 0; i < whole; i += LANES)
        for (std::size_t k = 0; k < LANES; ++k)
            sums[k] += (samples[i + k] - mean) * (samples[i + k] - mean);
    for (std::size_t i = whole; i < samples.size(); ++i)
        sums[0] += (samples[i] - mean) * (samples[i] - mean);
    return Total(sums);
}

} // namespace

void PreciseMoments::Add(std::span<const double> samples) {
    if (samples.empty())
        return;
    const Batch batch(samples);
    const double low = *std::min_element(batch.minima.begin(), batch.minima.end());
    const double high = *std::max_element(batch.maxima.begin(), batch.maxima.end());
    m_minimum = m_count == 0 ? low : std::min(m_minimum, low);
    m_maximum = m_count == 0 ? high : std::max(m_maximum, high);
    const double sum = Total(batch.sums);
    const auto count = static_cast<double>(samples.size());
    const double mean = sum / count;
    const double squares = SquaresAround(mean, samples);
    const auto before = static_cast<double>(m_count);
    const double step = mean - m_mean;
    m_mean += step * count / (before + count);
    m_squares += squares + step * step * before * count / (before + count);
    m_sum += sum;
    m_count += static_cast<std::int64_t>(samples.size());
}

double PreciseMoments::StandardDeviation() const {
    return std::sqrt(m_squares / static_cast<double>(m_count));
}

ValueFilter::ValueFilter(const CRasterBand& band)
    : m_noData(NoDataRule::Of(band)), m_holdsAll(!m_noData.exists && HasSmallWholeNumbers(band)) {}

std::span<const double> ValueFilter::Select(std::span<const double> samples) {
    if (m_holdsAll)
        return samples;
    m_selected.resize(std::max(m_selected.size(), samples.size()));
    std::size_t count = 0;
    for (const double sample : samples) {
        m_selected[count] = sample;
        count += static_cast<std::size_t>(Holds(sample));
    }
    return {m_selected.data(), count};
}

} // namespace zelto
