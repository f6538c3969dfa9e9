#pragma once

#include <gdal_priv.h>

#include <memory>

namespace zelto {

/// The band on which GDAL's statistics, ranges and histograms may be computed. GDAL keeps such
/// results with the data set (of a virtual raster also with every file behind it) and writes them
/// out when it is closed: into the file, or into a file beside it when the file was opened for
/// reading only. A source that was opened for reading must not change on disk, so its bands are
/// replaced by a stand-in that reads through to them (samples, no-data, mask, overviews) and keeps
/// the results to itself. Sources opened for update use the band itself.
class StatisticsBand {
  public:
    /// @param band not owned; must outlive this object
    explicit StatisticsBand(GDALRasterBand& band);
    ~StatisticsBand();
    StatisticsBand(const StatisticsBand&) = delete;
    StatisticsBand& operator=(const StatisticsBand&) = delete;

    GDALRasterBand* operator->() const { return m_band; }

  private:
    std::unique_ptr<GDALRasterBand> m_standIn;
    GDALRasterBand* m_band;
};

} // namespace zelto
