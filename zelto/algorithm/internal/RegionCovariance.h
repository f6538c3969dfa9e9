#pragma once

#include "zelto/algorithm/internal/CompletePixels.h"
#include "zelto/algorithm/internal/PreciseCovariance.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CRasterBand;

namespace zelto {

/// Covariance of the pixels of a region that count in all bands, strip by strip.
class RegionCovariance {
  public:
    /// @param bands must outlive this object
    /// @param width of the strips
    RegionCovariance(const std::vector<CRasterBand*>& bands, std::size_t width)
        : m_width(width), m_pixels(bands), m_values(bands.size()), m_covariance(bands) {}

    /// @param samples per band, packed rows
    void Add(std::span<const double*> samples, const RegionSpans& spans) {
        m_pixels.Select(samples, m_width, spans);
        for (std::size_t b = 0; b < m_values.size(); ++b)
            m_values[b] = m_pixels.Of(b).data();
        m_covariance.Add(m_values, m_pixels.Count());
    }

    std::int64_t Count() const { return m_covariance.Count(); }
    std::vector<double> Matrix() const { return m_covariance.Matrix(); }

  private:
    std::size_t m_width;
    CompletePixels m_pixels;
    std::vector<const double*> m_values; ///< per band, of the strip
    PreciseCovariance m_covariance;
};

} // namespace zelto
