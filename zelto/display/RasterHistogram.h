#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/PlatformTypes.h"

#include <memory>

namespace zelto {
class DisplayMapping;
class HistogramLookup;
} // namespace zelto

/// Histogram of a band over a value range, with a map from bucket to value that serves either
/// histogram equalisation or auto levels. Both maps share one array: building one replaces or
/// overwrites the other.
class ZELTO_API CRasterHistogram {
  public:
    /// Copies `buckets` counts. Without counts (null, or a size below 1 or beyond the memory)
    /// the histogram has no buckets.
    CRasterHistogram(double min, double max, int buckets, const int* counts, bool includeOutOfRange,
                     bool approxOK);
    CRasterHistogram(const CRasterHistogram&) = delete;
    CRasterHistogram& operator=(const CRasterHistogram&) = delete;
    ~CRasterHistogram();

    /// Whether the histogram was made with these parameters: bounds within 1e-5, the same
    /// number of buckets, and the same flags where a flag is given.
    bool IsCoincidence(double min, double max, int buckets, const bool* includeOutOfRange,
                       const bool* approxOK) const;
    /// Reports the parameters; the flags only where asked for.
    /// @return the histogram's own counts, not a copy; null without buckets
    int* GetHistogram(double& min, double& max, int& buckets, bool* includeOutOfRange,
                      bool* approxOK);
    int* GetHistogramData() { return m_counts.get(); }

    /// Builds the equalisation map: bucket i gets (buckets − 1) × share of the counts up to i.
    /// The share is of the counts' own total, so that pixels outside the range do not shift the
    /// map; the pixel count is not used.
    void SetHistogramMap(__int64 pixelCount);
    /// Replaces `value` by its equalised display value, 0 … 255.
    ///
    /// The bucket is taken from the value itself, not from its distance to the minimum: the map
    /// suits ranges that start at 0.
    /// @return false for 0, which is never equalised, and for an empty range; without a map
    ///         whether the value differs from 0. The value is left as it is in these cases.
    bool GetHistEqualizationValue(double& value) const;

    /// Builds the auto-levels map: the range that remains when the fraction `threshold` of the
    /// counts is clipped at each end, spread over 0 … 255. Nothing happens while the map was
    /// last built for the same threshold (within 1e-5). Several threads may call it at once.
    ///
    /// The map runs over bucket indices while the clipped bounds are data values: it suits
    /// histograms that start at 0 with one bucket per unit.
    void SetAutoLevelsMap(double threshold);
    /// Replaces `value` by the map's value of its bucket, 0 … 255.
    /// @return false, with the value left as it is, without a map or with an empty range
    bool GetAutoLevesValue(double& value) const;

  private:
    friend class zelto::HistogramLookup;
    friend class zelto::DisplayMapping;

    bool IsAutoLevelsMapBuiltFor(double threshold);
    bool ReplaceMap();
    __int64 Total() const;
    double LowClip(double threshold) const;
    double HighClip(double threshold) const;
    void FillAutoLevelsMap(double low, double high);

    bool m_autoLevelsMapBuilt = false; ///< never cleared
    double m_minimum = 0.0;
    double m_maximum = 0.0;
    int m_buckets = 0;
    bool m_includeOutOfRange = false;
    bool m_approxOK = false;
    std::unique_ptr<int[]> m_counts;
    std::unique_ptr<double[]> m_map;
    double m_lastThreshold = 0.0;
};
