#pragma once

#include "zelto/display/RasterHistogram.h"
#include "zelto/display/internal/ByteRange.h"

#include <algorithm>

namespace zelto {

/// The lookups of a histogram's map with everything that does not change per value computed
/// once. Refers to the histogram's map and is valid until the map is replaced.
class HistogramLookup {
  public:
    explicit HistogramLookup(const CRasterHistogram& histogram)
        : m_map(histogram.m_map.get()),
          m_last(histogram.m_buckets - 1),
          m_step((histogram.m_maximum - histogram.m_minimum) / (histogram.m_buckets - 1)),
          m_inverseStep(1.0 / m_step),
          m_minimum(histogram.m_minimum),
          m_maximum(histogram.m_maximum) {}

    /// See CRasterHistogram::GetHistEqualizationValue().
    bool Equalize(double& value) const {
        if (m_map == nullptr)
            return value != 0.0;
        if (value == 0.0 || m_step == 0.0)
            return false;
        const double equalized = m_step * m_map[Bucket(m_inverseStep * value)] + m_minimum;
        value = ClampToByteRange((equalized - m_minimum) / (m_maximum - m_minimum) * 255.0);
        return true;
    }

    /// See CRasterHistogram::GetAutoLevesValue().
    bool AutoLevel(double& value) const {
        if (m_map == nullptr || m_step == 0.0)
            return false;
        value = ClampToByteRange(m_map[Bucket((value - m_minimum) * m_inverseStep)]);
        return true;
    }

  private:
    int Bucket(double position) const {
        return std::max(std::min(TruncateToInt32(position), m_last), 0);
    }

    const double* m_map;
    int m_last;
    double m_step;
    double m_inverseStep;
    double m_minimum;
    double m_maximum;
};

} // namespace zelto
