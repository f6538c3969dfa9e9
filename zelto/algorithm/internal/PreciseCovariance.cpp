#include "zelto/algorithm/internal/PreciseCovariance.h"

#include "zelto/algorithm/internal/CovarianceSums.h"

#include <array>

namespace zelto {

namespace {

/// Mean of the distances from `origin`; several sums side by side, which a processor adds at once.
double MeanFrom(double origin, std::span<const double> samples) {
    constexpr std::size_t LANES = 4;
    std::array<double, LANES> sums{};
    const std::size_t whole = samples.size() - samples.size() % LANES;
    for (std::size_t i = 0; i < whole; i += LANES)
        for (std::size_t k = 0; k < LANES; ++k)
            sums[k] += samples[i + k] - origin;
    for (std::size_t i = whole; i < samples.size(); ++i)
        sums[0] += samples[i] - origin;
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) / static_cast<double>(samples.size());
}

} // namespace

PreciseCovariance::PreciseCovariance(const std::vector<CRasterBand*>& bands)
    : m_bands(bands),
      m_origins(bands.size()),
      m_offsets(bands.size()),
      m_sums(bands.size() * bands.size()),
      m_batchOffsets(bands.size()),
      m_batchMeans(bands.size()),
      m_batchSums(m_sums.size()) {}

void PreciseCovariance::Add(std::span<const double* const> samples, std::size_t count) {
    if (count == 0)
        return;
    const std::size_t bandCount = m_bands.size();
    for (std::size_t b = 0; b < bandCount; ++b) {
        if (m_count == 0)
            m_origins[b] = samples[b][0];
        m_batchOffsets[b] = MeanFrom(m_origins[b], {samples[b], count});
        m_batchMeans[b] = m_origins[b] + m_batchOffsets[b];
    }
    CovarianceSums batch(m_bands, m_batchMeans.data(), m_batchSums.data());
    batch.Clear();
    batch.AddRun(samples, 0, count);

    const auto before = static_cast<double>(m_count);
    const auto added = static_cast<double>(count);
    const double weight = before * added / (before + added);
    for (std::size_t a = 0; a < bandCount; ++a)
        for (std::size_t b = 0; b <= a; ++b)
            m_sums[a * bandCount + b] +=
                m_batchSums[a * bandCount + b] +
                (m_batchOffsets[a] - m_offsets[a]) * (m_batchOffsets[b] - m_offsets[b]) * weight;
    for (std::size_t b = 0; b < bandCount; ++b)
        m_offsets[b] += (m_batchOffsets[b] - m_offsets[b]) * (added / (before + added));
    m_count += static_cast<std::int64_t>(count);
}

std::vector<double> PreciseCovariance::Matrix() const {
    std::vector<double> matrix = m_sums;
    CovarianceSums(m_bands, nullptr, matrix.data()).Finish(m_count);
    return matrix;
}

} // namespace zelto
