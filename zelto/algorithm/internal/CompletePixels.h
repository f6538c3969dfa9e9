#pragma once

#include "zelto/algorithm/internal/PreciseMoments.h"
#include "zelto/algorithm/internal/RegionRows.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

class CRasterBand;

namespace zelto {

/// Values of the pixels that count in all bands, moved together.
class CompletePixels {
  public:
    explicit CompletePixels(const std::vector<CRasterBand*>& bands) : m_values(bands.size()) {
        for (const CRasterBand* band : bands)
            m_filters.emplace_back(*band);
        m_holdsAll = std::all_of(m_filters.begin(), m_filters.end(),
                                 [](const ValueFilter& filter) { return filter.HoldsAll(); });
    }

    /// Keeps the complete pixels of the spans until the next call.
    void Select(std::span<const double*> samples, std::size_t width, const RegionSpans& spans) {
        for (auto& values : m_values)
            values.clear();
        spans.Visit(width, [&](std::size_t begin, std::size_t count) {
            if (m_holdsAll)
                for (std::size_t b = 0; b < samples.size(); ++b)
                    m_values[b].insert(m_values[b].end(), samples[b] + begin,
                                       samples[b] + begin + count);
            else
                SelectFrom(samples, begin, count);
        });
    }
    /// Of what Select() kept, for which there has to be a band.
    std::size_t Count() const { return m_values.front().size(); }
    const std::vector<double>& Of(std::size_t band) const { return m_values[band]; }

  private:
    void SelectFrom(std::span<const double*> samples, std::size_t begin, std::size_t count) {
        const std::size_t before = Count();
        for (auto& values : m_values)
            values.resize(before + count);
        std::size_t kept = before;
        for (std::size_t p = begin; p < begin + count; ++p) {
            for (std::size_t b = 0; b < samples.size(); ++b)
                m_values[b][kept] = samples[b][p];
            kept += static_cast<std::size_t>(IsComplete(samples, p));
        }
        for (auto& values : m_values)
            values.resize(kept);
    }
    bool IsComplete(std::span<const double*> samples, std::size_t position) const {
        for (std::size_t b = 0; b < samples.size(); ++b)
            if (!m_filters[b].Holds(samples[b][position]))
                return false;
        return true;
    }

    std::vector<ValueFilter> m_filters;
    bool m_holdsAll = false; ///< whatever the samples are
    std::vector<std::vector<double>> m_values;
};

} // namespace zelto
