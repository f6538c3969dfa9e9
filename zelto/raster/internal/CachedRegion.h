#pragma once

#include "zelto/baselib/internal/Truncate.h"
#include "zelto/raster/RasterBand.h"

#include <cmath>
#include <cstddef>

namespace zelto {

/// Whether a sample is a no-data value: nearer to it than 1e-8. NaN is never near to anything.
inline bool IsNearNoData(double sample, double noData) {
    return std::fabs(sample - noData) < 1e-8;
}

/// A band's data cache as plain values, for point queries in loops: nothing is looked up per
/// point. Valid until the cache is replaced or released.
class CachedRegion {
  public:
    explicit CachedRegion(const CRasterBand& band)
        : m_samples(band.m_cache),
          m_columns(band.m_cacheWidth),
          m_rows(band.m_cacheHeight),
          m_xOff(band.m_cacheXOff),
          m_yOff(band.m_cacheYOff),
          m_xSize(band.m_cacheXSize),
          m_ySize(band.m_cacheYSize),
          m_bandWidth(band.m_width),
          m_bandHeight(band.m_height),
          m_hasNoData(band.m_hasNoData != 0),
          m_noData(band.m_noDataValue) {}

    /// See CRasterBand::GetNearestValueAt().
    bool Nearest(double x, double y, double& value) const {
        if (IsOutside(x, y))
            return false;
        const int column = TruncateToInt32(CacheX(x));
        const int row = TruncateToInt32(CacheY(y));
        if (column < 0 || column >= m_columns || row < 0 || row >= m_rows)
            return false;
        value = Sample(column, row);
        return !IsNoData(value);
    }

    /// See CRasterBand::GetBilinearValueAt().
    bool Bilinear(double x, double y, double& value) const {
        if (IsOutside(x, y))
            return false;
        const double fx = CacheX(x);
        const double fy = CacheY(y);
        const int c = TruncateToInt32(fx);
        const int r = TruncateToInt32(fy);
        if (r >= m_rows - 1 || c >= m_columns - 1 || c < 0 || r < 0)
            return Nearest(x, y, value);
        const double dx = fx - c;
        const double dy = fy - r;
        const double here = Sample(c, r);
        const double right = Sample(c + 1, r);
        const double below = Sample(c, r + 1);
        const double diagonal = Sample(c + 1, r + 1);
        if (IsNoData(here) || IsNoData(right) || IsNoData(below) || IsNoData(diagonal))
            return false;
        // The weights of `right` and `below` are exchanged on purpose, see the class.
        value = (1 - dx) * (1 - dy) * here + (1 - dx) * dy * right + dx * (1 - dy) * below +
                dx * dy * diagonal;
        return true;
    }

  private:
    /// The right and bottom edges themselves are still inside.
    bool IsOutside(double x, double y) const {
        return x < 0 || x > m_bandWidth || y < 0 || y > m_bandHeight;
    }
    double CacheX(double x) const { return (x - m_xOff) * m_columns / m_xSize; }
    double CacheY(double y) const { return (y - m_yOff) * m_rows / m_ySize; }
    double Sample(int column, int row) const {
        return m_samples[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
                         static_cast<std::size_t>(column)];
    }
    bool IsNoData(double sample) const { return m_hasNoData && IsNearNoData(sample, m_noData); }

    const double* m_samples;
    int m_columns;
    int m_rows;
    int m_xOff;
    int m_yOff;
    int m_xSize;
    int m_ySize;
    int m_bandWidth;
    int m_bandHeight;
    bool m_hasNoData;
    double m_noData;
};

} // namespace zelto
