#pragma once

#include "zelto/algorithm/ZonalStatistics.h"
#include "zelto/algorithm/internal/RegionWindow.h"
#include "zelto/algorithm/internal/ZoneOutline.h"
#include "zelto/algorithm/internal/ZoneValues.h"

#include <memory>
#include <span>
#include <utility>
#include <vector>

class CDataProgress;
class CRasterBand;

namespace zelto {

/// Goes through the rows of a raster once, from the top, and hands every zone the values of the
/// pixels it holds. Rows that no zone meets are not read.
class ZoneSweep {
  public:
    using Results = std::vector<std::vector<CZonalStatistics::Band>>;

    /// @param shares of the quantiles
    ZoneSweep(const std::vector<CRasterBand*>& bands, CZonalStatistics::Weights weights,
              std::span<const double> shares);

    /// @return false when a band cannot be read, without memory, or when cancelled
    bool Run(std::span<const std::unique_ptr<ZoneOutline>> zones, CDataProgress* progress);
    /// Per zone, in the order of Run(), and band.
    Results TakeResults() { return std::move(m_results); }

  private:
    /// A zone whose rows are being read.
    struct OpenZone {
        std::size_t number;
        ZoneOutline* outline;
        std::vector<ZoneValues> values; ///< per band
    };

    /// Zones whose rows overlap, and the pixels around them.
    struct Group {
        PixelWindow window;
        std::vector<std::size_t> zones; ///< by their first row
    };

    std::vector<Group> MakeGroups(std::span<const std::unique_ptr<ZoneOutline>> zones) const;
    bool Visit(const Group& group, std::span<const std::unique_ptr<ZoneOutline>> zones);
    void AddRows(OpenZone& zone, const PixelWindow& window, std::span<const double*> samples,
                 int firstRow, int rows);
    void Close(OpenZone& zone);
    bool Step(int rows);

    const std::vector<CRasterBand*>& m_bands;
    CZonalStatistics::Weights m_weights;
    std::span<const double> m_shares;
    std::vector<ValueFilter> m_filters;
    std::vector<ZoneSpan> m_spans;
    std::size_t m_kept = 0; ///< values in memory, in all zones
    Results m_results;
    CDataProgress* m_progress = nullptr;
    std::int64_t m_rowsDone = 0;
    std::int64_t m_rowsInAll = 0;
};

} // namespace zelto
