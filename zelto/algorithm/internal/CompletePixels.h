#pragma once

#include "zelto/algorithm/internal/PreciseMoments.h"
#include "zelto/algorithm/internal/RegionRows.h"

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
    }

    /// Keeps the complete pixels of the spans until the next call.
    void Select(std::span<const double*> samples, std::size_t width, const RegionSpans& spans) {
        for (auto& values : m_values)
            values.clear();
        spans.Visit(width, [&](std::size_t begin, std::size_t count) {
            for (std::size_t p = begin; p < begin + count; ++p)
                if (IsComplete(samples, p))
                    for (std::size_t b = 0; b < samples.size(); ++b)
                        m_values[b].push_back(samples[b][p]);
        });
    }
    std::size_t Count() const { return m_values.empty() ? 0 : m_values.front().size(); }
    const std::vector<double>& Of(std::size_t band) const { return m_values[band]; }

  private:
    bool IsComplete(std::span<const double*> samples, std::size_t position) const {
        for (std::size_t b = 0; b < samples.size(); ++b)
            if (!m_filters[b].Holds(samples[b][position]))
                return false;
        return true;
    }

    std::vector<ValueFilter> m_filters;
    std::vector<std::vector<double>> m_values;
};

} // namespace zelto
